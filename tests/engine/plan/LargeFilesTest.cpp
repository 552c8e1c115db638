// A file beyond 4 GiB in each file system of a disc, read by programs that are not ours. The bytes between those that are
// looked at are holes, on disk and in the image.
#include "DataImage.hpp"
#include "Discs.hpp"

#include <cstring>

using namespace engine;

namespace {

constexpr uint64_t GiB = uint64_t{1} << 30;
constexpr uint64_t largeSize = 4 * GiB + 4101;

class LargeFiles : public test::Discs {
  protected:
    static void put(int file, uint64_t offset, std::string_view text) {
        ASSERT_EQ(::pwrite(file, text.data(), text.size(), static_cast<off_t>(offset)),
                  static_cast<ssize_t>(text.size()));
    }
    // All of the image, as a burn would write it.
    static uint64_t writeImage(const DataTrack& track, const fs::path& to) {
        const Signal signal;
        const auto image = DataImage::plan(track, signal);
        const int file = ::open(to.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        EXPECT_EQ(::ftruncate(file, static_cast<off_t>(image->blocks() * blockSize)), 0);
        std::vector<std::byte> piece(1 << 20);
        uint64_t at = 0;
        for (size_t count; (count = image->read(piece)) > 0; at += count) {
            const bool isZero =
                piece[0] == std::byte{0} && std::memcmp(piece.data(), piece.data() + 1, count - 1) == 0;
            if (!isZero) put(file, at, {reinterpret_cast<const char*>(piece.data()), count});
        }
        EXPECT_EQ(at, image->blocks() * blockSize);
        ::close(file);
        return image->blocks();
    }
};

TEST_F(LargeFiles, AFileBeyond4GiBIsWholeInEachFileSystem) {
    write("a.txt", "in front");
    write("huge.bin", "");
    write("z.txt", "behind");
    const int huge = ::open((source / "huge.bin").c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_EQ(::ftruncate(huge, largeSize), 0);
    // Across the borders of what a section of ISO 9660 and an extent of UDF hold, and across the 32 bits.
    for (const uint64_t border : {GiB - 2048, 2 * (GiB - 2048), 4 * (GiB - 2048), 4 * GiB - 2048, 4 * GiB})
        put(huge, border - 8, "<" + std::to_string(border) + ">");
    put(huge, 0, "start");
    put(huge, largeSize - 5, "end.!");
    ::close(huge);
    DataTrack track;
    track.root = Content::real(source.string(), "Large");
    track.filesystems = filesystem::all;
    const uint64_t blocks = writeImage(track, base / "large.iso");
    EXPECT_GT(blocks, largeSize / blockSize);
    EXPECT_LT(blocks, largeSize / blockSize + 1000);
    EXPECT_EQ(run("/usr/bin/python3 " LARGE_FILES " source large.iso"), "");
}

TEST_F(LargeFiles, AFileThatISO9660HasNoSizeForIsInSectionsOfLevel3Only) {
    write("huge.bin", "");
    fs::resize_file(source / "huge.bin", largeSize);
    for (const uint8_t level : {uint8_t{1}, uint8_t{2}}) {
        DataTrack track;
        track.root = Content::real(source.string(), "Large");
        track.isoLevel = level;
        const auto planned = plannedBlocks(track);
        ASSERT_FALSE(planned.ok());
        EXPECT_EQ(planned.error().code, ErrorCode::FileLocationConflict);
        EXPECT_NE(planned.error().message.find("need ISO 9660 level 3"), std::string::npos)
            << planned.error().message;
    }
}

} // namespace
