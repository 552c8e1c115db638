// ObjectWrapper.m: boxes host objects.
#import "companion/ObjectWrapper.h"
#import "companion/Holders.h"

@implementation QRXREALobjectWrapper

+ (id)wrap:(REALobject)object {
    if (object == NULL || !hasHost())
        return nil;
    QRXREALobjectWrapper* box = [[[self alloc] init] autorelease];
    host.REALLockObject(object);
    box->_object = object;
    return box;
}

- (REALobject)unwrap {
    if (_object != NULL)
        host.REALLockObject(_object);
    return _object;
}

- (id)contentObject {
    REALclassRef wanted = host.pluginObjectType("DRFSObjectQRX");
    return wanted != NULL && host.RuntimeObjectIsa(_object, wanted) ? [[held(_object) retain] autorelease]
                                                                    : nil;
}

- (void)dealloc {
    if (_object != NULL)
        host.REALUnlockObject(_object);
    [super dealloc];
}

- (BOOL)isEqual:(id)other {
    return [other isKindOfClass:[QRXREALobjectWrapper class]] &&
           ((QRXREALobjectWrapper*)other)->_object == _object;
}

- (NSUInteger)hash {
    return (NSUInteger)_object / sizeof(REALobjectStruct);
}

// What it boxes does not change.
- (id)copyWithZone:(NSZone*)zone {
    return [self retain];
}

@end
