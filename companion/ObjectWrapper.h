// ObjectWrapper.h: a platform object that stands for a host object, in platform collections.
#import "companion/Host.h"

// Other plug-ins reach the class by its name. A box keeps one reference to its host object. Boxes of the same
// object are equal, so that a host object may be a key.
//
// The platform may release a box on any thread, and nothing of the companion's is locked for that. The companion
// relies on the host: on references that are counted atomically, and on its lock, under which the last reference to
// an object of a plug-in goes and its destructors run, and which every thread holds that looks into the table of
// wrappers (Registry.h).
@interface QRXREALobjectWrapper : NSObject <NSCopying> {
  @private
    REALobject _object;
}
// A box of the current pool; nil for null.
+ (id)wrap:(REALobject)object;
// The host object with a new reference, which the caller owns, as with everything that crosses.
- (REALobject)unwrap;
// The file or folder of a disc's tree that the host object holds, for a platform that wants one and gets a box; nil for every
// other object.
- (id)contentObject;
@end
