// kill -9 in the middle of a burn: the medium is the old one, the new one, or openly incomplete.
#include "Fixture.hpp"

#include <csignal>
#include <sys/wait.h>

using namespace engine;

class CrashTest : public EngineTest, public ::testing::WithParamInterface<BurnState> {
  protected:
    static BurnOptions overwriting() {
        BurnOptions options;
        options.overwrite = true;
        return options;
    }
    static BurnOptions open() {
        BurnOptions options;
        options.appendable = true;
        return options;
    }
    // By a child, so that this process has no threads when it forks.
    void burnFirst(BurnOptions options) {
        const pid_t child = ::fork();
        if (child == 0) ::_exit(burn(openDrive(), layout(), options).state == BurnState::Done ? 0 : 1);
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_EQ(status, 0);
    }
    bool hasFirstSession(const MediumInfo& medium) {
        const uint64_t start = medium.sessions[0].tracks[0].startBlock;
        return std::system(("isoinfo -R -T " + std::to_string(start) + " -i '" + image().string() +
                            "' -x /old.bin | cmp -s - '" + (source / "old.bin").string() + "'")
                               .c_str()) == 0;
    }
    // In a child process, which dies when it enters the state (with `pieces` reports of progress in it).
    void burnAndDie(BurnState state, int reports = 0, BurnOptions options = overwriting()) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            BurnJob job(openDrive());
            job.setObserver([&, left = reports](const BurnStatus& status) mutable {
                if (status.state == state && left-- == 0) ::kill(::getpid(), SIGKILL);
            });
            if (!job.start(layout(), options)) ::_exit(3);
            job.wait();
            ::_exit(4);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status)) << WEXITSTATUS(status);
    }
};

INSTANTIATE_TEST_SUITE_P(EveryState, CrashTest,
                         ::testing::Values(BurnState::Preparing, BurnState::TrackOpen, BurnState::TrackWrite,
                                           BurnState::TrackClose, BurnState::Finishing, BurnState::Verifying,
                                           BurnState::Done),
                         [](const auto& each) { return std::string(nameOf(each.param)); });

TEST_P(CrashTest, aRewritableMediumIsTheOldOneOrTheNewOne) {
    makeDrive();
    write("old.bin", noise(500'000));
    burnFirst({});
    const std::string before = bytesOf(image());
    write("new.bin", noise(6'000'000, 5));
    burnAndDie(GetParam());
    const auto drive = openDrive();
    const auto medium = drive->mediumInfo();
    ASSERT_TRUE(medium);
    EXPECT_EQ(medium->state, MediumState::Complete);
    EXPECT_EQ(bytesOf(image()) == before, GetParam() != BurnState::Done);
    EXPECT_EQ(fs::file_size(image()), medium->blocksUsed * blockSize);
    EXPECT_EQ(driveFiles(), "drive.json lock medium.iso medium.json ");
    EXPECT_FALSE(drive->isBusy());
    BurnOptions options;
    options.overwrite = true;
    EXPECT_DONE(burn(drive, layout(), options));
}

TEST_P(CrashTest, aWriteOnceMediumIsBlankIncompleteOrDone) {
    makeDrive(MediumKind::DVDPlusR);
    write("new.bin", noise(6'000'000, 5));
    burnAndDie(GetParam());
    const auto medium = openDrive()->mediumInfo();
    ASSERT_TRUE(medium);
    const MediumState expected = GetParam() <= BurnState::TrackOpen ? MediumState::Blank
                                 : GetParam() == BurnState::Done    ? MediumState::Complete
                                                                    : MediumState::Incomplete;
    EXPECT_EQ(medium->state, expected);
    if (expected == MediumState::Blank) {
        EXPECT_EQ(driveFiles(), "drive.json lock medium.json ");
    }
}

TEST_P(CrashTest, anAppendedSessionOfASequentialMediumLeavesTheFirstReadable) {
    for (const MediumKind kind : {MediumKind::CDR, MediumKind::DVDRW}) {
        fs::remove_all(drivePath());
        makeDrive(kind);
        write("old.bin", noise(500'000));
        burnFirst(open());
        const std::string before = bytesOf(image());
        write("new.bin", noise(6'000'000, 5));
        burnAndDie(GetParam(), 0, open());
        const auto medium = openDrive()->mediumInfo();
        ASSERT_TRUE(medium);
        const MediumState expected = GetParam() > BurnState::TrackOpen && GetParam() < BurnState::Done
                                         ? MediumState::Incomplete
                                         : MediumState::Appendable;
        EXPECT_EQ(medium->state, expected);
        EXPECT_TRUE(bytesOf(image()).starts_with(before));
        EXPECT_TRUE(hasFirstSession(*medium));
        if (expected == MediumState::Incomplete) {
            ASSERT_EQ(medium->sessionCount(), 2u);
            EXPECT_TRUE(medium->sessions[0].isClosed);
            EXPECT_FALSE(medium->sessions[1].isClosed);
            EXPECT_FALSE(medium->sessions[1].tracks[0].isComplete);
            EXPECT_EQ(burn(openDrive(), layout(), open()).error->code, ErrorCode::MediaNotBlank);
        } else {
            EXPECT_DONE(burn(openDrive(), layout(), open()));
        }
        const auto overwritten = burn(openDrive(), layout(), overwriting());
        EXPECT_EQ(nameOf(overwritten.state), kind == MediumKind::CDR ? "Failed" : "Done");
    }
}

TEST_P(CrashTest, anAppendedSessionOfAnOverwritableMediumIsThereOrNot) {
    makeDrive(MediumKind::DVDPlusRW);
    write("old.bin", noise(500'000));
    burnFirst(open());
    const std::string before = bytesOf(image());
    write("new.bin", noise(6'000'000, 5));
    burnAndDie(GetParam(), 0, open());
    const auto medium = openDrive()->mediumInfo();
    ASSERT_TRUE(medium);
    EXPECT_EQ(medium->state, MediumState::Appendable);
    EXPECT_EQ(medium->sessionCount(), GetParam() == BurnState::Done ? 2u : 1u);
    EXPECT_TRUE(hasFirstSession(*medium));
    if (GetParam() != BurnState::Done) {
        EXPECT_TRUE(bytesOf(image()) == before);
    }
    EXPECT_DONE(burn(openDrive(), layout(), open()));
}

TEST_F(CrashTest, exitingWithARunningBurnEndsItCleanly) {
    makeDrive();
    write("a.bin", noise(6'000'000));
    const pid_t child = ::fork();
    if (child == 0) {
        BurnOptions options;
        options.requestedSpeed = slowly;
        auto* job = new BurnJob(openDrive());
        if (!job->start(layout(), options)) ::_exit(3);
        while (job->status().state < BurnState::TrackWrite)
            ::usleep(1000);
        std::exit(0); // with exit handlers, unlike a crash
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(driveFiles(), "drive.json lock medium.json ");
}
