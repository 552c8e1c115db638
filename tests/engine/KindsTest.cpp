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

// A CD of 80 minutes ends at 79:59:72, and begins two seconds behind 0. The others' are the bytes that makers print on them
// as 4.7, 8.5 and 25 GB; a DVD-RAM's are those that its spare areas leave. Speeds: from the slowest to the fastest that discs of the kind are made for.
TEST(Kinds, haveTrueCapacitiesAndSpeeds) {
    constexpr uint64_t disc80 = ((79 * 60 + 59) * 75 + 72 - 2 * 75) * uint64_t{2048};
    struct Truth {
        MediumKind kind;
        uint64_t bytes;
        int slowest, fastest;
    };
    constexpr Truth truths[] = {{MediumKind::CDROM, disc80, 0, 0},
                                {MediumKind::CDR, disc80, 4, 52},
                                {MediumKind::CDRW, disc80, 4, 24},
                                {MediumKind::DVDROM, 4'700'372'992, 0, 0},
                                {MediumKind::DVDR, 4'707'319'808, 2, 16},
                                {MediumKind::DVDRDualLayer, 8'543'666'176, 2, 8},
                                {MediumKind::DVDRW, 4'706'074'624, 1, 6},
                                {MediumKind::DVDRAM, 4'580'769'792, 2, 5},
                                {MediumKind::DVDPlusR, 4'700'372'992, 2, 16},
                                {MediumKind::DVDPlusRDoubleLayer, 8'547'991'552, 2, 8},
                                {MediumKind::DVDPlusRW, 4'700'372'992, 2, 8},
                                {MediumKind::BDROM, 25'025'314'816, 0, 0},
                                {MediumKind::BDR, 25'025'314'816, 2, 16},
                                {MediumKind::BDRE, 25'025'314'816, 1, 2}};
    EXPECT_EQ(std::size(truths), allMediumKinds().size());
    for (const Truth& truth : truths) {
        const MediumFacts& facts = factsOf(truth.kind);
        EXPECT_EQ(facts.capacityBlocks * 2048, truth.bytes) << facts.name;
        if (facts.speeds.empty()) {
            EXPECT_EQ(truth.fastest, 0) << facts.name;
            continue;
        }
        EXPECT_EQ(xFactorOf(facts.speeds.front(), facts.mediumClass), truth.slowest) << facts.name;
        EXPECT_EQ(xFactorOf(facts.speeds.back(), facts.mediumClass), truth.fastest) << facts.name;
    }
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
