// NameRulesTest: what becomes of a name in each file system, and of names that collide.
#include "NameRules.hpp"
#include "PathNames.hpp"
#include "hfsplus/Tables.hpp"
#include "plan/Names.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <set>

namespace {

using namespace discrecording;
using enum NameRule;

std::u16string file(NameRule rule, std::u16string_view name) { return legalName(rule, name, false); }
std::u16string folder(NameRule rule, std::u16string_view name) { return legalName(rule, name, true); }

TEST(NameRules, AFilesNameInEachFileSystem) {
    const auto name = u"this: is an unusual$ filename.with_extension";
    EXPECT_EQ(file(ISOLevelOne, name), u"THISISAN.WIT");
    EXPECT_EQ(file(ISOLevelTwo, name), u"THIS: IS AN UNU.WITH_EXTENSION");
    EXPECT_EQ(file(Joliet, name), u"this: is an unusual filename.with_extension");
    EXPECT_EQ(file(HFSPlus, name), name);
    EXPECT_EQ(file(UDF, name), name);
}

TEST(NameRules, AFoldersNameInEachFileSystem) {
    const auto name = u"my long, long directory";
    EXPECT_EQ(folder(ISOLevelOne, name), u"MYLONGLO");
    EXPECT_EQ(folder(ISOLevelTwo, name), u"MY LONG LONG DIRECTORY");
    EXPECT_EQ(folder(Joliet, name), name);
    EXPECT_EQ(folder(ISOLevelOne, u"photos.old"), u"PHOTOSOL");
}

TEST(NameRules, LettersWithoutAccentsRemainInIso9660) {
    EXPECT_EQ(file(ISOLevelOne, u"Gro\u0308\u00DFe.txt"), u"GROE.TXT");
    EXPECT_EQ(file(ISOLevelOne, u"\u65E5\u672C.txt"), u"_.TXT") << "a name of nothing that is legal";
}

TEST(NameRules, DotsAndEmptyNames) {
    EXPECT_EQ(file(ISOLevelTwo, u"archive.tar.gz"), u"ARCHIVETAR.GZ");
    EXPECT_EQ(file(Joliet, u"archive.tar.gz"), u"archivetar.gz");
    EXPECT_EQ(file(UDF, u"archive.tar.gz"), u"archive.tar.gz");
    EXPECT_EQ(file(ISOLevelOne, u".profile"), u"PROFILE");
    for (const NameRule rule : {ISOLevelOne, ISOLevelTwo, Joliet, HFSPlus, UDF}) {
        EXPECT_EQ(file(rule, u""), u"_");
        const std::u16string dots = file(rule, u"..");
        EXPECT_TRUE(dots != u".." && dots != u"." && !dots.empty());
    }
}

// Names of ASCII that need little take a short way. A unit that is left out, or becomes "_", sends the same name the long one.
TEST(NameRules, TheShortWayOfPlainNamesEndsWhereTheLongOneDoes) {
    constexpr std::u16string_view units = u"abYZ09_....  -+~$/;\x07";
    std::mt19937 random(7);
    for (int i = 0; i < 8000; ++i) {
        std::u16string name;
        for (size_t left = 1 + random() % (i % 4 == 0 ? 260 : i % 2 == 0 ? 34 : 12); left > 0; --left)
            name += units[random() % (i % 3 == 0 ? units.size() : 9)];
        const size_t place = 1 + random() % name.size();
        for (const NameRule rule : {ISOLevelOne, ISOLevelTwo, Joliet, HFSPlus, UDF})
            for (const bool isFolder : {false, true}) {
                const bool leavesOut = rule == ISOLevelOne || rule == ISOLevelTwo || rule == Joliet;
                std::u16string plain = name, other = name;
                other.insert(place, 1, leavesOut ? u'\x80' : u'\xEF80');
                if (!leavesOut) plain.insert(place, 1, u'_');
                EXPECT_EQ(legalName(rule, plain, isFolder), legalName(rule, other, isFolder))
                    << pathnames::encode(plain) << (isFolder ? ", a folder" : "");
            }
    }
}

TEST(NameRules, SeparatorsAndControlCharacters) {
    EXPECT_EQ(file(ISOLevelTwo, u"a/b\tc;1"), u"ABC1");
    EXPECT_EQ(file(Joliet, u"a/b\\c*d?e\u0001f"), u"abcdef");
    EXPECT_EQ(file(HFSPlus, u"a/b"), u"a:b");
    EXPECT_EQ(file(UDF, u"a/b"), u"a_b");
}

// Such a character stands for a byte of a name on disk.
TEST(NameRules, BytesThatAreNoText) {
    EXPECT_EQ(file(Joliet, u"a\uEFFFb"), u"ab");
    EXPECT_EQ(file(HFSPlus, u"a\uEFFFb"), u"a_b");
    EXPECT_EQ(file(UDF, u"a\uEF80b"), u"a_b");
    EXPECT_EQ(file(RockRidge, u"a\uEFFFb"), u"a\uEFFFb") << "the byte itself";
}

TEST(NameRules, LengthsAndTheExtensionThatIsKept) {
    const std::u16string longest(300, u'x');
    EXPECT_EQ(file(ISOLevelTwo, longest).size(), 30u);
    EXPECT_EQ(file(Joliet, longest + u".jpeg").size(), 64u);
    EXPECT_TRUE(file(Joliet, longest + u".jpeg").ends_with(u".jpeg"));
    EXPECT_EQ(file(HFSPlus, longest).size(), 255u);
    EXPECT_EQ(file(UDF, longest).size(), 253u);
    EXPECT_EQ(file(UDF, std::u16string(300, u'\u65E5')).size(), 126u);
    EXPECT_EQ(file(ISOLevelTwo, u"a." + longest).size(), 30u);
    EXPECT_EQ(file(ISOLevelTwo, u"a." + longest).substr(0, 2), u"A.");
    // A character of two units is not cut in two.
    EXPECT_EQ(file(Joliet, std::u16string(63, u'x') + u"\U0001F4BF").size(), 63u);
}

TEST(NameRules, RockRidgeCountsBytes) {
    EXPECT_EQ(rockRidgeName(std::u16string(300, u'x') + u".jpeg", false),
              std::u16string(250, u'x') + u".jpeg");
    EXPECT_EQ(rockRidgeName(std::u16string(300, u'x') + u".jpeg", true), std::u16string(255, u'x'));
    EXPECT_EQ(rockRidgeName(std::u16string(100, u'\u65E5'), false).size(), 85u);
    EXPECT_EQ(rockRidgeName(std::u16string(300, u'\uEFFF'), false).size(), 255u) << "single bytes";
    std::u16string discs;
    for (int i = 0; i < 100; ++i)
        discs += u"\U0001F4BF";
    EXPECT_EQ(rockRidgeName(discs, false).size(), 2u * 63);
    for (const auto whole : {u"", u"..", u"a.", u".b", u"a\u0001/"})
        EXPECT_EQ(rockRidgeName(whole, false), whole);
    const auto names = mangledNames(
        RockRidge, {{std::u16string(85, u'\u65E5'), false}, {std::u16string(85, u'\u65E5'), false}});
    EXPECT_EQ(names[1], std::u16string(83, u'\u65E5') + u"_001");
}

std::vector<Sibling> siblings(size_t count, std::u16string_view name) {
    return std::vector<Sibling>(count, Sibling{std::u16string(name), false});
}

TEST(NameRules, CollidingSiblingsGetNumbersInsideTheLimit) {
    EXPECT_EQ(mangledNames(ISOLevelOne, siblings(3, u"MEASUREM.TXT")),
              (std::vector<std::u16string>{u"MEASUREM.TXT", u"MEAS_001.TXT", u"MEAS_002.TXT"}));
    const auto joliet = mangledNames(Joliet, siblings(2, std::u16string(60, u'x') + u".txt"));
    EXPECT_EQ(joliet[1], std::u16string(56, u'x') + u"_001.txt");
}

TEST(NameRules, AReadyNameIsNotTaken) {
    const std::vector<Sibling> all{{u"A.TXT", false}, {u"A.TXT", false}, {u"A_001.TXT", false}};
    EXPECT_EQ(mangledNames(ISOLevelOne, all),
              (std::vector<std::u16string>{u"A.TXT", u"A_002.TXT", u"A_001.TXT"}));
}

TEST(NameRules, CapitalsCollideWhereTheFileSystemDoesNotTellThem) {
    const std::vector<Sibling> all{{u"Readme", false}, {u"README", false}};
    EXPECT_EQ(mangledNames(HFSPlus, all)[1], u"README_001");
    EXPECT_EQ(mangledNames(UDF, all)[1], u"README");
    EXPECT_EQ(mangledNames(RockRidge, all)[1], u"README");
}

void expectDistinct(NameRule rule, const std::vector<Sibling>& all) {
    const auto names = mangledNames(rule, all);
    EXPECT_EQ(std::set<std::u16string>(names.begin(), names.end()).size(), all.size());
    EXPECT_TRUE(std::all_of(names.begin(), names.end(),
                            [](const std::u16string& name) { return name.size() <= 12; }));
}

TEST(NameRules, ManySiblingsOfOneName) { expectDistinct(ISOLevelOne, siblings(20000, u"COLLIDES.TXT")); }

// Different names that are the same as soon as they are cut: each pair would try all numbers of the others.
TEST(NameRules, ManySiblingsThatCollideOnlyWhenCut) {
    std::vector<Sibling> all;
    for (int i = 0; i < 9999; ++i) {
        std::u16string name = u"SAME";
        for (const char digit : std::to_string(10000 + i).substr(1))
            name += static_cast<char16_t>(digit);
        all.push_back({name, false});
        all.push_back({name, false});
    }
    expectDistinct(ISOLevelOne, all);
}

std::string plain(const std::u16string& name) { return {name.begin(), name.end()}; }

// What a program is told of a folder's items is what lands on the disc when the engine names them itself.
TEST(NameRules, TheEngineMakesTheSameOfNamesInIso9660) {
    const std::pair<std::u16string, std::string> letters[] = {{u"a", "a"},
                                                              {u"B", "B"},
                                                              {u"9", "9"},
                                                              {u".", "."},
                                                              {u" ", " "},
                                                              {u"_", "_"},
                                                              {u"_001", "_001"},
                                                              {u"(", "("},
                                                              {u"$", "$"},
                                                              {u",", ","},
                                                              {u"?", "?"},
                                                              {u"~", "~"},
                                                              {u"\u6F22", "\u6F22"},
                                                              {u"u\u0308", "\u00FC"},
                                                              {u"=\u0338", "\u2260"},
                                                              {u"\U0001F4BF", "\U0001F4BF"},
                                                              {u"sameEnough", "sameEnough"},
                                                              {u"\t", "\t"},
                                                              {u";", ";"},
                                                              {u".text", ".text"}};
    std::mt19937 random(1);
    const auto upTo = [&](size_t most) { return std::uniform_int_distribution<size_t>(0, most)(random); };
    for (int round = 0; round < 400; ++round) {
        const bool isOne = round % 2 == 0;
        const NameRule rule = isOne ? ISOLevelOne : ISOLevelTwo;
        const engine::plan::IsoForm form(static_cast<uint8_t>(isOne ? 1 : 2 + round % 3 / 2));
        std::set<std::string> known;
        std::vector<std::string> names;
        std::vector<Sibling> all;
        std::vector<bool> folders;
        for (size_t count = upTo(60); count > 0; --count) {
            std::u16string apart;
            std::string name;
            for (size_t length = 1 + upTo(round % 5 == 0 ? 40 : 3); length > 0; --length) {
                const auto& letter = letters[upTo(std::size(letters) - 1)];
                apart += letter.first;
                name += letter.second;
            }
            if (!known.insert(name).second) continue;
            folders.push_back(upTo(4) == 0);
            names.push_back(name);
            all.push_back({legalName(rule, apart, folders.back()), folders.back()});
            ASSERT_EQ(form.legal(name, folders.back()), plain(all.back().name)) << name;
        }
        std::vector<engine::plan::GivenName> given;
        for (size_t i = 0; i < names.size(); ++i)
            given.push_back({names[i], folders[i]});
        const auto made = engine::plan::distinctNames(given, form);
        const auto told = mangledNames(rule, all);
        for (size_t i = 0; i < names.size(); ++i)
            ASSERT_EQ(made[i], plain(told[i])) << names[i];
    }
}

TEST(NameRules, TheEngineMakesTheSameOfNamesInJoliet) {
    const std::pair<std::u16string, std::string> letters[] = {{u"a", "a"},
                                                              {u"A", "A"},
                                                              {u".", "."},
                                                              {u" ", " "},
                                                              {u"_", "_"},
                                                              {u"_001", "_001"},
                                                              {u"?", "?"},
                                                              {u"*", "*"},
                                                              {u"$", "$"},
                                                              {u":", ":"},
                                                              {u"\u0439", "\u0439"},
                                                              {u"\u0419", "\u0419"},
                                                              {u"\u0085", "\u0085"},
                                                              {u"\u6F22", "\u6F22"},
                                                              {u"\U0001F4BF", "\U0001F4BF"},
                                                              {u"\uEF93", "\x93"},
                                                              {u"\t", "\t"},
                                                              {u".text", ".text"},
                                                              {u"thirteen more", "thirteen more"}};
    std::mt19937 random(2);
    const auto upTo = [&](size_t most) { return std::uniform_int_distribution<size_t>(0, most)(random); };
    const engine::plan::JolietForm form;
    for (int round = 0; round < 400; ++round) {
        std::set<std::string> known;
        std::vector<std::string> names;
        std::vector<Sibling> all;
        for (size_t count = upTo(60); count > 0; --count) {
            std::u16string wide;
            std::string name;
            for (size_t length = 1 + upTo(round % 5 == 0 ? 40 : 3); length > 0; --length) {
                const auto& letter = letters[upTo(std::size(letters) - 1)];
                wide += letter.first;
                name += letter.second;
            }
            if (!known.insert(name).second) continue;
            names.push_back(name);
            const bool isFolder = upTo(4) == 0;
            all.push_back({legalName(Joliet, wide, isFolder), isFolder});
        }
        std::vector<engine::plan::GivenName> given;
        for (size_t i = 0; i < names.size(); ++i)
            given.push_back({names[i], all[i].isFolder});
        const auto made = engine::plan::distinctNames(given, form);
        const auto told = mangledNames(Joliet, all);
        for (size_t i = 0; i < names.size(); ++i)
            ASSERT_EQ(made[i], pathnames::encode(told[i])) << names[i];
    }
}

// ---- siblings that come one by one ---------------------------------------------------------------------------------

TEST(NameRules, SiblingsThatComeLaterAreNamedAsIfAllHadComeAtOnce) {
    const std::u16string_view parts[] = {u"A", u"a", u"B",    u"_001",         u"_002",
                                         u" ", u".", u".TXT", u"MEASUREMENTS", u"\u00C4"};
    std::mt19937 random(1);
    const auto upTo = [&](size_t most) { return std::uniform_int_distribution<size_t>(0, most)(random); };
    size_t numbered = 0, anew = 0;
    for (const NameRule rule : {ISOLevelOne, ISOLevelTwo, Joliet, HFSPlus, UDF, RockRidge}) {
        for (int round = 0; round < 100; ++round) {
            std::vector<Sibling> all;
            std::vector<std::u16string> told;
            GrowingNames growing(rule, all, told);
            for (int step = 0; step < 30; ++step) {
                std::u16string name;
                for (size_t length = 1 + upTo(2); length > 0; --length)
                    name += parts[upTo(std::size(parts) - 1)];
                const bool isFolder = upTo(4) == 0;
                all.push_back({legalName(rule, name, isFolder), isFolder});
                const auto added = growing.add(all.back());
                const auto wanted = mangledNames(rule, all);
                if (added) told.push_back(*added);
                // Also from the middle on, as a folder does whose children were named at once.
                if (!added || upTo(9) == 0) growing = GrowingNames(rule, all, told = wanted);
                ASSERT_EQ(told, wanted);
                anew += !added;
                numbered += told.back() != all.back().name;
            }
        }
    }
    EXPECT_GT(numbered, 1000u);
    EXPECT_GT(anew, 50u);
}

// Naming all of them anew each time would take as long as the square of their number.
TEST(NameRules, NamesThatAllCollideAreNotNamedAnewForEachThatComes) {
    const auto all = siblings(3000, u"COLLIDES.TXT");
    for (const NameRule rule : {ISOLevelOne, ISOLevelTwo, Joliet, HFSPlus, UDF, RockRidge}) {
        GrowingNames growing(rule, {}, {});
        std::vector<std::u16string> told;
        for (const Sibling& each : all) {
            const auto added = growing.add(each);
            ASSERT_TRUE(added);
            told.push_back(*added);
        }
        EXPECT_EQ(told, mangledNames(rule, all));
    }
}

// ---- names that the engine leaves as they are --------------------------------------------------------------------

// What a program is told is on the disc: the engine numbers nothing more.
void expectKept(NameRule rule, const engine::plan::NameForm& form, const std::vector<Sibling>& all) {
    std::vector<std::string> told;
    for (const std::u16string& name : mangledNames(rule, all))
        told.push_back(pathnames::encode(name));
    std::vector<engine::plan::GivenName> given;
    for (size_t i = 0; i < told.size(); ++i)
        given.push_back({told[i], all[i].isFolder, true});
    const auto made = engine::plan::distinctNames(given, form);
    for (size_t i = 0; i < told.size(); ++i)
        ASSERT_EQ(made[i], told[i]) << "of " << pathnames::encode(all[i].name);
}

TEST(NameRules, LettersThatHFSPlusTakesForTheSameGetNumbers) {
    size_t letters = 0;
    for (const auto& [character, as] : engine::hfsplus::foldings) {
        if (character == 0) continue;
        // Between others, as some count for nothing; the one as which it counts comes first.
        std::u16string one = u"x", other = u"x";
        if (as != 0) one += as;
        other += character;
        const auto names = mangledNames(HFSPlus, {{one, false}, {other, false}});
        ASSERT_EQ(names[0], one);
        ASSERT_EQ(names[1], other + u"_001") << std::hex << static_cast<int>(character);
        ++letters;
    }
    EXPECT_GT(letters, 300u);
    EXPECT_EQ(mangledNames(HFSPlus, {{u"\u0141\u00F3d\u017A", false}, {u"\u0142\u00F3d\u017A", false}})[1],
              u"\u0142\u00F3d\u017A_001");
    EXPECT_EQ(mangledNames(HFSPlus, {{u"a:b", false}, {u"A:\u200Cb", false}})[1], u"A:\u200Cb_001")
        << "one of ASCII and one of more";
    EXPECT_EQ(mangledNames(HFSPlus, {{u"\u00DF", false}, {u"ss", false}, {u"SS", false}}),
              (std::vector<std::u16string>{u"\u00DF", u"ss", u"SS_001"}));
}

TEST(NameRules, TheEngineKeepsTheNamesOfAllFileSystemsWithoutCase) {
    std::mt19937 random(3);
    const auto upTo = [&](size_t most) { return std::uniform_int_distribution<size_t>(0, most)(random); };
    const auto foldings = engine::hfsplus::foldings;
    const auto parts = engine::hfsplus::parts;
    constexpr std::u16string_view others =
        u"aAbB.:/_1 \u0301\u0323\u00DF\u6F22\uAC01\uEF93\u200C\xD834\xDD1E\xD834\xDD1E";
    const auto letter = [&](size_t kind) {
        switch (kind % 4) {
        case 0:
            return others[upTo(others.size() - 1)]; // halves of characters among them
        case 1:
            return std::max(foldings[upTo(foldings.size() - 1)].character, char16_t{1});
        case 2:
            return std::max(foldings[upTo(foldings.size() - 1)].as, char16_t{1});
        default:
            return parts[upTo(parts.size() - 1)].character;
        }
    };
    const std::pair<NameRule, std::shared_ptr<const engine::plan::NameForm>> forms[] = {
        {HFSPlus, std::make_shared<engine::plan::HfsPlusForm>()},
        {Joliet, std::make_shared<engine::plan::JolietForm>()},
        {UDF, std::make_shared<engine::plan::UdfForm>()}};
    for (int round = 0; round < 600; ++round) {
        const auto& [rule, form] = forms[round % 3];
        // Few letters, so that many names are nearly the same, short or at the limit.
        std::u16string alphabet;
        for (size_t count = 1 + upTo(6); count > 0; --count)
            alphabet += letter(upTo(7));
        std::vector<Sibling> all;
        for (size_t count = 1 + upTo(40); count > 0; --count) {
            std::u16string name;
            for (size_t length = 1 + upTo(3); length > 0; --length)
                name += alphabet[upTo(alphabet.size() - 1)];
            if (upTo(9) == 0) name.append(245 + upTo(15), alphabet[0]);
            const bool isFolder = upTo(4) == 0;
            all.push_back({legalName(rule, name, isFolder), isFolder});
        }
        expectKept(rule, *form, all);
        if (HasFatalFailure()) return;
    }
}

// ASCII goes a shorter way.
TEST(NameRules, TheEngineKeepsTheNamesOfHFSPlusInAscii) {
    std::vector<Sibling> all;
    for (char16_t unit = 1; unit < 0x80; ++unit)
        for (const auto& around : {u"", u"\u200C"})
            all.push_back({legalName(HFSPlus, std::u16string(u"n") + unit + around, false), false});
    const auto names = mangledNames(HFSPlus, all);
    size_t kept = 0;
    for (size_t i = 0; i < names.size(); ++i)
        kept += names[i] == all[i].name;
    EXPECT_EQ(kept, 127u - 26 - 1) << "one of each, but capitals and small letters are the same, and : and /";
    expectKept(HFSPlus, engine::plan::HfsPlusForm(), all);
}

TEST(NameRules, HalfACharacterIsNotKept) {
    EXPECT_EQ(file(Joliet, u"a\xD834"), u"a");
    EXPECT_EQ(file(HFSPlus, u"\xDD1E\xD834\xDD1E\xD834z"), u"_\U0001D11E_z");
    EXPECT_EQ(file(UDF, u"\xD834\xD834"), u"__");
}

} // namespace
