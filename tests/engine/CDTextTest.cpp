// CD-Text in packs: written as another program writes it, read back whole, and refused when it isn't whole.
#include "CDTextPacks.hpp"

#include "CDText.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <set>

namespace engine {

// How a failed check shows a block.
static void PrintTo(const CDTextBlock& block, std::ostream* out) {
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

namespace {

using engine::CDTextBlock;
using engine::CDTextCharacters;
using engine::CDTextType;
using Bytes = std::vector<uint8_t>;

constexpr size_t packBytes = engine::cdTextPackBytes;

CDTextBlock english() {
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

CDTextBlock german() {
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

CDTextBlock japanese() {
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
CDTextBlock expected(CDTextBlock block, const CDTextBlock& read) {
    for (auto& [type, texts] : block.texts)
        texts.resize(block.lastTrack + 1u);
    block.records = read.records;
    return block;
}

Bytes written(const std::vector<CDTextBlock>& blocks) {
    const auto packs = engine::cdTextPacks(blocks);
    EXPECT_TRUE(packs.ok());
    return packs.ok() ? *packs : Bytes();
}

std::vector<CDTextBlock> readBack(const Bytes& packs) {
    const auto blocks = engine::cdTextFromPacks(packs);
    EXPECT_TRUE(blocks.ok()) << (blocks.ok() ? "" : blocks.error().message);
    return blocks.ok() ? *blocks : std::vector<CDTextBlock>();
}

std::string refusal(const Bytes& packs) {
    const auto blocks = engine::cdTextFromPacks(packs);
    if (blocks.ok()) return "read";
    EXPECT_EQ(blocks.error().code, engine::ErrorCode::MediaInvalid);
    return blocks.error().message;
}

void seal(Bytes& packs, size_t pack) {
    const size_t start = pack * packBytes;
    const uint16_t sum =
        engine::cdTextChecksum(std::span<const uint8_t, packBytes - 2>(packs.data() + start, packBytes - 2));
    packs[start + 16] = static_cast<uint8_t>(sum >> 8);
    packs[start + 17] = static_cast<uint8_t>(sum & 0xFF);
}

// The packs with one byte changed and the checksum right again.
Bytes changed(Bytes packs, size_t pack, size_t byte, uint8_t value) {
    packs.at(pack * packBytes + byte) = value;
    seal(packs, pack);
    return packs;
}

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
    // That program loses a block between one of single bytes and one of double bytes, so they are two discs.
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

// ---- what repeats, and what is too long --------------------------------------------------------------

TEST(CDText, ATrackThatRepeatsTheOneBeforeIsATabButTheFirstIsWrittenOut) {
    CDTextBlock block;
    block.lastTrack = 3;
    block.texts[CDTextType::Performer] = {"Same", "Same", "Same", ""};
    const Bytes packs = written({block});
    EXPECT_EQ(std::string(packs.begin() + 4, packs.begin() + 16), std::string("Same\0Same\0\t\0", 12));
    EXPECT_EQ(readBack(packs)[0].texts, block.texts);
    // Others write a tab for the first track too, and mean the disc's text.
    Bytes other = packs;
    std::string_view payload("Same\0\t\0\t\0\0\0\0", 12);
    std::copy(payload.begin(), payload.end(), other.begin() + 4);
    seal(other, 0);
    EXPECT_EQ(readBack(other)[0].texts, block.texts);
}

// 99 tracks with a title of that many letters each, and none alike.
CDTextBlock titles(size_t letters, CDTextCharacters characters = CDTextCharacters::Latin1) {
    CDTextBlock block;
    block.characters = characters;
    block.lastTrack = 99;
    auto& texts = block.texts[CDTextType::Title];
    for (size_t track = 0; track <= 99; ++track) {
        std::string text = std::to_string(100 + track) + "x";
        text.resize(letters, static_cast<char>('a' + track % 26));
        texts.push_back(text);
    }
    return block;
}

TEST(CDText, ABlockHoldsTwoHundredAndFiftyFivePacks) {
    CDTextBlock block;
    const size_t room = (engine::cdTextMaxPacks - 3) * engine::cdTextPayloadBytes;
    block.texts[CDTextType::Title] = {std::string(room - 1, 'x')};
    EXPECT_EQ(engine::cdTextBytesCut(block), 0u);
    EXPECT_EQ(written({block}).size(), 255 * packBytes);
    block.texts[CDTextType::Title][0] += "yz";
    EXPECT_EQ(engine::cdTextBytesCut(block), 2u);
    const auto back = readBack(written({block}));
    EXPECT_EQ(back[0].texts.at(CDTextType::Title)[0], std::string(room - 1, 'x'));
}

TEST(CDText, TheLongestTextsAreCutAndEveryTrackKeepsSomething) {
    CDTextBlock block = titles(29);
    EXPECT_EQ(engine::cdTextBytesCut(block), 0u);
    block = titles(40);
    block.texts[CDTextType::Title][7] = "short";
    block.texts[CDTextType::MCNISRC] = {"1234567890123"};
    const size_t cut = engine::cdTextBytesCut(block);
    EXPECT_GT(cut, 0u);
    const Bytes packs = written({block});
    EXPECT_LE(packs.size(), 255 * packBytes);
    const auto back = readBack(packs);
    ASSERT_EQ(back.size(), 1u);
    size_t kept = 0, had = 0;
    auto texts = back[0].texts.at(CDTextType::Title);
    const size_t limit = texts[0].size();
    for (size_t track = 0; track <= 99; ++track) {
        const std::string& whole = block.texts[CDTextType::Title][track];
        EXPECT_EQ(texts[track], whole.substr(0, limit)) << track;
        kept += texts[track].size();
        had += whole.size();
    }
    EXPECT_EQ(had - kept, cut);
    EXPECT_EQ(texts[7], "short");
    EXPECT_GE(limit, 25u);
    EXPECT_EQ(back[0].texts.at(CDTextType::MCNISRC)[0], "1234567890123") << "numbers are never cut";
    EXPECT_EQ(engine::cdTextBytesCut(back[0]), 0u);
}

TEST(CDText, DoubleBytesAreCutBetweenCharacters) {
    const CDTextBlock block = titles(60, CDTextCharacters::ShiftJIS);
    EXPECT_EQ(engine::cdTextBytesCut(block) % 2, 0u);
    EXPECT_GT(engine::cdTextBytesCut(block), 0u);
    for (const std::string& text : readBack(written({block}))[0].texts.at(CDTextType::Title))
        EXPECT_EQ(text.size() % 2, 0u);
}

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
    const auto next = [&] { return (seed = seed * 6364136223846793005u + 1442695040888963407u) >> 33; };
    int refused = 0, read = 0;
    for (int round = 0; round < 20000; ++round) {
        Bytes packs = round % 2 == 0 ? wideBlock : twoBlocks;
        for (uint64_t change = next() % 4; change > 0; --change) {
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

// ---- characters --------------------------------------------------------------------------------------

std::u16string roundTrip(std::u16string_view text, CDTextCharacters characters) {
    return engine::cdTextDecoded(engine::cdTextEncoded(text, characters), characters);
}

TEST(CDText, WhatTheCharactersLackIsOneQuestionMark) {
    EXPECT_EQ(engine::cdTextEncoded(u"Ä\u20AC\U0001F600z", CDTextCharacters::Latin1), "\xC4??z");
    EXPECT_EQ(engine::cdTextEncoded(u"Ä\u20AC\U0001F600z", CDTextCharacters::ASCII), "???z");
    EXPECT_EQ(roundTrip(u"Ä\U0001F600日", CDTextCharacters::ShiftJIS), u"？？日");
    EXPECT_EQ(engine::cdTextEncoded(std::u16string_view(u"a\tb\0c", 5), CDTextCharacters::Latin1), "a b c");
    EXPECT_EQ(engine::cdTextEncoded(u"\xD800", CDTextCharacters::Latin1), "?") << "half a pair";
}

TEST(CDText, EveryUnitOfASetComesBack) {
    for (unsigned unit = 1; unit < 0x100; ++unit) {
        if (unit == '\t') continue;
        const std::u16string text(1, static_cast<char16_t>(unit));
        EXPECT_EQ(roundTrip(text, CDTextCharacters::Latin1), text);
        EXPECT_EQ(roundTrip(text, CDTextCharacters::ASCII), unit < 0x80 ? text : u"?");
    }
}

TEST(CDText, ShiftJISIsWideThroughout) {
    EXPECT_EQ(engine::cdTextEncoded(u"日本①", CDTextCharacters::ShiftJIS), "\x93\xfa\x96\x7b\x87\x40");
    EXPECT_EQ(roundTrip(u"Abc 1~\\-", CDTextCharacters::ShiftJIS), u"Ａｂｃ　１～＼－");
    EXPECT_EQ(roundTrip(u"ｱｶﾞﾟ", CDTextCharacters::ShiftJIS), u"アカ゛゜");
    EXPECT_EQ(roundTrip(u"\u301C\u2212\u00A5\u00C5", CDTextCharacters::ShiftJIS), u"～－￥\u212B");
    size_t known = 0;
    for (unsigned unit = 1; unit < 0x10000; ++unit) {
        const std::string bytes =
            engine::cdTextEncoded(std::u16string(1, static_cast<char16_t>(unit)), CDTextCharacters::ShiftJIS);
        ASSERT_EQ(bytes.size(), 2u) << unit;
        const std::u16string fitted = engine::cdTextDecoded(bytes, CDTextCharacters::ShiftJIS);
        ASSERT_EQ(roundTrip(fitted, CDTextCharacters::ShiftJIS), fitted) << unit;
        known += fitted == std::u16string(1, static_cast<char16_t>(unit));
    }
    EXPECT_GT(known, 7000u);
}

TEST(CDText, BytesThatMeanNothingAreReplaced) {
    EXPECT_EQ(engine::cdTextDecoded("\x81\x20\x93\xfa\x93", CDTextCharacters::ShiftJIS), u"\uFFFD日\uFFFD");
    EXPECT_EQ(engine::cdTextDecoded("\xb1z", CDTextCharacters::ShiftJIS), u"ｱz") << "one-byte characters";
}

// ---- languages ---------------------------------------------------------------------------------------

TEST(CDText, LanguagesHaveCodesAndNames) {
    EXPECT_EQ(engine::cdTextLanguage("en"), 0x09);
    EXPECT_EQ(engine::cdTextLanguage("deu"), 0x08);
    EXPECT_EQ(engine::cdTextLanguage("ger"), 0x08);
    EXPECT_EQ(engine::cdTextLanguage("ja"), 0x69);
    for (const char* unknown : {"", "xx", "english", "EN"})
        EXPECT_EQ(engine::cdTextLanguage(unknown), 0) << unknown;
    size_t named = 0;
    for (int code = 0; code < 256; ++code) {
        const auto name = engine::cdTextLanguageName(static_cast<uint8_t>(code));
        if (name.empty()) continue;
        ++named;
        EXPECT_EQ(engine::cdTextLanguage(name), code);
    }
    EXPECT_EQ(named, 0x2Bu + 0x7F - 0x45 + 1);
}

} // namespace
