// DRCDTextBlock: the CD-Text of an audio disc in one language.
#import "DRCDTextBlock.h"
#include "CDTextValues.hpp"
#import "DRCDTextPrivate.h"
#include "Elements.hpp"
#include "PathStrings.hpp"

#include <optional>

namespace {

using engine::CDTextBlock;
using engine::CDTextCharacters;

// No disc has UTF-8: such a block is one of ISO Latin 1, and what that lacks shows as soon as it is set.
std::optional<CDTextCharacters> charactersOf(DRCDTextEncoding encoding) {
    switch (encoding) {
    case DRCDTextEncodingASCII:
        return CDTextCharacters::ASCII;
    case DRCDTextEncodingISOLatin1Modified:
    case DRCDTextEncodingUTF8:
        return CDTextCharacters::Latin1;
    case DRCDTextEncodingShiftJIS:
        return CDTextCharacters::ShiftJIS;
    default:
        return {};
    }
}

DRCDTextEncoding encodingOf(CDTextCharacters characters) {
    switch (characters) {
    case CDTextCharacters::ASCII:
        return DRCDTextEncodingASCII;
    case CDTextCharacters::ShiftJIS:
        return DRCDTextEncodingShiftJIS;
    case CDTextCharacters::Latin1:
        break;
    }
    return DRCDTextEncodingISOLatin1Modified;
}

struct Copyright {
    NSString* key;
    uint8_t bit;
};
const Copyright copyrights[] = {
    {DRCDTextCopyrightAssertedForTitlesKey, engine::cdTextTitlesCopyright},
    {DRCDTextCopyrightAssertedForNamesKey, engine::cdTextNamesCopyright},
    {DRCDTextCopyrightAssertedForSpecialMessagesKey, engine::cdTextMessagesCopyright},
};

uint8_t languageCode(NSString* language) { return engine::cdTextLanguage(pathnames::bytesOf(language)); }

// The disc's code for the value of DRCDTextLanguageKey, in either form that it may have.
uint8_t languageOfProperty(id value, NSString* otherwise) {
    if (value == nil)
        return languageCode(otherwise);
    if ([value isKindOfClass:[NSString class]])
        return languageCode(value);
    if (![value isKindOfClass:[NSNumber class]] || [value longLongValue] < 0 || [value longLongValue] > 0xFF)
        [NSException raise:NSInvalidArgumentException
                    format:@"%@ must be a number from 0 to 255 or an ISO 639 code, not %@.",
                           DRCDTextLanguageKey, value];
    return static_cast<uint8_t>([value longLongValue]);
}

void checkTrack(NSUInteger track) {
    if (track > engine::cdTextMaxTrack)
        [NSException
             raise:NSRangeException
            format:@"A disc has 99 tracks at most, and no track %lld.", static_cast<long long>(track)];
}

} // namespace

@interface DRCDTextBlock (Inside)
- (CDTextBlock)engineBlock;
@end

@implementation DRCDTextBlock

+ (DRCDTextBlock*)cdTextBlockWithLanguage:(NSString*)language encoding:(DRCDTextEncoding)encoding {
    return [[[self alloc] initWithLanguage:language encoding:encoding] autorelease];
}

- (id)initWithLanguage:(NSString*)language encoding:(DRCDTextEncoding)encoding {
    self = [super init];
    if (self == nil)
        return nil;
    if (!charactersOf(encoding)) {
        [self release];
        return nil;
    }
    _language = language == nil ? @"" : [language copy];
    _encoding = encoding;
    _tracks = [[NSMutableArray alloc] initWithObjects:[NSMutableDictionary dictionary], nil];
    [self setProperties:nil];
    return self;
}

- (id)init {
    return [self initWithLanguage:@"" encoding:DRCDTextEncodingISOLatin1Modified];
}

- (void)dealloc {
    [_language release];
    [_properties release];
    [_tracks release];
    [super dealloc];
}

- (NSString*)language {
    return _language;
}

- (DRCDTextEncoding)encoding {
    return _encoding;
}

// ---- properties

- (NSDictionary*)properties {
    return [[_properties retain] autorelease];
}

- (void)setProperties:(NSDictionary*)properties {
    NSMutableDictionary* all = [NSMutableDictionary dictionary];
    [all setObject:[NSNumber numberWithInt:languageOfProperty([properties objectForKey:DRCDTextLanguageKey],
                                                              _language)]
            forKey:DRCDTextLanguageKey];
    [all setObject:[NSNumber numberWithInt:static_cast<int>(*charactersOf(_encoding))]
            forKey:DRCDTextCharacterCodeKey];
    [all setObject:[NSNumber numberWithUnsignedInteger:_encoding] forKey:DRCDTextNSStringEncodingKey];
    for (const Copyright& row : copyrights) {
        id value = [properties objectForKey:row.key];
        const BOOL asserted = [value respondsToSelector:@selector(boolValue)] && [value boolValue];
        [all setObject:[NSNumber numberWithBool:asserted] forKey:row.key];
    }
    NSDictionary* copy = [all copy];
    [_properties release];
    _properties = copy;
}

