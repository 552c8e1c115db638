// Tracks with subchannel data: what is on the medium afterwards, read by the drive and by an own reader.
#include "SubchannelFixture.hpp"

using namespace engine;

namespace {

std::string zeros(size_t sectors) { return std::string(sectors * subchannelBytes, '\0'); }

TEST_F(SubchannelTest, SymbolsBecomeChannelsAndBack) {
    const std::string symbols = noise(subchannelBytes);
    std::array<std::byte, subchannelBytes> channels{}, again{};
    channelsOfSymbols(std::as_bytes(std::span(symbols)).first<subchannelBytes>(), channels);
    for (size_t channel = 0; channel < 8; ++channel)
        for (size_t place = 0; place < subchannelBytes; ++place) {
            const int inSymbol = symbols[place] >> (7 - channel) & 1;
            const int inRow =
                static_cast<int>(channels[channel * channelBytes + place / 8]) >> (7 - place % 8) & 1;
            ASSERT_EQ(inSymbol, inRow) << channel << ' ' << place;
        }
    symbolsOfChannels(channels, again);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(again.data()), again.size()), symbols);
}

// Each way of verifying sees the symbols, and a track without any has zeros beside its sectors.
TEST_F(SubchannelTest, AMixedDiscKeepsAllOfThem) {
    const auto first = singer(), third = singer(3, BlockForm::Data);
    Layout layout;
    layout.sessions.resize(1);
    layout.sessions[0].tracks = {song(first, 400), song(singer(2), 300, SubchannelForm::None),
                                 song(third, 310, SubchannelForm::Pack, BlockForm::Data)};
    std::vector<Track>& tracks = layout.sessions[0].tracks;
    struct Silent : TrackProducer {
        size_t produce(uint64_t, std::span<std::byte> buffer, ProduceFlags& flags) override {
            EXPECT_FALSE(flags.subchannelDataRequested);
            std::fill(buffer.begin(), buffer.end(), std::byte{7});
            return buffer.size();
        }
    };
    std::get<ProducedTrack>(tracks[1].content).producer = std::make_shared<Silent>();
    tracks[0].isrc = "USRC17607839";
    tracks[0].verification = Verification::ReceiveData;
    tracks[1].preEmphasis = true;
    tracks[1].copyState = CopyState::ProtectedOriginal;
    tracks[2].verification = Verification::ProduceAgain;
    tracks[2].indexPoints = {110, 200};
    BurnOptions options;
    options.mediaCatalogNumber = "0123456789012";
    EXPECT_DONE(burn(makeDrive(MediumKind::CDR), layout, options));
    EXPECT_EQ(first->verified, 400u);
    EXPECT_TRUE(first->wasAsked && third->wasAsked);
    EXPECT_TRUE(third->again);

    EXPECT_EQ(fs::file_size(file("medium.bin")), 1310u * sectorBytes);
    EXPECT_EQ(fs::file_size(file("medium.sub")), 1310u * subchannelBytes);
    EXPECT_EQ(told("medium.sub"), "track 1 index 1: 400 sectors from 00:02:00, 00:00:00 up, control 2\n"
                                  "track 2 index 0: 150 sectors from 00:07:25, 00:01:74 down, control 1, P\n"
                                  "track 2 index 1: 300 sectors from 00:09:25, 00:00:00 up, control 1\n"
                                  "track 3 index 0: 150 sectors from 00:13:25, 00:01:74 down, control 4, P\n"
                                  "track 3 index 1: 110 sectors from 00:15:25, 00:00:00 up, control 4\n"
                                  "track 3 index 2: 90 sectors from 00:16:60, 00:01:35 up, control 4\n"
                                  "track 3 index 3: 110 sectors from 00:18:00, 00:02:50 up, control 4\n"
                                  "catalog 0123456789012, 13 times\n"
                                  "recording USRC17607839, 4 times\n");
    EXPECT_TRUE(symbols == first->allSymbols(400) + zeros(600) + third->allSymbols(310));
    EXPECT_TRUE(readBack(0, 0) == blocksOf(*first, 400));
    EXPECT_TRUE(readBack(0, 2) == blocksOf(*third, 310));
    EXPECT_EQ(readBack(0, 1), std::string(300 * sectorBytes, '\7'));
    const std::string sheet = bytesOf(file("medium.cue"));
    EXPECT_NE(sheet.find("TRACK 01 AUDIO\n    FLAGS DCP\n    ISRC USRC17607839\n"
                         "    REM SUBCHANNEL RAW \"medium.sub\"\n    INDEX 01"),
              std::string::npos)
        << sheet;
    EXPECT_NE(sheet.find("TRACK 02 AUDIO\n    FLAGS PRE\n    INDEX 00"), std::string::npos) << sheet;
    EXPECT_NE(sheet.find("TRACK 03 MODE1/2352\n    REM SUBCHANNEL PACK \"medium.sub\"\n"), std::string::npos);
}

// P and Q are the drive's, as the codes of XA blocks are.
TEST_F(SubchannelTest, WhatAProducerPutsIntoPAndQCountsNowhere) {
    for (const Verification way :
         {Verification::Checksum, Verification::ProduceAgain, Verification::ReceiveData}) {
        fs::remove_all(drivePath());
        const auto producer = singer();
        producer->fillsDrivesBits = true;
        Track track = song(producer, 320);
        track.verification = way;
        EXPECT_DONE(burn(makeDrive(MediumKind::CDRW), Layout::ofTrack(track)));
        EXPECT_TRUE(readBack(0, 0) == blocksOf(*producer, 320));
        EXPECT_EQ(told("medium.sub"), "track 1 index 1: 320 sectors from 00:02:00, 00:00:00 up, control 2\n");
        EXPECT_TRUE(symbols == producer->allSymbols(320));
    }
}

