// Everything that can be known is said before anything is written, each with its own sentence and code.
#include "Fixture.hpp"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

using namespace engine;

class BadInputTest : public EngineTest {
  protected:
    // Fails as expected, and the medium is blank as before.
    void refuses(Layout what, ErrorCode code, const std::string& message, BurnOptions options = {}) {
        if (!fs::exists(drivePath())) makeDrive();
        const auto drive = openDrive();
        const BurnStatus status = burn(drive, std::move(what), options);
        EXPECT_EQ(nameOf(status.state), "Failed");
        ASSERT_TRUE(status.error);
        EXPECT_EQ(status.error->code, code);
        EXPECT_EQ(status.error->message, message);
        EXPECT_TRUE(drive->mediumInfo()->blank);
        EXPECT_EQ(driveFiles(), "drive.json lock medium.json ");
        EXPECT_FALSE(drive->isBusy());
    }
};

TEST_F(BadInputTest, noDrive) {
    EXPECT_FAILED(burn(nullptr, layout()), DeviceInvalid, "There is no drive to burn with; choose one.");
}

TEST_F(BadInputTest, aDriveWithoutAMedium) {
    VirtualDriveSetup setup;
    setup.medium.reset();
    ASSERT_TRUE(makeVirtualDrive(drivePath().string(), setup).ok());
    EXPECT_FAILED(burn(openDrive(), layout()), MediaNotPresent,
                  "There is no disc in \"Virtual Disc Drive 1\"; put one in.");
}

TEST_F(BadInputTest, aReadOnlyMedium) {
    EXPECT_FAILED(
        burn(makeDrive(MediumKind::DVDROM), layout()), MediaNotWritable,
        "The DVD-ROM in \"Virtual Disc Drive 1\" can only be read; put in a disc that can be written.");
}

TEST_F(BadInputTest, aFullMedium) {
    const auto drive = makeDrive();
    EXPECT_DONE(burn(drive, layout()));
    const std::string before = bytesOf(image());
    EXPECT_FAILED(burn(drive, layout()), MediaNotBlank,
                  "The DVD+RW in \"Virtual Disc Drive 1\" is not blank; put in a blank disc, or ask for it "
                  "to be overwritten.");
    EXPECT_EQ(bytesOf(image()), before);
}

TEST_F(BadInputTest, aFullWriteOnceMediumAlsoWhenOverwritingIsAskedFor) {
    const auto drive = makeDrive(MediumKind::CDR);
    EXPECT_DONE(burn(drive, layout()));
    BurnOptions options;
    options.overwrite = true;
    EXPECT_FAILED(
        burn(drive, layout(), options), MediaNotBlank,
        "The CD-R in \"Virtual Disc Drive 1\" is not blank and can't be overwritten; put in a blank disc.");
}

TEST_F(BadInputTest, aDamagedMediumDescription) {
    const auto drive = makeDrive();
    std::ofstream(drivePath() / "medium.json") << "oops";
    EXPECT_FAILED(
        burn(drive, layout()), MediaInvalid,
        "The medium can't be used, because its description medium.json is damaged: it is not JSON.");
}

TEST_F(BadInputTest, moreDataThanTheMediumHolds) {
    write("a.bin", noise(3'000'000));
    makeDrive(MediumKind::DVDPlusRW, 1000);
    refuses(layout(), ErrorCode::BurnNotAllowed,
            "The data needs 3.1 MB, but the DVD+RW in \"Virtual Disc Drive 1\" has only 2.0 MB free; take "
            "fewer files or a "
            "larger disc.");
}

TEST_F(BadInputTest, aFolderThatDoesNotExist) {
    refuses(layoutOf(Content::real("/no/such/folder", "X")), ErrorCode::FileLocationConflict,
            "\"/no/such/folder\" does not exist.");
}

TEST_F(BadInputTest, aFileInsteadOfAFolder) {
    const auto path = write("f", "f").string();
    refuses(layoutOf(Content::real(path, "X")), ErrorCode::FileLocationConflict,
            "\"" + path + "\" is not a folder; only a folder can become a disc.");
}

TEST_F(BadInputTest, aFileThatCannotBeRead) {
    const auto path = write("secret", "s");
    ASSERT_EQ(::chmod(path.c_str(), 0), 0);
    ASSERT_EQ(::chmod(base.c_str(), 0777), 0);
    ASSERT_EQ(::chmod(source.c_str(), 0777), 0);
    makeDrive();
    for (const auto& place : {base / "drives", drivePath(), drivePath() / "lock"})
        ASSERT_EQ(::chmod(place.c_str(), 0777), 0);
    if (::geteuid() == 0) {
        ASSERT_EQ(::seteuid(65534), 0); // nobody: root may read all
    }
    refuses(layout(), ErrorCode::FileLocationConflict, "The file \"" + path.string() + "\" can't be read.");
    if (::getuid() == 0) {
        ASSERT_EQ(::seteuid(0), 0);
    }
}

