// CD-Text that has to fit: repeated and long texts, characters that a disc lacks, languages.
#include "CDTextBlocks.hpp"

namespace {

using namespace cdtext;

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
    const auto back = readBack(written({block}));
    ASSERT_EQ(back.size(), 1u);
    EXPECT_EQ(back[0].texts.at(CDTextType::Title).size(), 100u);
    for (const std::string& text : back[0].texts.at(CDTextType::Title))
        EXPECT_EQ(text.size() % 2, 0u);
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
