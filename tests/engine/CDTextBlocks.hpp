// What the tests of CD-Text share: blocks, their packs, and packs that are changed.
#pragma once

#include "CDTextPacks.hpp"

#include "CDText.hpp"

#include <gtest/gtest.h>
#include <ostream>

namespace engine {

// How a failed check shows a block.
inline void PrintTo(const CDTextBlock& block, std::ostream* out) {
    *out << "{language " << +block.language << ", copyright " << +block.copyright << ", tracks "
         << +block.firstTrack << " to " << +block.lastTrack << ", genre " << block.genreCode;
    for (const auto& [type, texts] : block.texts) {
        *out << ", " << static_cast<int>(type) << ":";
        for (const std::string& text : texts)
            *out << " \"" << text << "\"";
    }
    *out << "}";
}

} // namespace engine

namespace cdtext {

using engine::CDTextBlock;
using engine::CDTextCharacters;
using engine::CDTextType;
using Bytes = std::vector<uint8_t>;

inline constexpr size_t packBytes = engine::cdTextPackBytes;

inline CDTextBlock english() {
    CDTextBlock block;
    block.language = 0x09;
    block.copyright = engine::cdTextTitlesCopyright | engine::cdTextNamesCopyright;
    block.lastTrack = 3;
    block.genreCode = 5;
    block.texts = {
        {CDTextType::Title, {"Joyful Nights", "Song of Joy", "Humpty Dumpty", "Mee Owwww"}},
        {CDTextType::Performer,
         {"United Cat Orchestra", "Felix and The Purrs", "Felix and The Purrs", "Felix and The Purrs"}},
        {CDTextType::Songwriter, {"Various Songwriters", "Friedrich Schiller", "Mother Goose", "Mick Jager"}},
        {CDTextType::Composer, {"Various Composers", "Ludwig van Beethoven", "unknown", "Mick Jagger"}},
        {CDTextType::Arranger, {"Tom Cat", "Tom Cat", "Tom Cat", "Tom Cat"}},
        {CDTextType::Message,
         {"For all our fans", "Fritz and Louie once were punks", "Pluck the goose", "Fritz"}},
        {CDTextType::DiscIdent, {"1234567890"}},
        {CDTextType::Genre, {"Feline classic music of the nineties"}},
        {CDTextType::Closed, {"This is not to be shown by CD players"}},
        {CDTextType::MCNISRC, {"1234567890123", "XYBLG1101234", "XYBLG1100005", "XYBLG1100006"}},
    };
    return block;
}

inline CDTextBlock german() {
    CDTextBlock block;
    block.language = 0x08;
    block.lastTrack = 3;
    block.texts = {
        {CDTextType::Title,
         {"Fr\xf6hliche N\xe4"
          "chte",
          "Song of Joy", "Humpty Dumpty", "Mee Owwww"}},
        {CDTextType::Performer,
         {"United Cat Orchestra", "Felix and The Purrs", "Felix and The Purrs", "Felix and The Purrs"}},
    };
    return block;
}

inline CDTextBlock japanese() {
    const auto text = [](std::u16string_view units) {
        return engine::cdTextEncoded(units, CDTextCharacters::ShiftJIS);
    };
    CDTextBlock block;
    block.characters = CDTextCharacters::ShiftJIS;
    block.language = 0x69;
    block.copyright = engine::cdTextMessagesCopyright;
    block.lastTrack = 3;
    block.texts = {
        {CDTextType::Title, {text(u"日本の音楽全集"), text(u"あい"), text(u"あい"), text(u"い")}},
        {CDTextType::DiscIdent, {"AB-1"}},
    };
    return block;
}

// A block as it comes back: every type has a text for each track, and the sizes are there.
inline CDTextBlock expected(CDTextBlock block, const CDTextBlock& read) {
    for (auto& [type, texts] : block.texts)
        texts.resize(block.lastTrack + 1u);
    block.records = read.records;
    return block;
}

inline Bytes written(const std::vector<CDTextBlock>& blocks) {
    const auto packs = engine::cdTextPacks(blocks);
    EXPECT_TRUE(packs.ok());
    return packs.ok() ? *packs : Bytes();
}

inline std::vector<CDTextBlock> readBack(const Bytes& packs) {
    const auto blocks = engine::cdTextFromPacks(packs);
    EXPECT_TRUE(blocks.ok()) << (blocks.ok() ? "" : blocks.error().message);
    return blocks.ok() ? *blocks : std::vector<CDTextBlock>();
}

inline std::string refusal(const Bytes& packs) {
    const auto blocks = engine::cdTextFromPacks(packs);
    if (blocks.ok()) return "read";
    EXPECT_EQ(blocks.error().code, engine::ErrorCode::MediaInvalid);
    return blocks.error().message;
}

inline void seal(Bytes& packs, size_t pack) {
    const size_t start = pack * packBytes;
    const uint16_t sum =
        engine::cdTextChecksum(std::span<const uint8_t, packBytes - 2>(packs.data() + start, packBytes - 2));
    packs[start + 16] = static_cast<uint8_t>(sum >> 8);
    packs[start + 17] = static_cast<uint8_t>(sum & 0xFF);
}

// The packs with one byte changed and the checksum right again.
inline Bytes changed(Bytes packs, size_t pack, size_t byte, uint8_t value) {
    packs.at(pack * packBytes + byte) = value;
    seal(packs, pack);
    return packs;
}

} // namespace cdtext
