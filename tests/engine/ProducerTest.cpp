// Tracks whose bytes come from a producer: order of calls, short and wrong answers, and every way of verifying.
#include "Fixture.hpp"
#include "Producers.hpp"

#include <thread>

using namespace engine;

class ProducerTest : public EngineTest {
  protected:
    ProducerTest() : producer(std::make_shared<TestProducer>(2048)) {}

    Track track(Verification verification = Verification::Checksum) const {
        Track made = producedTrack(producer, BlockForm::Data, blocks);
        made.verification = verification;
        return made;
    }
    BurnStatus burnTrack(Track what, MediumKind kind = MediumKind::DVDPlusR, BurnOptions options = {}) {
        return burn(makeDrive(kind), Layout::ofTrack(std::move(what)), options);
    }
    bool imageIs(uint64_t count) const { return bytesOf(image()) == producer->bytes(count * 2048); }

    static constexpr uint64_t blocks = 1700; // more than three pieces
    std::shared_ptr<TestProducer> producer;
};

TEST_F(ProducerTest, givesItsBlocksInOrderIntoLargeBuffers) {
    EXPECT_DONE(burnTrack(track()));
    EXPECT_TRUE(imageIs(blocks));
    EXPECT_TRUE(producer->inOrder);
    EXPECT_EQ(producer->largest, 1u << 20);
    EXPECT_EQ(producer->calls(), "prepare produce cleanupAfterBurn ");
    const auto medium = openDrive()->mediumInfo();
    EXPECT_EQ(medium->blocksUsed, blocks);
    EXPECT_EQ(medium->sessions[0].tracks[0].form, BlockForm::Data);
}

TEST_F(ProducerTest, isAskedAgainForVerification) {
    EXPECT_DONE(burnTrack(track(Verification::ProduceAgain)));
    EXPECT_EQ(producer->calls(), "prepare produce prepareForVerification produce cleanupAfterVerification "
                                 "cleanupAfterBurn ");
}

TEST_F(ProducerTest, receivesWhatWasRead) {
    EXPECT_DONE(burnTrack(track(Verification::ReceiveData)));
    EXPECT_EQ(producer->calls(), "prepare produce prepareForVerification verify cleanupAfterVerification "
                                 "cleanupAfterBurn ");
}

TEST_F(ProducerTest, isNotVerifiedWhenNobodyWantsThat) {
    BurnOptions options;
    options.verify = false;
    EXPECT_DONE(burnTrack(track(Verification::ProduceAgain), MediumKind::DVDPlusR, options));
    EXPECT_EQ(producer->calls(), "prepare produce cleanupAfterBurn ");
    fs::remove_all(drivePath());
    EXPECT_DONE(burnTrack(track(Verification::None)));
}

TEST_F(ProducerTest, thatGivesOtherBytesTheSecondTimeFailsVerification) {
    producer->spoilt = 3'000'000;
    EXPECT_FAILED(
        burnTrack(track(Verification::ProduceAgain)), VerificationFailed,
        "The disc in \"Virtual Disc Drive 1\" is not what was written, from block 1024 on; don't trust "
        "it, and burn again.");
    EXPECT_EQ(openDrive()->mediumInfo()->state, MediumState::Incomplete);
    EXPECT_TRUE(producer->calls().ends_with("produce cleanupAfterVerification cleanupAfterBurn "))
        << producer->calls();
}

TEST_F(ProducerTest, thatIsNotContentWithWhatWasReadFailsVerification) {
    producer->content = false;
    EXPECT_FAILED(
        burnTrack(track(Verification::ReceiveData)), VerificationFailed,
        "The disc in \"Virtual Disc Drive 1\" is not what was written, from block 0 on; don't trust it, "
        "and burn again.");
    EXPECT_EQ(producer->calls(), "prepare produce prepareForVerification verify cleanupAfterVerification "
                                 "cleanupAfterBurn ");
}

