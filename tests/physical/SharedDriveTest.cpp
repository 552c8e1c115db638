// A physical drive that others want as well: other programs, other threads.
#include "Fixture.hpp"
#include "physical/PhysicalDrive.hpp"

#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace engine;

// A drive that is in use when it is first seen is waited for; no virtual one takes the burns that are meant for it.
TEST_F(PhysicalTest, NoVirtualDriveInPlaceOfABusyOne) {
    setGone(first);
    ASSERT_TRUE(drives().ok()); // what was known is forgotten
    const fs::path own = first.parent_path() / "drives-of-a-busy-one";
    ::setenv("DISC_DRIVES", own.c_str(), 1);
    insert("DVD+RW");
    const int other = ::open("/dev/sr0", O_RDWR | O_EXCL);
    ASSERT_GE(other, 0);
    const auto none = drives();
    ASSERT_TRUE(none.ok());
    EXPECT_TRUE(none->empty()) << none->front()->displayName();
    EXPECT_FALSE(fs::exists(own / "drive-1"));
    ::close(other);
    for (int attempt = 0; attempt < 1000 && drives()->empty(); ++attempt)
        ::usleep(10000);
    EXPECT_EQ(drive()->identity().id, "/dev/sr0");
    EXPECT_EQ(drives()->size(), 1u);
    // With none attached there is one.
    setGone(first);
    const auto virtualOne = drives();
    ASSERT_EQ(virtualOne->size(), 1u);
    EXPECT_TRUE(virtualOne->front()->identity().isVirtual);
    EXPECT_TRUE(fs::exists(own / "drive-1"));
}

// Most virtual machines have a drive for reading. Whoever is new there has something to burn in all the same.
TEST_F(PhysicalTest, VirtualDriveBesideOneForReading) {
    setGone(first);
    ASSERT_TRUE(drives().ok());
    const fs::path own = first.parent_path() / "drives-of-a-reader";
    ::setenv("DISC_DRIVES", own.c_str(), 1);
    insert("CD-ROM", {{"canWrite", false}});
    // Also while its disc is mounted.
    const int other = ::open("/dev/sr0", O_RDONLY | O_EXCL);
    ASSERT_GE(other, 0);
    auto all = drives();
    ASSERT_EQ(all->size(), 1u);
    EXPECT_TRUE(all->front()->identity().isVirtual);
    ASSERT_EQ(physicalDrivesInUse().size(), 1u);
    EXPECT_EQ(physicalDrivesInUse().front().path, "/dev/sr0");
    fs::remove_all(own);
    ::close(other);
    for (int attempt = 0; attempt < 1000 && drives()->size() < 2; ++attempt)
        ::usleep(10000);
    fs::remove_all(own); // as if it had been free from the beginning
    all = drives();
    ASSERT_EQ(all->size(), 2u);
    EXPECT_EQ((*all)[0]->identity().id, "/dev/sr0");
    EXPECT_TRUE((*all)[0]->capabilities().writes.empty());
    EXPECT_TRUE((*all)[1]->identity().isVirtual);
    EXPECT_EQ((*all)[1]->mediumInfo()->kind, MediumKind::DVDPlusRW);
}

