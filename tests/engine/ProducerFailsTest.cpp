// Producers that fail by themselves: in every call, in their pre-gaps, and with lengths that can't be.
#include "Fixture.hpp"
#include "Producers.hpp"

using namespace engine;

class ProducerFailsTest : public EngineTest {
  protected:
    struct Case {
        std::string call;
        Verification way;
        std::string message, calls;
        bool isWhole = false;  ///< the medium, afterwards
        bool isTouched = true; ///< something was written
    };

    // A track of sound with a pre-gap of its own, because it has all calls.
    BurnStatus burnSound(MediumKind kind, const std::shared_ptr<TestProducer>& producer, Verification way) {
        fs::remove_all(drivePath());
        producer->preGap = true;
        Track track = producedTrack(producer, BlockForm::Audio, 900);
        track.preGapBlocks = 170;
        track.verification = way;
        return burn(makeDrive(kind), Layout::ofTrack(std::move(track)));
    }
    static std::shared_ptr<TestProducer> sound() { return std::make_shared<TestProducer>(2352); }
};

// What a program throws is never taken for a bad disc, and its text is kept.
TEST_F(ProducerFailsTest, whatIsThrownInAnyCallIsAnErrorOfProduction) {
    const std::string verifying =
        "The producer of track 1 failed while the disc was verified; mend it, and burn again.";
    const std::string producing = "The producer of track 1 failed; nothing more was asked of it.";
    const Case cases[] = {
        {"prepare", Verification::ReceiveData,
         "The producer of track 1 can't prepare its data; nothing more was asked of it.", "prepare ", false,
         false},
        {"producePreGap", Verification::ReceiveData, producing, "prepare producePreGap "},
        {"produce", Verification::ReceiveData, producing, "prepare producePreGap produce "},
        {"prepareForVerification", Verification::ReceiveData, verifying,
         "prepare producePreGap produce prepareForVerification cleanupAfterVerification "},
        {"verifyPreGap", Verification::ReceiveData, verifying,
         "prepare producePreGap produce prepareForVerification verifyPreGap cleanupAfterVerification "},
        {"verify", Verification::ReceiveData, verifying,
         "prepare producePreGap produce prepareForVerification verifyPreGap verify "
         "cleanupAfterVerification "},
        {"produce again", Verification::ProduceAgain, verifying,
         "prepare producePreGap produce prepareForVerification produce cleanupAfterVerification "},
        {"cleanupAfterVerification", Verification::ReceiveData, verifying,
         "prepare producePreGap produce prepareForVerification verifyPreGap verify "
         "cleanupAfterVerification "},
        {"cleanupAfterBurn", Verification::None,
         "The producer of track 1 failed when it was to clean up; the burn itself was over.",
         "prepare producePreGap produce ", true},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.call);
        const std::string word = each.call.substr(0, each.call.find(' '));
        for (const MediumKind kind : {MediumKind::CDR, MediumKind::CDRW}) {
            const auto producer = sound();
            producer->throwsIn = {each.call};
            const BurnStatus status = burnSound(kind, producer, each.way);
            EXPECT_FAILED(status, DataProduction, each.message);
            ASSERT_TRUE(status.error);
            EXPECT_EQ(status.error->info, word + " is torn");
            EXPECT_EQ(producer->calls(), each.calls + "cleanupAfterBurn ");
            const auto medium = openDrive()->mediumInfo();
            ASSERT_TRUE(medium);
            // What is written once says that it isn't whole; what can be written again is as it was.
            if (each.isWhole) {
                EXPECT_EQ(medium->state, MediumState::Complete);
            } else if (kind == MediumKind::CDR && each.isTouched) {
                EXPECT_EQ(medium->state, MediumState::Incomplete);
            } else {
                EXPECT_TRUE(medium->blank);
            }
        }
    }
}

// Deliberate: the first thing that went wrong is the one that is told.
TEST_F(ProducerFailsTest, whatIsThrownLaterHidesNothing) {
    const auto different = sound();
    different->content = false;
    different->throwsIn = {"cleanupAfterVerification", "cleanupAfterBurn"};
    EXPECT_FAILED(
        burnSound(MediumKind::CDR, different, Verification::ReceiveData), VerificationFailed,
        "The disc in \"Virtual Disc Drive 1\" is not what was written, from block 20 on; don't trust it, "
        "and burn again.");
    const auto torn = sound();
    torn->throwsIn = {"verify", "cleanupAfterVerification", "cleanupAfterBurn"};
    const BurnStatus status = burnSound(MediumKind::CDR, torn, Verification::ReceiveData);
    ASSERT_TRUE(status.error);
    EXPECT_EQ(status.error->info, "verify is torn");
}

TEST_F(ProducerFailsTest, thatGivesNothingWhenItIsAskedAgainIsNoBadDisc) {
    const auto producer = sound();
    producer->fault = [&](uint64_t, std::span<std::byte> buffer, ProduceFlags&) {
        return producer->again ? 0 : buffer.size();
    };
    EXPECT_FAILED(burnSound(MediumKind::CDR, producer, Verification::ProduceAgain), DataProduction,
                  "The producer of track 1 gave no data for block 0 of 900.");
    const auto ending = sound();
    ending->fault = [&](uint64_t given, std::span<std::byte> buffer, ProduceFlags& flags) {
        flags.noMoreData = ending->again && given > 0;
        return buffer.size();
    };
    const BurnStatus status = burnSound(MediumKind::CDR, ending, Verification::ProduceAgain);
    ASSERT_TRUE(status.error); // fewer bytes are other bytes
    EXPECT_EQ(status.error->code, ErrorCode::VerificationFailed);
}

