// Abort in every state: nothing more is begun, and the medium is as it was or openly incomplete. How soon,
// benchmarks/burn.py measures.
#include "Background.hpp"
#include "Fixture.hpp"

#include <chrono>
#include <future>
#include <thread>

using namespace engine;

class AbortTest : public EngineTest, public ::testing::WithParamInterface<BurnState> {
  protected:
    // Aborts from another thread as soon as the state is entered; after it comes the end and nothing else.
    BurnStatus abortIn(BurnState state, DriveRef drive, BurnOptions options) {
        BurnJob job(std::move(drive));
        std::promise<void> reached, asked;
        bool told = false;
        std::string after;
        job.setObserver([&](const BurnStatus& status) {
            if (told && status.state != state) after += std::string(nameOf(status.state)) + ' ';
            if (status.state != state || told) return;
            told = true;
            reached.set_value();
            asked.get_future().wait(); // so that the abort meets this state
        });
        EXPECT_TRUE(job.start(layout(), options).ok());
        reached.get_future().wait();
        job.abort();
        asked.set_value();
        const BurnStatus last = job.wait();
        EXPECT_EQ(after, "Failed ");
        return last;
    }
};

INSTANTIATE_TEST_SUITE_P(EveryState, AbortTest,
                         ::testing::Values(BurnState::Preparing, BurnState::SessionOpen, BurnState::TrackOpen,
                                           BurnState::TrackWrite, BurnState::TrackClose,
                                           BurnState::SessionClose, BurnState::Finishing,
                                           BurnState::Verifying),
                         [](const auto& each) { return std::string(nameOf(each.param)); });