// What was seen a moment ago is not what is written over: another program may have had the drive in between.
TEST_F(PhysicalTest, DiscThatWasBurnedInBetweenIsNoBlankOne) {
    const auto blank = [&] { insert("DVD+RW", {{"capacity", 32768}}); };
    blank();
    file("theirs.bin", noise(300'000));
    run("xorriso -outdev /dev/sr0 -volid THEIRS -map source /");
    const Json burned = state();
    std::ostringstream bytes;
    bytes << std::ifstream(first / "data", std::ios::binary).rdbuf();
    const auto burnInBetween = [&] {
        blank();
        ASSERT_TRUE(drive()->closeTray().ok()); // what was seen is forgotten
        ASSERT_TRUE(medium().blank);
        std::ofstream(first / "data", std::ios::binary) << bytes.str();
        write(first, burned);
    };
    fs::remove(source / "theirs.bin");
    file("ours.bin", noise(300'000, 2));
    burnInBetween();
    EXPECT_DONE(burn(layout()));
    EXPECT_TRUE(extracted("theirs.bin") == noise(300'000)) << "what is burned goes behind what is there";
    EXPECT_TRUE(extracted("ours.bin") == noise(300'000, 2));
    burnInBetween();
    ASSERT_TRUE(drive()->acquireExclusiveAccess().ok());
    EXPECT_FALSE(medium().blank) << "whoever keeps the drive knows what is in it";
    drive()->releaseExclusiveAccess();
}

// Also in the moment until the library has let go of the drive.
TEST_F(PhysicalTest, WhatWasBurnedIsSeenAtOnce) {
    file("letter.txt", "Dear reader,\n");
    for (const char* kind : {"CD-R", "DVD+RW", "DVD-R"}) {
        insert(kind);
        ASSERT_TRUE(drive()->closeTray().ok());
        ASSERT_TRUE(medium().blank);
        BurnJob job(drive());
        ASSERT_TRUE(job.start(layout()).ok());
        ASSERT_EQ(nameOf(job.wait().state), "Done");
        const auto seen = drive()->mediumInfo();
        ASSERT_TRUE(seen);
        EXPECT_FALSE(seen->blank) << kind;
        EXPECT_EQ(seen->sessionCount(), 1u) << kind;
        waitUntilFree();
    }
}

TEST_F(PhysicalTest, ExclusiveAccessKeepsOtherProgramsOut) {
    insert("DVD+RW");
    const DriveRef own = drive();
    ASSERT_TRUE(own->acquireExclusiveAccess().ok());
    ASSERT_TRUE(own->acquireExclusiveAccess().ok());
    EXPECT_TRUE(own->hasExclusiveAccess());
    EXPECT_TRUE(own->isBusy());
    own->releaseExclusiveAccess();
    EXPECT_EQ(::open("/dev/sr0", O_RDWR | O_EXCL), -1);
    EXPECT_TRUE(own->mediumInfo()); // this process may go on
    own->releaseExclusiveAccess();
    EXPECT_FALSE(own->hasExclusiveAccess());
    const int other = ::open("/dev/sr0", O_RDWR | O_EXCL);
    EXPECT_GE(other, 0);
    EXPECT_TRUE(own->isBusy());
    EXPECT_EQ(own->acquireExclusiveAccess().error().code, ErrorCode::DeviceBusy);
    ::close(other);
    EXPECT_FALSE(own->isBusy());
}

TEST_F(PhysicalTest, ReservationIsCountedAndReleased) {
    insert("DVD+RW");
    const DriveRef own = drive();
    EXPECT_FALSE(own->holdsMediaReservation());
    own->acquireMediaReservation();
    own->acquireMediaReservation();
    EXPECT_TRUE(own->holdsMediaReservation());
    own->releaseMediaReservation();
    EXPECT_TRUE(own->holdsMediaReservation());
    own->releaseMediaReservation();
    EXPECT_FALSE(own->holdsMediaReservation());
}

// Another program has the recorder: the disc that was seen is still in it.
TEST_F(PhysicalTest, DiscStaysWhileAnotherProgramHasTheDrive) {
    insert("DVD+RW", {{"capacity", 32768}});
    const DriveRef own = drive();
    ASSERT_TRUE(own->closeTray().ok()); // nothing was seen
    const int other = ::open("/dev/sr0", O_RDWR | O_EXCL);
    ASSERT_GE(other, 0);
    EXPECT_TRUE(own->isBusy());
    EXPECT_EQ(own->readMedium().error().code, ErrorCode::DeviceBusy);
    EXPECT_FALSE(own->mediumInfo());
    EXPECT_TRUE(own->hasMedium()) << "that there is one, the drive tells everybody";
    ::close(other);
    ASSERT_TRUE(own->mediumInfo());

    const int another = ::open("/dev/sr0", O_RDWR | O_EXCL);
    ASSERT_GE(another, 0);
    ::usleep(1'100'000); // what was seen is no longer fresh
    EXPECT_TRUE(own->isBusy());
    ASSERT_TRUE(own->readMedium().ok()) << own->readMedium().error().message;
    EXPECT_EQ(own->mediumInfo()->kind, MediumKind::DVDPlusRW);
    EXPECT_TRUE(own->hasMedium());
    EXPECT_EQ(own->openMedium().error().code, ErrorCode::DeviceBusy);
    EXPECT_EQ(own->eject().error().code, ErrorCode::DeviceBusy);
    file("letter.txt", "Dear reader,\n");
    BurnJob burn(own);
    ASSERT_TRUE(burn.start(layout()).ok());
    EXPECT_EQ(burn.wait().error->code, ErrorCode::DeviceBusy) << burn.wait().error->message;
    EraseJob erase(own);
    ASSERT_TRUE(erase.start(EraseType::Quick).ok());
    EXPECT_EQ(erase.wait().error->code, ErrorCode::DeviceBusy);
    ::close(another);

    insert("CD-RW"); // a change that nobody saw
    ::usleep(1'100'000);
    EXPECT_EQ(own->mediumInfo()->kind, MediumKind::CDRW);
    insert("");
    const int last = ::open("/dev/sr0", O_RDWR | O_EXCL);
    ASSERT_GE(last, 0);
    EXPECT_FALSE(own->hasMedium()) << "an empty drive is empty";
    ::close(last);
}

// What is mounted nobody burns over, erases or ejects, and who tries is told where it is.
TEST_F(PhysicalTest, DiscThatIsMountedIsBusy) {
    insert("DVD+RW", {{"capacity", 32768}});
    const DriveRef own = drive();
    ASSERT_TRUE(own->closeTray().ok()); // nothing was seen
    ASSERT_TRUE(own->mediumInfo());
    change("mountedAt", "/media/My Disc");
    const std::string sentence =
        "The disc in \"TESTLAB MMC RECORDER\" is mounted at \"/media/My Disc\"; unmount "
        "it, and try again.";
    const auto isMounted = [&](const Error& error) {
        EXPECT_EQ(error.code, ErrorCode::MediaBusy) << error.message;
        EXPECT_EQ(error.message, sentence);
    };
    file("letter.txt", "Dear reader,\n");
    BurnJob burning(own);
    ASSERT_TRUE(burning.start(layout()).ok());
    isMounted(*burning.wait().error);
    EraseJob erasing(own);
    ASSERT_TRUE(erasing.start(EraseType::Complete).ok());
    isMounted(*erasing.wait().error);
    isMounted(own->acquireExclusiveAccess().error());
    isMounted(own->eject().error());
    EXPECT_TRUE(own->isBusy());
    EXPECT_TRUE(own->hasMedium());
    EXPECT_FALSE(own->isTrayOpen());
    change("mountedAt", "");
    EXPECT_DONE(burn(layout()));
}

// A process that was killed, or did not wait, leaves a drive that goes on by itself. Nobody waits for it.
TEST_F(PhysicalTest, DriveThatIsAtWorkIsBusy) {
    setGone(first);
    ASSERT_TRUE(drives().ok()); // what was known is forgotten
    insert("CD-RW", {{"busyPolls", 1'000'000'000}, {"busyTotal", 1'000'000'000}});
    const auto without = drives();
    ASSERT_TRUE(without.ok());
    for (const DriveRef& each : *without)
        EXPECT_NE(each->identity().id, "/dev/sr0") << "what it is can be seen when it is done";
    change("busyPolls", 0);
    DriveRef own;
    while (!own) { // asked again after a while
        const auto all = drives();
        for (const DriveRef& each : *all)
            if (each->identity().id == "/dev/sr0") own = each;
        ::usleep(10000);
    }
    ASSERT_TRUE(own->closeTray().ok()); // nothing was seen
    change("busyPolls", 1'000'000'000);
    const auto refused = own->acquireExclusiveAccess();
    ASSERT_FALSE(refused.ok());
    EXPECT_EQ(refused.error().code, ErrorCode::DeviceBusy);
    EXPECT_NE(refused.error().message.find("is still busy with what was begun before"), std::string::npos)
        << refused.error().message;
    EXPECT_EQ(own->readMedium().error().code, ErrorCode::DeviceBusy);
    EXPECT_TRUE(own->hasMedium());
    file("letter.txt", "Dear reader,\n");
    EXPECT_EQ(burn(layout()).error->code, ErrorCode::DeviceBusy);
    change("busyPolls", 0);
    EXPECT_DONE(burn(layout()));
}

// Asking whether a drive is busy takes it for that moment, which is in nobody's way.
TEST_F(PhysicalTest, WhoAsksIsInNobodysWay) {
    insert("DVD+RW");
    const DriveRef own = drive();
    std::atomic<bool> isOver = false;
    std::thread inside([&] {
        while (!isOver) {
            (void)own->isBusy();
            ::usleep(5000);
        }
    });
    std::vector<pid_t> outside;
    for (int count = 0; count < 2; ++count) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            ::execl("/proc/self/exe", "physical_tests", "--ask", "", nullptr);
            ::_exit(127);
        }
        outside.push_back(child);
    }
    for (const pid_t child : outside) // which had the drive for a moment, to see what it is
        while (!fs::exists(first.parent_path() / ("asked-" + std::to_string(child))))
            ::usleep(1000);
    for (int count = 0; count < 20; ++count) {
        const auto moved = count % 2 == 0 ? own->eject() : own->closeTray();
        EXPECT_TRUE(moved.ok()) << moved.error().message;
        const auto taken = own->acquireExclusiveAccess();
        EXPECT_TRUE(taken.ok()) << taken.error().message;
        own->releaseExclusiveAccess();
    }
    isOver = true;
    inside.join();
    for (const pid_t child : outside) {
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, WNOHANG), 0) << "still asking";
        ::kill(child, SIGKILL);
        EXPECT_EQ(::waitpid(child, &status, 0), child);
    }
}
