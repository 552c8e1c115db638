// A disc that is not what was written: the burn has failed, and the disc does not pass for a good one where that can be
// helped.
#include "Fixture.hpp"

#include <mutex>
#include <set>

using namespace engine;

class PhysicalVerify : public PhysicalTest, public ::testing::WithParamInterface<const char*> {
  protected:
    // Burns with one bit wrong in a block, and checks what is told.
    void failsToVerify(uint64_t wrongBlock, const BurnOptions& options, const std::string& name) {
        change("faults", {{"flipOnWrite", wrongBlock}});
        std::mutex mutex;
        std::set<BurnState> seen;
        const DriveRef own = drive();
        BurnJob job(own);
        job.setObserver([&](const BurnStatus& status) {
            const std::lock_guard lock(mutex);
            seen.insert(status.state);
            // What is done after a failure depends on it: an empty drive is not ejected.
            const auto now = own->readMedium();
            EXPECT_TRUE(now.ok() && *now) << "no disc while " << nameOf(status.state);
        });
        ASSERT_TRUE(job.start(layout(name), options).ok());
        const BurnStatus status = job.wait();
        waitUntilFree();
        EXPECT_EQ(nameOf(status.state), "Failed");
        ASSERT_TRUE(status.error.has_value());
        EXPECT_EQ(status.error->code, ErrorCode::VerificationFailed) << status.error->message;
        EXPECT_TRUE(status.error->message.starts_with(
            "The disc in \"TESTLAB MMC RECORDER\" is not what was written, from block "))
            << status.error->message;
        EXPECT_LT(status.percent, 0);
        EXPECT_TRUE(seen.contains(BurnState::Verifying));
        EXPECT_FALSE(seen.contains(BurnState::Done));
        change("faults", Json::object());
    }
};

TEST_P(PhysicalVerify, ADifferenceFailsTheBurn) {
    insert(GetParam());
    file("noise.bin", noise(3'000'000));
    failsToVerify(700, {}, "WRONG");
    const MediumInfo after = medium();
    const MediumFacts& facts = factsOf(after.kind);
    if (facts.overwritable) {
        EXPECT_TRUE(after.blank) << "without its start it is no disc";
        EXPECT_DONE(burn(layout("RIGHT")));
    } else {
        EXPECT_FALSE(after.blank) << "nothing can be taken back";
        BurnOptions options;
        options.overwrite = true;
        if (!facts.erasable) return;
        EXPECT_DONE(burn(layout("RIGHT"), options));
    }
    EXPECT_TRUE(extracted("noise.bin") == noise(3'000'000));
}

TEST_P(PhysicalVerify, ADifferenceInALaterSessionLeavesTheEarlierOne) {
    insert(GetParam());
    file("old.bin", noise(900'000));
    BurnOptions options;
    options.appendable = true;
    EXPECT_DONE(burn(layout("OLD"), options));
    const MediumInfo before = medium();
    ASSERT_TRUE(before.nextWritableBlock);
    file("noise.bin", noise(3'000'000));
    failsToVerify(*before.nextWritableBlock + 700, options, "WRONG");
    if (factsOf(before.kind).overwritable) {
        ASSERT_EQ(medium().sessionCount(), 1u);
        EXPECT_EQ(medium().sessions.front().tracks.front().volumeName, "OLD");
        EXPECT_EQ(medium().blocksUsed, before.blocksUsed);
    }
    EXPECT_TRUE(extracted("old.bin") == noise(900'000));
}

// A disc that was good and is overwritten: its start must not lead into what is there now.
TEST_P(PhysicalVerify, ADifferenceOnAnOverwrittenDiscShowsNoOldTree) {
    insert(GetParam());
    file("old.bin", noise(900'000));
    EXPECT_DONE(burn(layout("OLD")));
    const MediumFacts& facts = factsOf(medium().kind);
    if (!facts.erasable) return;
    fs::remove(source / "old.bin");
    file("noise.bin", noise(3'000'000));
    BurnOptions options;
    options.overwrite = options.appendable = true;
    failsToVerify(700, options, "WRONG");
    EXPECT_EQ(medium().blank, facts.overwritable);
}

INSTANTIATE_TEST_SUITE_P(All, PhysicalVerify, ::testing::Values("CD-R", "DVD-RW", "BD-R", "DVD+RW", "BD-RE"),
                         [](const auto& each) {
                             std::string name = each.param;
                             for (char& letter : name)
                                 letter = letter == '+' ? 'p' : letter == '-' ? '_' : letter;
                             return name;
                         });
