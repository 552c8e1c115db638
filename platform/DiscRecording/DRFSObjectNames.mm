// DRFSObjectNames: the names of files and folders in each file system.
#import "DRFSObject.h"
#import "DRFSObjectPrivate.h"
#import "DRFolderPrivate.h"
#import "Filesystems.h"
#include "NameRules.hpp"
#include "PathStrings.hpp"

namespace {

// As it is: names on a disc have no bytes that are no text.
std::u16string unitsOf(NSString* text) {
    std::u16string units([text length], u'\0');
    if (!units.empty())
        [text getCharacters:reinterpret_cast<unichar*>(units.data()) range:NSMakeRange(0, units.size())];
    return units;
}

// A text that is no proper one (a surrogate without its partner) has no other form, and stays as it is; ASCII has no other.
std::u16string inFormOf(discrecording::NameRule rule, NSString* name) {
    std::u16string units = unitsOf(name);
    if (AreASCII(reinterpret_cast<const unichar*>(units.data()), units.size()))
        return units;
    const bool composed = rule == discrecording::NameRule::Joliet || rule == discrecording::NameRule::UDF;
    NSString* form =
        composed ? [name precomposedStringWithCanonicalMapping] : [name decomposedStringWithCanonicalMapping];
    return [form length] == 0 ? units : unitsOf(form);
}

NSString* legal(NSString* name, int rule, DRFSObject* object) {
    const auto names = static_cast<discrecording::NameRule>(rule);
    const std::u16string found =
        discrecording::legalName(names, inFormOf(names, name), [object isKindOfClass:[DRFolder class]]);
    return [NewStringOfUnits(reinterpret_cast<const unichar*>(found.data()), found.size()) autorelease];
}

} // namespace

@implementation DRFSObject (DRFSObjectNames)

- (NSString*)specificNameForFilesystem:(NSString*)filesystem {
    const DRFilesystem* found = DRFilesystemOfNames(filesystem);
    if (found->nameRule == DRBaseNameRule)
        return [self baseName];
    NSString* set = [_specificNames objectForKey:found->name];
    return set != nil ? [[set retain] autorelease] : legal([self baseName], found -> nameRule, self);
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
        [_specificNames setObject:legal(name, found->nameRule, self) forKey:found->name];
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
