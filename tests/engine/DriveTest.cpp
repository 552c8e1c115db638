// Virtual drives: where they are, the default one, trays and exclusive access.
#include "Failure.hpp"
#include "Fixture.hpp"

#include <chrono>
#include <csignal>
#include <sys/wait.h>
#include <thread>

using namespace engine;

class DriveTest : public EngineTest {};

TEST_F(DriveTest, oneIsMadeWithABlankRewritableMediumWhenThereIsNone) {
    const auto found = drives();
    ASSERT_TRUE(found);
    ASSERT_EQ(found->size(), 1u);
    Drive& drive = *found->front();
    EXPECT_EQ(drive.displayName(), "Virtual Disc Drive 1");
    EXPECT_EQ(drive.identity().id, drivePath().string());
    EXPECT_TRUE(drive.isValid());
    EXPECT_FALSE(drive.isBusy());
    const auto medium = drive.mediumInfo();
    ASSERT_TRUE(medium);
    EXPECT_EQ(medium->kind, MediumKind::DVDPlusRW);
    EXPECT_TRUE(medium->blank);
    EXPECT_EQ(medium->blocksFree, 2295104u);
}

TEST_F(DriveTest, isTheSameObjectAtEveryCall) {
    const auto first = drives(), second = drives();
    ASSERT_TRUE(first && second);
    EXPECT_EQ(first->front(), second->front());
}

TEST_F(DriveTest, noneIsMadeWhereAFileNamedNoneSaysSo) {
    fs::create_directories(base / "drives");
    std::ofstream(base / "drives" / "none");
    const auto found = drives();
    ASSERT_TRUE(found);
    EXPECT_TRUE(found->empty());
}

TEST_F(DriveTest, aBrokenDriveIsLeftOut) {
    makeDrive();
    fs::create_directories(base / "drives" / "broken");
    std::ofstream(base / "drives" / "broken" / "drive.json") << "{";
    const auto found = drives();
    ASSERT_TRUE(found);
    EXPECT_EQ(found->size(), 1u);
}

TEST_F(DriveTest, aDriveOfALaterVersionIsLeftOutAndSaysWhy) {
    makeDrive();
    fs::create_directories(base / "drives" / "later");
    std::ofstream(base / "drives" / "later" / "drive.json") << R"({"format": 99, "vendor": "Later"})";
    const auto found = drives();
    ASSERT_TRUE(found);
    EXPECT_EQ(found->size(), 1u);
    const auto opened = guarded([&] { return VirtualDrive::open(base / "drives" / "later"); });
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().code, ErrorCode::DeviceInvalid);
    EXPECT_TRUE(opened.error().message.ends_with("its drive.json is of a later version."));
}

TEST_F(DriveTest, anUnusableDrivesFolderIsAnError) {
    std::ofstream(base / "drives") << "a file";
    const auto found = drives();
    ASSERT_FALSE(found);
    EXPECT_EQ(found.error().code, ErrorCode::DeviceAccess);
}

TEST_F(DriveTest, isInvalidForGoodWhenItsFolderWentAway) {
    const DriveRef drive = drives()->front();
    fs::rename(drivePath(), base / "elsewhere");
    EXPECT_FALSE(drive->isValid());
    fs::rename(base / "elsewhere", drivePath());
    EXPECT_FALSE(drive->isValid());
    EXPECT_NE(drives()->front(), drive);
    const auto status = burn(drive, layout());
    EXPECT_FAILED(status, DeviceInvalid,
                  "The drive \"Virtual Disc Drive 1\" is no longer there; choose another one.");
}

TEST_F(DriveTest, hasNoMediumWhileItsTrayIsOpen) {
    const auto drive = makeDrive();
    EXPECT_EQ(drive->openTray().error().code, ErrorCode::BurnNotAllowed);
    EXPECT_TRUE(drive->eject().ok());
    EXPECT_TRUE(drive->isTrayOpen());
    EXPECT_FALSE(drive->mediumInfo());
    EXPECT_TRUE(openDrive()->isTrayOpen());
    EXPECT_FAILED(burn(drive, layout()), MediaNotPresent,
                  "There is no disc in \"Virtual Disc Drive 1\"; put one in.");
    EXPECT_TRUE(drive->closeTray().ok());
    EXPECT_FALSE(drive->isTrayOpen());
    EXPECT_TRUE(drive->mediumInfo());
}