// Deliberate: whoever was asked to prepare cleans up, once.
TEST_F(ProducerTest, cleansUpAfterEveryVerificationThatItWasToPrepare) {
    producer->preparesVerification = false;
    const auto unprepared = burnTrack(track(Verification::ReceiveData));
    ASSERT_TRUE(unprepared.error);
    EXPECT_EQ(unprepared.error->code, ErrorCode::VerificationFailed);
    EXPECT_EQ(unprepared.error->info, "the producer of track 1 could not prepare for it");
    EXPECT_EQ(producer->calls(),
              "prepare produce prepareForVerification cleanupAfterVerification cleanupAfterBurn ");
    fs::remove_all(drivePath());
    producer = std::make_shared<TestProducer>(2048);
    producer->cleansVerification = false;
    const auto unclean = burnTrack(track(Verification::ReceiveData));
    ASSERT_TRUE(unclean.error);
    EXPECT_EQ(unclean.error->info, "the producer of track 1 was not content");
    EXPECT_EQ(producer->cleanups, 1);
}

TEST_F(ProducerTest, maySayItsLengthWhenItPrepares) {
    producer->becomes = 600;
    EXPECT_DONE(burnTrack(track()));
    EXPECT_TRUE(imageIs(600));
}

TEST_F(ProducerTest, thatCannotPrepareLeavesTheMediumBlank) {
    producer->preparing = false;
    EXPECT_FAILED(burnTrack(track()), DataProduction,
                  "The producer of track 1 could not prepare its data; the disc is untouched.");
    EXPECT_TRUE(openDrive()->mediumInfo()->blank);
    EXPECT_EQ(producer->calls(), "prepare cleanupAfterBurn ");
}

TEST_F(ProducerTest, isAskedOnAfterAShortAnswer) {
    producer->fault = [](uint64_t given, std::span<std::byte> buffer, ProduceFlags&) {
        // Also answers that end inside a block.
        return std::min<size_t>(buffer.size(), given % 3 == 0 ? 2048 : 5000);
    };
    EXPECT_DONE(burnTrack(track(Verification::ProduceAgain)));
    EXPECT_TRUE(imageIs(blocks));
    EXPECT_TRUE(producer->inOrder);
}

TEST_F(ProducerTest, endsATrackOfVariableLength) {
    producer->fault = [](uint64_t given, std::span<std::byte> buffer, ProduceFlags& flags) -> size_t {
        if (given + buffer.size() < 2'500'000) return buffer.size();
        flags.noMoreData = true;
        return static_cast<size_t>(2'500'000 - given);
    };
    EXPECT_DONE(burnTrack(track()));
    const uint64_t ended = (2'500'000 + 2047) / 2048;
    EXPECT_EQ(openDrive()->mediumInfo()->blocksUsed, ended);
    const std::string read = bytesOf(image());
    ASSERT_EQ(read.size(), ended * 2048);
    EXPECT_TRUE(read.substr(0, 2'500'000) == producer->bytes(2'500'000));
    EXPECT_EQ(read.substr(2'500'000), std::string(ended * 2048 - 2'500'000, '\0'));
}

TEST_F(ProducerTest, thatGivesNothingStopsTheBurn) {
    producer->fault = [](uint64_t given, std::span<std::byte> buffer, ProduceFlags&) {
        return given < 2'000'000 ? buffer.size() : 0;
    };
    EXPECT_FAILED(burnTrack(track()), DataProduction,
                  "The producer of track 1 gave no data for block 1024 of 1700.");
    EXPECT_EQ(openDrive()->mediumInfo()->state, MediumState::Incomplete);
    EXPECT_EQ(producer->calls(), "prepare produce cleanupAfterBurn ");
}

TEST_F(ProducerTest, thatGivesTooMuchStopsTheBurn) {
    producer->fault = [](uint64_t, std::span<std::byte> buffer, ProduceFlags&) { return buffer.size() + 1; };
    EXPECT_FAILED(
        burnTrack(track(), MediumKind::DVDPlusRW), DataProduction,
        "The producer of track 1 gave more data than it was asked for; nothing of the rest was written.");
    EXPECT_TRUE(openDrive()->mediumInfo()->blank);
}

