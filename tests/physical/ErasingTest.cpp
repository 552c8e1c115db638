// What is asked of a drive while it erases, which may take half an hour: nobody waits for that.
#include "Fixture.hpp"

#include <unistd.h>

using namespace engine;

class PhysicalErasing : public PhysicalTest {
  protected:
    void SetUp() override {
        insert("CD-RW");
        own = drive();
        ASSERT_TRUE(own->closeTray().ok()); // what was seen before is forgotten
        file("letter.txt", "Dear reader,\n");
        EXPECT_DONE(burn(layout()));
        change("faults", {{"busyFor", 1'000'000'000}});
    }
    void waitUntilItErases() const {
        while (state().value("busyPolls", 0) == 0)
            ::usleep(1000);
    }
    void letItEnd() { change("busyPolls", 0); }
    void isBusy(const Result<void>& asked) const {
        ASSERT_FALSE(asked.ok());
        EXPECT_EQ(asked.error().code, ErrorCode::DeviceBusy) << asked.error().message;
    }

    DriveRef own;
};

TEST_F(PhysicalErasing, TrayBurnAndEraseAreRefusedAtOnce) {
    EraseJob job(own);
    ASSERT_TRUE(job.start(EraseType::Quick).ok());
    waitUntilItErases();
    isBusy(own->eject());
    isBusy(own->closeTray());
    BurnJob burning(own);
    ASSERT_TRUE(burning.start(layout()).ok());
    EXPECT_EQ(burning.wait().error->code, ErrorCode::DeviceBusy) << burning.wait().error->message;
    EraseJob again(own);
    ASSERT_TRUE(again.start(EraseType::Complete).ok());
    EXPECT_EQ(again.wait().error->code, ErrorCode::DeviceBusy) << again.wait().error->message;
    EXPECT_TRUE(own->isBusy());
    EXPECT_EQ(nameOf(job.status().state), "Erasing");
    letItEnd();
    EXPECT_EQ(nameOf(job.wait().state), "Done");
    EXPECT_TRUE(medium().blank);
}

// The drive is this program's already, and whoever keeps it for longer keeps it.
TEST_F(PhysicalErasing, AccessIsCountedAtOnce) {
    EraseJob job(own);
    ASSERT_TRUE(job.start(EraseType::Quick).ok());
    waitUntilItErases();
    EXPECT_TRUE(own->acquireExclusiveAccess().ok());
    EXPECT_TRUE(own->acquireExclusiveAccess().ok());
    own->releaseExclusiveAccess();
    EXPECT_EQ(nameOf(job.status().state), "Erasing");
    letItEnd();
    EXPECT_EQ(nameOf(job.wait().state), "Done");
    EXPECT_TRUE(own->hasExclusiveAccess());
    EXPECT_EQ(::open("/dev/sr0", O_RDWR | O_EXCL), -1);
    own->releaseExclusiveAccess();
    const int other = ::open("/dev/sr0", O_RDWR | O_EXCL);
    EXPECT_GE(other, 0);
    ::close(other);
}

TEST_F(PhysicalErasing, AnEraseThatABurnBeginsWithIsNotWaitedForEither) {
    BurnOptions options;
    options.overwrite = true;
    BurnJob job(own);
    ASSERT_TRUE(job.start(layout("NEW"), options).ok());
    waitUntilItErases();
    isBusy(own->eject());
    EXPECT_TRUE(own->acquireExclusiveAccess().ok());
    own->releaseExclusiveAccess();
    BurnJob burning(own);
    ASSERT_TRUE(burning.start(layout()).ok());
    EXPECT_EQ(burning.wait().error->code, ErrorCode::DeviceBusy) << burning.wait().error->message;
    change("faults", Json::object());
    letItEnd();
    EXPECT_DONE(job.wait());
    waitUntilFree();
}
