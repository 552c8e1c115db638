// DRFSObjectProperties: the properties of files and folders, for each file system and for all of them.
#import "DRFSObject.h"
#import "Filesystems.h"

// What stands under each of the framework's keys. Other keys are kept as they come.
static Class ClassOfValue(NSString* key) {
    static NSDictionary* classes;
    @synchronized([DRFSObject class]) {
        if (classes == nil) {
            Class number = [NSNumber class], date = [NSDate class], data = [NSData class],
                  text = [NSString class];
            const struct {
                NSString* key;
                Class class;
            } rows[] = {
                {DRISO9660VersionNumber, number},
                {DRInvisible, number},
                {DRCreationDate, date},
                {DRContentModificationDate, date},
                {DRAttributeModificationDate, date},
                {DRAccessDate, date},
                {DRBackupDate, date},
                {DREffectiveDate, date},
                {DRExpirationDate, date},
                {DRRecordingDate, date},
                {DRPosixFileMode, number},
                {DRPosixUID, number},
                {DRPosixGID, number},
                {DRHFSPlusTextEncodingHint, number},
                {DRHFSPlusCatalogNodeID, number},
                {DRMacFileType, data},
                {DRMacFileCreator, data},
                {DRMacWindowBounds, data},
                {DRMacIconLocation, data},
                {DRMacScrollPosition, data},
                {DRMacWindowView, number},
                {DRMacFinderFlags, number},
                {DRMacExtendedFinderFlags, number},
                {DRMacFinderHideExtension, number},
                {DRUDFWriteVersion, text},
                {DRUDFPrimaryVolumeDescriptorNumber, number},
                {DRUDFVolumeSequenceNumber, number},
                {DRUDFMaxVolumeSequenceNumber, number},
                {DRUDFInterchangeLevel, number},
                {DRUDFMaxInterchangeLevel, number},
                {DRUDFApplicationIdentifierSuffix, data},
                {DRUDFVolumeSetIdentifier, text},
                {DRUDFVolumeSetTimestamp, date},
                {DRUDFVolumeSetImplementationUse, data},
                {DRUDFRealTimeFile, number},
                {DRUDFExtendedFilePermissions, number},
            };
            NSMutableDictionary* made = [[NSMutableDictionary alloc] init];
            for (size_t i = 0; i < sizeof rows / sizeof rows[0]; i++)
                [made setObject:(id)rows[i].class forKey:rows[i].key];
            classes = made;
        }
    }
    return [classes objectForKey:key];
}

static void CheckProperty(id key, id value) {
    if (![key isKindOfClass:[NSString class]])
        [NSException raise:NSInvalidArgumentException format:@"A property's key is a text, not %@.", key];
    Class wanted = ClassOfValue(key);
    if (wanted != Nil && ![value isKindOfClass:wanted]) {
        [NSException
             raise:NSInvalidArgumentException
            format:@"The property %@ is to be an object of class %@, not %@.", key, wanted, [value class]];
    }
}

@implementation DRFSObject (DRFSObjectProperties)

- (NSDictionary*)propertiesForFilesystem:(NSString*)filesystem mergeWithOtherFilesystems:(BOOL)merge {
    NSString* name = DRFilesystemNamed(filesystem)->propertiesName;
    NSMutableDictionary* result = [NSMutableDictionary dictionary];
    if (merge)
        [result addEntriesFromDictionary:[_properties objectForKey:DRAllFilesystems]];
    [result addEntriesFromDictionary:[_properties objectForKey:name]];
    return result;
}

- (void)setProperties:(NSDictionary*)properties inFilesystem:(NSString*)filesystem {
    NSString* name = DRFilesystemNamed(filesystem)->propertiesName;
    for (id key in properties)
        CheckProperty(key, [properties objectForKey:key]);
    if (_properties == nil)
        _properties = [[NSMutableDictionary alloc] init];
    if (properties == nil)
        [_properties removeObjectForKey:name];
    else
        [_properties setObject:[NSMutableDictionary dictionaryWithDictionary:properties] forKey:name];
}

- (id)propertyForKey:(NSString*)key inFilesystem:(NSString*)filesystem mergeWithOtherFilesystems:(BOOL)merge {
    NSString* name = DRFilesystemNamed(filesystem)->propertiesName;
    id value = key == nil ? nil : [[_properties objectForKey:name] objectForKey:key];
    if (value == nil && merge && key != nil)
        value = [[_properties objectForKey:DRAllFilesystems] objectForKey:key];
    return [[value retain] autorelease];
}

- (void)setProperty:(id)value forKey:(NSString*)key inFilesystem:(NSString*)filesystem {
    NSString* name = DRFilesystemNamed(filesystem)->propertiesName;
    if (value == nil && key != nil) {
        [[_properties objectForKey:name] removeObjectForKey:key];
        return;
    }
    CheckProperty(key, value);
    if (_properties == nil)
        _properties = [[NSMutableDictionary alloc] init];
    if ([_properties objectForKey:name] == nil)
        [_properties setObject:[NSMutableDictionary dictionary] forKey:name];
    [[_properties objectForKey:name] setObject:value forKey:key];
}

@end
