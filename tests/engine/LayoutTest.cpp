// Layouts and options that a drive or its medium can't take: each with its code and a sentence, nothing written; and
// those that look odd but are possible.
#include "BurnChecks.hpp"
#include "CDText.hpp"
#include "Fixture.hpp"
#include "Producers.hpp"
#include "RecordingCode.hpp"

using namespace engine;

class LayoutTest : public EngineTest {
  protected:
    static Track song(uint64_t blocks = 300, uint64_t seed = 1) {
        return producedTrack(std::make_shared<TestProducer>(2352, seed), BlockForm::Audio, blocks);
    }
    static Track data(uint64_t blocks = 300, uint64_t seed = 1) {
        return producedTrack(std::make_shared<TestProducer>(2048, seed), BlockForm::Data, blocks);
    }
    static Layout of(std::vector<Track> tracks) {
        Layout layout;
        layout.sessions.push_back({std::move(tracks)});
        return layout;
    }
    std::shared_ptr<VirtualDrive> drive(MediumKind kind, std::vector<std::string> lacks = {}) {
        fs::remove_all(drivePath());
        VirtualDriveSetup setup;
        setup.medium = kind;
        setup.lacks = std::move(lacks);
        EXPECT_TRUE(makeVirtualDrive(drivePath().string(), setup).ok());
        return openDrive();
    }
    void refuses(const std::shared_ptr<VirtualDrive>& on, const Layout& layout, ErrorCode code,
                 const std::string& message, const BurnOptions& options = {}) {
        const std::string before = bytesOf(drivePath() / "medium.json");
        const auto status = burn(on, layout, options);
        ASSERT_EQ(nameOf(status.state), "Failed") << message;
        EXPECT_EQ(status.error->message, message);
        EXPECT_EQ(status.error->code, code);
        EXPECT_EQ(bytesOf(drivePath() / "medium.json"), before);
        EXPECT_EQ(driveFiles(), "drive.json lock medium.json ");
    }
};

// Tracks are counted through all sessions of a disc.
TEST_F(LayoutTest, aDiscHas99TracksAndNotOneMore) {
    const auto cd = drive(MediumKind::CDR);
    BurnOptions appendable;
    appendable.appendable = true;
    EXPECT_DONE(burn(cd, of(std::vector<Track>(1, song())), appendable));
    EXPECT_FAILED(burn(cd, of(std::vector<Track>(99, song(4))), appendable), BadLayout,
                  "The disc would have 100 tracks; it can't have more than 99.");
    std::vector<Track> many;
    for (uint64_t number = 2; number <= 99; ++number)
        many.push_back(song(4, number));
    EXPECT_DONE(burn(cd, of(std::move(many)), appendable));
    const auto medium = cd->mediumInfo();
    ASSERT_EQ(medium->sessions.size(), 2u);
    ASSERT_EQ(medium->sessions[1].tracks.size(), 98u);
    EXPECT_EQ(medium->sessions[1].tracks.back().number, 99u);
    EXPECT_FAILED(burn(cd, of({song(4)}), appendable), BadLayout,
                  "The disc would have 100 tracks; it can't have more than 99.");
}

TEST_F(LayoutTest, tracksThatAMediumCannotTake) {
    refuses(drive(MediumKind::DVDR), of({data(), data()}), ErrorCode::TooManyTracksForDVD,
            "A session has 2 tracks, but the DVD-R in \"Virtual Disc Drive 1\" holds one in each; put in a "
            "CD, or burn "
            "fewer tracks.");
    refuses(drive(MediumKind::BDR), of({song()}), ErrorCode::BadLayout,
            "Track 1 is of the form \"audio\", but the BD-R in \"Virtual Disc Drive 1\" takes only data; put "
            "in a CD.");
    refuses(drive(MediumKind::CDR), of(std::vector<Track>(100, song())), ErrorCode::BadLayout,
            "The disc would have 100 tracks; it can't have more than 99.");
    refuses(drive(MediumKind::CDR), of({song(359848)}), ErrorCode::BurnNotAllowed,
            "The data needs 737.0 MB, but the CD-R in \"Virtual Disc Drive 1\" has only 737.0 MB free; take "
            "fewer files "
            "or a larger disc.");
}

