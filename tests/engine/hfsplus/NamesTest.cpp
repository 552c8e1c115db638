// Names: taken apart, ordered, cut, and compared without case.
#include "hfsplus/Names.hpp"
#include "Scratch.hpp"

#include <gtest/gtest.h>

namespace {

using namespace engine::hfsplus;
using namespace std::string_literals;

TEST(HfsNames, LettersWithMarksAreTakenApart) {
    EXPECT_EQ(storedName("plain.txt"), u"plain.txt");
    EXPECT_EQ(storedName("Übersee"), u"U\u0308bersee");
    EXPECT_EQ(storedName("\u1EA5"), u"a\u0302\u0301") << "twice";
    EXPECT_EQ(storedName("한글"), u"\u1112\u1161\u11AB\u1100\u1173\u11AF") << "syllables, with an end";
    EXPECT_EQ(storedName("\uAC00"), u"\u1100\u1161") << "and without";
}

TEST(HfsNames, MarksOnALetterAreInTheirOrder) {
    EXPECT_EQ(storedName("a\u0301\u0327"), u"a\u0327\u0301") << "a cedilla comes before an accent";
    EXPECT_EQ(storedName("a\u0302\u0301"), u"a\u0302\u0301") << "marks of one kind stay";
    EXPECT_EQ(storedName("\u0301\u0327-\u0301\u0327"), u"\u0327\u0301-\u0327\u0301");
}

// Deliberate: what TN1150 keeps whole stays whole here, though Unicode takes it apart, or readers wouldn't find it.
TEST(HfsNames, ThreeRangesAreKeptWhole) {
    EXPECT_EQ(storedName("\u2126\u212B"), u"\u2126\u212B") << "ohm and angstrom";
    EXPECT_EQ(storedName("\uF900\uFA30"), u"\uF900\uFA30") << "compatibility ideographs";
    EXPECT_EQ(storedName("\U0002F800"), u"\U0002F800");
    EXPECT_EQ(storedName("\U0001D15E"), u"\U0001D15E") << "nothing past U+FFFF";
}

TEST(HfsNames, ColonAndSlashChangePlaces) {
    EXPECT_EQ(storedName("1:2"), u"1/2");
    EXPECT_EQ(storedName("1/2"), u"1:2");
    EXPECT_EQ(storedName("ü:/"), u"u\u0308/:");
}

TEST(HfsNames, WhatIsNoTextBecomesAnUnderscore) {
    EXPECT_EQ(storedName("a\xFF\xC3z"), u"a__z");
    EXPECT_EQ(storedName("a\0b"s), u"a_b");
    EXPECT_EQ(storedName(""), u"_") << "an empty name is a thread's";
}

TEST(HfsNames, AreCutBetweenCharacters) {
    EXPECT_EQ(storedName(std::string(255, 'x')).size(), 255u);
    EXPECT_EQ(storedName(std::string(300, 'x')), std::u16string(255, u'x'));
    EXPECT_EQ(storedName(std::string(254, 'x') + "𝄞").size(), 254u) << "no half of a pair";
    std::string long2;
    for (int i = 0; i < 200; ++i)
        long2 += "ü";
    EXPECT_EQ(storedName(long2).size(), 255u) << "apart, then cut";
}

TEST(HfsNames, CompareWithoutCase) {
    EXPECT_EQ(foldedName(u"ReadMe.TXT"), u"readme.txt");
    EXPECT_EQ(foldedName(u"ÆØŁŒ"), u"æøłœ");
    EXPECT_EQ(foldedName(u"ΑΩЖЯ\u0531Ⅷ"), u"αωжя\u0561ⅷ");
    EXPECT_EQ(foldedName(u"\u10A0"), u"\u10D0") << "Georgian, as in Unicode 2";
    EXPECT_EQ(foldedName(u"\u01C5"), u"\u01C6") << "a title case";
    EXPECT_EQ(foldedName(u"\u24B6\u212A\u01A6\u0500"), u"\u24B6\u212A\u01A6\u0500") << "not in the table";
    EXPECT_EQ(foldedName(u"a\u200D\uFEFFb"), u"ab") << "what is invisible doesn't count";
    EXPECT_EQ(foldedName(std::u16string(u"\0", 1)), u"\uFFFF") << "behind everything else";
}

class HfsTables : public Scratch {};

// Python has Unicode 3.2, whose decomposition TN1150's is, but for the ranges that are kept whole.
TEST_F(HfsTables, EveryCharacterIsTakenApartAsUnicodeDoes) {
    write("apart.py",
          "from unicodedata import ucd_3_2_0 as u\n"
          "import random\n"
          "r = random.Random(1)\n"
          "whole = lambda c: 0x2000 <= c < 0x3000 or 0xF900 <= c < 0xFB00\n"
          "plain = [c for c in range(0x20, 0x10000) if not 0xD800 <= c < 0xE000 and c not in (0x2F, 0x3A)\n"
          "         and u.category(chr(c)) != 'Cn']\n"
          "marks = [c for c in plain if u.combining(chr(c))]\n"
          "texts = [chr(c) for c in plain]\n"
          "texts += [chr(r.choice(plain)) + ''.join(chr(r.choice(marks)) for _ in range(r.randint(1, 6)))\n"
          "          for _ in range(3000)]\n"
          "for t in texts:\n"
          "    whole_one = any(whole(ord(c)) for c in t)\n"
          "    if whole_one and len(t) > 1: continue\n"
          "    print(t.encode().hex(), (t if whole_one else u.normalize('NFD', "
          "t)).encode('utf-16-be').hex())\n");
    std::istringstream wanted(run("python3 apart.py"));
    size_t count = 0;
    for (std::string text, apart; wanted >> text >> apart; ++count) {
        std::string utf8;
        for (size_t i = 0; i < text.size(); i += 2)
            utf8 += static_cast<char>(std::stoi(text.substr(i, 2), nullptr, 16));
        std::string had;
        for (const char16_t unit : storedName(utf8)) {
            char digits[5];
            std::snprintf(digits, sizeof digits, "%04x", static_cast<unsigned>(unit));
            had += digits;
        }
        ASSERT_EQ(had, apart) << text;
    }
    EXPECT_GT(count, 50'000u);
}

TEST_F(HfsTables, AreWhatTheirScriptMakes) {
    run("python3 " HFSPLUS_ROOM "/tables.py | diff - " HFSPLUS_ROOM "/Tables.cpp");
}

} // namespace
