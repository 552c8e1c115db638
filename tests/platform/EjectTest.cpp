// The ejecting after a burn, when another program has the drive just then.
#include "../engine/NoThreads.hpp"
#include "BurnProcess.hpp"
#include "BurnTarget.hpp"
#include "VirtualDrive.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

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

/// The virtual drive, at which somebody else looks whenever it is to be ejected, the first times.
class LookedAtDrive final : public engine::Drive {
  public:
    LookedAtDrive(const std::string& folder, int looks, std::vector<std::string>& notes)
        : drive_(engine::VirtualDrive::open(folder)), other_(engine::VirtualDrive::open(folder)),
          looks_(looks), notes_(notes) {}
    engine::Result<void> eject() override {
        const bool isLookedAt = looks_-- > 0;
        if (isLookedAt && !other_->acquireExclusiveAccess().ok())
            return engine::makeError(ErrorCode::DeviceAccess);
        auto ejected = drive_->eject();
        if (isLookedAt) other_->releaseExclusiveAccess();
        notes_.push_back(ejected.ok()                                    ? "ejected"
                         : ejected.error().code == ErrorCode::DeviceBusy ? "busy"
                                                                         : "failed");
        return ejected;
    }
    const engine::DriveIdentity& identity() const noexcept override { return drive_->identity(); }
    const engine::DriveCapabilities& capabilities() const noexcept override { return drive_->capabilities(); }
    const engine::LoadingMechanism& loadingMechanism() const noexcept override {
        return drive_->loadingMechanism();
    }
    bool isValid() const override { return drive_->isValid(); }
    engine::Result<std::optional<engine::MediumInfo>> readMedium() const override {
        return drive_->readMedium();
    }
    engine::Result<std::unique_ptr<engine::MediumReader>> openMedium() override {
        return drive_->openMedium();
    }
    bool isTrayOpen() const override { return drive_->isTrayOpen(); }
    engine::Result<void> openTray() override { return drive_->openTray(); }
    engine::Result<void> closeTray() override { return drive_->closeTray(); }
    bool isBusy() const override { return drive_->isBusy(); }
    engine::Result<void> acquireExclusiveAccess() override { return drive_->acquireExclusiveAccess(); }
    void releaseExclusiveAccess() override { drive_->releaseExclusiveAccess(); }
    bool hasExclusiveAccess() const override { return drive_->hasExclusiveAccess(); }
    void acquireMediaReservation() override { drive_->acquireMediaReservation(); }
    void releaseMediaReservation() override { drive_->releaseMediaReservation(); }
    bool holdsMediaReservation() override { return drive_->holdsMediaReservation(); }
    engine::Result<std::unique_ptr<engine::BurnTarget>> beginBurn() override { return drive_->beginBurn(); }
    engine::Result<void> erase(engine::EraseType type, const engine::EraseProgress& progress) override {
        return drive_->erase(type, progress);
    }

  private:
    std::shared_ptr<engine::VirtualDrive> drive_, other_;
    int looks_;
    std::vector<std::string>& notes_;
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

// Done comes after the ejecting that worked.
TEST_F(Eject, IsTriedAgainAfterDone) {
    std::vector<std::string> notes;
    const auto note = [&](const engine::BurnStatus& status) {
        if (status.isFinal()) notes.emplace_back(engine::nameOf(status.state));
    };
    BurnProcess(std::make_shared<LookedAtDrive>(folder(), 2, notes), plan, {}, note).wait();
    EXPECT_EQ(notes, (std::vector<std::string>{"busy", "busy", "ejected", "Done"}));
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

TEST_F(Eject, HappensWhereNoThreadStartsForTheBurn) {
    const NoThreads none;
    BurnProcess burn(drive, plan);
    burn.wait();
    ASSERT_TRUE(burn.status().error);
    EXPECT_EQ(burn.status().error->code, ErrorCode::BurnNotAllowed);
    EXPECT_TRUE(drive->isTrayOpen());
}

} // namespace
