// What a burn asks of the medium it writes to, in which order; and that a producer's bytes reach it uncopied.
#include "BurnTarget.hpp"
#include "Fixture.hpp"
#include "Producers.hpp"

#include <mutex>

using namespace engine;

namespace {

/// A CD-R that notes what is asked of it and keeps no byte.
struct Notes {
    std::string calls;
    std::vector<std::pair<const std::byte*, size_t>> written;
    std::function<void()> whenWritten;
    void add(const std::string& call) {
        if (!calls.ends_with(call + ' ')) calls += call + ' ';
    }
};

class NotingTarget final : public BurnTarget {
  public:
    explicit NotingTarget(Notes& notes) : notes_(notes) {
        medium_.kind = MediumKind::CDR;
        medium_.capacityBlocks = medium_.blocksFree = 300'000;
        medium_.blank = medium_.appendable = medium_.overwritable = true;
    }
    ~NotingTarget() override { notes_.add("end"); }
    const MediumInfo& medium() const noexcept override { return medium_; }
    void begin(const BurnPlan&) override { notes_.add("begin"); }
    void place(BurnPlan& plan, size_t session, size_t track) override {
        notes_.add("place" + std::to_string(track + 1));
        if (track > 0) {
            const TrackInfo& before = plan.sessions[session][track - 1].info;
            EXPECT_GT(before.blocks, 0u); // known when the next is placed
        }
    }
    void openSession(const BurnPlan& plan, size_t) override {
        notes_.add("openSession");
        plan_ = &plan;
    }
    void openTrack(const PlannedTrack& track) override {
        notes_.add("openTrack" + std::to_string(track.info.number));
    }
    void writePreGap(std::span<std::byte>) override { notes_.add("writePreGap"); }
    void write(std::span<std::byte> buffer) override {
        notes_.add("write");
        notes_.written.emplace_back(buffer.data(), buffer.size());
        EXPECT_EQ(reinterpret_cast<uintptr_t>(buffer.data()) % 4096, 0u);
        if (notes_.whenWritten) notes_.whenWritten();
    }
    void closeTrack(uint64_t blocks, uint64_t) override {
        notes_.add("closeTrack:" + std::to_string(blocks));
    }
    void closeSession() override { notes_.add("closeSession"); }
    void flush(const SignalRef&) override { notes_.add("flush"); }
    std::shared_ptr<MediumReader> reader() override { return nullptr; }
    std::vector<std::vector<TrackInfo>> written() const override { return {}; }
    void commit(bool intact) override { notes_.add(intact ? "commit" : "spoil"); }

  private:
    Notes& notes_;
    MediumInfo medium_;
    const BurnPlan* plan_ = nullptr;
};

class NotingDrive final : public Drive {
  public:
    explicit NotingDrive(Notes& notes) : notes_(notes) {
        can_.writes = {MediumKind::CDR};
        can_.writesSessionAtOnce = true;
    }
    const DriveIdentity& identity() const noexcept override { return identity_; }
    const DriveCapabilities& capabilities() const noexcept override { return can_; }
    const LoadingMechanism& loadingMechanism() const noexcept override { return loading_; }
    bool isValid() const override { return true; }
    Result<std::optional<MediumInfo>> readMedium() const override { return std::optional<MediumInfo>(); }
    Result<std::unique_ptr<MediumReader>> openMedium() override {
        return makeError(ErrorCode::MediaNotPresent);
    }
    bool isTrayOpen() const override { return false; }
    Result<void> openTray() override { return {}; }
    Result<void> closeTray() override { return {}; }
    Result<void> eject() override { return {}; }
    bool isBusy() const override { return false; }
    Result<void> acquireExclusiveAccess() override { return {}; }
    void releaseExclusiveAccess() override {}
    bool hasExclusiveAccess() const override { return false; }
    void acquireMediaReservation() override {}
    void releaseMediaReservation() override {}
    bool holdsMediaReservation() override { return false; }
    Result<std::unique_ptr<BurnTarget>> beginBurn() override {
        return std::unique_ptr<BurnTarget>(std::make_unique<NotingTarget>(notes_));
    }
    Result<void> erase(EraseType, const EraseProgress&) override { return {}; }

  private:
    Notes& notes_;
    DriveIdentity identity_;
    DriveCapabilities can_;
    LoadingMechanism loading_;
};

} // namespace

