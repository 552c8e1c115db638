// CDTextValues: the values under the keys of CD-Text, and what they are in the engine's blocks.
#include "CDTextValues.hpp"

#import "DRCDTextConstants.h"
#include "Elements.hpp"
#import "UnitStrings.h"

#include <algorithm>

namespace discrecording {
namespace {

using engine::CDTextBlock;
using engine::CDTextCharacters;
using engine::CDTextType;

enum class Kind { Text, Letters, Code, Record }; // NSString; NSData of characters; NSNumber; NSData of bytes

struct Row {
    NSString* key;
    CDTextType type;
    Kind kind;
    bool ofTracks;
};

const Row rows[] = {
    {DRCDTextTitleKey, CDTextType::Title, Kind::Text, true},
    {DRCDTextPerformerKey, CDTextType::Performer, Kind::Text, true},
    {DRCDTextSongwriterKey, CDTextType::Songwriter, Kind::Text, true},
    {DRCDTextComposerKey, CDTextType::Composer, Kind::Text, true},
    {DRCDTextArrangerKey, CDTextType::Arranger, Kind::Text, true},
    {DRCDTextSpecialMessageKey, CDTextType::Message, Kind::Text, true},
    {DRCDTextDiscIdentKey, CDTextType::DiscIdent, Kind::Text, false},
    {DRCDTextGenreKey, CDTextType::Genre, Kind::Text, false},
    {DRCDTextGenreCodeKey, CDTextType::Genre, Kind::Code, false},
    {DRCDTextTOCKey, CDTextType::TOC, Kind::Record, false},
    {DRCDTextTOC2Key, CDTextType::TOC2, Kind::Record, false},
    {DRCDTextClosedKey, CDTextType::Closed, Kind::Text, true},
    {DRCDTextMCNISRCKey, CDTextType::MCNISRC, Kind::Letters, true},
    {DRCDTextSizeKey, CDTextType::Size, Kind::Record, false},
};

// The characters of a type, where it has its own whatever the block's are.
CDTextCharacters charactersOf(CDTextType type, CDTextCharacters ofBlock) {
    if (type <= CDTextType::Message)
        return ofBlock;
    return type == CDTextType::Closed ? CDTextCharacters::Latin1 : CDTextCharacters::ASCII;
}

std::string encoded(NSString* text, CDTextCharacters characters) {
    // The character sets have no marks of their own: a letter and its mark must be one character.
    NSString* composed = [text precomposedStringWithCanonicalMapping];
    std::u16string units([composed length], u'\0');
    if (!units.empty())
        [composed getCharacters:reinterpret_cast<unichar*>(units.data()) range:NSMakeRange(0, units.size())];
    return engine::cdTextEncoded(units, characters);
}

NSString* decoded(const std::string& bytes, CDTextCharacters characters) {
    const std::u16string units = engine::cdTextDecoded(bytes, characters);
    return [NewStringOfUnits(reinterpret_cast<const unichar*>(units.data()), units.size()) autorelease];
}

NSData* dataOf(const std::string& bytes) { return [NSData dataWithBytes:bytes.data() length:bytes.size()]; }

std::string bytesOf(NSData* data) { return {static_cast<const char*>([data bytes]), [data length]}; }

std::string place(NSUInteger track) { return track == 0 ? "the disc" : "track " + std::to_string(track); }

void refuse(NSString* key, NSUInteger track, const char* why) {
    [NSException raise:NSInvalidArgumentException
                format:@"CD-Text of %s: %@ %s.", place(track).c_str(), key, why];
}

// Raises when there is none.
const Row& rowOf(NSString* key, NSUInteger track) {
    const auto found =
        std::ranges::find_if(rows, [=](const Row& row) { return [row.key isEqual:key] != NO; });
    if (found == std::end(rows))
        refuse(key, track, "is not known");
    if (track != 0 && !found->ofTracks)
        refuse(key, track, "is for the disc only");
    return *found;
}

id fittingLetters(NSData* data, NSString* key, NSUInteger track) {
    if ([data length] > (track == 0 ? 13 : 12))
        refuse(key, track, "has more than 13 bytes (a disc) or 12 (a track)");
    return dataOf(encoded(decoded(bytesOf(data), CDTextCharacters::Latin1), CDTextCharacters::ASCII));
}

NSMutableDictionary* dictionaryOf(const CDTextBlock& block, size_t track) {
    NSMutableDictionary* dictionary = [NSMutableDictionary dictionary];
    for (const Row& row : rows) {
        if (row.kind == Kind::Code) {
            if (track == 0 && block.genreCode != 0)
                [dictionary setObject:[NSNumber numberWithInt:block.genreCode] forKey:row.key];
            continue;
        }
        if (row.kind == Kind::Record) {
            if (const auto record = block.records.find(row.type); track == 0 && record != block.records.end())
                [dictionary setObject:dataOf(record->second) forKey:row.key];
            continue;
        }
        const auto texts = block.texts.find(row.type);
        if (texts == block.texts.end() || track >= texts->second.size() || texts->second[track].empty())
            continue;
        const std::string& text = texts->second[track];
        [dictionary
            setObject:row.kind == Kind::Letters ? static_cast<id>(dataOf(text))
                                                : decoded(text, charactersOf(row.type, block.characters))
               forKey:row.key];
    }
    return dictionary;
}

} // namespace

id fittingCDTextValue(id value, NSString* key, NSUInteger track, CDTextCharacters characters) {
    const Row& row = rowOf(key, track);
    switch (row.kind) {
    case Kind::Text: {
        if (![value isKindOfClass:[NSString class]])
            refuse(key, track, "must be an NSString");
        const CDTextCharacters own = charactersOf(row.type, characters);
        return decoded(encoded(value, own), own);
    }
    case Kind::Code: {
        if (![value isKindOfClass:[NSNumber class]])
            refuse(key, track, "must be an NSNumber");
        const long long code = [value longLongValue];
        if (code < 0 || code > UINT16_MAX)
            refuse(key, track, "is no code of a genre");
        return [NSNumber numberWithInt:static_cast<int>(code)];
    }
    case Kind::Letters:
    case Kind::Record:
        if (![value isKindOfClass:[NSData class]])
            refuse(key, track, "must be an NSData");
        return row.kind == Kind::Letters ? fittingLetters(value, key, track) : [NSData dataWithData:value];
    }
    return nil;
}

void putCDTextDictionaries(CDTextBlock& block, NSArray* dictionaries) {
    const NSUInteger count = [dictionaries count];
    block.lastTrack = static_cast<uint8_t>(count - 1);
    for (NSUInteger track = 0; track < count; ++track) {
        NSDictionary* dictionary = [dictionaries objectAtIndex:track];
        for (const Row& row : rows) {
            id value = [dictionary objectForKey:row.key];
            if (value == nil || row.kind == Kind::Record)
                continue;
            if (row.kind == Kind::Code) {
                block.genreCode = static_cast<uint16_t>([value intValue]);
                continue;
            }
            auto& texts = block.texts[row.type];
            texts.resize(count);
            texts[track] = row.kind == Kind::Letters
                               ? bytesOf(value)
                               : encoded(value, charactersOf(row.type, block.characters));
        }
    }
}

NSMutableArray* cdTextDictionaries(const CDTextBlock& block) {
    NSMutableArray* dictionaries = [NSMutableArray array];
    for (size_t track = 0; track <= block.lastTrack; ++track)
        [dictionaries addObject:dictionaryOf(block, track)];
    return dictionaries;
}

} // namespace discrecording
