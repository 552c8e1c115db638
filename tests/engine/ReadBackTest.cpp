// A burned medium, as four independent readers see it.
#include "DataImage.hpp"
#include "Fixture.hpp"

#include <sys/stat.h>

using namespace engine;

class ReadBackTest : public EngineTest {
  protected:
    // What the readers say, with their exit status in front.
    std::string readers(const std::string& which = "") {
        const std::string command = "/usr/bin/python3 " READBACK " '" + source.string() + "' '" +
                                    image().string() + "' " + which + " 2>&1";
        FILE* pipe = ::popen(command.c_str(), "r");
        std::string text;
        char part[512];
        while (std::fgets(part, sizeof part, pipe) != nullptr)
            text += part;
        return std::to_string(::pclose(pipe)) + ' ' + text;
    }
    static void setTime(const fs::path& path, time_t seconds) {
        const timespec times[2] = {{seconds + 5, 0}, {seconds, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
    }
};

TEST_F(ReadBackTest, aMixedTreeIsOnTheDiscAsItWas) {
    write("readme.txt", "hello");
    write("empty", "");
    write("exactly one block", noise(2048));
    write("one block and a byte", noise(2049));
    write("grüße ☃ 𝄞.txt", "unicode");
    write(std::string(110, 'n') + ".txt", "a long name");
    write("UPPER.TXT", "upper");
    write("upper.txt", "lower");
    write(".hidden", "dot");
    write("with space & 'quotes' \"too\"", "quotes");
    write("a/b/c/d/e/f/g/h/i/j/deep.bin", noise(70'000, 2));
    write("big.bin", noise(5'000'001, 3));
    for (int index = 0; index < 300; ++index)
        write("many/file " + std::to_string(index),
              noise(static_cast<size_t>(index) * 31, static_cast<uint64_t>(index)));
    fs::create_directories(source / "empty folder");
    fs::create_symlink("../somewhere/else", source / "relative link");
    fs::create_symlink("/etc/hostname", source / "a" / "absolute link");
    fs::create_hard_link(source / "big.bin", source / "a" / "second name.bin");
    ASSERT_EQ(::chmod((source / "readme.txt").c_str(), 0640), 0);
    ASSERT_EQ(::chmod((source / "big.bin").c_str(), 0755), 0);
    ASSERT_EQ(::chmod((source / "empty folder").c_str(), 0700), 0);
    setTime(source / "readme.txt", 1'000'000'000);
    setTime(source / "big.bin", 1'700'000'123);
    setTime(source / "empty folder", 300'000'000);
    const auto drive = makeDrive();
    EXPECT_DONE(burn(drive, layout("Grüße 2024")));
    EXPECT_EQ(readers(), "0 327 items, 313 files, 0 problems, readers bsdtar 7zz isoinfo pycdlib\n");
    EXPECT_EQ(driveFiles(), "drive.json lock medium.iso medium.json ");
    const auto medium = drive->mediumInfo();
    ASSERT_TRUE(medium);
    EXPECT_EQ(medium->state, MediumState::Complete);
    EXPECT_EQ(medium->blocksUsed * blockSize, fs::file_size(image()));
    EXPECT_EQ(medium->sessions.at(0).tracks.at(0).volumeName, "Grüße 2024");
}

TEST_F(ReadBackTest, aFileFromAfter2038KeepsItsYear) {
    write("later.txt", "later");
    setTime(source / "later.txt", time_t{2'223'000'000}); // in June 2040
    EXPECT_DONE(burn(makeDrive(), layout()));
    FILE* pipe = ::popen(("bsdtar -tvf '" + image().string() + "' later.txt").c_str(), "r");
    std::string text;
    char part[512];
    while (std::fgets(part, sizeof part, pipe) != nullptr)
        text += part;
    EXPECT_EQ(::pclose(pipe), 0);
    EXPECT_NE(text.find(" 2040 later.txt"), text.npos) << text;
}

TEST_F(ReadBackTest, namesOfAnyBytesSurviveInRockRidge) {
    write("bad\xff\xfename", "bytes");
    write("fine", "fine");
    EXPECT_DONE(burn(makeDrive(), layout()));
    EXPECT_EQ(readers("bsdtar 7zz isoinfo"), "0 2 items, 2 files, 0 problems, readers bsdtar 7zz isoinfo\n");
}

TEST_F(ReadBackTest, aTreeOfNonEmptyFilesOnlyIsLaidOutRightly) {
    for (int index = 0; index < 20; ++index)
        write("f" + std::to_string(index),
              noise(3000 + static_cast<size_t>(index), static_cast<uint64_t>(index)));
    EXPECT_DONE(burn(makeDrive(), layout()));
    EXPECT_EQ(readers(), "0 20 items, 20 files, 0 problems, readers bsdtar 7zz isoinfo pycdlib\n");
}

TEST_F(ReadBackTest, anEmptyFolderIsAnEmptyDisc) {
    EXPECT_DONE(burn(makeDrive(), layout()));
    EXPECT_EQ(std::system(("7zz t '" + image().string() + "' >/dev/null").c_str()), 0);
}

TEST_F(ReadBackTest, aWriteOnceMediumIsWrittenInPlace) {
    write("a.bin", noise(3'000'000));
    const auto drive = makeDrive(MediumKind::DVDPlusR);
    EXPECT_DONE(burn(drive, layout()));
    EXPECT_EQ(readers(), "0 1 items, 1 files, 0 problems, readers bsdtar 7zz isoinfo pycdlib\n");
    EXPECT_FALSE(drive->mediumInfo()->overwritable);
    EXPECT_EQ(drive->mediumInfo()->blocksFree, 0u);
}

TEST_F(ReadBackTest, aShorterDiscOverALongerOneKeepsNothingOfIt) {
    write("a.bin", noise(3'000'000));
    const auto drive = makeDrive();
    EXPECT_DONE(burn(drive, layout()));
    fs::remove(source / "a.bin");
    write("b.bin", "b");
    BurnOptions options;
    options.overwrite = true;
    EXPECT_DONE(burn(drive, layout(), options));
    EXPECT_EQ(fs::file_size(image()), drive->mediumInfo()->blocksUsed * blockSize);
    EXPECT_LT(fs::file_size(image()), 200'000u);
    EXPECT_EQ(readers(), "0 1 items, 1 files, 0 problems, readers bsdtar 7zz isoinfo pycdlib\n");
}

namespace {
// Gives 7 bytes at a time, at most.
class Slow : public FileProducer {
  public:
    explicit Slow(std::string bytes) : bytes_(std::move(bytes)) {}
    uint64_t size() override { return bytes_.size(); }
    size_t read(uint64_t offset, std::span<std::byte> buffer) override {
        const size_t count =
            std::min<size_t>({7, buffer.size(), bytes_.size() - static_cast<size_t>(offset)});
        std::copy_n(reinterpret_cast<const std::byte*>(bytes_.data()) + offset, count, buffer.data());
        return count;
    }

  private:
    std::string bytes_;
};
} // namespace

TEST_F(ReadBackTest, virtualItemsLieBesideRealOnes) {
    const std::string produced = noise(100'003);
    write("real.txt", "real");
    Content root = Content::folder(
        "MIXED", {Content::file("data.txt", "from memory"),
                  Content::produced("made.bin", std::make_shared<Slow>(produced)),
                  Content::folder("inner", {Content::real((source / "real.txt").string(), "renamed.txt")}),
                  Content::link("link", "data.txt")});
    auto& children = std::get<VirtualFolder>(root.source).children;
    children[0].attributes->mode = 0600;
    children[0].attributes->modified = 1'234'567'890;
    EXPECT_DONE(burn(makeDrive(), layoutOf(std::move(root))));
    // The readers compare with a folder: the same tree, made on disk.
    write("data.txt", "from memory");
    write("made.bin", produced);
    write("inner/renamed.txt", "real");
    fs::remove(source / "real.txt");
    EXPECT_EQ(readers("7zz"), "0 4 items, 3 files, 0 problems, readers 7zz\n");
    const auto listing = base / "listing";
    ASSERT_EQ(std::system(("TZ=UTC LC_ALL=C bsdtar -tvf '" + image().string() + "' data.txt link > '" +
                           listing.string() + "'")
                              .c_str()),
              0);
    EXPECT_NE(bytesOf(listing).find("-rw-------"), std::string::npos) << bytesOf(listing);
    EXPECT_NE(bytesOf(listing).find("Feb 13  2009"), std::string::npos) << bytesOf(listing);
    EXPECT_NE(bytesOf(listing).find("link -> data.txt"), std::string::npos) << bytesOf(listing);
}

TEST_F(ReadBackTest, aFileOfMoreThan4GiBIsPlannedWhole) {
    const uint64_t size = 5'000'000'001;
    write("huge.bin", "");
    fs::resize_file(source / "huge.bin", size);
    DataTrack track;
    track.root = Content::real(source.string(), "HUGE");
    const auto blocks = plannedBlocks(track);
    ASSERT_TRUE(blocks);
    const uint64_t contents = (size + 2047) / 2048;
    EXPECT_GT(*blocks, contents);
    EXPECT_LT(*blocks, contents + 100);
    const auto drive = makeDrive(MediumKind::DVDPlusRW);
    const auto status = burn(drive, layout("HUGE"));
    EXPECT_EQ(status.error->code, ErrorCode::BurnNotAllowed) << status.error->message;
    EXPECT_TRUE(drive->mediumInfo()->blank);
}
