// What each file system makes of names, and of siblings that become the same.
#include "plan/Names.hpp"
#include "Failure.hpp"

#include <chrono>
#include <gtest/gtest.h>
#include <set>

namespace {

using namespace engine;
using namespace engine::plan;

std::string namesOf(const std::vector<GivenName>& given, const NameForm& form) {
    std::string text;
    for (const std::string& name : distinctNames(given, form))
        text += name + '|';
    return text;
}

TEST(PlanNames, LevelOneHasEightCharactersAndThree) {
    const IsoForm form(1);
    EXPECT_EQ(form.legal("measurement 1.jpeg", false), "MEASUREM.JPE");
    EXPECT_EQ(form.legal("a.b.c", false), "AB.C");
    EXPECT_EQ(form.legal("no extension", false), "NOEXTENS");
    EXPECT_EQ(form.legal(".hidden", false), "HIDDEN");
    EXPECT_EQ(form.legal("dot.", false), "DOT");
    EXPECT_EQ(form.legal("...", false), "_");
    EXPECT_EQ(form.legal("folder.with.dots", true), "FOLDERWI");
    EXPECT_EQ(form.legal("Grü\xff 漢ße\u0301.txt", false), "GRUE.TXT") << "without accents";
    EXPECT_EQ(form.legal("漢字.txt", false), "_.TXT");
    EXPECT_EQ(form.legal("ab.???", false), "AB");
}

TEST(PlanNames, TheOtherLevelsHaveThirty) {
    const IsoForm form(2);
    EXPECT_EQ(form.legal(std::string(40, 'x') + ".text", false), std::string(25, 'X') + ".TEXT");
    EXPECT_EQ(form.legal(std::string(40, 'x'), true), std::string(30, 'X'));
    EXPECT_EQ(form.legal("a." + std::string(40, 'e'), false), "A." + std::string(28, 'E'));
    EXPECT_EQ(form.legal("this: is an unusual$ filename.with_extension", false),
              "THIS: IS AN UNU.WITH_EXTENSION");
    EXPECT_EQ(form.legal("my long, long directory", true), "MY LONG LONG DIRECTORY");
    EXPECT_EQ(form.legal("a !\"%&'()*+-:<=>?_b#$,/;@[\\]^`{|}~\x7F\t.", false), "A !\"%&'()*+-:<=>?_B");
    EXPECT_EQ(form.legal("\u2260\u226E\u226F\u212A\u212B\u1EC7", false), "=<>KAE");
}

TEST(PlanNames, SiblingsGetNumbersInsideOfTheLimit) {
    EXPECT_EQ(namesOf({{"measure_1.txt"}, {"measure_2.txt"}, {"MEASURE_.TXT"}, {"measure_.txt"}}, IsoForm(1)),
              "MEASURE_.TXT|MEAS_001.TXT|MEAS_002.TXT|MEAS_003.TXT|");
    EXPECT_EQ(namesOf({{"a#b.txt"}, {"a_001.txt"}, {"a$b.txt"}, {"ab.txt"}}, IsoForm(3)),
              "AB.TXT|A_001.TXT|AB_001.TXT|AB_002.TXT|");
    // For who looks them up, a folder and a file without an extension have one name; spaces at an end are none.
    EXPECT_EQ(namesOf({{"same", true}, {"same."}, {"Same"}}, IsoForm(1)), "SAME|SAME_001|SAME_002|");
    EXPECT_EQ(namesOf({{"README"}, {"README."}, {"readme  "}, {"r .md"}, {"r.md "}}, IsoForm(2)),
              "README|README_001|README  _001|R .MD|R_001.MD |");
}

TEST(PlanNames, JolietLeavesOutWhatItCannotHold) {
    const JolietForm form;
    EXPECT_EQ(form.legal("a:b*c?d\\e;f\"$<>|/g", false), "a:bcdefg") << "the colon stays";
    EXPECT_EQ(form.legal("tab\tbad\xff\x7F\u0085\uEF85!", false), "tabbad!");
    EXPECT_EQ(form.legal("archive.tar.gz", false), "archivetar.gz") << "one dot";
    EXPECT_EQ(form.legal("site.old.d", true), "siteold.d") << "in names of folders, too";
    EXPECT_EQ(form.legal(".profile", false), "profile");
    EXPECT_EQ(form.legal("what?.???", false), "what");
    EXPECT_EQ(form.legal("***", false), "_");
    std::string notes;
    for (int i = 0; i < 40; ++i)
        notes += "𝄞"; // two units each
    EXPECT_EQ(form.legal(notes + ".txt", false), notes.substr(0, size_t{30} * 4) + ".txt");
    const std::string longName(70, 'n');
    EXPECT_EQ(
        namesOf({{longName + "a.txt"}, {longName + "b.txt"}, {"M"}, {"m"}, {"Äж"}, {"äЖ"}, {"×"}, {"÷"}},
                form),
        longName.substr(0, 60) + ".txt|" + longName.substr(0, 56) + "_001.txt|M|m_001|Äж|äЖ_001|×|÷|");
}

TEST(PlanNames, HFSPlusTellsNoCapitalsFromSmallLetters) {
    EXPECT_EQ(namesOf({{"Read Me.txt"}, {"read me.txt"}, {"\u00e9"}, {"E\u0301"}, {"README"}}, HfsPlusForm()),
              "Read Me.txt|read me_001.txt|\u00e9|E\u0301_001|README|");
}

TEST(PlanNames, UDFCutsWhatIsTooLong) {
    const std::string stem(250, 'n');
    EXPECT_EQ(namesOf({{stem + "aaaa1"}, {stem + "aaaa2"}, {"N"}, {"n"}}, UdfForm()),
              stem + "aaaa1|" + stem + "_001|N|n|");
}

TEST(PlanNames, TwoThatWereTheSameAreRefused) {
    try {
        distinctNames({{"b"}, {"a"}, {"x"}, {"a"}}, UdfForm());
        FAIL();
    } catch (const Failure& problem) {
        EXPECT_EQ(problem.error().code, ErrorCode::FileLocationConflict);
        EXPECT_EQ(problem.error().message,
                  "Two items of one folder are named \"a\"; give one of them another name.");
    }
    EXPECT_EQ(namesOf({{"A", false, true}, {"A", false, true}}, IsoForm(1)), "A|A_001|")
        << "an item's own ones are numbered";
}

// Level 1 has room for ten million numbers; this one for 999 of them.
TEST(PlanNames, MoreThanThereAreNumbersFor) {
    class Short final : public NameForm {
        std::string legal(std::string_view, bool) const override { return "SAME"; }
        std::string keyOf(std::string_view legal) const override { return std::string(legal); }
        bool fits(std::string_view legal, bool) const override { return legal.size() <= 4; }
    };
    std::vector<std::string> names;
    for (int index = 0; index <= 1000; ++index)
        names.push_back("a name of its own " + std::to_string(index));
    std::vector<GivenName> given;
    for (size_t index = 0; index < 1000; ++index)
        given.push_back({names[index]});
    const auto distinct = distinctNames(given, Short());
    EXPECT_EQ(distinct.front(), "SAME");
    EXPECT_EQ(distinct.back(), "_999");
    given.push_back({names.back()});
    const auto result = guarded([&] { distinctNames(given, Short()); });
    ASSERT_FALSE(result.ok());
    EXPECT_EQ(result.error().code, ErrorCode::TooManyNameConflicts);
    EXPECT_EQ(
        result.error().message,
        "More items of one folder would be named \"SAME\" on the disc than numbers can tell apart there; "
        "rename some of them, or move them to other folders.");
}

// As many as there are: names that all become one, and names that become one only when they are cut for a number.
TEST(PlanNames, ManyCollidingNamesAreAllDifferent) {
    std::vector<std::string> raw;
    for (int i = 0; i < 20'000; ++i)
        raw.push_back("long name number " + std::to_string(i) + ".txt");
    std::vector<GivenName> given;
    for (const std::string& name : raw)
        given.push_back({name});
    const auto names = distinctNames(given, IsoForm(1));
    std::set<std::string> different;
    for (const std::string& name : names) {
        EXPECT_TRUE(IsoForm(1).fits(name, false)) << name;
        different.insert(name);
    }
    EXPECT_EQ(different.size(), names.size());
}

} // namespace