TEST_F(LayoutTest, codesOfTracksAndDiscs) {
    Track track = song();
    const std::pair<const char*, const char*> wrong[] = {
        {"DEA12001234", "an ISRC has 12 characters, not 11"},
        {"DEA1200123456", "an ISRC has 12 characters, not 13"},
        {"dea120012345", "character 1 of an ISRC is a capital letter"},
        {"D1A120012345", "character 2 of an ISRC is a capital letter"},
        {"DEa120012345", "character 3 of an ISRC is a capital letter or a digit"},
        {"DEA1-0012345", "character 5 of an ISRC is a capital letter or a digit"},
        {"DEA12X012345", "character 6 of an ISRC is a digit"},
        {"DEA12001234X", "character 12 of an ISRC is a digit"}};
    for (const auto& [code, sentence] : wrong) {
        track.isrc = code;
        refuses(drive(MediumKind::CDR), of({track}), ErrorCode::CantWriteISRC,
                "Track 1 has \"" + std::string(code) + "\" as its recording code, but " + sentence + ".");
    }
    for (const char* code : {"DE1230012345", "DEABC0012345"})
        EXPECT_EQ(wrongInRecordingCode(code), std::nullopt) << code;
    track.isrc = "DEA120012345";
    refuses(drive(MediumKind::CDR, {"isrc"}), of({track}), ErrorCode::CantWriteISRC,
            "Track 1 has a recording code (ISRC), which the drive \"Virtual Disc Drive 1\" can't take; burn "
            "it without.");
    Track onDVD = data();
    onDVD.isrc = "DEA120012345";
    refuses(drive(MediumKind::DVDR), of({onDVD}), ErrorCode::CantWriteISRC,
            "Track 1 has a recording code (ISRC), which a DVD-R can't take; burn it without.");
    BurnOptions options;
    for (const char* code : {"123", "123456789012X", "12345678901234"}) {
        options.mediaCatalogNumber = code;
        refuses(drive(MediumKind::CDR), of({song()}), ErrorCode::BadLayout,
                "The media catalog number \"" + std::string(code) +
                    "\" must have 13 digits and nothing else.",
                options);
    }
}

TEST_F(LayoutTest, theSlowestSpeedThatIsAskedForHolds) {
    struct Speeds {
        double burn;
        std::vector<double> tracks;
        double held;
    };
    for (const auto& [asked, tracks, held] :
         {Speeds{1000, {500}, 500}, Speeds{500, {1000}, 500}, Speeds{500, {maximumSpeed}, 500},
          Speeds{0, {500}, 500}, Speeds{500, {0}, 500}, Speeds{500, {-1}, 500},
          Speeds{1000, {maximumSpeed, 700, 800}, 700}, Speeds{0, {0, maximumSpeed}, maximumSpeed}}) {
        Layout layout;
        for (const double speed : tracks) { // each in a session of its own, which changes nothing
            layout.sessions.push_back({{data()}});
            layout.sessions.back().tracks.front().maximumSpeed = speed;
        }
        BurnOptions options;
        options.requestedSpeed = asked;
        EXPECT_EQ(planOf(layout, options).speed, held) << asked << ", " << tracks.front();
    }
}

TEST_F(LayoutTest, indexPoints) {
    Track track = song();
    for (const std::vector<uint64_t>& points : {std::vector<uint64_t>{0}, {300}, {10, 10}, {20, 10}}) {
        track.indexPoints = points;
        const auto status = burn(drive(MediumKind::CDR), of({track}));
        EXPECT_EQ(status.error->code, ErrorCode::InvalidIndexPoints);
    }
    track.indexPoints = {10, 400};
    refuses(drive(MediumKind::CDR), of({track}), ErrorCode::InvalidIndexPoints,
            "Track 1 has an index point at block 400; index points must ascend and lie inside the track's "
            "300 blocks.");
    track.indexPoints.clear();
    for (uint64_t point = 1; point <= 99; ++point)
        track.indexPoints.push_back(point);
    refuses(drive(MediumKind::CDR), of({track}), ErrorCode::InvalidIndexPoints,
            "Track 1 has 99 index points; a track has at most 98.");
    track.indexPoints.pop_back();
    EXPECT_DONE(burn(drive(MediumKind::CDR), of({track})));
    refuses(
        drive(MediumKind::CDR, {"index-points"}), of({track}), ErrorCode::CantWriteIndexPoints,
        "Track 1 has index points, which the drive \"Virtual Disc Drive 1\" can't take; burn it without.");
}