TEST_F(DriveTest, isDescribedAsItWasWhileItsTrayMoves) {
    const auto drive = makeDrive();
    const std::string description = bytesOf(drivePath() / "drive.json");
    EXPECT_TRUE(drive->eject().ok());
    EXPECT_EQ(bytesOf(drivePath() / "tray"), "open\n");
    EXPECT_EQ(driveFiles(), "drive.json lock medium.json tray ");
    EXPECT_TRUE(drive->closeTray().ok());
    EXPECT_EQ(bytesOf(drivePath() / "tray"), "closed\n");
    EXPECT_EQ(bytesOf(drivePath() / "drive.json"), description);
}

// Drives that say in their drive.json where the tray is, and a file that a power cut has emptied.
TEST_F(DriveTest, hasTheTrayThatItsDescriptionSaysUntilItMoves) {
    const auto drive = makeDrive();
    std::ofstream(drivePath() / "drive.json") << R"({"format": 1, "tray": "open"})";
    EXPECT_TRUE(drive->isTrayOpen());
    std::ofstream(drivePath() / "tray") << "";
    EXPECT_TRUE(drive->isTrayOpen());
    EXPECT_TRUE(drive->openTray().ok());
    EXPECT_EQ(bytesOf(drivePath() / "tray"), "") << "nothing moves";
    EXPECT_TRUE(drive->closeTray().ok());
    EXPECT_FALSE(drive->isTrayOpen());
    EXPECT_FALSE(openDrive()->isTrayOpen());
    EXPECT_TRUE(drive->mediumInfo());
}

TEST_F(DriveTest, keepsOthersOutAsOftenAsItWasAcquired) {
    const auto drive = makeDrive(), other = openDrive();
    EXPECT_TRUE(drive->acquireExclusiveAccess().ok());
    EXPECT_TRUE(drive->acquireExclusiveAccess().ok());
    EXPECT_EQ(other->acquireExclusiveAccess().error().code, ErrorCode::DeviceBusy);
    EXPECT_TRUE(other->isBusy());
    drive->releaseExclusiveAccess();
    EXPECT_EQ(other->acquireExclusiveAccess().error().code, ErrorCode::DeviceBusy);
    drive->releaseExclusiveAccess();
    drive->releaseExclusiveAccess();
    EXPECT_TRUE(other->acquireExclusiveAccess().ok());
}

TEST_F(DriveTest, burnsForTheProcessThatHasExclusiveAccess) {
    write("a.txt", "a");
    const auto drive = makeDrive();
    EXPECT_TRUE(drive->acquireExclusiveAccess().ok());
    EXPECT_DONE(burn(drive, layout()));
    EXPECT_TRUE(drive->hasExclusiveAccess());
}

TEST_F(DriveTest, isKeptFromOtherProcesses) {
    write("a.txt", noise(4'000'000));
    const auto drive = makeDrive();
    BurnJob job(drive);
    BurnOptions options;
    options.requestedSpeed = slowly;
    ASSERT_TRUE(job.start(layout(), options).ok());
    while (job.status().state < BurnState::TrackWrite)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    // A program of its own, with a lock as any other process would take one.
    const std::string command = "python3 -c 'import fcntl, sys; fcntl.lockf(open(sys.argv[1], \"r+\"), "
                                "fcntl.LOCK_EX | fcntl.LOCK_NB)' " +
                                (drivePath() / "lock").string() + " 2>/dev/null";
    EXPECT_NE(std::system(command.c_str()), 0);
    EXPECT_EQ(drive->eject().error().code, ErrorCode::DeviceBusy);
    job.abort();
    job.wait();
    EXPECT_EQ(std::system(command.c_str()), 0);
}

