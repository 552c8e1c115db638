// DRFSObjectNames: the names of files and folders in each file system.
#include "ChildNames.hpp"
#import "DRFSObject.h"
#import "DRFSObjectPrivate.h"
#import "DRFolderPrivate.h"
#import "Filesystems.h"
#include "PathStrings.hpp"

namespace {

NSString* textOf(const std::u16string& name) {
    return [NewStringOfUnits(reinterpret_cast<const unichar*>(name.data()), name.size()) autorelease];
}

} // namespace

@implementation DRFSObject (DRFSObjectNames)

- (NSString*)specificNameForFilesystem:(NSString*)filesystem {
    const DRFilesystem* found = DRFilesystemOfNames(filesystem);
    if (found->nameRule == DRBaseNameRule)
        return [self baseName];
    NSString* set = [_specificNames objectForKey:found->name];
    if (set != nil)
        return [[set retain] autorelease];
    return textOf(discrecording::specificName(self, static_cast<discrecording::NameRule>(found->nameRule)));
}

- (void)setSpecificName:(NSString*)name forFilesystem:(NSString*)filesystem {
    const DRFilesystem* found = DRFilesystemOfNames(filesystem);
    if (found->nameRule == DRBaseNameRule) {
        if (name != nil)
            [self setBaseName:name];
        return;
    }
    if (name == nil) {
        [_specificNames removeObjectForKey:found->name];
    } else {
        if (_specificNames == nil)
            _specificNames = [[NSMutableDictionary alloc] init];
        [_specificNames
            setObject:textOf(discrecording::legalName(static_cast<discrecording::NameRule>(found->nameRule),
                                                      name, [self isKindOfClass:[DRFolder class]]))
               forKey:found->name];
    }
    [self nameChanged];
}

- (NSDictionary*)namesBy:(SEL)name {
    const uint32_t mask = [self effectiveFilesystemMask];
    NSMutableDictionary* names = [NSMutableDictionary dictionary];
    for (size_t i = 0; i < discrecording::nameRules; ++i) {
        const DRFilesystem& row = DRFilesystems()[i];
        if ((mask & row.mask) != 0)
            [names setObject:[self performSelector:name withObject:row.name] forKey:row.name];
    }
    return names;
}

- (NSDictionary*)specificNames {
    return [self namesBy:@selector(specificNameForFilesystem:)];
}

- (void)setSpecificNames:(NSDictionary*)names {
    NSArray* keys = [names allKeys];
    for (NSUInteger i = 0; i < [keys count]; ++i) {
        NSString* key = [keys objectAtIndex:i];
        DRFilesystemOfNames(key); // before anything is changed
        if (![[names objectForKey:key] isKindOfClass:[NSString class]]) {
            [NSException raise:NSInvalidArgumentException
                        format:@"A name is a text; the one for %@ is of class %@.", key,
                               [[names objectForKey:key] class]];
        }
    }
    // The base name first: it takes specific names away.
    if ([names objectForKey:DRAllFilesystems] != nil)
        [self setBaseName:[names objectForKey:DRAllFilesystems]];
    for (NSUInteger i = 0; i < [keys count]; ++i) {
        NSString* key = [keys objectAtIndex:i];
        if (![key isEqualToString:DRAllFilesystems])
            [self setSpecificName:[names objectForKey:key] forFilesystem:key];
    }
}

- (NSString*)mangledNameForFilesystem:(NSString*)filesystem {
    const DRFilesystem* found = DRFilesystemOfNames(filesystem);
    if (found->nameRule == DRBaseNameRule || [self parent] == nil)
        return [self specificNameForFilesystem:filesystem];
    return [[self parent] mangledNameOfChild:self byRule:found->nameRule];
}

- (NSDictionary*)mangledNames {
    return [self namesBy:@selector(mangledNameForFilesystem:)];
}

@end
