// CDs that are not only data: sectors with a cue sheet, as programs that are not ours read them.
#include "CDText.hpp"
#include "Fixture.hpp"
#include "Producers.hpp"
#include "VirtualMedium.hpp"
#include "images/ReadImage.hpp"
#include "sectors/SectorCoding.hpp"

using namespace engine;

class SheetTest : public EngineTest {
  protected:
    static std::shared_ptr<TestProducer> audio(uint64_t seed) {
        return std::make_shared<TestProducer>(2352, seed);
    }
    static Track song(std::shared_ptr<TestProducer> producer, uint64_t blocks) {
        return producedTrack(std::move(producer), BlockForm::Audio, blocks);
    }
    std::string output(const std::string& command) const {
        const auto to = base / "output";
        EXPECT_EQ(std::system((command + " > '" + to.string() + "' 2>&1").c_str()), 0)
            << command << bytesOf(to);
        return bytesOf(to);
    }
    fs::path file(const char* name) const { return drivePath() / name; }
    std::string sheet() const { return bytesOf(file("medium.cue")); }

    static BurnOptions open() {
        BurnOptions options;
        options.appendable = true;
        return options;
    }
};

TEST_F(SheetTest, ofAnAudioDisc) {
    const auto one = audio(1), two = audio(2), three = audio(3);
    Layout layout;
    layout.sessions.emplace_back();
    auto& tracks = layout.sessions[0].tracks;
    tracks = {song(one, 700), song(two, 900), song(three, 333)};
    tracks[0].isrc = "DEA120012345";
    tracks[0].indexPoints = {100, 450};
    tracks[1].preGapBlocks = 75;
    tracks[1].preEmphasis = true;
    tracks[2].preGapBlocks = 0;
    tracks[2].copyState = CopyState::ProtectedCopy;
    BurnOptions options;
    options.mediaCatalogNumber = "0123456789012";
    EXPECT_DONE(burn(makeDrive(MediumKind::CDR), layout, options));

    EXPECT_EQ(sheet(), "CATALOG 0123456789012\n"
                       "FILE \"medium.bin\" BINARY\n"
                       "  TRACK 01 AUDIO\n"
                       "    FLAGS DCP\n"
                       "    ISRC DEA120012345\n"
                       "    INDEX 01 00:00:00\n"
                       "    INDEX 02 00:01:25\n"
                       "    INDEX 03 00:06:00\n"
                       "  TRACK 02 AUDIO\n"
                       "    FLAGS DCP PRE\n"
                       "    INDEX 00 00:09:25\n"
                       "    INDEX 01 00:10:25\n"
                       "  TRACK 03 AUDIO\n"
                       "    FLAGS SCMS\n"
                       "    INDEX 01 00:22:25\n");
    const std::string bytes = bytesOf(file("medium.bin"));
    ASSERT_EQ(bytes.size(), (700 + 75 + 900 + 333) * 2352u);
    EXPECT_TRUE(bytes == one->bytes(700 * 2352) + std::string(75 * 2352, '\0') + two->bytes(900 * 2352) +
                             three->bytes(333 * 2352));
    const auto medium = openDrive()->mediumInfo();
    EXPECT_EQ(medium->path, file("medium.cue").string());
    EXPECT_EQ(medium->trackCount(), 3u);
    EXPECT_EQ(medium->sessions[0].tracks[1].startBlock, 775u);
    EXPECT_EQ(medium->sessions[0].tracks[0].isrc, "DEA120012345");
    EXPECT_EQ(medium->mediaCatalogNumber, "0123456789012");

    const std::string seen =
        output("cd-info --no-cddb --no-device-info --cue-file='" + file("medium.cue").string() + "'");
    EXPECT_NE(seen.find("1: 00:02:00  000000 audio"), std::string::npos) << seen;
    EXPECT_NE(seen.find("2: 00:12:25  000775 audio"), std::string::npos) << seen;
    EXPECT_NE(seen.find("3: 00:24:25  001675 audio"), std::string::npos) << seen;
    EXPECT_NE(seen.find("170: 00:28:58  002008 leadout"), std::string::npos) << seen;
    EXPECT_NE(seen.find("(MCN): 0123456789012"), std::string::npos) << seen;
    const std::string toc = output("cd '" + drivePath().string() + "' && cdrdao show-toc medium.cue");
    for (const char* line : {"ISRC DE A12 00 12345", "INDEX  2 00:01:25(   100)", "INDEX  3 00:06:00(   450)",
                             "PREGAP 00:01:00(    75)", "START  00:10:25(   775)", "END    00:26:58(  2008)"})
        EXPECT_NE(toc.find(line), std::string::npos) << line << '\n' << toc;
    // bchunk cuts tracks from index 1 to the next index 1.
    output("cd '" + base.string() + "' && bchunk '" + file("medium.bin").string() + "' '" +
           file("medium.cue").string() + "' cut");
    EXPECT_TRUE(bytesOf(base / "cut02.cdr") == two->bytes(900 * 2352));
    EXPECT_TRUE(bytesOf(base / "cut03.cdr") == three->bytes(333 * 2352));
}