TEST_P(AbortTest, leavesARewritableMediumAsItWas) {
    const auto drive = makeDrive();
    write("old.bin", noise(500'000));
    EXPECT_DONE(burn(drive, layout()));
    const std::string before = bytesOf(image()), description = bytesOf(drivePath() / "medium.json");
    write("new.bin", noise(6'000'000, 7));
    BurnOptions options;
    options.overwrite = true;
    EXPECT_FAILED(abortIn(GetParam(), drive, options), UserCanceled, "The burn was canceled.");
    EXPECT_EQ(bytesOf(image()), before);
    EXPECT_EQ(bytesOf(drivePath() / "medium.json"), description);
    EXPECT_EQ(driveFiles(), "drive.json lock medium.iso medium.json ");
    EXPECT_FALSE(drive->isBusy());
    EXPECT_DONE(burn(drive, layout(), options)); // at once again
}

TEST_P(AbortTest, leavesTheSessionsBeforeAnAppendedOne) {
    for (const MediumKind kind : {MediumKind::DVDPlusRW, MediumKind::DVDPlusR, MediumKind::CDRW}) {
        fs::remove_all(drivePath());
        const auto drive = makeDrive(kind);
        BurnOptions options;
        options.appendable = true;
        write("old.bin", noise(500'000));
        EXPECT_DONE(burn(drive, layout(), options));
        const std::string before = bytesOf(image());
        write("new.bin", noise(6'000'000, 7));
        EXPECT_FAILED(abortIn(GetParam(), drive, options), UserCanceled, "The burn was canceled.");
        EXPECT_TRUE(bytesOf(image()).starts_with(before));
        const bool isUntouched = factsOf(kind).overwritable || GetParam() <= BurnState::TrackOpen;
        EXPECT_EQ(drive->mediumInfo()->state,
                  isUntouched ? MediumState::Appendable : MediumState::Incomplete);
        if (isUntouched) {
            EXPECT_DONE(burn(drive, layout(), options));
            EXPECT_EQ(drive->mediumInfo()->sessionCount(), 2u);
        }
    }
}

TEST_P(AbortTest, leavesAWriteOnceMediumBlankOrOpenlyIncomplete) {
    const auto drive = makeDrive(MediumKind::DVDR);
    write("new.bin", noise(6'000'000, 7));
    EXPECT_FAILED(abortIn(GetParam(), drive, {}), UserCanceled, "The burn was canceled.");
    const auto medium = drive->mediumInfo();
    ASSERT_TRUE(medium);
    if (GetParam() <= BurnState::TrackOpen) {
        EXPECT_TRUE(medium->blank);
    } else {
        EXPECT_EQ(medium->state, MediumState::Incomplete);
        EXPECT_EQ(medium->blocksFree, 0u);
    }
}

TEST_F(AbortTest, endsAWaitForTheRequestedSpeed) {
    write("a.bin", noise(2'000'000));
    BurnJob job(makeDrive());
    BurnOptions options;
    options.requestedSpeed = 0.25; // every step takes minutes: who waited it out would meet the test's limit
    ASSERT_TRUE(job.start(layout(), options).ok());
    // When the first step is in the image there is nothing left to do but to wait.
    while (bytesOf(growingImage()).find("CD001") == std::string::npos && !job.status().isFinal())
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(nameOf(job.status().state), "TrackWrite");
    job.abort();
    const BurnStatus last = job.wait();
    EXPECT_FAILED(last, UserCanceled, "The burn was canceled.");
    EXPECT_EQ(last.bytesDone, 0u) << "the first step was over";
}

TEST_F(AbortTest, meetsABurnThatMoves) {
    write("a.bin", noise(20'000'000));
    BurnJob job(makeDrive());
    std::promise<BurnStatus> moved;
    bool told = false;
    job.setObserver([&](const BurnStatus& status) {
        if (told || (status.percent <= 0 && !status.isFinal())) return;
        told = true;
        moved.set_value(status);
    });
    BurnOptions options;
    options.requestedSpeed = 500;
    ASSERT_TRUE(job.start(layout(), options).ok());
    const BurnStatus status = moved.get_future().get();
    job.abort();
    EXPECT_EQ(job.wait().error->code, ErrorCode::UserCanceled);
    EXPECT_EQ(nameOf(status.state), "TrackWrite");
    EXPECT_LT(status.percent, 0.5);
    EXPECT_EQ(status.currentTrack, 1u);
    EXPECT_EQ(status.totalTracks, 1u);
}

namespace {
class Stuck : public FileProducer {
  public:
    explicit Stuck(std::shared_future<void> release) : release_(std::move(release)) {}
    uint64_t size() override { return 4096; }
    size_t read(uint64_t, std::span<std::byte> buffer) override {
        release_.wait();
        return buffer.size();
    }

  private:
    std::shared_future<void> release_;
};
} // namespace

TEST_F(AbortTest, doesNotWaitForAProducerThatSleeps) {
    std::promise<void> release;
    const auto producer = std::make_shared<Stuck>(release.get_future().share());
    BurnJob job(makeDrive());
    ASSERT_TRUE(job.start(layoutOf(Content::folder("X", {Content::produced("p", producer)}))).ok());
    while (job.status().state < BurnState::TrackWrite)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    job.abort();
    EXPECT_EQ(job.wait().error->code, ErrorCode::UserCanceled);
    release.set_value(); // only now
    EXPECT_TRUE(waitForBackground(std::chrono::minutes(1)));
}

TEST_F(AbortTest, happensWhenARunningJobIsDropped) {
    write("a.bin", noise(20'000'000));
    const auto drive = makeDrive();
    {
        BurnJob job(drive);
        BurnOptions options;
        options.requestedSpeed = slowly;
        ASSERT_TRUE(job.start(layout(), options).ok());
        while (job.status().state < BurnState::TrackWrite)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_FALSE(drive->isBusy());
    EXPECT_EQ(driveFiles(), "drive.json lock medium.json ");
}

TEST_F(AbortTest, hasNoEffectBeforeTheStartAndAfterTheEnd) {
    BurnJob job(makeDrive());
    job.abort();
    EXPECT_EQ(nameOf(job.wait().state), "None");
    ASSERT_TRUE(job.start(layout()).ok());
    EXPECT_DONE(job.wait());
    job.abort();
    EXPECT_DONE(job.status());
}

TEST_F(AbortTest, aBurnGoesThroughTheStatesInOrder) {
    write("a.bin", noise(3'000'000));
    BurnJob job(makeDrive());
    std::string states;
    BurnState last = BurnState::None;
    double percent = -1;
    job.setObserver([&](const BurnStatus& status) {
        if (status.state == last) {
            EXPECT_GE(status.percent, percent);
        } else {
            states += std::string(nameOf(status.state)) + ' ';
        }
        last = status.state;
        percent = status.percent;
    });
    ASSERT_TRUE(job.start(layout()).ok());
    EXPECT_DONE(job.wait());
    EXPECT_EQ(states,
              "Preparing SessionOpen TrackOpen TrackWrite TrackClose SessionClose Finishing Verifying Done ");
    EXPECT_EQ(job.status().percent, 1);
}
