// A physical drive as a drive: who it is, what it can do, its tray.
#include "Fixture.hpp"
#include "VirtualDrive.hpp"
#include "physical/CapabilitiesPage.hpp"

#include <unistd.h>

using namespace engine;

TEST_F(PhysicalTest, DriveIsFoundAndDescribed) {
    insert("CD-RW");
    const auto all = drives();
    ASSERT_TRUE(all.ok());
    ASSERT_EQ(all->size(), 1u);
    const DriveIdentity& who = all->front()->identity();
    EXPECT_EQ(who.id, "/dev/sr0");
    EXPECT_EQ(who.vendor, "TESTLAB");
    EXPECT_EQ(who.product, "MMC RECORDER");
    EXPECT_EQ(who.firmwareRevision, "1.00");
    EXPECT_FALSE(who.isVirtual);
    EXPECT_EQ(all->front()->displayName(), "TESTLAB MMC RECORDER");
    const DriveCapabilities& can = all->front()->capabilities();
    for (const MediumKind kind : {MediumKind::CDR, MediumKind::CDRW, MediumKind::DVDPlusRW, MediumKind::BDR})
        EXPECT_TRUE(can.canWrite(kind)) << factsOf(kind).name;
    EXPECT_FALSE(can.canWrite(MediumKind::CDROM));
    EXPECT_TRUE(can.canTestWriteCD && can.writesCDText && can.writesISRC);
    EXPECT_TRUE(can.canTestWriteDVD) << "DVD-R and -RW can be rehearsed";
    EXPECT_FALSE(can.canTestWriteBD);
    EXPECT_EQ(can.writeBufferBytes, 2048u * 1024);
}

TEST_F(PhysicalTest, DriveThatKnowsNoTestsSaysSo) {
    insert("CD-RW", {{"canTestWrite", false}});
    const DriveCapabilities& can = drive()->capabilities();
    EXPECT_FALSE(can.canTestWriteCD || can.canTestWriteDVD || can.canTestWriteBD);
}

TEST_F(PhysicalTest, SameObjectAtEveryCall) {
    insert("CD-RW");
    EXPECT_EQ(drive(), drive());
}

TEST_F(PhysicalTest, ListingAgainAsksNoDrive) {
    const fs::path said = first.parent_path() / "commands";
    ::setenv("DISC_RECORDER_TRACE", said.c_str(), 1); // before the recorder's first command
    insert("CD-RW");
    ASSERT_NE(drive(), nullptr);
    const auto before = fs::file_size(said);
    EXPECT_GT(before, 0u);
    for (int count = 0; count < 20; ++count)
        ASSERT_TRUE(drives().ok());
    EXPECT_EQ(fs::file_size(said), before);
    ASSERT_TRUE(drive()->mediumInfo());
    EXPECT_GT(fs::file_size(said), before) << "each command is written down";
}

TEST_F(PhysicalTest, DriveThatGoesAwayStaysInvalid) {
    insert("CD-RW");
    const DriveRef gone = drive();
    setGone(first);
    EXPECT_FALSE(gone->isValid());
    insert("CD-RW");
    EXPECT_FALSE(gone->isValid());
    EXPECT_EQ(gone->readMedium().error().code, ErrorCode::DeviceInvalid);
    EXPECT_NE(drive(), gone); // whose object is still there
    EXPECT_EQ(drive()->identity().id, "/dev/sr0");
    EXPECT_TRUE(drive()->isValid() && drive()->mediumInfo());
}

// Unplugged and another one plugged in, between two looks.
TEST_F(PhysicalTest, AnotherDriveAtItsPlaceIsAnotherOne) {
    insert("CD-RW");
    const DriveRef before = drive();
    ASSERT_TRUE(before->mediumInfo());
    insert("DVD+RW", {{"attachment", 1}, {"product", "OTHER"}});
    EXPECT_FALSE(before->isValid());
    EXPECT_EQ(before->readMedium().error().code, ErrorCode::DeviceInvalid);
    EXPECT_NE(drive(), before);
    EXPECT_EQ(drive()->identity().product, "OTHER");
    EXPECT_EQ(drive()->mediumInfo()->kind, MediumKind::DVDPlusRW);
}

TEST_F(PhysicalTest, TwoDrives) {
    insert("CD-RW");
    insert("DVD+RW", {{"product", "OTHER"}}, second);
    const auto all = drives();
    ASSERT_EQ(all->size(), 2u);
    EXPECT_EQ((*all)[1]->identity().id, "/dev/sr1");
    EXPECT_EQ((*all)[0]->mediumInfo()->kind, MediumKind::CDRW);
    EXPECT_EQ((*all)[1]->mediumInfo()->kind, MediumKind::DVDPlusRW);
}

// A program's first drive is the recorder, wherever the folder of the virtual ones lies.
TEST_F(PhysicalTest, ComeBeforeVirtualOnesWhosePathsSortFirst) {
    insert("CD-RW");
    insert("DVD+RW", {}, second);
    std::string own = "/dev/shm/disc-test-XXXXXX"; // in front of /dev/sr0
    ASSERT_NE(::mkdtemp(own.data()), nullptr);
    ::setenv("DISC_DRIVES", own.c_str(), 1);
    for (const char* name : {"b", "a"})
        EXPECT_TRUE(makeVirtualDrive(own + '/' + name, {}).ok());
    const auto all = drives();
    fs::remove_all(own);
    std::vector<std::string> ids;
    for (const DriveRef& each : *all)
        ids.push_back(each->identity().id);
    EXPECT_EQ(ids, (std::vector<std::string>{"/dev/sr0", "/dev/sr1", own + "/a", own + "/b"}));
}

