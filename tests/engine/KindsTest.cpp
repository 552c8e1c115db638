// The table of medium kinds and the table of errors.
#include "Error.hpp"
#include "MediumKind.hpp"

#include <gtest/gtest.h>
#include <set>

using namespace engine;

TEST(Kinds, areFoundByTheirNamesWhateverTheCase) {
    EXPECT_EQ(mediumKindNamed("DVD+RW"), MediumKind::DVDPlusRW);
    EXPECT_EQ(mediumKindNamed("dvd+rw"), MediumKind::DVDPlusRW);
    EXPECT_EQ(mediumKindNamed("DVD-R DL"), MediumKind::DVDRDualLayer);
    EXPECT_EQ(mediumKindNamed("DVD"), std::nullopt);
    EXPECT_EQ(mediumKindNamed(""), std::nullopt);
    for (const MediumFacts& facts : allMediumKinds())
        EXPECT_EQ(mediumKindNamed(facts.name), facts.kind) << facts.name;
}

TEST(Kinds, haveDistinctNames) {
    std::set<std::string_view> names;
    for (const MediumFacts& facts : allMediumKinds())
        names.insert(facts.name);
    EXPECT_EQ(names.size(), allMediumKinds().size());
    EXPECT_EQ(names.size(), 14u);
}

TEST(Kinds, haveTrueCapacities) {
    EXPECT_EQ(factsOf(MediumKind::CDR).capacityBlocks, 359847u);
    EXPECT_EQ(factsOf(MediumKind::DVDR).capacityBlocks, 2298496u);
    EXPECT_EQ(factsOf(MediumKind::DVDRW).capacityBlocks, 2297888u);
    EXPECT_EQ(factsOf(MediumKind::DVDPlusRW).capacityBlocks, 2295104u);
    EXPECT_EQ(factsOf(MediumKind::DVDRAM).capacityBlocks, 2236704u);
    EXPECT_EQ(factsOf(MediumKind::DVDPlusRDoubleLayer).capacityBlocks, 4173824u);
    EXPECT_EQ(factsOf(MediumKind::BDRE).capacityBlocks, 12219392u);
}

TEST(Kinds, offerAscendingSpeedsJustWhenTheyCanBeWritten) {
    for (const MediumFacts& facts : allMediumKinds()) {
        EXPECT_EQ(facts.writable, !facts.speeds.empty()) << facts.name;
        for (size_t index = 1; index < facts.speeds.size(); ++index)
            EXPECT_LT(facts.speeds[index - 1], facts.speeds[index]) << facts.name;
        EXPECT_TRUE(facts.writable || !(facts.erasable || facts.overwritable)) << facts.name;
    }
}

TEST(Kinds, roundTheFactorOfASpeed) {
    EXPECT_EQ(xFactorOf(2822.4, MediumClass::CD), 16);
    EXPECT_EQ(xFactorOf(1385.0 * 2.4, MediumClass::DVD), 2);
    EXPECT_EQ(xFactorOf(1385.0 * 2.5, MediumClass::DVD), 3);
    EXPECT_EQ(xFactorOf(0, MediumClass::BD), 0);
}

TEST(Errors, haveATextForEveryCodeAndForOthers) {
    EXPECT_EQ(textOf(ErrorCode::MediaNotBlank), "The disc is not blank.");
    EXPECT_EQ(static_cast<uint32_t>(ErrorCode::FileModifiedDuringBurn), 0x80020100u);
    EXPECT_EQ(static_cast<uint32_t>(ErrorCode::UserCanceled), 0x80020066u);
    EXPECT_EQ(textOf(static_cast<ErrorCode>(7)), "An error without a description happened.");
    std::set<std::string_view> texts;
    for (uint32_t code = 0x80020000; code < 0x80020300; ++code)
        texts.insert(textOf(static_cast<ErrorCode>(code)));
    EXPECT_EQ(texts.size(), 41u); // 40 codes, and the text for none of them
}
