// CD-Text: what an audio disc says about itself, block by block, and its packs (MMC-3 Annex J, IEC 60908).
#pragma once

#include "Error.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace engine {

/// What a pack is about: its first byte.
enum class CDTextType : uint8_t {
    Title = 0x80,
    Performer = 0x81,
    Songwriter = 0x82,
    Composer = 0x83,
    Arranger = 0x84,
    Message = 0x85,
    DiscIdent = 0x86,
    Genre = 0x87,
    TOC = 0x88,
    TOC2 = 0x89,
    Closed = 0x8D,
    MCNISRC = 0x8E,
    Size = 0x8F
};

/// The character codes that are defined, for the types Title to Message; those that follow are ASCII, and
/// Closed is Latin-1.
enum class CDTextCharacters : uint8_t { Latin1 = 0x00, ASCII = 0x01, ShiftJIS = 0x80 };

/// Bits of CDTextBlock::copyright.
inline constexpr uint8_t cdTextTitlesCopyright = 1, cdTextNamesCopyright = 2, cdTextMessagesCopyright = 4;

/// The text of a disc in one language. Texts are bytes in the block's characters, without terminators.
struct CDTextBlock {
    CDTextCharacters characters = CDTextCharacters::Latin1;
    uint8_t language = 0; // see cdTextLanguage
    uint8_t copyright = 0;
    uint8_t firstTrack = 1;
    uint8_t lastTrack = 0; // 0: the disc alone has text
    uint16_t genreCode = 0;
    /// By type; [0] is the disc's text and [n] that of track n. "" is the same as none.
    std::map<CDTextType, std::vector<std::string>> texts;
    /// The payload of TOC, TOC2 and Size packs that were read; they are never written from here.
    std::map<CDTextType, std::string> records;

    bool operator==(const CDTextBlock&) const = default;
};

inline constexpr size_t cdTextPackBytes = 18, cdTextPayloadBytes = 12, cdTextPackHeaderBytes = 4;
inline constexpr size_t cdTextMaxBlocks = 8;
inline constexpr size_t cdTextMaxPacks = 255; // of a block, with its three Size packs
inline constexpr size_t cdTextMaxTrack = 99;

/// The blocks of a disc, in the order of their numbers. The packs may have before them the four bytes that a
/// drive puts there. MediaInvalid, with a sentence that says which pack is wrong and how, for anything that
/// isn't whole: a text that may be another one is worse than none.
Result<std::vector<CDTextBlock>> cdTextFromPacks(std::span<const uint8_t> packs);

/// The packs of up to eight blocks, without the four bytes; texts are cut as cdTextBytesCut says.
/// CantWriteCDText for more blocks and for more than 99 tracks.
Result<std::vector<uint8_t>> cdTextPacks(std::span<const CDTextBlock> blocks);

/// How many bytes of a block's texts don't fit into its packs; 0 when all do. The longest texts are cut
/// first, all to the same length, so that every track keeps something.
size_t cdTextBytesCut(const CDTextBlock& block);

/// What the last two bytes of a pack must be, for the 16 before.
uint16_t cdTextChecksum(std::span<const uint8_t, cdTextPackBytes - 2> pack) noexcept;

/// The bytes that a text becomes; what the characters lack, a surrogate pair included, becomes one "?". TAB
/// and NUL become spaces, because packs use them. Shift-JIS is wide throughout: one-byte characters become
/// their wide form.
std::string cdTextEncoded(std::u16string_view text, CDTextCharacters characters);
/// Bytes from a disc as text; bytes that mean nothing become U+FFFD. ASCII is read as Latin-1, because discs
/// say ASCII and mean that.
std::u16string cdTextDecoded(std::string_view bytes, CDTextCharacters characters);

/// The code of a language by its ISO 639 code of two or three letters; 0 when unknown.
uint8_t cdTextLanguage(std::string_view iso639) noexcept;
/// The shortest ISO 639 code; "" when unknown.
std::string_view cdTextLanguageName(uint8_t code) noexcept;

} // namespace engine