// ---- texts

- (NSArray*)trackDictionaries {
    NSMutableArray* copies = [NSMutableArray array];
    for (NSDictionary* dictionary : discrecording::Elements<NSDictionary*>(_tracks))
        [copies addObject:[NSDictionary dictionaryWithDictionary:dictionary]];
    return copies;
}

- (void)setTrackDictionaries:(NSArray*)tracks {
    NSMutableArray* fitting = [NSMutableArray array];
    for (NSDictionary* dictionary : discrecording::Elements<NSDictionary*>(tracks)) {
        const NSUInteger track = [fitting count];
        checkTrack(track);
        if (![dictionary isKindOfClass:[NSDictionary class]])
            [NSException raise:NSInvalidArgumentException
                        format:@"CD-Text of track %u must be a dictionary, not a %@.",
                               static_cast<unsigned>(track), [dictionary class]];
        NSMutableDictionary* values = [NSMutableDictionary dictionary];
        for (NSString* key : discrecording::Elements<NSString*>([dictionary allKeys]))
            [values setObject:discrecording::fittingCDTextValue([dictionary objectForKey:key], key, track,
                                                                *charactersOf(_encoding))
                       forKey:key];
        [fitting addObject:values];
    }
    if ([fitting count] == 0)
        [fitting addObject:[NSMutableDictionary dictionary]];
    [_tracks setArray:fitting];
}

- (id)objectForKey:(NSString*)key ofTrack:(NSUInteger)trackIndex {
    if (key == nil || trackIndex >= [_tracks count])
        return nil;
    return [[[[_tracks objectAtIndex:trackIndex] objectForKey:key] retain] autorelease];
}

- (void)setObject:(id)value forKey:(NSString*)key ofTrack:(NSUInteger)trackIndex {
    checkTrack(trackIndex);
    if (value == nil) {
        if (key != nil && trackIndex < [_tracks count])
            [[_tracks objectAtIndex:trackIndex] removeObjectForKey:key];
        return;
    }
    id fitting = discrecording::fittingCDTextValue(value, key, trackIndex, *charactersOf(_encoding));
    while ([_tracks count] <= trackIndex)
        [_tracks addObject:[NSMutableDictionary dictionary]];
    [[_tracks objectAtIndex:trackIndex] setObject:fitting forKey:key];
}

// ---- packs

- (CDTextBlock)engineBlock {
    CDTextBlock block;
    block.characters = *charactersOf(_encoding);
    block.language = static_cast<uint8_t>([[_properties objectForKey:DRCDTextLanguageKey] intValue]);
    for (const Copyright& row : copyrights) {
        if ([[_properties objectForKey:row.key] boolValue])
            block.copyright = static_cast<uint8_t>(block.copyright | row.bit);
    }
    discrecording::putCDTextDictionaries(block, _tracks);
    return block;
}

- (uint32_t)flatten {
    return static_cast<uint32_t>(engine::cdTextBytesCut([self engineBlock]));
}

- (void)takeEngineBlock:(const CDTextBlock&)block {
    [_tracks setArray:discrecording::cdTextDictionaries(block)];
    NSMutableDictionary* properties = [NSMutableDictionary dictionary];
    [properties setObject:[NSNumber numberWithInt:block.language] forKey:DRCDTextLanguageKey];
    for (const Copyright& row : copyrights)
        [properties setObject:[NSNumber numberWithBool:(block.copyright & row.bit) != 0] forKey:row.key];
    [self setProperties:properties];
}

+ (NSArray*)arrayOfCDTextBlocksFromPacks:(NSData*)packs {
    const auto blocks = engine::cdTextFromPacks({static_cast<const uint8_t*>([packs bytes]), [packs length]});
    if (!blocks.ok()) {
        NSLog(@"%@", pathnames::textOf(blocks.error().message));
        return nil;
    }
    NSMutableArray* read = [NSMutableArray array];
    for (const CDTextBlock& block : *blocks) {
        NSString* language = pathnames::textOf(engine::cdTextLanguageName(block.language));
        DRCDTextBlock* made = [self cdTextBlockWithLanguage:language encoding:encodingOf(block.characters)];
        [made takeEngineBlock:block];
        [read addObject:made];
    }
    return read;
}

@end

@implementation DRCDTextBlock (DRCDTextPrivate)

+ (NSData*)packsOfCDTextBlocks:(NSArray*)blocks {
    std::vector<CDTextBlock> all;
    for (DRCDTextBlock* block : discrecording::Elements<DRCDTextBlock*>(blocks))
        all.push_back([block engineBlock]);
    const auto packs = engine::cdTextPacks(all);
    if (!packs.ok()) {
        NSLog(@"%@", pathnames::textOf(packs.error().message));
        return nil;
    }
    return [NSData dataWithBytes:packs->data() length:packs->size()];
}

@end