TEST_F(SheetTest, readsBackTrackByTrack) {
    const auto one = audio(1), data = std::make_shared<TestProducer>(2048, 2),
               xa = std::make_shared<TestProducer>(2336, 3);
    Layout layout;
    layout.sessions.emplace_back();
    layout.sessions[0].tracks = {
        producedTrack(data, BlockForm::Data, 300), song(one, 400),
        producedTrack(std::make_shared<TestProducer>(2048, 5), BlockForm::Mode2Form1, 310)};
    for (Track& each : layout.sessions[0].tracks)
        each.verification = Verification::ReceiveData;
    const auto drive = makeDrive(MediumKind::CDRW);
    EXPECT_DONE(burn(drive, layout));
    const auto medium = drive->mediumInfo();
    auto reader = drive->openMedium();
    ASSERT_TRUE(reader.ok());
    for (size_t index = 0; index < 3; ++index) {
        const TrackInfo& track = medium->sessions[0].tracks[index];
        const auto& content = std::get<ProducedTrack>(layout.sessions[0].tracks[index].content);
        const auto producer = std::static_pointer_cast<TestProducer>(content.producer);
        EXPECT_EQ(track.form, content.form);
        std::string read(static_cast<size_t>(track.blocks * bytesPerBlock(track.form)), '\0');
        const auto count = (*reader)->read(track, 0, std::as_writable_bytes(std::span(read)));
        ASSERT_TRUE(count.ok());
        ASSERT_EQ(*count, read.size());
        EXPECT_TRUE(read == producer->bytes(read.size()));
    }
    EXPECT_NE(sheet().find("TRACK 01 MODE1/2352"), std::string::npos);
    EXPECT_NE(sheet().find("TRACK 03 MODE2/2352"), std::string::npos);
    // What is damaged is said, not read.
    {
        std::fstream bin(file("medium.bin"), std::ios::in | std::ios::out | std::ios::binary);
        bin.seekp(100 * 2352 + 500);
        bin.put('x');
    }
    reader = drive->openMedium();
    std::string block(2048, '\0');
    const auto damaged =
        (*reader)->read(medium->sessions[0].tracks[0], 100, std::as_writable_bytes(std::span(block)));
    ASSERT_FALSE(damaged.ok());
    EXPECT_EQ(damaged.error().code, ErrorCode::MediaInvalid);
    EXPECT_EQ(damaged.error().info, "block 100");
}

// Deliberate: the sheet says MODE2/2352 of CD-I as well, because cd-info and cdrdao refuse one with CDI/2352. What the
// session is stands in the description, and in a remark for who copies the disc by its sheet.
TEST_F(SheetTest, keepsCDIApartFromOtherSessions) {
    const auto track = [](BlockForm form, SessionFormat format) {
        Track made = producedTrack(std::make_shared<TestProducer>(bytesPerBlock(form), 4), form, 310);
        made.sessionFormat = format;
        return made;
    };
    Layout layout;
    layout.sessions.resize(2);
    layout.sessions[0].tracks = {track(BlockForm::Mode2Form1, SessionFormat::CDI),
                                 track(BlockForm::Mode2Form2, SessionFormat::Plain), song(audio(1), 400)};
    layout.sessions[1].tracks = {track(BlockForm::Mode2Form1, SessionFormat::XA)};
    EXPECT_DONE(burn(makeDrive(MediumKind::CDR), layout));
    const auto medium = openDrive()->mediumInfo();
    ASSERT_EQ(medium->sessionCount(), 2u);
    for (const TrackInfo& each : medium->sessions[0].tracks)
        EXPECT_TRUE(each.isCDI) << each.number;
    EXPECT_FALSE(medium->sessions[1].tracks[0].isCDI);
    EXPECT_NE(bytesOf(file("medium.json")).find("\"CD-I\""), std::string::npos);
    EXPECT_TRUE(sheet().starts_with("REM SESSION 01\nREM SESSION-FORMAT CD-I\n")) << sheet();
    EXPECT_NE(sheet().find("TRACK 01 MODE2/2352"), std::string::npos) << sheet();
    EXPECT_NE(output("cd '" + drivePath().string() + "' && cdrdao show-toc medium.cue")
                  .find("TRACK  1  Mode MODE2_RAW"),
              std::string::npos);
    const auto read = readImageFile(file("medium.cue").string());
    ASSERT_TRUE(read.ok());
    ASSERT_EQ(read->layout.sessions.size(), 2u);
    for (const Track& each : read->layout.sessions[0].tracks)
        EXPECT_EQ(each.sessionFormat, SessionFormat::CDI);
    EXPECT_EQ(read->layout.sessions[1].tracks[0].sessionFormat, SessionFormat::Plain);
    EXPECT_NE(output("cd-info --no-cddb --no-device-info --cue-file='" + file("medium.cue").string() + "'")
                  .find("1: 00:02:00  000000 XA"),
              std::string::npos);
}