TEST_F(PhysicalTest, NoneWhereNotWanted) {
    insert("CD-RW");
    for (const char* said : {"0", ""}) { // whoever names his drives means only those
        ::setenv("DISC_PHYSICAL", said, 1);
        const auto all = drives();
        ASSERT_EQ(all->size(), 1u);
        EXPECT_TRUE(all->front()->identity().isVirtual);
    }
}

TEST_F(PhysicalTest, NoPseudoDrive) {
    setGone(first);
    const auto all = drives();
    ASSERT_FALSE(all->empty());
    for (const DriveRef& each : *all)
        EXPECT_TRUE(each->identity().isVirtual);
}

TEST_F(PhysicalTest, TrayOpensAndCloses) {
    insert("CD-RW");
    const DriveRef own = drive();
    EXPECT_FALSE(own->isTrayOpen());
    EXPECT_EQ(own->openTray().error().code, ErrorCode::BurnNotAllowed);
    EXPECT_TRUE(own->eject().ok());
    EXPECT_TRUE(own->isTrayOpen());
    EXPECT_FALSE(own->mediumInfo());
    EXPECT_TRUE(own->closeTray().ok());
    EXPECT_FALSE(own->isTrayOpen());
    EXPECT_TRUE(own->mediumInfo());
}

TEST_F(PhysicalTest, MechanismIsTheDrivesOwn) {
    insert("CD-RW", {{"loadingMechanism", 0}});
    const DriveRef slot = drive();
    EXPECT_TRUE(slot->loadingMechanism().canEject);
    EXPECT_FALSE(slot->loadingMechanism().canOpen || slot->loadingMechanism().canInject);
    EXPECT_EQ(slot->openTray().error().code, ErrorCode::FunctionNotSupported);
    EXPECT_EQ(slot->closeTray().error().code, ErrorCode::FunctionNotSupported);
    EXPECT_TRUE(slot->mediumInfo());
    EXPECT_TRUE(slot->eject().ok());
    EXPECT_FALSE(slot->mediumInfo());
}

// A drive that is written to still lets go of it: whoever waited for the end of the burn has his tray.
TEST_F(PhysicalTest, TrayWaitsForABurnThatIsOver) {
    file("noise.bin", noise(3'000'000));
    bool wasBusy = false;
    for (int attempt = 0; attempt < 5 && !wasBusy; ++attempt) {
        insert("DVD+RW", {{"faults", {{"slowWrites", 1000}}}});
        ASSERT_TRUE(drive()->closeTray().ok());
        const DriveRef own = drive();
        BurnJob job(own);
        ASSERT_TRUE(job.start(layout()).ok());
        while (state().value("writes", 0) == 0 && !job.status().isFinal())
            ::usleep(1000);
        EXPECT_EQ(own->eject().error().code, ErrorCode::DeviceBusy) << "in the middle of a burn";
        job.abort();
        EXPECT_EQ(job.wait().error->code, ErrorCode::UserCanceled);
        wasBusy = own->isBusy(); // the library is still at its last block
        const auto ejected = own->eject();
        EXPECT_TRUE(ejected.ok()) << ejected.error().message;
        EXPECT_TRUE(own->isTrayOpen());
        change("faults", Json::object());
    }
    EXPECT_TRUE(wasBusy);
}

TEST(PhysicalCapabilities, PageOfModeSense) {
    std::vector<uint8_t> answer(8 + 32);
    EXPECT_FALSE(capabilitiesIn(answer)) << "another page";
    answer[8] = 0x2A;
    answer[9] = 30;
    answer[8 + 6] = 1 << 5 | 8;
    answer[8 + 28] = 0x10;
    answer[8 + 29] = 0x80;
    const auto page = capabilitiesIn(answer);
    ASSERT_TRUE(page);
    EXPECT_TRUE(page->loading.canEject && page->loading.canOpen && page->loading.canInject);
    EXPECT_EQ(page->writeSpeed, 4224);
    answer[9] = 20; // of an older drive: the speed stands before
    answer[8 + 20] = 0x01;
    EXPECT_EQ(capabilitiesIn(answer)->writeSpeed, 256);
    answer[7] = 8; // a descriptor of blocks that nobody asked for
    EXPECT_FALSE(capabilitiesIn(answer));
    answer.insert(answer.begin() + 8, 8, 0);
    EXPECT_EQ(capabilitiesIn(answer)->writeSpeed, 256);
    for (size_t size = 0; size < 8 + 8 + 7; ++size)
        EXPECT_FALSE(capabilitiesIn(std::span(answer).first(size))) << size;
}

// A drive that doesn't know yet whether there is a disc in it, or can't be asked, has none to be named.
TEST_F(PhysicalTest, TrayOfADriveThatCanNotSay) {
    insert("");
    const DriveRef own = drive();
    insert("CD-RW", {{"busyPolls", 1'000'000'000}, {"busyTotal", 1'000'000'000}});
    const auto notReady = own->openTray();
    EXPECT_EQ(notReady.error().code, ErrorCode::DeviceNotReady) << notReady.error().message;
    insert("", {{"forbidden", true}});
    const auto forbidden = own->openTray();
    EXPECT_EQ(forbidden.error().code, ErrorCode::DeviceAccess) << forbidden.error().message;
    insert("CD-RW");
    EXPECT_EQ(own->openTray().error().code, ErrorCode::BurnNotAllowed);
}

TEST_F(PhysicalTest, EmptyDrive) {
    insert("");
    const DriveRef own = drive();
    const auto read = own->readMedium();
    ASSERT_TRUE(read.ok()) << read.error().message;
    EXPECT_FALSE(*read);
    EXPECT_TRUE(own->openTray().ok());
    EXPECT_TRUE(own->isTrayOpen());
}
