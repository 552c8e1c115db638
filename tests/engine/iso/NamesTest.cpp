// Names: what is refused and why, and the order.
#include "iso/Names.hpp"

#include <gtest/gtest.h>

namespace {

namespace iso = engine::iso;
using iso::Form;

std::string file(std::string_view name, uint8_t level, bool anyCharacter = false) {
    return iso::faultOf(name, false, Form::Iso, {.level = level, .anyCharacter = anyCharacter});
}
std::string folder(std::string_view name, uint8_t level, bool anyCharacter = false) {
    return iso::faultOf(name, true, Form::Iso, {.level = level, .anyCharacter = anyCharacter});
}
std::string joliet(std::string_view name, bool isLong = false) {
    return iso::faultOf(name, false, Form::Joliet, {.longJoliet = isLong});
}

TEST(IsoNames, LevelOne) {
    for (const char* name : {"A", "ABCDEFGH.TXT;1", "A_9.", ".X", "ABCDEFGH.TXT;32767", "ABCDEFGH"})
        EXPECT_EQ(file(name, 1), "") << name;
    const std::string length =
        "in ISO 9660 level 1 names of files have up to 8 characters, and 3 behind the dot";
    EXPECT_EQ(file("ABCDEFGHI.TXT", 1), length);
    EXPECT_EQ(file("A.TEXT", 1), length);
    EXPECT_EQ(file("a", 1), "in ISO 9660 level 1 names are made of A to Z, 0 to 9 and _");
    EXPECT_EQ(file("A B", 1), "in ISO 9660 level 1 names are made of A to Z, 0 to 9 and _");
    EXPECT_EQ(file("A.B.C", 1), "in ISO 9660 level 1 names have only one dot");
    for (const char* name : {"", ".", "..", ";1", ".;1"})
        EXPECT_NE(file(name, 1), "") << name;
    for (const char* name : {"A;", "A;0", "A;32768", "A;x", "A;1;1", "A;-1"})
        EXPECT_EQ(file(name, 1), "in ISO 9660 level 1 versions are numbers from 1 to 32767") << name;
    EXPECT_EQ(folder("ABCDEFGH", 1), "");
    EXPECT_EQ(folder("ABCDEFGHI", 1), "in ISO 9660 level 1 names of folders have up to 8 characters");
    EXPECT_EQ(folder("A.B", 1), "in ISO 9660 level 1 names of folders have no dot");
    EXPECT_NE(folder("A;1", 1), "");
    EXPECT_NE(folder("", 1), "");
}

TEST(IsoNames, LevelsTwoAndThree) {
    for (const uint8_t level : {uint8_t{2}, uint8_t{3}}) {
        EXPECT_EQ(file("ABCDEFGHIJKLMNOPQRSTUVWXYZ.1234;1", level), "");
        EXPECT_EQ(file(std::string(30, 'A'), level), "");
        EXPECT_EQ(file(std::string(31, 'A'), level),
                  "in ISO 9660 level " + std::to_string(level) +
                      " names of files have up to 30 characters, without the dot");
        EXPECT_EQ(folder(std::string(31, 'A'), level), "");
        EXPECT_NE(folder(std::string(32, 'A'), level), "");
        EXPECT_NE(file("a", level), "");
    }
}

TEST(IsoNames, AnyCharacterWhereAskedFor) {
    for (const char* name : {"read me (1).tar.gz;1", "é", "~"})
        EXPECT_EQ(file(name, 2, true), "") << name;
    EXPECT_EQ(folder("a.b c", 2, true), "");
    for (const char* name : {"a/b", "a\nb", "..", ""})
        EXPECT_NE(file(name, 2, true), "") << name;
}

TEST(IsoNames, Joliet) {
    for (const char* name : {"read me.txt", "read me.txt;1", ".hidden", "a.b.c", "漢字", "'\"<>|+,=[]:"})
        EXPECT_EQ(joliet(name), "") << name;
    const std::string clef = "\xF0\x9D\x84\x9E"; // two UTF-16 units
    EXPECT_EQ(joliet(std::string(64, 'a')), "");
    EXPECT_EQ(joliet(std::string(64, 'a') + ";1"), "") << "the version is no part of the name";
    EXPECT_EQ(joliet(std::string(65, 'a')), "in Joliet names have up to 64 UTF-16 units");
    EXPECT_EQ(joliet(std::string(62, 'a') + clef), "");
    EXPECT_NE(joliet(std::string(63, 'a') + clef), "");
    EXPECT_EQ(joliet(std::string(103, 'a'), true), "");
    EXPECT_EQ(joliet(std::string(104, 'a'), true), "in Joliet names have up to 103 UTF-16 units");
    EXPECT_EQ(joliet("\xFF"), "in Joliet names are text, in UTF-8");
    for (const char* name : {"a*b", "a/b", "a?b", "a\\b", "a\tb"})
        EXPECT_EQ(joliet(name), "in Joliet names have no control characters, and none of * / ; ? \\") << name;
    for (const char* name : {"", ".", "..", ";1", "a;x"})
        EXPECT_NE(joliet(name), "") << name;
    EXPECT_NE(iso::faultOf("a;1", true, Form::Joliet, {}), "") << "folders have no version";
}

TEST(IsoNames, RockRidge) {
    for (const char* name : {"a", "a;b", "...", "\xFF", "a\nb"})
        EXPECT_EQ(iso::rockRidgeFaultOf(name), "") << name;
    EXPECT_EQ(iso::rockRidgeFaultOf(std::string(255, 'n')), "");
    EXPECT_EQ(iso::rockRidgeFaultOf(std::string(256, 'n')), "in Rock Ridge names have up to 255 bytes");
    EXPECT_EQ(iso::rockRidgeFaultOf("a/b"), "in Rock Ridge names have no / and no zeros");
    EXPECT_NE(iso::rockRidgeFaultOf(std::string_view("a\0b", 3)), "");
    for (const char* name : {"", ".", ".."})
        EXPECT_EQ(iso::rockRidgeFaultOf(name), "in Rock Ridge no item has that name");
}

// ECMA-119 9.3: name and extension as if filled up with spaces, then the newest version first.
TEST(IsoNames, TheOrderOfRecords) {
    const char* const ordered[] = {"A",    "A.B;2",      "A.B;1",  "A.BA", "A1",
                                   "A1.A", "AA.A;32767", "AA.A;9", "B.;1", "_"};
    for (size_t i = 0; i < std::size(ordered); ++i)
        for (size_t j = 0; j < std::size(ordered); ++j) {
            const int order = iso::compareNames(ordered[i], ordered[j], Form::Iso);
            EXPECT_EQ(order < 0, i < j) << ordered[i] << ' ' << ordered[j];
            EXPECT_EQ(order == 0, i == j) << ordered[i] << ' ' << ordered[j];
        }
    EXPECT_EQ(iso::compareNames("A", "A.;1", Form::Iso), 0);
    EXPECT_EQ(iso::compareNames("A.B", "A.B;1", Form::Iso), 0);
    EXPECT_GT(iso::compareNames("A!", "A", Form::Iso), 0) << "'!' is above a space";
    EXPECT_GT(iso::compareFolders("A.B", "A", Form::Iso), 0);
    EXPECT_LT(iso::compareFolders("A\x1F", "A", Form::Iso), 0) << "below a space";
}

TEST(IsoNames, TheOrderInJoliet) {
    const auto compare = [](const char* a, const char* b) {
        return iso::compareNames(iso::wideOf(a), iso::wideOf(b), Form::Joliet);
    };
    EXPECT_LT(compare("a", "a b"), 0);
    EXPECT_LT(compare("a b", "a.b"), 0) << "whole, dots and all";
    EXPECT_LT(compare("B", "a"), 0);
    EXPECT_LT(compare("z", "ü"), 0);
    EXPECT_LT(compare("\xF0\x9D\x84\x9E", "\xEF\xBF\xBD"), 0) << "by UTF-16 units: U+1D11E before U+FFFD";
    EXPECT_LT(compare("a;2", "a;1"), 0);
    EXPECT_LT(compare("a;12345", "a;1"), 0);
    EXPECT_EQ(compare("a", "a;1"), 0);
    EXPECT_LT(compare("a;1", "a1"), 0);
}

TEST(IsoNames, JolietNamesComeBack) {
    for (const char* name : {"", "plain", "ü", "漢字", "𝄞 clef"})
        EXPECT_EQ(iso::utf8Of(iso::wideOf(name)), name);
    EXPECT_EQ(iso::wideOf("aü𝄞"), std::string("\0a\0\xFC\xD8\x34\xDD\x1E", 8));
    EXPECT_EQ(iso::utf8Of(std::string_view("\xD8\x34\0a", 4)), "_a") << "half a pair";
    EXPECT_EQ(iso::utf8Of(std::string_view("\xDD\x1E", 2)), "_");
}

} // namespace