TEST_F(SheetTest, refusesWhatIsNoCDISession) {
    const auto drive = makeDrive(MediumKind::CDR);
    Layout layout;
    layout.sessions.emplace_back();
    auto& tracks = layout.sessions[0].tracks;
    tracks = {producedTrack(std::make_shared<TestProducer>(2048), BlockForm::Mode2Form1, 310),
              producedTrack(std::make_shared<TestProducer>(2324), BlockForm::Mode2Form2, 310)};
    tracks[0].sessionFormat = SessionFormat::CDI;
    tracks[1].sessionFormat = SessionFormat::XA;
    EXPECT_FAILED(
        burn(drive, layout), BadLayout,
        "Track 2 is of another session format than a track before it; a session is CD-I or CD-XA, so "
        "give each a session of its own.");
    for (const BlockForm form : {BlockForm::Data, BlockForm::RawMode1}) {
        tracks[1] = producedTrack(std::make_shared<TestProducer>(bytesPerBlock(form)), form, 310);
        EXPECT_FAILED(burn(drive, layout), BadLayout,
                      "Track 2 is of the form \"" + std::string(nameOf(form)) +
                          "\", which is not for CD-I; use blocks of mode 2 or another session format.");
    }
    EXPECT_EQ(drive->mediumInfo()->state, MediumState::Blank);
}

TEST_F(SheetTest, keepsPreGapsThatAreProduced) {
    const auto one = audio(1), two = audio(2);
    one->preGap = two->preGap = true;
    Layout layout;
    layout.sessions.emplace_back();
    layout.sessions[0].tracks = {song(one, 300), song(two, 300)};
    layout.sessions[0].tracks[0].preGapBlocks = 200; // 50 more than must be: a hidden track
    layout.sessions[0].tracks[1].preGapBlocks = 20;
    for (Track& each : layout.sessions[0].tracks)
        each.verification = Verification::ReceiveData;
    EXPECT_DONE(burn(makeDrive(MediumKind::CDR), layout));
    EXPECT_EQ(one->calls(), "prepare producePreGap produce prepareForVerification verifyPreGap verify "
                            "cleanupAfterVerification cleanupAfterBurn ");
    EXPECT_TRUE(bytesOf(file("medium.bin")) == std::string(50 * 2352, 0x55) + one->bytes(300 * 2352) +
                                                   std::string(20 * 2352, 0x55) + two->bytes(300 * 2352));
    EXPECT_NE(sheet().find("    INDEX 00 00:00:00\n    INDEX 01 00:00:50\n"), std::string::npos) << sheet();
    EXPECT_EQ(openDrive()->mediumInfo()->sessions[0].tracks[0].startBlock, 50u);
}

TEST_F(SheetTest, namesCDText) {
    CDTextBlock block;
    block.lastTrack = 2;
    block.texts[CDTextType::Title] = {"The \"Disc\"", "One", "Two"};
    block.texts[CDTextType::Performer] = {"Band", "Band", "Guest"};
    BurnOptions options;
    options.cdText = *cdTextPacks(std::span(&block, 1));
    Layout layout;
    layout.sessions.emplace_back();
    layout.sessions[0].tracks = {song(audio(1), 300), song(audio(2), 300)};
    const auto drive = makeDrive(MediumKind::CDRW);
    EXPECT_DONE(burn(drive, layout, options));
    EXPECT_TRUE(drive->mediumInfo()->hasCDText);
    EXPECT_EQ(*(*drive->openMedium())->cdText(), options.cdText);
    EXPECT_NE(sheet().find("CDTEXTFILE \"medium.cdt\"\nTITLE \"The 'Disc'\"\nPERFORMER \"Band\"\n"),
              std::string::npos)
        << sheet();
    const std::string seen =
        output("cd-info --no-cddb --no-device-info --cue-file='" + file("medium.cue").string() + "'");
    EXPECT_NE(seen.find("TITLE: Two"), std::string::npos) << seen;
    EXPECT_NE(seen.find("PERFORMER: Guest"), std::string::npos) << seen;
}

