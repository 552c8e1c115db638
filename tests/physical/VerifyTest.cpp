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

// The blocks of the track lie right behind: they are no part of its pre-gap.
TEST_F(PhysicalTest, APreGapIsVerifiedToItsEnd) {
    class Song final : public TrackProducer {
      public:
        bool producesPreGap() override { return true; }
        size_t producePreGap(uint64_t, std::span<std::byte> buffer, ProduceFlags&) override {
            std::fill(buffer.begin(), buffer.end(), std::byte{'g'});
            return buffer.size();
        }
        size_t produce(uint64_t, std::span<std::byte> buffer, ProduceFlags&) override {
            std::fill(buffer.begin(), buffer.end(), std::byte{'s'});
            return buffer.size();
        }
        bool verifyPreGap(uint64_t block, std::span<const std::byte> bytes) override {
            EXPECT_EQ(block, preGap.size() / 2352);
            preGap.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
            return true;
        }
        bool verify(uint64_t block, std::span<const std::byte> bytes) override {
            EXPECT_EQ(block, data.size() / 2352);
            data.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
            return true;
        }
        std::string preGap, data;
    };
    insert("CD-R");
    const std::shared_ptr<Song> songs[] = {std::make_shared<Song>(), std::make_shared<Song>()};
    Layout disc;
    disc.sessions.emplace_back();
    for (const auto& song : songs) {
        Track track;
        ProducedTrack content;
        content.form = BlockForm::Audio;
        content.blocks = 600;
        content.producer = song;
        track.content = content;
        track.verification = Verification::ReceiveData;
        disc.sessions.front().tracks.push_back(track);
    }
    disc.sessions.front().tracks[1].preGapBlocks = 75;
    EXPECT_DONE(burn(disc));
    EXPECT_EQ(songs[0]->preGap, "") << "the drive makes the one at the start";
    EXPECT_TRUE(songs[1]->preGap == std::string(75 * 2352, 'g')) << songs[1]->preGap.size();
    for (const auto& song : songs)
        EXPECT_TRUE(song->data == std::string(600 * 2352, 's')) << song->data.size();
}

INSTANTIATE_TEST_SUITE_P(All, PhysicalVerify, ::testing::Values("CD-R", "DVD-RW", "BD-R", "DVD+RW", "BD-RE"),
                         [](const auto& each) {
                             std::string name = each.param;
                             for (char& letter : name)
                                 letter = letter == '+' ? 'p' : letter == '-' ? '_' : letter;
                             return name;
                         });
