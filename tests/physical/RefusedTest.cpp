// What the library refuses before it writes.
#include "Failure.hpp"
#include "Fixture.hpp"
#include "physical/WriteJob.hpp"

using namespace engine;

// The sanitizer of leaks looks at it, too: all that was made for the session goes.
TEST_F(PhysicalTest, ASessionThatTheLibraryRefusesIsLetGo) {
    insert("DVD+RW");
    ASSERT_TRUE(drive()->closeTray().ok()); // what was seen before is forgotten
    const auto all = physicalDrives();
    ASSERT_FALSE(all.empty());
    const auto hold = std::make_shared<PhysicalDrive::Hold>(all.front());
    BurnPlan plan;
    PlannedTrack sound; // which a DVD takes none of
    sound.info.number = 1;
    sound.info.form = BlockForm::Audio;
    sound.info.blocks = 350;
    plan.sessions = {{sound, sound}};
    const std::lock_guard commands(all.front()->commands());
    const auto made = guarded([&] { WriteJob(hold, plan, 0, false, true); });
    ASSERT_FALSE(made.ok());
    EXPECT_EQ(made.error().code, ErrorCode::BurnNotAllowed) << made.error().message;
    EXPECT_EQ(hold.use_count(), 1);
    EXPECT_EQ(state()["writes"], 0);
}