TEST_F(SheetTest, aFileSystemBehindMusic) {
    write("a.txt", "after the music");
    Layout music;
    music.sessions.emplace_back();
    music.sessions[0].tracks = {song(audio(1), 400), song(audio(2), 400)};
    const auto drive = makeDrive(MediumKind::CDR);
    EXPECT_DONE(burn(drive, music, open()));
    EXPECT_EQ(drive->mediumInfo()->state, MediumState::Appendable);
    const std::string first = bytesOf(file("medium.bin"));
    EXPECT_DONE(burn(drive, layout("EXTRA"), open()));
    EXPECT_TRUE(bytesOf(file("medium.bin")) == first);
    auto medium = drive->mediumInfo();
    ASSERT_EQ(medium->sessionCount(), 2u);
    EXPECT_EQ(medium->sessions[1].tracks[0].number, 3u);
    EXPECT_EQ(medium->sessions[1].tracks[0].startBlock, 950u + 11400);
    EXPECT_NE(sheet().find("REM SESSION 02\nFILE \"medium.2.bin\" BINARY\n  TRACK 03 MODE1/2352\n"),
              std::string::npos)
        << sheet();
    // A third session sees the file system through the sectors, past the music.
    write("b.txt", "and more");
    fs::remove(source / "a.txt");
    EXPECT_DONE(burn(drive, layout("EXTRA"), {}));
    medium = drive->mediumInfo();
    ASSERT_EQ(medium->sessionCount(), 3u);
    // Taken out of its sectors, the newest session is an image that isoinfo reads.
    auto reader = drive->openMedium();
    const TrackInfo& track = medium->sessions[2].tracks[0];
    std::string user(static_cast<size_t>(track.blocks * 2048), '\0');
    ASSERT_EQ(*(*reader)->read(track, 0, std::as_writable_bytes(std::span(user))), user.size());
    std::ofstream(base / "session.iso", std::ios::binary) << user;
    EXPECT_EQ(output("isoinfo -R -N " + std::to_string(track.startBlock) + " -i '" +
                     (base / "session.iso").string() + "' -f | sort | tr '\\n' ' '"),
              "/a.txt /b.txt ");
}

TEST_F(SheetTest, musicBehindAFileSystem) {
    write("a.txt", "before the music");
    for (const MediumKind kind : {MediumKind::CDR, MediumKind::CDRW}) {
        fs::remove_all(drivePath());
        const auto drive = makeDrive(kind);
        EXPECT_DONE(burn(drive, layout("FIRST"), open()));
        const std::string first = bytesOf(image());
        Layout music;
        music.sessions.emplace_back();
        music.sessions[0].tracks = {song(audio(7), 400)};
        EXPECT_DONE(burn(drive, music));
        EXPECT_TRUE(bytesOf(image()) == first);
        EXPECT_EQ(driveFiles(), "drive.json lock medium.2.bin medium.cue medium.iso medium.json ");
        EXPECT_EQ(sheet(),
                  "REM SESSION 01\nFILE \"medium.iso\" BINARY\n  TRACK 01 MODE1/2048\n    INDEX 01 00:00:00\n"
                  "REM SESSION 02\nFILE \"medium.2.bin\" BINARY\n  TRACK 02 AUDIO\n    FLAGS DCP\n"
                  "    INDEX 01 00:00:00\n");
        const auto medium = drive->mediumInfo();
        EXPECT_EQ(medium->path, file("medium.cue").string());
        auto reader = drive->openMedium();
        for (const SessionInfo& session : medium->sessions) {
            const TrackInfo& track = session.tracks[0];
            std::string read(static_cast<size_t>(track.blocks * bytesPerBlock(track.form)), '\0');
            ASSERT_EQ(*(*reader)->read(track, 0, std::as_writable_bytes(std::span(read))), read.size());
            EXPECT_TRUE(read == (session.number == 1 ? first : audio(7)->bytes(400 * 2352)));
        }
    }
}

TEST_F(SheetTest, overwritingReplacesAllFiles) {
    const auto drive = makeDrive(MediumKind::CDRW);
    Layout music;
    music.sessions.emplace_back();
    music.sessions[0].tracks = {song(audio(1), 400), song(audio(2), 400)};
    EXPECT_DONE(burn(drive, music));
    EXPECT_EQ(driveFiles(), "drive.json lock medium.bin medium.cue medium.json ");
    BurnOptions options;
    options.overwrite = true;
    write("a.txt", "data");
    EXPECT_DONE(burn(drive, layout(), options));
    EXPECT_EQ(driveFiles(), "drive.json lock medium.iso medium.json ");
    EXPECT_DONE(burn(drive, music, options));
    EXPECT_EQ(driveFiles(), "drive.json lock medium.bin medium.cue medium.json ");
    EXPECT_TRUE(bytesOf(file("medium.bin")).starts_with(audio(1)->bytes(400 * 2352)));
}