TEST_F(LayoutTest, preGaps) {
    Track track = song();
    track.preGapBlocks = 10;
    EXPECT_DONE(burn(drive(MediumKind::CDR), of({track}))); // takes the usual one
    EXPECT_EQ(openDrive()->mediumInfo()->sessions[0].tracks[0].preGapBlocks, 150u);
    track.preGapIsRequired = true;
    refuses(drive(MediumKind::CDR), of({track}), ErrorCode::PreGapLengthNotAvailable,
            "The first track of a session must have a pre-gap of at least 150 blocks; give track 1 a longer "
            "one.");
    Track second = song();
    second.preGapBlocks = 0;
    BurnOptions options;
    options.strategies = {Strategy::CDTrackAtOnce};
    EXPECT_DONE(
        burn(drive(MediumKind::CDR), of({song(), second}), options)); // track at once takes the usual one
    EXPECT_EQ(openDrive()->mediumInfo()->sessions[0].tracks[1].preGapBlocks, 150u);
    second.preGapIsRequired = true;
    EXPECT_DONE(burn(drive(MediumKind::CDR), of({song(), second}), options)); // or goes another way
    EXPECT_EQ(openDrive()->mediumInfo()->sessions[0].tracks[1].preGapBlocks, 0u);
    options.strategyIsRequired = true;
    refuses(drive(MediumKind::CDR), of({song(), second}), ErrorCode::PreGapLengthNotAvailable,
            "Track 2 needs a pre-gap that can't be written track at once; choose another way of writing.",
            options);
}

TEST_F(LayoutTest, waysOfWriting) {
    BurnOptions options;
    options.strategies = {Strategy::CDRaw, Strategy::DVDAtOnce};
    EXPECT_DONE(burn(drive(MediumKind::CDR), of({song()}), options)); // a wish
    options.strategyIsRequired = true;
    refuses(drive(MediumKind::CDR), of({song()}), ErrorCode::StrategyNotAvailable,
            "The CD-R in \"Virtual Disc Drive 1\" can't be written in the way that was asked for; choose "
            "another one, "
            "or let the drive choose.",
            options);
    EXPECT_DONE(burn(drive(MediumKind::DVDPlusR), of({data()}), options));
    options.strategies = {Strategy::BDAtOnce};
    refuses(drive(MediumKind::BDR, {"bd-at-once"}), of({data()}), ErrorCode::StrategyNotAvailable,
            "The BD-R in \"Virtual Disc Drive 1\" can't be written in the way that was asked for; choose "
            "another one, "
            "or let the drive choose.",
            options);
    options = {};
    options.strategyIsRequired = true; // nothing is required when nothing was asked for
    EXPECT_DONE(burn(drive(MediumKind::CDR), of({song()}), options));
}

TEST_F(LayoutTest, texts) {
    CDTextBlock block;
    block.lastTrack = 1;
    block.texts[CDTextType::Title] = {"Disc", "One"};
    BurnOptions options;
    options.cdText = *cdTextPacks(std::span(&block, 1));
    refuses(drive(MediumKind::CDR), of({data()}), ErrorCode::CantWriteCDText,
            "Only a disc with audio tracks can have CD-Text; burn it without.", options);
    refuses(drive(MediumKind::CDR, {"cd-text"}), of({song()}), ErrorCode::CantWriteCDText,
            "There is CD-Text, which the drive \"Virtual Disc Drive 1\" can't take; burn it without.",
            options);
    refuses(drive(MediumKind::DVDR), of({data()}), ErrorCode::CantWriteCDText,
            "There is CD-Text, which a DVD-R can't take; burn it without.", options);
    options.cdText[5] ^= 1;
    const auto status = burn(drive(MediumKind::CDR), of({song()}), options);
    EXPECT_EQ(status.error->code, ErrorCode::CantWriteCDText);
}

