// Each kind of medium in a recorder: burned, appended to, overwritten and erased, as its kind allows.
#include "Fixture.hpp"

#include <numeric>

using namespace engine;

class PhysicalKinds : public PhysicalTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(PhysicalKinds, BurnsAppendsAndShowsBoth) {
    insert(GetParam());
    const std::string bytes = noise(3'000'000);
    file("noise.bin", bytes);
    BurnOptions options;
    options.appendable = true;
    EXPECT_DONE(burn(layout(), options));
    EXPECT_TRUE(extracted("noise.bin") == bytes);
    MediumInfo info = medium();
    EXPECT_EQ(info.state, MediumState::Appendable);
    ASSERT_EQ(info.sessionCount(), 1u);
    EXPECT_EQ(info.sessions.front().tracks.front().volumeName, "DISC");

    fs::remove(source / "noise.bin");
    file("letter.txt", "Dear reader,\n");
    EXPECT_DONE(burn(layout("MORE")));
    EXPECT_TRUE(extracted("noise.bin") == bytes);
    EXPECT_EQ(extracted("letter.txt"), "Dear reader,\n");
    info = medium();
    if (!factsOf(info.kind).overwritable) {
        EXPECT_EQ(info.state, MediumState::Complete);
        EXPECT_EQ(info.sessionCount(), 2u);
    }
}

