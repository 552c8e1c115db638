// CD-Text as drives give it: packs that are not whole are refused, with the reason.
#include "CDTextBlocks.hpp"

namespace {

using namespace cdtext;

// ---- packs as drives give them -----------------------------------------------------------------------

TEST(CDText, TheFourBytesOfADriveMayStandBeforeThePacks) {
    const size_t length = twoBlocks.size() + 2;
    Bytes framed = {static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length & 0xFF), 0, 0};
    framed.insert(framed.end(), twoBlocks.begin(), twoBlocks.end());
    EXPECT_EQ(readBack(framed), readBack(twoBlocks));
    framed[1] = static_cast<uint8_t>(framed[1] + 18);
    EXPECT_NE(refusal(framed).find("no whole packs"), std::string::npos);
}

TEST(CDText, EveryChangedBitIsFound) {
    for (size_t bit = 0; bit < 3 * packBytes * 8; ++bit) {
        Bytes packs = wideBlock;
        packs[bit / 8] = static_cast<uint8_t>(packs[bit / 8] ^ 1 << bit % 8);
        EXPECT_EQ(refusal(packs), "The disc's CD-Text can't be read: the checksum of pack " +
                                      std::to_string(bit / 8 / packBytes) + " is wrong.");
    }
}

TEST(CDText, PacksThatEndTooEarlyAreRefused) {
    for (size_t size = 0; size < twoBlocks.size(); ++size)
        EXPECT_NE(refusal(Bytes(twoBlocks.begin(), twoBlocks.begin() + static_cast<std::ptrdiff_t>(size))),
                  "read")
            << size;
}

TEST(CDText, AMissingOrDoubledPackIsFound) {
    for (size_t pack = 0; pack < wideBlock.size() / packBytes; ++pack) {
        const auto at = static_cast<std::ptrdiff_t>(pack * packBytes);
        Bytes packs = wideBlock;
        packs.erase(packs.begin() + at, packs.begin() + at + static_cast<std::ptrdiff_t>(packBytes));
        EXPECT_NE(refusal(packs), "read") << pack;
        packs = wideBlock;
        packs.insert(packs.begin() + at, wideBlock.begin() + at,
                     wideBlock.begin() + at + static_cast<std::ptrdiff_t>(packBytes));
        EXPECT_NE(refusal(packs).find("is not the next one"), std::string::npos) << pack;
    }
}

TEST(CDText, WhatPacksMayNotSayIsNamed) {
    const size_t sizes = wideBlock.size() / packBytes - 3;
    const auto has = [](const Bytes& packs, const char* words) {
        EXPECT_NE(refusal(packs).find(words), std::string::npos) << words << " not in " << refusal(packs);
    };
    has(changed(wideBlock, 0, 0, 0x20), "no known type");
    has(changed(wideBlock, sizes, 4, 0x82), "character code of block 0 is 130");
    has(changed(wideBlock, sizes, 5, 0), "tracks of block 0 are 0 to 3");
    has(changed(wideBlock, sizes, 6, 100), "tracks of block 0 are 1 to 100");
    has(changed(wideBlock, sizes, 6, 1), "has a text for track 2, and there is none");
    has(changed(wideBlock, sizes + 1, 1, 2), "sizes of block 0 are not all there");
    has(changed(wideBlock, sizes + 1, 12, 99), "packs of block 0 and not 100");
    has(changed(wideBlock, sizes + 1, 13, 9), "block 1 is announced and is not there");
    has(changed(wideBlock, 2, 0, 0x85), "has no end");
    has(changed(wideBlock, 0, 3, 0x00),
        "pack 0 of block 0 has characters of one byte, and the block says two");
    has(changed(wideBlock, sizes, 4, 0x00),
        "pack 0 of block 0 has characters of two bytes, and the block says one");
}

TEST(CDText, RecordsAreKeptAndTypesWithoutAMeaningAreNot) {
    CDTextBlock block;
    block.lastTrack = 1;
    block.texts[CDTextType::Title] = {"abcdefghijk", "lmnopqrstuv"};
    Bytes packs = written({block});
    packs = changed(changed(packs, 0, 0, 0x88), 1, 0, 0x8A);
    const auto blocks = readBack(packs);
    ASSERT_EQ(blocks.size(), 1u);
    EXPECT_TRUE(blocks[0].texts.empty());
    EXPECT_EQ(blocks[0].records.at(CDTextType::TOC), std::string("abcdefghijk\0", 12));
    EXPECT_EQ(blocks[0].records.at(CDTextType::Size).size(), 36u);
    EXPECT_EQ(blocks[0].records.size(), 2u);
}

TEST(CDText, TheGenresCodeMayStandInEachPack) {
    CDTextBlock block;
    block.genreCode = 5;
    block.texts[CDTextType::Genre] = {std::string(10, 'g') + std::string(10, 'h')};
    Bytes packs = written({block});
    // The second pack has ten letters and their end in the one form, and the code and ten letters in the other.
    const std::string payload = std::string("\0\5", 2) + std::string(9, 'h') + '\0';
    std::copy(payload.begin(), payload.end(), packs.begin() + packBytes + 4);
    seal(packs, 1);
    const auto blocks = readBack(packs);
    EXPECT_EQ(blocks[0].genreCode, 5);
    EXPECT_EQ(blocks[0].texts.at(CDTextType::Genre)[0], std::string(10, 'g') + std::string(9, 'h'));
    EXPECT_EQ(readBack(written({block}))[0].texts, block.texts);
}

// Packs with right checksums and wild contents: whatever they say, they are read or refused.
TEST(CDText, WildPacksWithRightChecksumsAreReadOrRefused) {
    uint64_t seed = 1;
    const auto next = [&] {
        seed = seed * 6364136223846793005u + 1442695040888963407u;
        return static_cast<size_t>(seed >> 33);
    };
    int refused = 0, read = 0;
    for (int round = 0; round < 20000; ++round) {
        Bytes packs = round % 2 == 0 ? wideBlock : twoBlocks;
        for (size_t change = next() % 4; change > 0; --change) {
            const size_t pack = next() % (packs.size() / packBytes);
            packs = changed(std::move(packs), pack, next() % 16, static_cast<uint8_t>(next()));
        }
        const auto blocks = engine::cdTextFromPacks(packs);
        ++(blocks.ok() ? read : refused);
        if (blocks.ok()) {
            EXPECT_TRUE(engine::cdTextPacks(*blocks).ok());
        }
    }
    EXPECT_GT(refused, 1000);
    EXPECT_GT(read, 1000);
}

} // namespace
