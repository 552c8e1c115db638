// CD-Text in packs: written as another program writes it, and read back whole.
#include "CDTextBlocks.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>

namespace {

using namespace cdtext;

// ---- against packs and programs that are not ours ----------------------------------------------------

TEST(CDText, WritesTwoBlocksAsAnotherProgramDoes) {
    ASSERT_EQ(twoBlocks.size(), 57 * packBytes);
    EXPECT_EQ(written({english(), german()}), twoBlocks);
}

TEST(CDText, WritesDoubleBytesAsAnotherProgramDoes) { EXPECT_EQ(written({japanese()}), wideBlock); }

TEST(CDText, ReadsWhatAnotherProgramWrote) {
    const auto blocks = readBack(twoBlocks);
    ASSERT_EQ(blocks.size(), 2u);
    EXPECT_EQ(blocks[0], expected(english(), blocks[0]));
    EXPECT_EQ(blocks[1], expected(german(), blocks[1]));
    const auto wide = readBack(wideBlock);
    ASSERT_EQ(wide.size(), 1u);
    EXPECT_EQ(wide[0], expected(japanese(), wide[0]));
}

// What libcdio's cd-info says of a disc with these packs and three tracks, line by line.
std::set<std::string> toldBy(const Bytes& packs) {
    std::string pattern = (std::filesystem::temp_directory_path() / "cd-text-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) std::abort();
    const std::filesystem::path folder = pattern;
    std::ofstream(folder / "disc.cdt", std::ios::binary)
        .write(reinterpret_cast<const char*>(packs.data()), static_cast<std::streamsize>(packs.size()));
    std::ofstream(folder / "disc.bin", std::ios::binary) << std::string(3 * 300 * 2352, '\0');
    std::ofstream(folder / "disc.cue") << "CDTEXTFILE \"disc.cdt\"\nFILE \"disc.bin\" BINARY\n"
                                          " TRACK 01 AUDIO\n  INDEX 01 00:00:00\n"
                                          " TRACK 02 AUDIO\n  INDEX 01 00:04:00\n"
                                          " TRACK 03 AUDIO\n  INDEX 01 00:08:00\n";
    const std::string command =
        "cd '" + pattern + "' && cd-info --no-device-info --cue-file=disc.cue >told 2>&1 </dev/null";
    EXPECT_EQ(std::system(command.c_str()), 0);
    std::set<std::string> lines;
    std::ifstream told(folder / "told");
    std::string section;
    for (std::string line; std::getline(told, line);) {
        if (line.starts_with("CD-TEXT for ")) section = line.substr(12);
        if (line.starts_with("Language ")) lines.insert(line);
        if (line.starts_with('\t')) lines.insert(section + line.substr(1));
    }
    std::filesystem::remove_all(folder);
    return lines;
}

TEST(CDText, AnotherProgramReadsWhatIsWritten) {
    CDTextBlock second = german(), third = japanese();
    second.texts[CDTextType::Title][2] = "Zweites St\xfc"
                                         "ck, das l\xe4nger als ein Paket ist";
    third.texts[CDTextType::Performer] = {third.texts[CDTextType::Title][1]};
    // Before a block of double bytes that program leaves out texts with accents, whoever wrote the packs.
    std::set<std::string> told = toldBy(written({english(), second}));
    told.merge(toldBy(written({third})));
    for (const char* line :
         {"Language 0 'English':", "Disc:TITLE: Joyful Nights", "Disc:GENRE_CODE: 5 (Classical)",
          "Disc:GENRE: Feline classic music of the nineties", "Disc:UPC_EAN: 1234567890123",
          "Disc:DISC_ID: 1234567890", "Track  2:ISRC: XYBLG1100005",
          "Track  3:PERFORMER: Felix and The Purrs", "Track  3:ARRANGER: Tom Cat", "Track  3:MESSAGE: Fritz",
          "Language 1 'German':", "Disc:TITLE: Fröhliche Nächte",
          "Track  2:TITLE: Zweites Stück, das länger als ein Paket ist", "Language 0 'Japanese':",
          "Disc:TITLE: 日本の音楽全集", "Disc:PERFORMER: あい", "Track  2:TITLE: あい", "Track  3:TITLE: い"})
        EXPECT_TRUE(told.contains(line)) << line << " is not in\n" << testing::PrintToString(told);
}

TEST(CDText, ChecksumsAreThoseOfAPublishedExample) {
    const Bytes packs = packsOf("8800 2300 010e003f0212000000000000 1200"
                                "8801 2400 000200040b190802320b2f3e 672d");
    for (size_t i = 0; i < packs.size(); i += packBytes) {
        const std::span<const uint8_t, packBytes - 2> pack(packs.data() + i, packBytes - 2);
        EXPECT_EQ(engine::cdTextChecksum(pack), packs[i + 16] << 8 | packs[i + 17]);
    }
}

// ---- round trips -------------------------------------------------------------------------------------

TEST(CDText, EveryCharacterOfASingleByteSetComesBack) {
    CDTextBlock block;
    block.texts[CDTextType::Title] = {"", ""};
    for (int letter = 1; letter < 256; ++letter)
        block.texts[CDTextType::Title][letter < 128] += static_cast<char>(letter);
    block.lastTrack = 1;
    const auto blocks = readBack(written({block}));
    ASSERT_EQ(blocks.size(), 1u);
    EXPECT_EQ(blocks[0].texts, block.texts);
}

TEST(CDText, TextsOfEveryLengthComeBackInOneByteAndInTwo) {
    for (const CDTextCharacters characters :
         {CDTextCharacters::Latin1, CDTextCharacters::ASCII, CDTextCharacters::ShiftJIS}) {
        const size_t width = characters == CDTextCharacters::ShiftJIS ? 2 : 1;
        for (size_t length = 1; length < 40; ++length) {
            CDTextBlock block;
            block.characters = characters;
            block.lastTrack = 4;
            block.texts[CDTextType::Performer] = {std::string(length * width, 'a'), "", "cc",
                                                  std::string(length * width, 'd'),
                                                  std::string(length * width, 'd')};
            block.texts[CDTextType::Closed] = {"", "", "two", "", ""};
            const auto blocks = readBack(written({block}));
            ASSERT_EQ(blocks.size(), 1u);
            EXPECT_EQ(blocks[0], expected(block, blocks[0])) << length;
        }
    }
}

TEST(CDText, EightBlocksComeBackInOrderAlsoWithOneLanguage) {
    std::vector<CDTextBlock> blocks;
    for (uint8_t i = 0; i < 8; ++i) {
        blocks.push_back(i % 2 == 0 ? english() : japanese());
        blocks.back().texts[CDTextType::Title][0] =
            "T" + std::string(i % 2 == 0 ? 1 : 3, static_cast<char>('0' + i));
        blocks.back().language = 0x09;
    }
    const auto back = readBack(written(blocks));
    ASSERT_EQ(back.size(), 8u);
    for (size_t i = 0; i < 8; ++i)
        EXPECT_EQ(back[i], expected(blocks[i], back[i])) << i;
    blocks.push_back(english());
    const auto nine = engine::cdTextPacks(blocks);
    ASSERT_FALSE(nine.ok());
    EXPECT_EQ(nine.error().code, engine::ErrorCode::CantWriteCDText);
    EXPECT_NE(nine.error().message.find("eight blocks"), std::string::npos);
}

TEST(CDText, NinetyNineTracksAreTheMost) {
    CDTextBlock block;
    block.lastTrack = 99;
    for (int track = 0; track <= 99; ++track)
        block.texts[CDTextType::Title].push_back("T" + std::to_string(track));
    const auto back = readBack(written({block}));
    ASSERT_EQ(back.size(), 1u);
    EXPECT_EQ(back[0].texts, block.texts);
    block.lastTrack = 100;
    EXPECT_FALSE(engine::cdTextPacks({{block}}).ok());
}

TEST(CDText, NoBlocksAreNoPacksAndAnEmptyBlockIsItsSizes) {
    EXPECT_EQ(written({}), Bytes());
    const Bytes packs = written({CDTextBlock()});
    EXPECT_EQ(packs.size(), 3 * packBytes);
    EXPECT_EQ(readBack(packs).size(), 1u);
}

} // namespace
