// Images on discs, and the discs' own files as images again: what a copy of a disc is made of.
#include "Fixture.hpp"
#include "images/ReadImage.hpp"
#include "sectors/SectorCoding.hpp"

namespace {

using namespace engine;

class ImageBurn : public EngineTest {
  protected:
    ImageLayout read(const fs::path& path) {
        auto image = readImageFile(path.string());
        EXPECT_TRUE(image.ok()) << (image.ok() ? "" : image.error().message);
        return image.ok() ? std::move(*image) : ImageLayout{};
    }
    // Burns an image with verification onto a new medium, and answers the drive's folder.
    fs::path burnTo(const char* name, MediumKind kind, const ImageLayout& image) {
        VirtualDriveSetup setup;
        setup.medium = kind;
        const fs::path folder = base / "drives" / name;
        EXPECT_TRUE(makeVirtualDrive(folder.string(), setup).ok());
        BurnOptions options;
        image.applyTo(options);
        EXPECT_DONE(burn(VirtualDrive::open(folder.string()), image.layout, options));
        return folder;
    }
    std::string refusalOf(const char* name) {
        const auto image = readImageFile((source / name).string());
        return image.ok() ? "taken" : image.error().message;
    }
    // Mode 1 sectors of these data, from block 0 on.
    static std::string sectorsOf(const std::string& data) {
        std::string sectors(data.size() / 2048 * sectorBytes, '\0');
        for (size_t number = 0; number < data.size() / 2048; ++number)
            encodeSector(BlockForm::Data, static_cast<int64_t>(number),
                         std::as_bytes(std::span(data).subspan(number * 2048, 2048)),
                         std::as_writable_bytes(std::span(sectors).subspan(number * sectorBytes))
                             .first<sectorBytes>());
        return sectors;
    }
};

TEST_F(ImageBurn, AMixedDiscIsBurnedFromItsSheetAndCopied) {
    const std::string data = sectorsOf(noise(400 * 2048)), sound = noise(900 * sectorBytes, 3);
    write("disc.bin", data + sound);
    write("disc.cue", "CATALOG 0123456789012\nTITLE \"Mixed\"\nFILE \"disc.bin\" BINARY\n"
                      "  TRACK 01 MODE1/2352\n    INDEX 01 00:00:00\n"
                      "  TRACK 02 AUDIO\n    TITLE \"Two\"\n    FLAGS DCP PRE\n    ISRC USRC17607839\n"
                      "    INDEX 00 00:05:25\n    INDEX 01 00:07:25\n    INDEX 02 00:09:00\n"
                      "  TRACK 03 AUDIO\n    INDEX 01 00:12:00\n");
    const fs::path disc = burnTo("drive-1", MediumKind::CDR, read(source / "disc.cue"));
    EXPECT_TRUE(bytesOf(disc / "medium.bin") == data + sound); // sector for sector

    const fs::path copy = burnTo("drive-2", MediumKind::CDR, read(disc / "medium.cue"));
    EXPECT_TRUE(bytesOf(copy / "medium.bin") == data + sound);
    const std::string sheet = bytesOf(copy / "medium.cue");
    EXPECT_EQ(sheet, bytesOf(disc / "medium.cue"));
    EXPECT_EQ(bytesOf(copy / "medium.cdt"), bytesOf(disc / "medium.cdt"));
    EXPECT_FALSE(bytesOf(copy / "medium.cdt").empty());
    for (const char* part : {"CATALOG 0123456789012", "TITLE \"Two\"", "FLAGS DCP PRE", "ISRC USRC17607839",
                             "INDEX 00 00:05:25", "INDEX 02 00:09:00"})
        EXPECT_NE(sheet.find(part), std::string::npos) << part << " is not in\n" << sheet;
}

// A medium's own sheet tells its sessions apart also where they share a file.
TEST_F(ImageBurn, SessionsOfDataBeforeMusicComeWhereTheyWere) {
    const auto drive = makeDrive(MediumKind::CDR);
    BurnOptions open;
    open.appendable = true;
    for (const char* name : {"one.txt", "two.txt"}) {
        write(name, noise(300'000));
        EXPECT_DONE(burn(drive, layout("DATA"), open));
    }
    write("music.bin", noise(500 * sectorBytes));
    write("music.cue", "FILE music.bin BINARY\nTRACK 1 AUDIO\nINDEX 1 00:00:00\n");
    EXPECT_DONE(burn(drive, read(source / "music.cue").layout));
    const std::string sheet = bytesOf(drivePath() / "medium.cue");
    EXPECT_NE(sheet.find("INDEX 01 00:00:00\nREM LEAD-OUT 00:"), std::string::npos) << sheet;
    const fs::path copy = burnTo("drive-2", MediumKind::CDRW, read(drivePath() / "medium.cue"));
    for (const char* name : {"medium.iso", "medium.3.bin", "medium.cue"})
        EXPECT_TRUE(bytesOf(copy / name) == bytesOf(drivePath() / name)) << name;
}

// What counts from the disc's first block is burned where it was, or not at all.
TEST_F(ImageBurn, ALaterSessionElsewhereIsRefused) {
    write("disc.iso", noise(20'000 * 2048));
    write("disc.cue", "FILE disc.iso BINARY\nTRACK 1 MODE1/2048\nINDEX 1 00:00:00\nREM LEAD-OUT 00:04:00\n"
                      "REM SESSION 02\nTRACK 2 MODE1/2048\nINDEX 1 02:36:00\n"); // 300 blocks and 11400
    const ImageLayout image = read(source / "disc.cue");
    EXPECT_EQ(VirtualDrive::open(burnTo("drive-2", MediumKind::CDR, image).string())
                  ->mediumInfo()
                  ->sessions.at(1)
                  .tracks.at(0)
                  .startBlock,
              11'700u);
    const std::pair<MediumKind, std::string> others[] = {
        {MediumKind::DVDPlusR,
         "Track 2 is data that counts from block 11700 on, but on the DVD+R in \"Virtual Disc "
         "Drive 1\" it would begin at block 2352"},
        {MediumKind::DVDR,
         "Track 2 is data that counts from block 11700 on, but on the DVD-R in \"Virtual Disc "
         "Drive 1\" it would begin at block 16688"},
        {MediumKind::DVDPlusRW,
         "Track 2 is of a later session, which nobody would find on the DVD+RW in \"Virtual "
         "Disc Drive 1\""}};
    for (const auto& [kind, sentence] : others) {
        fs::remove_all(drivePath());
        const auto drive = makeDrive(kind);
        EXPECT_FAILED(burn(drive, image.layout), BadLayout,
                      sentence + "; put in a disc of the kind that the image was made from.");
        EXPECT_TRUE(drive->mediumInfo()->blank);
    }
}

// The words of songs are on the disc, and on the copy of the disc.
TEST_F(ImageBurn, SubchannelDataComeThroughAndAreCopied) {
    const std::string songs = noise(900 * 2448);
    std::string sectors;
    for (size_t at = 0; at < songs.size(); at += 2448)
        sectors += songs.substr(at, sectorBytes);
    write("songs.bin", songs);
    write("songs.cue",
          "CATALOG 0123456789012\nFILE songs.bin BINARY\nTRACK 1 CDG\nINDEX 1 00:00:00\nTRACK 2 CDG\n"
          "ISRC USRC17607839\nINDEX 0 00:05:00\nINDEX 1 00:06:00\n");
    const ImageLayout image = read(source / "songs.cue");
    const fs::path disc = burnTo("drive-1", MediumKind::CDR, image);
    EXPECT_TRUE(bytesOf(disc / "medium.bin") == sectors);
    std::string symbols;
    const auto drive = VirtualDrive::open(disc.string());
    const auto reader = drive->openMedium();
    const auto medium = drive->mediumInfo();
    for (const TrackInfo& track : medium->sessions.at(0).tracks) {
        const int64_t first = track.number == 2 ? -75 : 0;
        for (int64_t block = first; block < static_cast<int64_t>(track.blocks); ++block) {
            std::string one(2448, '\0');
            const auto got = (*reader)->read(track, block, std::as_writable_bytes(std::span(one)));
            ASSERT_TRUE(got.ok() && *got == one.size()) << block;
            symbols += one.substr(sectorBytes);
        }
    }
    ASSERT_EQ(symbols.size(), 900u * 96);
    for (size_t at = 0; at < symbols.size(); ++at)
        ASSERT_EQ(symbols[at], songs[at / 96 * 2448 + sectorBytes + at % 96] & 0x3F) << at;

    const fs::path copy = burnTo("drive-2", MediumKind::CDRW, read(disc / "medium.cue"));
    for (const char* name : {"medium.bin", "medium.sub", "medium.cue"})
        EXPECT_TRUE(bytesOf(copy / name) == bytesOf(disc / name)) << name;
}

// Deliberate: a disc of songs whose words are gone must not look like a copy.
TEST_F(ImageBurn, ASheetWhoseSubchannelsAreGoneIsRefused) {
    write("songs.bin", noise(400 * sectorBytes));
    const std::string sheet =
        "FILE songs.bin BINARY\nTRACK 1 AUDIO\nREM SUBCHANNEL RAW \"songs.sub\"\nINDEX 1 00:00:00\n";
    write("songs.cue", sheet);
    EXPECT_EQ(refusalOf("songs.cue"),
              "\"songs.cue\", line 3: the file \"songs.sub\" is not there; put it beside the "
              "sheet, or correct its name.");
    write("songs.sub", noise(400 * 96 - 1));
    EXPECT_EQ(refusalOf("songs.cue"),
              "\"songs.cue\", line 2: the file of its subchannels does not go with that of its "
              "sectors.");
    write("songs.cue",
          "FILE songs.bin BINARY\nTRACK 1 CDG\nREM SUBCHANNEL RAW \"songs.sub\"\nINDEX 1 00:00:00\n");
    EXPECT_EQ(refusalOf("songs.cue"),
              "\"songs.cue\", line 3: only sectors of 2352 bytes have their subchannels in a file "
              "beside them.");
    // What isn't of that form is a person's remark.
    write("songs.cue", "REM SUBCHANNEL RAW \"no.sub\"\nFILE songs.bin BINARY\nTRACK 1 AUDIO\nREM SUBCHANNEL\n"
                       "REM SUBCHANNEL NONE \"no.sub\"\nREM SUBCHANNEL RAW no.sub\nINDEX 1 00:00:00\n");
    EXPECT_EQ(refusalOf("songs.cue"), "taken");
}

// Packs stay packs, behind whole sectors too.
TEST_F(ImageBurn, PacksOfATableOfContentsAreKeptAsPacks) {
    const std::string data = sectorsOf(noise(310 * 2048)), symbols = noise(310 * 96, 2);
    std::string blocks;
    for (size_t sector = 0; sector < 310; ++sector)
        blocks += data.substr(sector * sectorBytes, sectorBytes) + symbols.substr(sector * 96, 96);
    write("disc.bin", blocks);
    write("disc.toc", "CD_ROM\nTRACK MODE1_RAW RW\nDATAFILE \"disc.bin\"\n");
    const fs::path disc = burnTo("drive-1", MediumKind::CDR, read(source / "disc.toc"));
    EXPECT_TRUE(bytesOf(disc / "medium.bin") == data);
    const fs::path copy = burnTo("drive-2", MediumKind::CDR, read(disc / "medium.cue"));
    EXPECT_TRUE(bytesOf(copy / "medium.sub") == bytesOf(disc / "medium.sub"));
    EXPECT_EQ(VirtualDrive::open(copy.string())->mediumInfo()->sessions.at(0).tracks.at(0).subchannel,
              SubchannelForm::Pack);
}

TEST_F(ImageBurn, AHiddenPreGapComesThrough) {
    const std::string sound = noise(500 * sectorBytes);
    write("disc.bin", sound);
    write("disc.cue", "FILE disc.bin BINARY\nTRACK 1 AUDIO\nINDEX 0 00:00:00\nINDEX 1 00:00:40\nTRACK 2 "
                      "AUDIO\nINDEX 1 00:04:00\n");
    const fs::path disc = burnTo("drive-1", MediumKind::CDR, read(source / "disc.cue"));
    EXPECT_TRUE(bytesOf(disc / "medium.bin") == sound);
    EXPECT_NE(bytesOf(disc / "medium.cue").find("INDEX 01 00:00:40"), std::string::npos)
        << bytesOf(disc / "medium.cue");
}

TEST_F(ImageBurn, APlainImageIsTheMedium) {
    write("files/one.txt", noise(5000));
    const fs::path iso = source / "disc.iso";
    ASSERT_EQ(std::system(("genisoimage -quiet -V VOLUME -o '" + iso.string() + "' '" +
                           (source / "files").string() + "'")
                              .c_str()),
              0);
    for (const MediumKind kind : {MediumKind::CDR, MediumKind::DVDPlusRW, MediumKind::BDR}) {
        const fs::path disc =
            burnTo(("drive-" + std::to_string(static_cast<int>(kind))).c_str(), kind, read(iso));
        // A medium's own alignment may follow.
        EXPECT_TRUE(bytesOf(disc / "medium.iso").starts_with(bytesOf(iso))) << static_cast<int>(kind);
    }
}

// A .bin of data only is not bound to CDs.
TEST_F(ImageBurn, TheDataOfWholeSectorsGoOntoADVD) {
    const std::string data = noise(100 * 2048);
    write("disc.bin", sectorsOf(data));
    write("disc.cue", "FILE disc.bin BINARY\nTRACK 1 MODE1/2352\nINDEX 1 00:00:00\n");
    const fs::path disc = burnTo("drive-1", MediumKind::DVDPlusRW, read(source / "disc.cue"));
    EXPECT_TRUE(bytesOf(disc / "medium.iso").starts_with(data));
}

TEST_F(ImageBurn, AFileThatVanishesFailsTheBurnAndLeavesTheDiscBlank) {
    write("disc.bin", noise(500 * sectorBytes));
    write("disc.cue", "FILE disc.bin BINARY\nTRACK 1 AUDIO\nINDEX 1 00:00:00\n");
    const ImageLayout image = read(source / "disc.cue");
    fs::remove(source / "disc.bin");
    const auto drive = makeDrive(MediumKind::CDR);
    EXPECT_FAILED(burn(drive, image.layout), FileLocationConflict,
                  "The file \"" + (source / "disc.bin").string() +
                      "\" can't be opened: No such file or directory.");
    EXPECT_TRUE(drive->mediumInfo()->blank);
}

} // namespace
