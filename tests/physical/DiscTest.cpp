// What is told of media: blank ones, and discs that other programs have burned.
#include "Fixture.hpp"

using namespace engine;

TEST_F(PhysicalTest, BlankCDR) {
    insert("CD-R");
    const MediumInfo info = medium();
    EXPECT_EQ(info.kind, MediumKind::CDR);
    EXPECT_EQ(info.state, MediumState::Blank);
    EXPECT_TRUE(info.blank && info.appendable && info.overwritable);
    EXPECT_FALSE(info.erasable);
    EXPECT_EQ(info.capacityBlocks, 359847u);
    EXPECT_EQ(info.blocksFree, 359847u);
    EXPECT_EQ(info.nextWritableBlock, 0u);
    EXPECT_EQ(info.speeds.size(), 4u);
    EXPECT_EQ(info.speeds.front(), 8 * 176);
    EXPECT_EQ(info.sessionCount(), 0u);
}

TEST_F(PhysicalTest, BlankMediaOfEveryKind) {
    for (const char* kind : {"CD-RW", "DVD-R", "DVD-R DL", "DVD-RW", "DVD-RAM", "DVD+R", "DVD+R DL", "DVD+RW",
                             "BD-R", "BD-RE"}) {
        insert(kind);
        drive()->closeTray().ok(); // what was seen before is forgotten
        const MediumInfo info = medium();
        EXPECT_EQ(factsOf(info.kind).name, kind);
        EXPECT_EQ(info.state, MediumState::Blank) << kind;
        EXPECT_TRUE(info.blank && info.overwritable) << kind;
        EXPECT_EQ(info.blocksFree, info.capacityBlocks) << kind;
        EXPECT_GT(info.blocksFree, 300000u) << kind;
        EXPECT_FALSE(info.speeds.empty()) << kind;
    }
}

TEST_F(PhysicalTest, SoundDiscOfAnotherProgram) {
    insert("CD-R");
    file("one.raw", noise(2352 * 400));
    file("two.raw", noise(2352 * 350));
    run("cdrskin dev=/dev/sr0 -sao -swab -audio '" + (source / "one.raw").string() + "' '" +
        (source / "two.raw").string() + "'");
    const MediumInfo info = medium();
    EXPECT_EQ(info.state, MediumState::Complete);
    EXPECT_FALSE(info.appendable || info.overwritable);
    EXPECT_EQ(info.blocksFree, 0u);
    ASSERT_EQ(info.trackCount(), 2u);
    const TrackInfo& track = info.sessions.front().tracks[1];
    EXPECT_EQ(track.form, BlockForm::Audio);
    EXPECT_EQ(track.startBlock, 400u);
    EXPECT_EQ(track.blocks, 350u);
    auto reader = drive()->openMedium();
    ASSERT_TRUE(reader.ok());
    std::string bytes(2352 * 350, '\0');
    const auto count = (*reader)->read(track, 0, std::as_writable_bytes(std::span(bytes)));
    ASSERT_TRUE(count.ok()) << count.error().message;
    EXPECT_EQ(*count, bytes.size());
    EXPECT_TRUE(bytes == noise(2352 * 350));
}

// Who observes drives looks every other second, and a drive that goes to the end of each track does nothing else.
TEST_F(PhysicalTest, LookingAgainAtASoundDiscReadsNoneOfIt) {
    const fs::path said = first.parent_path() / "commands";
    ::setenv("DISC_RECORDER_TRACE", said.c_str(), 1); // before the recorder's first command
    insert("CD-R");
    file("one.raw", noise(2352 * 400));
    file("two.raw", noise(2352 * 350));
    run("cdrskin dev=/dev/sr0 -tao -swab -audio '" + (source / "one.raw").string() + "' '" +
        (source / "two.raw").string() + "'");
    const auto reads = [&] {
        std::ostringstream text;
        text << std::ifstream(said).rdbuf();
        const std::string all = text.str();
        size_t count = 0;
        for (size_t at = all.find("READ CD "); at != all.npos; at = all.find("READ CD ", at + 1))
            ++count;
        return count;
    };
    const size_t none = reads();
    const MediumInfo info = medium();
    ASSERT_EQ(info.trackCount(), 2u);
    EXPECT_EQ(info.sessions.front().tracks[0].blocks, 400u);
    const size_t once = reads();
    EXPECT_GT(once, none);
    ASSERT_TRUE(drive()->acquireExclusiveAccess().ok()); // the look before counts no more
    drive()->releaseExclusiveAccess();
    EXPECT_EQ(medium().sessions.front().tracks[1].blocks, info.sessions.front().tracks[1].blocks);
    EXPECT_EQ(reads(), once);
}

TEST_F(PhysicalTest, RunOutIsNoPartOfATrack) {
    insert("CD-R");
    file("image", noise(2048 * 400));
    run("cdrskin dev=/dev/sr0 -tao -multi -data '" + (source / "image").string() + "'");
    const MediumInfo info = medium();
    EXPECT_EQ(info.state, MediumState::Appendable);
    EXPECT_EQ(info.sessions.front().tracks.front().blocks, 400u);
    EXPECT_EQ(info.nextWritableBlock, 402u + 11400);
}
