// Burning, appending and erasing through libburn; what was burned is read back by programs that are not ours.
#include "../engine/NoThreads.hpp"
#include "Fixture.hpp"

#include <optional>
#include <thread>

using namespace engine;

namespace {

class Sound final : public TrackProducer {
  public:
    explicit Sound(std::string bytes) : bytes_(std::move(bytes)) {}
    size_t produce(uint64_t block, std::span<std::byte> buffer, ProduceFlags&) override {
        const size_t at = static_cast<size_t>(block) * 2352;
        const size_t count = std::min(buffer.size(), bytes_.size() - at);
        std::memcpy(buffer.data(), bytes_.data() + at, count);
        return count;
    }

  private:
    std::string bytes_;
};

} // namespace

TEST_F(PhysicalTest, TrackAtOnceWhenAskedFor) {
    insert("CD-R");
    file("noise.bin", noise(800'000));
    BurnOptions options;
    options.strategies = {Strategy::CDTrackAtOnce};
    options.strategyIsRequired = true;
    EXPECT_DONE(burn(layout(), options));
    EXPECT_TRUE(extracted("noise.bin") == noise(800'000));
    EXPECT_EQ(state()["tracks"][0]["pregap"], 0); // the drive's own; at once it is written from the sheet
}

// A way that is only preferred gives way to the one that can be gone; one that is required does not.
TEST_F(PhysicalTest, RequiredStrategyIsObeyedOrRefused) {
    insert("CD-R");
    file("letter.txt", "Dear reader,\n");
    BurnOptions options;
    options.appendable = options.strategyIsRequired = true;
    options.strategies = {Strategy::CDSessionAtOnce};
    EXPECT_DONE(burn(layout(), options));
    const auto writes = state()["writes"];
    const BurnStatus refused = burn(layout("MORE"), options); // behind another session it goes track by track
    ASSERT_TRUE(refused.error.has_value());
    EXPECT_EQ(refused.error->code, ErrorCode::StrategyNotAvailable);
    EXPECT_EQ(state()["writes"], writes);
    options.strategies = {Strategy::CDSessionAtOnce, Strategy::CDTrackAtOnce};
    EXPECT_DONE(burn(layout("MORE"), options));

    insert("DVD+RW");
    drive()->closeTray().ok();                            // what was seen before is forgotten
    EXPECT_TRUE(drive()->capabilities().writesDVDAtOnce); // but not this kind
    options.strategies = {Strategy::DVDAtOnce};
    const BurnStatus dvd = burn(layout(), options);
    ASSERT_TRUE(dvd.error.has_value());
    EXPECT_EQ(dvd.error->code, ErrorCode::StrategyNotAvailable);
    EXPECT_EQ(state()["writes"], 0);
    options.strategyIsRequired = false;
    EXPECT_DONE(burn(layout(), options));
}

TEST_F(PhysicalTest, SoundWithCodesAndCatalogue) {
    insert("CD-R");
    Layout disc;
    disc.sessions.emplace_back();
    for (const uint64_t seed : {1, 2}) {
        Track track;
        ProducedTrack sound;
        sound.form = BlockForm::Audio;
        sound.blocks = 350;
        sound.producer = std::make_shared<Sound>(noise(350 * 2352, seed));
        track.content = sound;
        track.isrc = seed == 1 ? "DEABC1234567" : "DEABC1234568";
        disc.sessions.front().tracks.push_back(track);
    }
    BurnOptions options;
    options.mediaCatalogNumber = "1234567890123";
    EXPECT_DONE(burn(disc, options));
    const Json now = state();
    EXPECT_EQ(now["catalogue"], "1234567890123");
    ASSERT_EQ(now["tracks"].size(), 2u);
    EXPECT_EQ(now["tracks"][1]["isrc"], "DEABC1234568");
    EXPECT_EQ(now["tracks"][1]["start"], 500); // a pre-gap of two seconds
    run("cdrdao read-cd --device /dev/sr0 --driver generic-mmc --paranoia-mode 0 --datafile back.bin "
        "back.toc");
    std::ostringstream back;
    back << std::ifstream(first.parent_path() / "back.bin", std::ios::binary).rdbuf();
    std::string samples = back.str();
    for (size_t at = 0; at + 1 < samples.size(); at += 2)
        std::swap(samples[at], samples[at + 1]);
    EXPECT_TRUE(samples == noise(350 * 2352, 1) + std::string(150 * 2352, '\0') + noise(350 * 2352, 2));
}

// The disc has the length that was announced, and what didn't come is zeros: the drive was told before.
TEST_F(PhysicalTest, TrackThatEndsEarly) {
    class Short final : public TrackProducer {
      public:
        size_t produce(uint64_t block, std::span<std::byte> buffer, ProduceFlags& flags) override {
            const uint64_t count = std::min<uint64_t>(buffer.size() / blockSize, 400 - block);
            std::fill_n(buffer.begin(), count * blockSize, std::byte{'x'});
            flags.noMoreData = block + count == 400;
            return static_cast<size_t>(count * blockSize);
        }
    };
    for (const char* kind : {"CD-R", "DVD-R", "DVD+R", "BD-RE"}) {
        insert(kind);
        drive()->closeTray().ok();
        Track track;
        ProducedTrack data;
        data.blocks = 640;
        data.producer = std::make_shared<Short>();
        track.content = data;
        track.verification = Verification::Checksum;
        EXPECT_DONE(burn(Layout::ofTrack(track)));
        auto reader = drive()->openMedium();
        ASSERT_TRUE(reader.ok());
        TrackInfo read;
        read.blocks = 640;
        std::string bytes(640 * blockSize, '\0');
        const auto count = (*reader)->read(read, 0, std::as_writable_bytes(std::span(bytes)));
        ASSERT_TRUE(count.ok()) << kind << count.error().message;
        EXPECT_TRUE(bytes == std::string(400 * blockSize, 'x') + std::string(240 * blockSize, '\0')) << kind;
    }
}

// The library tells no drive of a session's format, so the disc would be another one than was asked for.
TEST_F(PhysicalTest, CDIIsRefused) {
    insert("CD-R");
    Track track;
    ProducedTrack sound;
    sound.form = BlockForm::Audio;
    sound.blocks = 350;
    sound.producer = std::make_shared<Sound>(noise(350 * 2352, 1));
    track.content = sound;
    track.sessionFormat = SessionFormat::CDI;
    const BurnStatus status = burn(Layout::ofTrack(track), {});
    ASSERT_TRUE(status.error);
    EXPECT_EQ(status.error->code, ErrorCode::FunctionNotSupported);
    EXPECT_EQ(status.error->message,
              "Track 1 is of a CD-I session, which the drive can't write; use another session format.");
    EXPECT_TRUE(medium().blank);
}

TEST_F(PhysicalTest, TestBurnWritesNothing) {
    insert("CD-R");
    file("noise.bin", noise(800'000));
    BurnOptions options;
    options.testing = true;
    EXPECT_DONE(burn(layout(), options));
    EXPECT_GT(state()["writes"], 10);
    EXPECT_EQ(state()["tracks"].size(), 0u);
    EXPECT_TRUE(medium().blank);
    EXPECT_DONE(burn(layout()));
    EXPECT_TRUE(extracted("noise.bin") == noise(800'000));
}

// Deliberate: where a test is not possible the burn is a real one.
TEST_F(PhysicalTest, TestBurnOfADVDWritesNothingWhereTheMediumKnowsTests) {
    for (const char* kind : {"DVD-R", "DVD-RW", "DVD+R", "DVD+RW"}) {
        insert(kind);
        drive()->closeTray().ok(); // what was seen before is forgotten
        fs::remove(source / "noise.bin");
        file("noise.bin", noise(800'000));
        BurnOptions options;
        options.testing = true;
        EXPECT_DONE(burn(layout(), options));
        const bool isTest = std::string(kind).starts_with("DVD-R");
        EXPECT_GT(state()["writes"], 10) << kind;
        EXPECT_EQ(medium().blank, isTest) << kind;
        if (!isTest) {
            EXPECT_TRUE(extracted("noise.bin") == noise(800'000)) << kind;
        }
    }
}

TEST_F(PhysicalTest, SessionsOfADVDAreRefusedBeforeAnythingIsWritten) {
    file("letter.txt", "Dear reader,\n");
    for (const char* kind : {"DVD-R", "DVD+R", "DVD+RW", "BD-R"}) {
        insert(kind);
        drive()->closeTray().ok();
        Layout two = layout();
        two.sessions.push_back(layout("MORE").sessions.front());
        const BurnStatus status = burn(std::move(two));
        ASSERT_TRUE(status.error.has_value()) << kind;
        EXPECT_EQ(status.error->code, ErrorCode::FunctionNotSupported) << kind;
        EXPECT_NE(status.error->message.find("one session in a burn"), std::string::npos);
        EXPECT_EQ(state()["writes"], 0) << kind;
        EXPECT_TRUE(medium().blank) << kind;
    }
}

TEST_F(PhysicalTest, SpeedIsTheDrivesOwn) {
    insert("CD-R");
    file("letter.txt", "Dear reader,\n");
    BurnOptions options;
    options.requestedSpeed = 16 * 176.4;
    EXPECT_DONE(burn(layout(), options));
    EXPECT_EQ(state()["writeSpeed"], 16 * 176);
    EXPECT_EQ(medium().currentSpeed, 16 * 176);
}

TEST_F(PhysicalTest, DriveThatTakesItsTime) {
    insert("DVD+RW", {{"faults", {{"busyEveryWrites", 5}}}});
    file("noise.bin", noise(3'000'000));
    EXPECT_DONE(burn(layout()));
    EXPECT_TRUE(extracted("noise.bin") == noise(3'000'000));
}

TEST_F(PhysicalTest, AbortStopsWritingAndTheDriveComesBack) {
    insert("DVD+RW");
    file("old.txt", "Good day,\n");
    EXPECT_DONE(burn(layout("OLD")));
    file("noise.bin", noise(60'000'000));
    BurnOptions options;
    options.overwrite = true;
    BurnJob job(drive());
    ASSERT_TRUE(job.start(layout(), options).ok());
    while (job.status().state != BurnState::TrackWrite || job.status().bytesDone == 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    change("faults", {{"slowWrites", 1000}}); // what is still to be written would take half an hour
    job.abort();
    const BurnStatus status = job.wait();
    ASSERT_TRUE(status.error.has_value());
    EXPECT_EQ(status.error->code, ErrorCode::UserCanceled);
    waitUntilFree();
    change("faults", Json::object());
    EXPECT_EQ(medium().state, MediumState::Blank) << "neither the old disc nor half of the new one";
    fs::remove(source / "noise.bin");
    file("letter.txt", "Dear reader,\n");
    EXPECT_DONE(burn(layout(), options));
    EXPECT_EQ(extracted("letter.txt"), "Dear reader,\n");
}

TEST_F(PhysicalTest, WhereNoThreadStartsTheDriveIsLetGoAllTheSame) {
    insert("DVD+RW");
    file("a.bin", noise(900'000));
    BurnOptions options;
    options.verify = false;
    BurnJob job(drive());
    {
        std::optional<NoThreads> none;
        job.setObserver([&](const BurnStatus& status) {
            if (status.state == BurnState::Finishing) none.emplace();
        });
        EXPECT_TRUE(job.start(layout(), options).ok());
        EXPECT_DONE(job.wait());
    }
    EXPECT_FALSE(drive()->isBusy());
    EXPECT_EQ(extracted("a.bin"), noise(900'000));
}
