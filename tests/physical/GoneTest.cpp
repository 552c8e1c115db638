// A recorder that is unplugged while it works by itself: what was going on fails, the process lives, and the drive is
// no longer in the list.
#include "Fixture.hpp"
#include "physical/PhysicalDrive.hpp"

using namespace engine;

class PhysicalGone : public PhysicalTest {
  protected:
    void losesItWhenItIsBusy() { change("faults", {{"goneWhileBusy", true}}); }

    static void isForLackOfIt(const std::optional<Error>& error, const char* what) {
        ASSERT_TRUE(error.has_value());
        EXPECT_EQ(error->code, ErrorCode::DeviceInvalid) << error->message << error->info;
        EXPECT_NE(error->message.find(what), std::string::npos) << error->message;
    }
    // The library may still be letting go of what was there before; that is no reason to wait longer than it does.
    static bool comesBack() {
        for (int attempt = 0; attempt < 1000; ++attempt) {
            if (drive()->identity().id == "/dev/sr0") return true;
            ::usleep(10000);
        }
        return false;
    }
    // Plugged in again it is another drive, which takes the next burn.
    void isGoneAndComesAgain(const DriveRef& own, const char* kind) {
        EXPECT_TRUE(state()["gone"]);
        EXPECT_FALSE(own->isValid() || own->mediumInfo());
        const auto rest = drives();
        ASSERT_TRUE(rest.ok());
        for (const DriveRef& each : *rest)
            EXPECT_NE(each->identity().id, "/dev/sr0");
        insert(kind);
        fs::remove_all(source);
        file("letter.txt", "Dear reader,\n");
        EXPECT_NE(drive(), own);
        EXPECT_TRUE(comesBack());
        EXPECT_DONE(burn(layout()));
        EXPECT_EQ(extracted("letter.txt"), "Dear reader,\n");
    }
};

TEST_F(PhysicalGone, WhileItBlanks) {
    insert("CD-RW");
    file("noise.bin", noise(700'000));
    EXPECT_DONE(burn(layout()));
    const DriveRef own = drive();
    losesItWhenItIsBusy();
    EraseJob job(own);
    ASSERT_TRUE(job.start(EraseType::Quick).ok());
    isForLackOfIt(job.wait().error, "went away while it erased");
    isGoneAndComesAgain(own, "CD-RW");
}

// A burn over what is there blanks it first.
TEST_F(PhysicalGone, WhileItBlanksForABurn) {
    insert("CD-RW");
    file("noise.bin", noise(700'000));
    EXPECT_DONE(burn(layout()));
    const DriveRef own = drive();
    losesItWhenItIsBusy();
    BurnOptions options;
    options.overwrite = true;
    isForLackOfIt(burn(layout(), options).error, "went away while it wrote");
    isGoneAndComesAgain(own, "CD-RW");
}

TEST_F(PhysicalGone, WhileItFormats) {
    for (const char* kind : {"DVD-RAM", "BD-RE"}) {
        insert(kind);
        const DriveRef own = drive();
        losesItWhenItIsBusy();
        file("noise.bin", noise(700'000));
        isForLackOfIt(burn(layout()).error, "went away while it wrote");
        isGoneAndComesAgain(own, kind);
        ASSERT_TRUE(drive()->closeTray().ok()); // what was seen is forgotten
    }
}

TEST_F(PhysicalGone, WhileItCloses) {
    for (const char* kind : {"CD-R", "DVD-R", "DVD+R", "BD-R"}) {
        SCOPED_TRACE(kind);
        insert(kind);
        const DriveRef own = drive();
        losesItWhenItIsBusy();
        file("noise.bin", noise(700'000));
        BurnOptions options;
        options.strategies = {Strategy::CDTrackAtOnce, Strategy::DVDAtOnce, Strategy::BDAtOnce};
        isForLackOfIt(burn(layout(), options).error, "went away while it wrote");
        isGoneAndComesAgain(own, kind);
        ASSERT_TRUE(drive()->closeTray().ok()); // what was seen is forgotten
    }
}

// Unplugged and plugged in again while this program still has it: busy as long as that lasts, there as soon as it ends.
TEST_F(PhysicalGone, ComesBackAsSoonAsItIsLetGo) {
    insert("DVD+RW");
    const DriveRef own = drive();
    ASSERT_TRUE(own->acquireExclusiveAccess().ok());
    setGone(first);
    ASSERT_TRUE(drives().ok());
    EXPECT_FALSE(own->isValid());
    insert("DVD+RW");
    const auto meanwhile = drives();
    ASSERT_TRUE(meanwhile.ok());
    for (const DriveRef& each : *meanwhile)
        EXPECT_TRUE(each->identity().isVirtual);
    ASSERT_EQ(physicalDrivesInUse().size(), 1u);
    EXPECT_EQ(physicalDrivesInUse().front().problem.code, ErrorCode::DeviceBusy);
    own->releaseExclusiveAccess();
    EXPECT_EQ(drive()->identity().id, "/dev/sr0");
    EXPECT_TRUE(physicalDrivesInUse().empty());
}
