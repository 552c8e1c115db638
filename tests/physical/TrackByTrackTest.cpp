// A CD that is written track by track: behind another session, of both kinds, or in several sessions. Its pre-gaps are the
// drive's.
#include "Fixture.hpp"

using namespace engine;

namespace {

class Sound final : public TrackProducer {
  public:
    explicit Sound(std::string bytes, bool hasPreGap = false)
        : bytes_(std::move(bytes)), hasPreGap_(hasPreGap) {}
    size_t produce(uint64_t block, std::span<std::byte> buffer, ProduceFlags&) override {
        const size_t at = static_cast<size_t>(block) * 2352;
        const size_t count = std::min(buffer.size(), bytes_.size() - at);
        std::memcpy(buffer.data(), bytes_.data() + at, count);
        return count;
    }
    bool producesPreGap() override { return hasPreGap_; }
    size_t producePreGap(uint64_t, std::span<std::byte> buffer, ProduceFlags&) override {
        std::fill(buffer.begin(), buffer.end(), std::byte{'g'});
        return buffer.size();
    }

  private:
    std::string bytes_;
    bool hasPreGap_;
};

} // namespace

class PhysicalTrackByTrack : public PhysicalTest {
  protected:
    void SetUp() override {
        insert("CD-R");
        drive()->closeTray().ok(); // what was seen before is forgotten
        file("noise.bin", noise(800'000));
    }
    Layout data(const std::string& name, uint64_t preGap) const {
        Layout disc = layout(name);
        disc.sessions.front().tracks.front().preGapBlocks = preGap;
        return disc;
    }
    Track sound(uint64_t preGap, bool produces = false) const {
        Track track;
        ProducedTrack produced;
        produced.form = BlockForm::Audio;
        produced.blocks = 350;
        produced.producer = std::make_shared<Sound>(sound_, produces);
        track.content = produced;
        track.preGapBlocks = preGap;
        return track;
    }
    void isSound(const TrackInfo& track) const {
        auto reader = drive()->openMedium();
        ASSERT_TRUE(reader.ok());
        std::string bytes(350 * 2352, '\0');
        const auto count = (*reader)->read(track, 0, std::as_writable_bytes(std::span(bytes)));
        ASSERT_TRUE(count.ok()) << count.error().message;
        EXPECT_TRUE(bytes == sound_);
    }
    // Nothing but the two run-out blocks lies between the end of one and the pre-gap of the other.
    static void follows(const TrackInfo& one, const TrackInfo& other) {
        EXPECT_EQ(other.startBlock, one.startBlock + one.blocks + 2 + usualPreGap);
    }

    const std::string sound_ = noise(350 * 2352, 7);
};

TEST_F(PhysicalTrackByTrack, ALaterSessionBeginsWhereItsFileSystemCountsFrom) {
    BurnOptions options;
    options.appendable = true;
    EXPECT_DONE(burn(data("FIRST", 300), options));
    file("more.bin", noise(700'000, 2));
    EXPECT_DONE(burn(data("MORE", 300), options));
    EXPECT_TRUE(extracted("noise.bin") == noise(800'000));
    EXPECT_TRUE(extracted("more.bin") == noise(700'000, 2));
}

TEST_F(PhysicalTrackByTrack, DataWithALongerPreGapAndSoundBehindIt) {
    Layout disc = data("MIXED", 300);
    disc.sessions.front().tracks.push_back(sound(200));
    EXPECT_DONE(burn(disc));
    EXPECT_TRUE(extracted("noise.bin") == noise(800'000));
    const auto tracks = medium().sessions.front().tracks;
    ASSERT_EQ(tracks.size(), 2u);
    EXPECT_EQ(tracks[0].startBlock, 0u);
    follows(tracks[0], tracks[1]);
    EXPECT_EQ(tracks[1].blocks, 350u) << "without the two that nobody wrote";
    isSound(tracks[1]);
}

TEST_F(PhysicalTrackByTrack, SeveralSessionsInOneBurn) {
    for (const size_t size : {100, 800'000}) { // a track is never shorter than 300 blocks
        insert("CD-R");
        drive()->closeTray().ok();
        file("noise.bin", noise(size));
        Layout disc = data("FIRST", 300);
        file("in/more.bin", noise(700'000, 2));
        DataTrack more;
        more.root = Content::real((source / "in").string(), "MORE");
        Layout second = Layout::ofData(std::move(more));
        second.sessions.front().tracks.front().preGapBlocks = 400;
        disc.sessions.push_back(second.sessions.front());
        EXPECT_DONE(burn(std::move(disc)));
        EXPECT_EQ(medium().sessionCount(), 2u);
        EXPECT_TRUE(extracted("more.bin") == noise(700'000, 2)) << size;
        fs::remove_all(source / "in");
    }
}

// What a producer has for it is not asked for, and not announced to the drive either.
TEST_F(PhysicalTrackByTrack, AProducedPreGapIsLeftToTheDrive) {
    Layout disc = layout("MIXED");
    disc.sessions.front().tracks.push_back(sound(200, true));
    EXPECT_DONE(burn(disc));
    EXPECT_TRUE(extracted("noise.bin") == noise(800'000));
    const auto tracks = medium().sessions.front().tracks;
    ASSERT_EQ(tracks.size(), 2u);
    follows(tracks[0], tracks[1]);
    isSound(tracks[1]);
}

TEST_F(PhysicalTrackByTrack, ARequiredPreGapIsRefused) {
    Layout disc = layout("MIXED");
    disc.sessions.front().tracks.push_back(sound(200));
    disc.sessions.front().tracks.back().preGapIsRequired = true;
    const BurnStatus status = burn(disc);
    ASSERT_TRUE(status.error.has_value());
    EXPECT_EQ(status.error->code, ErrorCode::PreGapLengthNotAvailable) << status.error->message;
    EXPECT_EQ(state()["writes"], 0);
    EXPECT_TRUE(medium().blank);
}
