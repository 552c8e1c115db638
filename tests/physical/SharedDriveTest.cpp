// A physical drive that others want as well: other programs, other threads.
#include "Fixture.hpp"

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