TEST_F(LayoutTest, theFirstLayer) {
    BurnOptions options;
    for (const double wanted : {0.0, 1.0, 17.0, 262128.0, 262145.0, 9e9}) {
        options.doubleLayerL0DataZone = wanted;
        EXPECT_EQ(burn(drive(MediumKind::DVDRDualLayer), of({data()}), options).error->code,
                  ErrorCode::DoubleLayerL0DataZoneParameter)
            << wanted;
    }
    options.doubleLayerL0DataZone = 262144;
    options.appendable = true;
    const auto twoLayers = drive(MediumKind::DVDRDualLayer);
    EXPECT_DONE(burn(twoLayers, of({data()}), options));
    EXPECT_EQ(twoLayers->mediumInfo()->doubleLayerL0DataZoneBlocks, 262144u);
    EXPECT_EQ(burn(twoLayers, of({data()}), options).error->code, ErrorCode::DoubleLayerL0AlreadySpecified);
    EXPECT_EQ(l0DataZoneBlocks(262160, 1000, 4171712), 262160u);
    EXPECT_EQ(l0DataZoneBlocks(0.5, 2000001, 4171712), 1000016u) << "of what is burned, in whole steps";
    EXPECT_EQ(l0DataZoneBlocks(0.75, 2000000, 4171712), 1500000u);
    EXPECT_EQ(l0DataZoneBlocks(0.5, 1000, 4171712), 262144u) << "the least that a layer takes";
    EXPECT_EQ(l0DataZoneBlocks(0.999, 300015, 300015), 299728u);
    options.doubleLayerL0DataZone = 0.5;
    const auto parted = drive(MediumKind::DVDPlusRDoubleLayer);
    EXPECT_DONE(burn(parted, of({data()}), options));
    EXPECT_EQ(parted->mediumInfo()->doubleLayerL0DataZoneBlocks, 262144u);
    EXPECT_EQ(burn(parted, of({data()}), options).error->code, ErrorCode::DoubleLayerL0AlreadySpecified);
    options.doubleLayerL0DataZone = 17;
    EXPECT_DONE(burn(drive(MediumKind::DVDR), of({data()}), options)); // one layer: nothing to set
}

TEST_F(LayoutTest, sessionsOfOneBurn) {
    for (const MediumKind kind : {MediumKind::CDR, MediumKind::DVDR, MediumKind::DVDRW, MediumKind::BDRE}) {
        Layout layout;
        layout.sessions = {{{data(1000, 1)}}, {{data(500, 2)}}, {{data(777, 3)}}};
        const auto on = drive(kind);
        std::string counters;
        BurnJob job(on);
        job.setObserver([&](const BurnStatus& status) {
            if (status.state == BurnState::TrackOpen)
                counters += std::to_string(status.currentSession) + '/' +
                            std::to_string(status.totalSessions) + ' ' + std::to_string(status.currentTrack) +
                            '/' + std::to_string(status.totalTracks) + "; ";
        });
        ASSERT_TRUE(job.start(layout).ok());
        EXPECT_DONE(job.wait());
        EXPECT_EQ(counters, "1/3 1/1; 2/3 1/1; 3/3 1/1; ");
        const auto medium = on->mediumInfo();
        ASSERT_EQ(medium->sessionCount(), 3u);
        EXPECT_EQ(driveFiles(), "drive.json lock medium.iso medium.json ");
        const std::string bytes = bytesOf(image());
        EXPECT_EQ(bytes.size(), medium->blocksUsed * 2048);
        for (size_t index = 0; index < 3; ++index) {
            const TrackInfo& track = medium->sessions[index].tracks[0];
            const TestProducer same(2048, index + 1);
            EXPECT_TRUE(bytes.substr(static_cast<size_t>(track.startBlock * 2048),
                                     static_cast<size_t>(track.blocks * 2048)) ==
                        same.bytes(track.blocks * 2048));
        }
    }
}

TEST_F(LayoutTest, aTrackThatEndsEarlyLeavesTheNextInItsPlace) {
    const auto early = std::make_shared<TestProducer>(2352, 1);
    early->fault = [](uint64_t, std::span<std::byte> buffer, ProduceFlags& flags) {
        flags.noMoreData = true;
        return std::min<size_t>(buffer.size(), 100 * 2352);
    };
    EXPECT_DONE(
        burn(drive(MediumKind::CDR), of({producedTrack(early, BlockForm::Audio, 400), song(300, 2)})));
    const std::string bytes = bytesOf(drivePath() / "medium.bin");
    EXPECT_TRUE(bytes.substr(0, 400 * 2352) == early->bytes(100 * 2352) + std::string(300 * 2352, '\0'));
    EXPECT_TRUE(bytes.substr(550 * 2352) == TestProducer(2352, 2).bytes(300 * 2352));
}
