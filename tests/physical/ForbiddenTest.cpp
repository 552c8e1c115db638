// A drive that this person may not open.
#include "Fixture.hpp"
#include "physical/PhysicalDrive.hpp"

using namespace engine;

class PhysicalForbidden : public PhysicalTest {
  protected:
    void SetUp() override {
        setGone(first);
        ASSERT_TRUE(drives().ok()); // what was known is forgotten
        ::setenv("DISC_DRIVES", own.c_str(), 1);
    }
    static void isListed() {
        const auto inUse = physicalDrivesInUse();
        ASSERT_EQ(inUse.size(), 1u);
        EXPECT_EQ(inUse.front().path, "/dev/sr0");
        EXPECT_EQ(inUse.front().problem.code, ErrorCode::DeviceAccess);
        EXPECT_EQ(
            inUse.front().problem.message,
            "You may not use the drive \"/dev/sr0\"; join the group that its device belongs to, and log in "
            "again.");
    }

    const fs::path own = first.parent_path() / "drives-of-a-forbidden-one";
};

TEST_F(PhysicalForbidden, NoVirtualDriveInPlaceOfARecorder) {
    insert("DVD+RW", {{"forbidden", true}});
    const auto none = drives();
    ASSERT_TRUE(none.ok());
    EXPECT_TRUE(none->empty());
    EXPECT_FALSE(fs::exists(own / "drive-1"));
    isListed();
    change("forbidden", false);
    for (int attempt = 0; attempt < 1000 && drives()->empty(); ++attempt)
        ::usleep(10000);
    EXPECT_EQ(drive()->identity().id, "/dev/sr0");
    EXPECT_TRUE(physicalDrivesInUse().empty());
}

// What it can do, the kernel tells everybody.
TEST_F(PhysicalForbidden, VirtualDriveBesideOneForReading) {
    insert("CD-ROM", {{"canWrite", false}, {"forbidden", true}});
    const auto all = drives();
    ASSERT_TRUE(all.ok());
    ASSERT_EQ(all->size(), 1u);
    EXPECT_TRUE(all->front()->identity().isVirtual);
    isListed();
}