// The two seconds in front of a session's first track are in no file; what is more of its pre-gap is.
TEST_F(SubchannelTest, AProducedPreGapBringsItsOwn) {
    const auto first = singer(), second = singer(2);
    first->preGap = second->preGap = true;
    Track one = song(first, 310), two = song(second, 320);
    one.preGapBlocks = 170;
    two.preGapBlocks = 30;
    one.verification = two.verification = Verification::ReceiveData;
    Layout layout;
    layout.sessions.push_back({{one, two}});
    EXPECT_DONE(burn(makeDrive(MediumKind::CDR), layout));
    EXPECT_EQ(first->verified, 330u);
    EXPECT_EQ(second->verified, 350u);
    EXPECT_EQ(told("medium.sub"), "track 1 index 0: 20 sectors from 00:02:00, 00:00:19 down, control 2, P\n"
                                  "track 1 index 1: 310 sectors from 00:02:20, 00:00:00 up, control 2\n"
                                  "track 2 index 0: 30 sectors from 00:06:30, 00:00:29 down, control 2, P\n"
                                  "track 2 index 1: 320 sectors from 00:06:60, 00:00:00 up, control 2\n");
    std::string right;
    for (uint64_t block = 150; block < 170; ++block)
        right += first->symbols(Singer::preGapFrom + block);
    right += first->allSymbols(310);
    for (uint64_t block = 0; block < 30; ++block)
        right += second->symbols(Singer::preGapFrom + block);
    EXPECT_TRUE(symbols == right + second->allSymbols(320));
}

TEST_F(SubchannelTest, ATrackThatEndsEarlyIsFilledUpWithoutAny) {
    const auto first = singer(), second = singer(2);
    first->endsAt = 300;
    Layout layout;
    layout.sessions.push_back({{song(first, 500), song(second, 300)}});
    EXPECT_DONE(burn(makeDrive(MediumKind::CDR), layout));
    EXPECT_EQ(fs::file_size(file("medium.bin")), 950u * sectorBytes);
    told("medium.sub");
    EXPECT_TRUE(symbols == first->allSymbols(300) + zeros(350) + second->allSymbols(300));
    EXPECT_TRUE(readBack(0, 0) == blocksOf(*first, 300) + std::string(200 * 2448, '\0'));
}

// Each session has its own files, and only one that has something to keep has one of subchannels.
TEST_F(SubchannelTest, LaterSessionsHaveFilesOfTheirOwn) {
    BurnOptions open;
    open.appendable = true;
    const auto drive = makeDrive(MediumKind::CDR);
    const auto first = singer(), third = singer(3);
    EXPECT_DONE(burn(drive, Layout::ofTrack(song(first, 300)), open));
    write("letter.txt", "Dear reader,\n");
    EXPECT_DONE(burn(drive, layout(), open));
    EXPECT_DONE(burn(drive, Layout::ofTrack(song(third, 310))));
    EXPECT_EQ(driveFiles(), "drive.json lock medium.2.bin medium.3.bin medium.3.sub medium.bin medium.cue "
                            "medium.json medium.sub ");
    EXPECT_TRUE(readBack(0, 0) == blocksOf(*first, 300));
    EXPECT_TRUE(readBack(2, 0) == blocksOf(*third, 310));
    const uint64_t start = drive->mediumInfo()->sessions.at(2).tracks.at(0).startBlock + 150;
    char text[100];
    std::snprintf(text, sizeof text,
                  "track 3 index 1: 310 sectors from %02u:%02u:%02u, 00:00:00 up, control 2\n",
                  static_cast<unsigned>(start / 4500), static_cast<unsigned>(start / 75 % 60),
                  static_cast<unsigned>(start % 75));
    EXPECT_EQ(told("medium.3.sub"), text);
}

// Data with something behind them are kept as sectors; a file system in them is found, and goes on.
TEST_F(SubchannelTest, AFileSystemWithSubchannelsIsReadAndGoneOnWith) {
    write("letter.txt", "Dear reader,\n");
    BurnOptions open;
    open.appendable = true;
    const auto drive = makeDrive(MediumKind::DVDPlusRW);
    EXPECT_DONE(burn(drive, layout("VOLUME"), BurnOptions{}));
    struct Image : TrackProducer {
        explicit Image(std::string all) : bytes(std::move(all)) {}
        size_t produce(uint64_t block, std::span<std::byte> buffer, ProduceFlags&) override {
            const auto from =
                std::as_bytes(std::span(bytes)).subspan(static_cast<size_t>(block) * 2048, 2048);
            std::copy(from.begin(), from.end(), buffer.begin());
            std::fill_n(buffer.begin() + 2048, subchannelBytes, std::byte{9});
            return 2048 + subchannelBytes;
        }
        std::string bytes;
    };
    const auto image = std::make_shared<Image>(bytesOf(file("medium.iso")));
    Track track = song(nullptr, image->bytes.size() / 2048, SubchannelForm::Raw, BlockForm::Data);
    std::get<ProducedTrack>(track.content).producer = image;
    fs::remove_all(drivePath());
    const auto cd = makeDrive(MediumKind::CDR);
    EXPECT_DONE(burn(cd, Layout::ofTrack(track), open));
    EXPECT_EQ(cd->mediumInfo()->path, file("medium.cue"));
    fs::remove(source / "letter.txt");
    write("second.txt", "And again,\n");
    EXPECT_DONE(burn(cd, layout("VOLUME"), open));
    const std::string second = bytesOf(file("medium.2.bin"));
    EXPECT_NE(second.find("LETTER.TXT"), std::string::npos) << "the later tree has the earlier one's files";
}

} // namespace