TEST_F(BadInputTest, aPipeASocketAndADevice) {
    const auto pipe = (source / "p").string();
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0644), 0);
    refuses(layout(), ErrorCode::FileLocationConflict,
            "\"" + pipe + "\" is a pipe, which can't stand on a disc: take it out of the folder.");
    fs::remove(pipe);
    const int server = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    pipe.copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(server, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    refuses(layout(), ErrorCode::FileLocationConflict,
            "\"" + pipe + "\" is a socket, which can't stand on a disc: take it out of the folder.");
    ::close(server);
    refuses(layoutOf(Content::folder("X", {Content::real("/dev/null")})), ErrorCode::FileLocationConflict,
            "\"/dev/null\" is a device, which can't stand on a disc: take it out of the folder.");
}

TEST_F(BadInputTest, volumeNames) {
    refuses(layoutOf(Content::folder("")), ErrorCode::BadLayout,
            "The volume has no name: give its root folder one.");
    refuses(layoutOf(Content::folder("a/b")), ErrorCode::BadLayout,
            "The volume name \"a/b\" has a \"/\", which can't stand in a volume name.");
    refuses(layoutOf(Content::folder("a\nb")), ErrorCode::BadLayout,
            "The volume name \"a?b\" has a control character, which can't stand in a volume name.");
    refuses(layoutOf(Content::folder("a\xff")), ErrorCode::BadLayout,
            "The volume name \"a?\" is not valid UTF-8 text; use another name.");
    refuses(layoutOf(Content::folder("123456789012345678901234567890123")), ErrorCode::BadLayout,
            "The volume name \"123456789012345678901234567890123\" has 33 characters; a volume name has at "
            "most 32.");
    std::string umlauts;
    for (int index = 0; index < 32; ++index)
        umlauts += "ü";
    EXPECT_TRUE(checkVolumeName(umlauts).ok()) << "characters count, not bytes";
}

TEST_F(BadInputTest, itemNames) {
    refuses(layoutOf(Content::folder("X", {Content::file("", "")})), ErrorCode::FileLocationConflict,
            "\"\" can't be the name of a file or folder.");
    refuses(layoutOf(Content::folder("X", {Content::file("..", "")})), ErrorCode::FileLocationConflict,
            "\"..\" can't be the name of a file or folder.");
    refuses(layoutOf(Content::folder("X", {Content::file("a/b", "")})), ErrorCode::FileLocationConflict,
            "\"a/b\" can't be the name of a file or folder.");
    refuses(layoutOf(Content::folder("X", {Content::file("a", "1"), Content::file("a", "2")})),
            ErrorCode::FileLocationConflict,
            "Two items of one folder are named \"a\"; give one of them another name.");
    const std::string longName(256, 'x');
    refuses(layoutOf(Content::folder("X", {Content::file(longName, "1")})), ErrorCode::FileLocationConflict,
            "The name \"" + longName + "\" is longer than 255 bytes; give it a shorter one.");
}

TEST_F(BadInputTest, layouts) {
    refuses(Layout{}, ErrorCode::BadLayout, "There is nothing to burn: the layout has no track.");
    refuses(layoutOf(Content::file("X", "data")), ErrorCode::BadLayout,
            "The root of a disc must be a folder; \"X\" is none.");
    Layout two = layout();
    two.sessions.emplace_back();
    refuses(two, ErrorCode::BadLayout, "Session 2 of the layout has no track; leave it out, or give it one.");
    Layout many = layout();
    many.sessions[0].tracks.push_back(many.sessions[0].tracks[0]);
    refuses(many, ErrorCode::TooManyTracksForDVD,
            "A session has 2 tracks, but the DVD+RW in \"Virtual Disc Drive 1\" holds one in each; put in a "
            "CD, or "
            "burn fewer tracks.");
    Track nobody;
    nobody.content = ProducedTrack{};
    refuses(Layout::ofTrack(nobody), ErrorCode::DataProduction,
            "Track 1 has no producer of its data; give it one.");
}

TEST_F(BadInputTest, aSecondStart) {
    BurnJob job(makeDrive());
    EXPECT_EQ(nameOf(job.status().state), "None");
    ASSERT_TRUE(job.start(layout()).ok());
    const auto again = job.start(layout());
    ASSERT_FALSE(again.ok());
    EXPECT_EQ(again.error().code, ErrorCode::BurnNotAllowed);
    EXPECT_DONE(job.wait());
}