TEST_F(ProducerFailsTest, aPreGapIsGivenWholeOrNotAtAll) {
    constexpr size_t block = 2352;
    using Fault = std::function<size_t(uint64_t, std::span<std::byte>, ProduceFlags&)>;
    struct Gap {
        Fault fault;
        std::string message;
        int calls;
    };
    const Gap gaps[] = {
        {[](uint64_t, auto, ProduceFlags&) -> size_t { return 0; },
         "The producer of track 1 gave no data for block 0 of 170.", 1},
        {[](uint64_t from, auto, ProduceFlags&) -> size_t { return from == 0 ? 10 * block : 0; },
         "The producer of track 1 gave no data for block 10 of 170.", 2},
        {[](uint64_t, std::span<std::byte> buffer, ProduceFlags&) { return buffer.size() + 1; },
         "The producer of track 1 gave more data than it was asked for; nothing of the rest was written.", 1},
        {[](uint64_t, auto, ProduceFlags& flags) -> size_t {
             flags.noMoreData = true;
             return 0;
         },
         "The producer of track 1 said that there is no data at all.", 1},
        // Nobody asks again after "no more".
        {[](uint64_t, auto, ProduceFlags& flags) -> size_t {
             flags.noMoreData = true;
             return 20 * block + 5;
         },
         "The producer of track 1 ended before the track's pre-gap was full.", 1},
    };
    for (const Gap& gap : gaps) {
        SCOPED_TRACE(gap.message);
        const auto producer = sound();
        producer->gapFault = gap.fault;
        EXPECT_FAILED(burnSound(MediumKind::CDR, producer, Verification::None), DataProduction, gap.message);
        EXPECT_EQ(producer->preGapCalls, gap.calls);
        EXPECT_EQ(producer->calls(), "prepare producePreGap cleanupAfterBurn ");
        EXPECT_EQ(openDrive()->mediumInfo()->state, MediumState::Incomplete);
    }
    const auto little = sound();
    // Short answers are asked on from where they end.
    little->gapFault = [](uint64_t, std::span<std::byte> buffer, ProduceFlags&) {
        return std::min<size_t>(buffer.size(), 7 * block);
    };
    EXPECT_DONE(burnSound(MediumKind::CDR, little, Verification::ReceiveData));
    EXPECT_EQ(little->preGapCalls, 25);
}

TEST_F(ProducerFailsTest, aTrackWithNoDataAtAllIsNone) {
    const auto producer = sound();
    producer->fault = [](uint64_t, auto, ProduceFlags& flags) -> size_t {
        flags.noMoreData = true;
        return 0;
    };
    EXPECT_FAILED(burnSound(MediumKind::CDR, producer, Verification::None), DataProduction,
                  "The producer of track 1 said that there is no data at all.");
    EXPECT_EQ(openDrive()->mediumInfo()->state, MediumState::Incomplete);
}

// Preparing says the length that counts, and a disc that has no room for it is not begun.
TEST_F(ProducerFailsTest, lengthsFromPreparingMustBePossible) {
    class Resized final : public TestProducer {
      public:
        explicit Resized(uint64_t length) : TestProducer(2048), length(length) {}
        bool prepare(uint64_t& blocks, const MediumInfo& medium) override {
            blocks = length;
            return TestProducer::prepare(blocks, medium);
        }
        uint64_t length;
    };
    for (const MediumKind kind : {MediumKind::DVDPlusR, MediumKind::DVDPlusRW}) {
        const auto burnOf = [&](const std::shared_ptr<TestProducer>& producer) {
            fs::remove_all(drivePath());
            return burn(makeDrive(kind), Layout::ofTrack(producedTrack(producer, BlockForm::Data, 100)));
        };
        const auto none = std::make_shared<Resized>(0);
        EXPECT_FAILED(burnOf(none), BadLayout, "Track 1 has no length; give it one.");
        EXPECT_EQ(none->calls(), "prepare cleanupAfterBurn ");
        EXPECT_TRUE(openDrive()->mediumInfo()->blank);
        const auto huge = std::make_shared<Resized>(openDrive()->mediumInfo()->blocksFree + 1);
        const BurnStatus status = burnOf(huge);
        ASSERT_TRUE(status.error);
        EXPECT_EQ(status.error->code, ErrorCode::BurnNotAllowed);
        EXPECT_TRUE(status.error->message.starts_with("The data needs ")) << status.error->message;
        EXPECT_EQ(huge->calls(), "prepare cleanupAfterBurn ");
        EXPECT_TRUE(openDrive()->mediumInfo()->blank);
    }
}

TEST_F(ProducerFailsTest, whoWasNotToPrepareDoesNotCleanUp) {
    const auto producer = std::make_shared<TestProducer>(2048);
    Track track = producedTrack(producer, BlockForm::Data, 100);
    track.startBlock = 4096; // of a later session, which this kind of medium does not have
    const BurnStatus status = burn(makeDrive(MediumKind::DVDPlusRW), Layout::ofTrack(std::move(track)));
    ASSERT_TRUE(status.error);
    EXPECT_EQ(status.error->code, ErrorCode::BadLayout);
    EXPECT_EQ(producer->calls(), "");
}