TEST_F(DriveTest, refusesASecondJob) {
    write("a.txt", noise(4'000'000));
    const auto drive = makeDrive();
    BurnJob job(drive);
    BurnOptions options;
    options.requestedSpeed = slowly;
    ASSERT_TRUE(job.start(layout(), options).ok());
    while (job.status().state < BurnState::TrackWrite)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_FAILED(burn(drive, layout()), DeviceBusy,
                  "The drive \"Virtual Disc Drive 1\" is already writing; wait until it is done.");
    EXPECT_FAILED(burn(openDrive(), layout()), DeviceBusy,
                  "The drive \"Virtual Disc Drive 1\" is in use by another program; try again later.");
    EXPECT_TRUE(drive->isBusy());
    options = {};
    job.abort();
    job.wait();
    EXPECT_FALSE(drive->isBusy());
    EXPECT_DONE(burn(drive, layout()));
}

// One process holds the reservation; it passes on when released. Two objects of one drive stand for two processes:
// the lock is of the open file, not of the process.
TEST_F(DriveTest, aReservationIsHeldByOneAtATime) {
    const auto first = makeDrive(), second = openDrive();
    EXPECT_FALSE(first->holdsMediaReservation());
    first->acquireMediaReservation();
    first->acquireMediaReservation();
    EXPECT_TRUE(first->holdsMediaReservation());
    second->acquireMediaReservation();
    EXPECT_FALSE(second->holdsMediaReservation());
    first->releaseMediaReservation();
    EXPECT_FALSE(second->holdsMediaReservation()); // counted
    first->releaseMediaReservation();
    EXPECT_FALSE(first->holdsMediaReservation());
    EXPECT_TRUE(second->holdsMediaReservation());
    first->acquireMediaReservation();
    EXPECT_FALSE(first->holdsMediaReservation());
    second->releaseMediaReservation();
    EXPECT_TRUE(first->holdsMediaReservation());
    first->releaseMediaReservation();
    first->releaseMediaReservation();    // once too often: nothing
    EXPECT_DONE(burn(second, layout())); // a wish, not a lock
}

TEST_F(DriveTest, readsOnlyAMediumThatIsThere) {
    const auto drive = makeDrive();
    ASSERT_TRUE(drive->eject().ok());
    const auto none = drive->openMedium();
    ASSERT_FALSE(none.ok());
    EXPECT_EQ(none.error().code, ErrorCode::MediaNotPresent);
    ASSERT_TRUE(drive->closeTray().ok());
    write("a.bin", noise(100'000));
    EXPECT_DONE(burn(drive, layout()));
    auto reader = drive->openMedium();
    ASSERT_TRUE(reader.ok());
    TrackInfo track = drive->mediumInfo()->sessions[0].tracks[0];
    std::string all(static_cast<size_t>(track.blocks * 2048 + 4096), '\0');
    const auto count = (*reader)->read(track, 0, std::as_writable_bytes(std::span(all)));
    ASSERT_TRUE(count.ok());
    EXPECT_EQ(*count, track.blocks * 2048); // no further than the track
    EXPECT_TRUE(all.substr(0, *count) == bytesOf(image()));
    EXPECT_EQ(
        *(*reader)->read(track, static_cast<int64_t>(track.blocks), std::as_writable_bytes(std::span(all))),
        0u);
    EXPECT_TRUE((*(*reader)->cdText()).empty());
    track.file = "medium.gone.iso";
    EXPECT_EQ((*reader)->read(track, 0, std::as_writable_bytes(std::span(all))).error().code,
              ErrorCode::MediaInvalid);
}

// Neither who asks nor who opens the drive is somebody at work, to neither side.
TEST_F(DriveTest, lookingWhetherADriveIsBusyDisturbsNobody) {
    const auto drive = makeDrive();
    std::vector<pid_t> lookers;
    for (int i = 0; i < 2; ++i) {
        lookers.push_back(::fork());
        if (lookers.back() == 0) {
            for (;;)
                (void)openDrive()->isBusy();
        }
    }
    int busy = 0, refused = 0;
    for (int i = 0; i < 2000; ++i)
        busy += drive->isBusy() ? 1 : 0;
    for (int i = 0; i < 500; ++i) {
        refused += drive->acquireExclusiveAccess().ok() ? 0 : 1;
        drive->releaseExclusiveAccess();
    }
    for (const pid_t looker : lookers) {
        ::kill(looker, SIGKILL);
        ::waitpid(looker, nullptr, 0);
    }
    EXPECT_EQ(busy, 0);
    EXPECT_EQ(refused, 0);
}