class TargetTest : public EngineTest {
  protected:
    BurnStatus burnHere(std::vector<Track> tracks) {
        Layout layout;
        layout.sessions.push_back({std::move(tracks)});
        BurnOptions options;
        options.verify = false;
        return burn(std::make_shared<NotingDrive>(notes), layout, options);
    }
    // Bytes and their total, as they are told while the first of two tracks is written; it ends after so many blocks, which
    // its pre-gap comes before.
    using Told = std::vector<std::pair<uint64_t, uint64_t>>;
    Told toldOfATrackThatEndsEarly(double speed, uint64_t blocks, uint64_t brought, uint64_t preGap) {
        const auto early = std::make_shared<TestProducer>(2048);
        early->preGap = true;
        early->fault = [&](uint64_t, std::span<std::byte>, ProduceFlags& flags) {
            flags.noMoreData = true;
            return static_cast<size_t>(brought * 2048);
        };
        Layout layout;
        layout.sessions.push_back(
            {{producedTrack(early, BlockForm::Data, blocks),
              producedTrack(std::make_shared<TestProducer>(2048), BlockForm::Data, 300)}});
        layout.sessions[0].tracks[0].preGapBlocks = preGap;
        BurnOptions options;
        options.verify = false;
        options.requestedSpeed = speed;
        Told told;
        BurnJob job(std::make_shared<NotingDrive>(notes));
        job.setObserver([&](const BurnStatus& status) {
            if (status.state == BurnState::TrackWrite && status.currentTrack == 1)
                told.emplace_back(status.bytesDone, status.bytesTotal);
        });
        if (endsWithTheFill)
            notes.whenWritten = [&] {
                if (notes.written.size() == 2) job.abort();
            };
        EXPECT_TRUE(job.start(layout, options).ok());
        EXPECT_EQ(nameOf(job.wait().state), endsWithTheFill ? "Failed" : "Done");
        EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
        return told;
    }
    bool endsWithTheFill = false; ///< aborted there
    Notes notes;
};

TEST_F(TargetTest, whatAPreGapTakesAndWhatIsFilledUpIsTold) {
    const Told told = toldOfATrackThatEndsEarly(maximumSpeed, 1000, 100, 150);
    const uint64_t total = 1150 * 2048;
    ASSERT_FALSE(told.empty());
    EXPECT_EQ(told.front(), std::pair(uint64_t{0}, total));
    EXPECT_EQ(told.back(), std::pair(total, total));
}

// It takes longer than the interval between two reports, so the first of its pieces is told.
TEST_F(TargetTest, aPreGapTakesItsTime) {
    const Told told = toldOfATrackThatEndsEarly(slowly, 300, 300, 150);
    EXPECT_TRUE(std::find(told.begin(), told.end(), std::pair<uint64_t, uint64_t>(150 * 2048, 450 * 2048)) !=
                told.end());
}

// One write fills it up. Who waits for the speed behind it meets the abort there, before the track is told to be whole.
TEST_F(TargetTest, whatIsFilledUpTakesItsTime) {
    endsWithTheFill = true;
    const Told told = toldOfATrackThatEndsEarly(slowly, 32, 1, 20);
    ASSERT_EQ(notes.written.size(), 2u);
    EXPECT_EQ(notes.written[1].second, 31u * 2048);
    ASSERT_FALSE(told.empty());
    EXPECT_LT(told.back().first, 52u * 2048);
}

TEST_F(TargetTest, isAskedInOrder) {
    const auto one = std::make_shared<TestProducer>(2352), two = std::make_shared<TestProducer>(2048);
    two->preGap = true;
    Track second = producedTrack(two, BlockForm::Data, 800);
    second.preGapBlocks = 30;
    EXPECT_DONE(burnHere({producedTrack(one, BlockForm::Audio, 900), second}));
    EXPECT_EQ(notes.calls,
              "begin place1 place2 openSession openTrack1 write closeTrack:900 openTrack2 writePreGap write "
              "closeTrack:800 closeSession flush commit end ");
}

TEST_F(TargetTest, isNotCommittedToWhenAProducerFails) {
    const auto one = std::make_shared<TestProducer>(2352);
    one->fault = [](uint64_t, std::span<std::byte>, ProduceFlags&) { return size_t{0}; };
    EXPECT_EQ(burnHere({producedTrack(one, BlockForm::Audio, 900)}).error->code, ErrorCode::DataProduction);
    EXPECT_EQ(notes.calls, "begin place1 openSession openTrack1 end ");
}

TEST_F(TargetTest, writesTheVeryBuffersThatWereFilled) {
    for (const BlockForm form : {BlockForm::Data, BlockForm::Audio, BlockForm::RawMode2}) {
        const auto producer = std::make_shared<TestProducer>(bytesPerBlock(form));
        std::mutex mutex;
        std::vector<std::pair<const std::byte*, size_t>> filled;
        producer->fault = [&](uint64_t, std::span<std::byte> buffer, ProduceFlags&) {
            const std::lock_guard lock(mutex);
            filled.emplace_back(buffer.data(), buffer.size());
            return buffer.size();
        };
        notes = {};
        EXPECT_DONE(burnHere({producedTrack(producer, form, 5000)}));
        EXPECT_GT(filled.size(), 4u);
        EXPECT_EQ(notes.written, filled);
    }
}
