// Images that are a disc's blocks: taken as they are when they are whole, refused with a reason when not.
#include "ImageFixture.hpp"

namespace {

using namespace engine;

class PlainImage : public ImageTest {
  protected:
    // An image of another program, with a few files in it.
    void make(const std::string& name, const std::string& options) {
        fs::create_directory(base / "files");
        write("files/one.txt", noise(5000));
        run("genisoimage -quiet -V 'MY DISC' " + options + " -o " + name + " files");
    }
    std::string withBytes(const std::string& bytes, size_t at, const std::string& other) {
        std::string changed = bytes;
        return changed.replace(at, other.size(), other);
    }
};

TEST_F(PlainImage, IsBurnedAsItIs) {
    for (const char* options : {"-R -J", "-udf", "-hfs", "-part -hfs"}) {
        make("disc.iso", options);
        const auto image = read("disc.iso");
        ASSERT_EQ(image.layout.sessions.size(), 1u) << options;
        ASSERT_EQ(image.layout.sessions[0].tracks.size(), 1u);
        const Track& track = image.layout.sessions[0].tracks[0];
        const BurnedTrack whole = burned(track);
        EXPECT_EQ(whole.form(), BlockForm::Data);
        EXPECT_EQ(std::get<ProducedTrack>(track.content).volumeName, "MY DISC");
        EXPECT_FALSE(track.preGapBlocks.has_value());
        EXPECT_TRUE(areSame(whole.body, bytesOf(base / "disc.iso"))) << options;
        EXPECT_TRUE(areSame(burned(track, 1).body, whole.body));
        EXPECT_TRUE(areSame(burned(track, 100000).body, whole.body));
        EXPECT_TRUE(image.cdText.empty());
        EXPECT_TRUE(image.mediaCatalogNumber.empty());
    }
}

// A Mac volume alone counts in blocks of 512; what a disc's last block lacks is filled up.
TEST_F(PlainImage, AMacVolumeMayEndWithinABlock) {
    for (const char* signature : {"H+", "HX", "BD"}) {
        const std::string bytes = withBytes(noise(100 * 2048 + 512), 1024, signature);
        write("mac.img", bytes);
        const BurnedTrack whole = burned(read("mac.img").layout.sessions.at(0).tracks.at(0));
        EXPECT_TRUE(areSame(whole.body, bytes + std::string(1536, '\0')));
    }
}

TEST_F(PlainImage, UdfAloneIsEnough) {
    std::string bytes(300 * 2048, '\0');
    bytes.replace(16 * 2048 + 1, 5, "BEA01")
        .replace(17 * 2048 + 1, 5, "NSR03")
        .replace(18 * 2048 + 1, 5, "TEA01");
    write("disc.udf", bytes);
    EXPECT_TRUE(areSame(burned(read("disc.udf").layout.sessions.at(0).tracks.at(0)).body, bytes));
    bytes.replace(17 * 2048 + 1, 5, "TEA01");
    write("disc.udf", bytes);
    EXPECT_EQ(
        refusal("disc.udf"),
        "The image \"disc.udf\" is no image of a disc: there is no ISO 9660, UDF or HFS file system in it.");
}

TEST_F(PlainImage, WhatIsNoImageIsRefused) {
    write("empty.iso", "");
    write("noise.iso", noise(100 * 2048));
    write("short.iso", "CD001");
    write("raw.bin", std::string("\0\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\0", 12) + noise(10 * cd));
    write("packed.dmg", noise(1000) + "koly" + noise(508));
    fs::create_directory(base / "folder.iso");
    EXPECT_EQ(refusal("empty.iso"), "The image \"empty.iso\" is empty.");
    EXPECT_EQ(refusal("none.iso"), "The image \"none.iso\" can't be opened: No such file or directory.");
    EXPECT_EQ(refusal("folder.iso"), "\"folder.iso\" is no file, so it can't be read as an image.");
    for (const char* name : {"noise.iso", "short.iso"})
        EXPECT_EQ(refusal(name),
                  "The image \"" + std::string(name) +
                      "\" is no image of a disc: there is no ISO 9660, UDF or HFS file system in it.");
    EXPECT_EQ(refusal("raw.bin"),
              "The image \"raw.bin\" holds whole sectors of a CD; burn the .cue file beside it.");
    EXPECT_EQ(refusal("packed.dmg"), "The image \"packed.dmg\" is a compressed disk image; convert it to a "
                                     "plain one, which begins with its file system.");
    EXPECT_EQ(refusal(""), "\"\" is no file, so it can't be read as an image.");
}

TEST_F(PlainImage, AnImageThatWasCutOffIsRefused) {
    make("disc.iso", "-R");
    const std::string bytes = bytesOf(base / "disc.iso");
    write("cut.iso", bytes.substr(0, bytes.size() - 2048));
    EXPECT_EQ(refusal("cut.iso"), "The image \"cut.iso\" is cut off: its volume has " +
                                      std::to_string(bytes.size()) + " bytes, but the file only " +
                                      std::to_string(bytes.size() - 2048) + '.');
    write("more.iso", bytes + "more");
    EXPECT_EQ(refusal("more.iso"), "The image \"more.iso\" is cut off, or is no image of a disc: its " +
                                       std::to_string(bytes.size() + 4) +
                                       " bytes are no whole number of blocks.");
}

} // namespace
