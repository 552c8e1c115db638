// The ejecting after a burn, when another program has the drive just then.
#include "BurnProcess.hpp"
#include "VirtualDrive.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using namespace discrecording;
using engine::ErrorCode;

constexpr std::chrono::minutes longEnough{5}; // the test's limit comes first

class Eject : public ::testing::Test {
  protected:
    Eject() {
        std::string pattern = (fs::temp_directory_path() / "eject-test-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) std::abort();
        base = pattern;
        fs::create_directories(base / "source");
        std::ofstream(base / "source" / "letter.txt") << "Dear reader,\n";
        ::setenv("DISC_DRIVES", (base / "drives").c_str(), 1);
        engine::VirtualDriveSetup setup;
        setup.medium = engine::MediumKind::DVDPlusRW;
        EXPECT_TRUE(engine::makeVirtualDrive(folder(), setup).ok());
        drive = engine::VirtualDrive::open(folder());
        engine::DataTrack track;
        track.root = engine::Content::real((base / "source").string(), "EJECT");
        plan.layout = engine::Layout::ofData(std::move(track));
        plan.ejectPatience = longEnough;
    }
    ~Eject() override {
        std::error_code ignored;
        fs::remove_all(base, ignored);
    }
    std::string folder() const { return (base / "drives" / "drive-1").string(); }

    fs::path base;
    std::shared_ptr<engine::VirtualDrive> drive;
    BurnPlan plan;
};

// Two objects of one process keep each other out of a drive as two processes do.
TEST_F(Eject, WaitsForWhoeverHasTheDrive) {
    const auto other = engine::VirtualDrive::open(folder());
    ASSERT_TRUE(other->acquireExclusiveAccess().ok());
    BurnProcess burn(drive, plan, engine::makeError(ErrorCode::BadLayout));
    // It is over, and is not told so as long as the disc is inside.
    for (int look = 0; look < 20; ++look) {
        EXPECT_FALSE(burn.status().isFinal());
        EXPECT_FALSE(drive->isTrayOpen());
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    other->releaseExclusiveAccess();
    burn.wait();
    EXPECT_EQ(burn.status().error->code, ErrorCode::BadLayout);
    EXPECT_TRUE(drive->isTrayOpen());
}

// The burn went as it went.
TEST_F(Eject, GivesUpInTheEnd) {
    plan.ejectPatience = std::chrono::milliseconds(0);
    const auto other = engine::VirtualDrive::open(folder());
    ASSERT_TRUE(other->acquireExclusiveAccess().ok());
    BurnProcess burn(drive, plan, engine::makeError(ErrorCode::BadLayout));
    burn.wait();
    EXPECT_EQ(burn.status().error->code, ErrorCode::BadLayout);
    EXPECT_FALSE(drive->isTrayOpen());
    other->releaseExclusiveAccess();
    EXPECT_FALSE(drive->isTrayOpen());
}

} // namespace