TEST_F(ProducerTest, thatThrowsStopsTheBurn) {
    producer->fault = [](uint64_t, std::span<std::byte>, ProduceFlags&) -> size_t {
        throw std::runtime_error("the tape is torn");
    };
    const auto status = burnTrack(track());
    EXPECT_FAILED(status, DataProduction, "The producer of track 1 failed; nothing more was asked of it.");
    EXPECT_EQ(status.error->info, "the tape is torn");
    EXPECT_EQ(producer->calls(), "prepare produce cleanupAfterBurn ");
}

// Blocks of both forms of mode 2, with rubbish where form 1 has nothing: every way of verifying finds them right.
TEST_F(ProducerTest, mayMixTheFormsOfMode2) {
    class Mixing final : public TestProducer {
      public:
        Mixing() : TestProducer(2332) {}
        size_t produce(uint64_t block, std::span<std::byte> buffer, ProduceFlags& flags) override {
            const size_t count = TestProducer::produce(block, buffer, flags);
            for (size_t at = 0; at < count; at += bytesPerBlock, ++block)
                setForm(buffer.subspan(at), block);
            // Never the same twice.
            for (size_t at = 0; at < count; at += bytesPerBlock)
                if (buffer[at + 2] == std::byte{0x08})
                    std::fill_n(&buffer[at + 8 + 2048], 276, static_cast<std::byte>(++rubbish));
            return count;
        }
        bool verify(uint64_t block, std::span<const std::byte> read) override {
            std::vector<std::byte> right(read.size());
            for (size_t at = 0; at < right.size(); ++at)
                right[at] = this->at(block * bytesPerBlock + at);
            for (size_t at = 0; at < right.size(); at += bytesPerBlock, ++block) {
                setForm(std::span(right).subspan(at), block);
                if (block % 2 == 0) std::fill_n(&right[at + 8 + 2048], 276, std::byte{0});
            }
            compared += read.size();
            return std::equal(read.begin(), read.end(), right.begin(), right.end());
        }
        static void setForm(std::span<std::byte> block, uint64_t number) {
            block[2] = block[6] = number % 2 == 0 ? std::byte{0x08} : std::byte{0x28};
        }
        int rubbish = 0;
        size_t compared = 0;
    };
    for (const Verification way :
         {Verification::Checksum, Verification::ProduceAgain, Verification::ReceiveData}) {
        const auto mixing = std::make_shared<Mixing>();
        Track made = producedTrack(mixing, BlockForm::Mixed, 600);
        made.verification = way;
        fs::remove_all(drivePath());
        EXPECT_DONE(burnTrack(made, MediumKind::CDRW));
        EXPECT_EQ(mixing->compared, way == Verification::ReceiveData ? 600 * 2332 : 0u);
        EXPECT_EQ(openDrive()->mediumInfo()->sessions[0].tracks[0].form, BlockForm::Mixed);
    }
}

TEST_F(ProducerTest, withoutLengthIsABadLayout) {
    Track none = producedTrack(producer, BlockForm::Data, 0);
    EXPECT_FAILED(burnTrack(none), BadLayout, "Track 1 has no length; give it one.");
}

TEST_F(ProducerTest, thatSleepsDoesNotHoldAnAbort) {
    std::atomic<bool> awake{false};
    producer->fault = [&](uint64_t, std::span<std::byte> buffer, ProduceFlags&) {
        while (!awake)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        return buffer.size();
    };
    BurnJob job(makeDrive());
    ASSERT_TRUE(job.start(Layout::ofTrack(track())).ok());
    while (producer->calls() != "prepare produce ")
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    job.abort();
    EXPECT_TRUE(job.waitFor(std::chrono::milliseconds(500)));
    EXPECT_EQ(job.status().error->code, ErrorCode::UserCanceled);
    EXPECT_EQ(producer->calls(), "prepare produce "); // never two calls at once
    awake = true;
    for (int wait = 0; wait < 2000 && !producer->calls().ends_with("cleanupAfterBurn "); ++wait)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(producer->calls(), "prepare produce cleanupAfterBurn ");
}