TEST_P(PhysicalKinds, OverwritesWhereItCan) {
    insert(GetParam());
    file("old.bin", noise(700'000, 2));
    EXPECT_DONE(burn(layout("OLD")));
    fs::remove(source / "old.bin");
    file("new.bin", noise(900'000, 3));
    BurnOptions options;
    options.overwrite = true;
    const BurnStatus again = burn(layout("NEW"), options);
    if (factsOf(medium().kind).erasable) {
        EXPECT_DONE(again);
        EXPECT_TRUE(extracted("new.bin") == noise(900'000, 3));
    } else {
        EXPECT_EQ(again.error->code, ErrorCode::MediaNotBlank);
        EXPECT_TRUE(extracted("old.bin") == noise(700'000, 2));
    }
}

TEST_P(PhysicalKinds, ErasesWhatCanBeErased) {
    insert(GetParam(), {{"capacity", 4096}}); // a disc's own size would take minutes
    file("noise.bin", noise(700'000));
    EXPECT_DONE(burn(layout()));
    const bool isErasable = factsOf(medium().kind).erasable;
    for (const EraseType type : {EraseType::Quick, EraseType::Complete}) {
        EraseJob job(drive());
        ASSERT_TRUE(job.start(type).ok());
        const EraseStatus status = job.wait();
        if (!isErasable) {
            ASSERT_TRUE(status.error.has_value());
            EXPECT_EQ(status.error->code, ErrorCode::MediaNotErasable);
            EXPECT_TRUE(extracted("noise.bin") == noise(700'000));
            continue;
        }
        EXPECT_EQ(nameOf(status.state), "Done")
            << (status.error ? status.error->message + status.error->info : "");
        EXPECT_TRUE(medium().blank);
        EXPECT_DONE(burn(layout()));
    }
}

INSTANTIATE_TEST_SUITE_P(All, PhysicalKinds,
                         ::testing::Values("CD-R", "CD-RW", "DVD+RW", "DVD-R", "DVD-RW", "DVD-RAM", "DVD+R",
                                           "DVD+R DL", "BD-R", "BD-RE"),
                         [](const auto& each) {
                             std::string name = each.param;
                             for (char& letter : name)
                                 letter = letter == '+' ? 'p' : letter == '-' || letter == ' ' ? '_' : letter;
                             return name;
                         });

class PhysicalOverwritten : public PhysicalTest, public ::testing::WithParamInterface<const char*> {
  protected:
    std::string data() const {
        std::ostringstream bytes;
        bytes << std::ifstream(first / "data", std::ios::binary).rdbuf();
        return bytes.str();
    }
    void erase(EraseType type) const {
        EraseJob job(drive());
        ASSERT_TRUE(job.start(type).ok());
        const EraseStatus status = job.wait();
        EXPECT_EQ(nameOf(status.state), "Done") << (status.error ? status.error->message : "");
        EXPECT_TRUE(medium().blank);
    }
};

// Two file systems, the second smaller: what is behind it is of no file system, and is erased all the same.
TEST_P(PhysicalOverwritten, CompleteEraseTakesEveryBlock) {
    constexpr uint64_t capacity = 3 * 512 + 32 * 5; // no whole number of the eraser's steps
    insert(GetParam(), {{"capacity", capacity}});
    BurnOptions options;
    options.overwrite = true;
    for (const bool looksBlank : {false, true}) {
        file("noise.bin", noise(2'600'000));
        EXPECT_DONE(burn(layout("LARGE"), options));
        file("noise.bin", noise(100'000, 2));
        EXPECT_DONE(burn(layout("SMALL"), options));
        if (looksBlank) {
            erase(EraseType::Quick);
            EXPECT_NE(data().find_first_not_of('\0'), std::string::npos) << "quick is quick";
        }
        {
            std::fstream end(first / "data", std::ios::binary | std::ios::in | std::ios::out);
            end.seekp(static_cast<std::streamoff>(capacity * blockSize - 1));
            end.put('x'); // in the last block
        }
        erase(EraseType::Complete);
        EXPECT_EQ(data().size(), capacity * blockSize);
        EXPECT_EQ(data().find_first_not_of('\0'), std::string::npos);
    }
    EXPECT_DONE(burn(layout()));
    EXPECT_TRUE(extracted("noise.bin") == noise(100'000, 2));
}

// Nobody knows what is on it, so it is nobody's to write over unasked.
TEST_P(PhysicalOverwritten, AStartThatCanNotBeReadIsNotBlank) {
    insert(GetParam(), {{"capacity", 4096}});
    ASSERT_TRUE(drive()->closeTray().ok()); // what was seen before is forgotten
    file("noise.bin", noise(360'000));
    EXPECT_DONE(burn(layout()));
    change("faults", {{"readErrors", {16}}});
    ASSERT_TRUE(drive()->closeTray().ok());
    const MediumInfo unreadable = medium();
    EXPECT_FALSE(unreadable.blank);
    EXPECT_EQ(unreadable.blocksUsed, 4096u);
    EXPECT_TRUE(unreadable.erasable && unreadable.overwritable);
    const auto writes = state()["writes"];
    EXPECT_EQ(burn(layout("OVER")).error->code, ErrorCode::MediaNotBlank);
    EXPECT_EQ(state()["writes"], writes);
    change("faults", Json::object());
    EXPECT_TRUE(extracted("noise.bin") == noise(360'000));
}

// Some drives give no zeros for what was never written.
TEST_P(PhysicalOverwritten, AStartThatWasNeverWrittenIsBlank) {
    std::vector<int> never(32);
    std::iota(never.begin(), never.end(), 0);
    insert(GetParam(), {{"capacity", 4096}, {"formatted", true}, {"faults", {{"notWritten", never}}}});
    ASSERT_TRUE(drive()->closeTray().ok());
    EXPECT_TRUE(medium().blank);
}

INSTANTIATE_TEST_SUITE_P(All, PhysicalOverwritten, ::testing::Values("DVD+RW", "DVD-RAM", "BD-RE"),
                         [](const auto& each) {
                             const std::string name = each.param;
                             return name == "DVD+RW" ? "DVDPlusRW" : name == "BD-RE" ? "BDRE" : "DVDRAM";
                         });

class PhysicalTwoLayers : public PhysicalTest, public ::testing::WithParamInterface<const char*> {};

// The recorder's medium is a small one, of two layers all the same: a disc's own size would take minutes.
TEST_P(PhysicalTwoLayers, BurnGoesOverTheEndOfTheFirst) {
    constexpr uint64_t layer = 8192;
    insert(GetParam(), {{"capacity", 2 * layer}});
    const std::string bytes = noise((layer + 2000) * blockSize);
    file("noise.bin", bytes);
    EXPECT_EQ(medium().blocksFree, 2 * layer);
    BurnOptions half;
    half.doubleLayerL0DataZone = 0.5;
    EXPECT_EQ(burn(layout(), half).error->code, ErrorCode::FunctionNotSupported);
    EXPECT_EQ(state()["writes"], 0);
    Layout disc = layout();
    disc.sessions.front().tracks.front().verification = Verification::Checksum;
    EXPECT_DONE(burn(std::move(disc)));
    const MediumInfo info = medium();
    EXPECT_EQ(info.state, MediumState::Complete);
    EXPECT_GT(info.blocksUsed, layer + 2000);
    EXPECT_TRUE(extracted("noise.bin") == bytes);

    insert(GetParam(), {{"capacity", 2 * layer}});
    drive()->closeTray().ok();
    file("more.bin", bytes);
    EXPECT_EQ(burn(layout()).error->code, ErrorCode::BurnNotAllowed);
    EXPECT_EQ(state()["writes"], 0) << "both layers are too small";
}

INSTANTIATE_TEST_SUITE_P(All, PhysicalTwoLayers, ::testing::Values("DVD-R DL", "DVD+R DL"),
                         [](const auto& each) {
                             return std::string(each.param[3] == '+' ? "Plus" : "Minus");
                         });
