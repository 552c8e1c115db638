// kill -9 in the middle of a burn: the medium is the old one, the new one, or openly incomplete.
#include "Fixture.hpp"

#include <csignal>
#include <sys/wait.h>

using namespace engine;

class CrashTest : public EngineTest, public ::testing::WithParamInterface<BurnState> {
  protected:
    // In a child process, which dies when it enters the state (with `pieces` reports of progress in it).
    void burnAndDie(BurnState state, int reports = 0) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            BurnJob job(openDrive());
            job.setObserver([&, left = reports](const BurnStatus& status) mutable {
                if (status.state == state && left-- == 0) ::kill(::getpid(), SIGKILL);
            });
            BurnOptions options;
            options.overwrite = true;
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
    std::string before;
    {
        // The old disc is burned by a child, so that this process has no threads when it forks.
        const pid_t child = ::fork();
        if (child == 0) ::_exit(burn(openDrive(), layout()).state == BurnState::Done ? 0 : 1);
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_EQ(status, 0);
        before = bytesOf(image());
    }
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
