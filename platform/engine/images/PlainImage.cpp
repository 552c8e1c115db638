// Images that are nothing but the blocks of a disc.
#include "Drive.hpp"
#include "Failure.hpp"
#include "Files.hpp"
#include "images/PieceProducer.hpp"
#include "images/ReadImage.hpp"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace engine {
namespace {

constexpr size_t blockBytes = 2048, hfsBlockBytes = 512;
constexpr uint64_t descriptorsAt = 16 * blockBytes; // ISO 9660 and UDF begin behind the system area

class File {
  public:
    explicit File(std::string path)
        : path_(std::move(path)), file_(::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        struct stat status {};
        if (!file_ || ::fstat(file_.get(), &status) != 0)
            fail(ErrorCode::FileLocationConflict,
                 "The image " + inQuotes(path_) + " can't be opened: " + systemText(errno) + '.');
        if (!S_ISREG(status.st_mode))
            fail(ErrorCode::FileLocationConflict,
                 inQuotes(path_) + " is no file, so it can't be read as an image.");
        bytes_ = static_cast<uint64_t>(status.st_size);
    }
    uint64_t bytes() const { return bytes_; }

    // What stands there; behind the end, zeros.
    std::string at(uint64_t place, size_t count) const {
        std::string bytes(count, '\0');
        for (size_t done = 0; done < count;) {
            const ssize_t got =
                ::pread(file_.get(), &bytes[done], count - done, static_cast<off_t>(place + done));
            if (got < 0 && errno == EINTR) continue;
            if (got < 0)
                fail(ErrorCode::FileLocationConflict,
                     "The image " + inQuotes(path_) + " can't be read: " + systemText(errno) + '.');
            if (got == 0) break;
            done += static_cast<size_t>(got);
        }
        return bytes;
    }
    [[noreturn]] void refuse(const std::string& why) const {
        fail(ErrorCode::BadLayout, "The image " + inQuotes(path_) + ' ' + why);
    }

  private:
    std::string path_;
    Descriptor file_;
    uint64_t bytes_ = 0;
};

// ISO 9660's primary descriptor, or any of UDF's recognition sequence (ECMA-119, 8; ECMA-167, 2/9.1).
bool hasVolumeDescriptor(const File& file) {
    constexpr int descriptors = 32;
    for (int number = 0; number < descriptors; ++number) {
        const std::string name = file.at(descriptorsAt + static_cast<uint64_t>(number) * blockBytes + 1, 5);
        if (name == "CD001" || name == "NSR02" || name == "NSR03") return true;
        if (name != "BEA01" && name != "BOOT2" && name != "CDW02") return false;
    }
    return false;
}

// HFS and HFS+, alone or behind a partition map.
bool hasMacVolume(const File& file) {
    const std::string signature = file.at(1024, 2);
    return signature == "BD" || signature == "H+" || signature == "HX" ||
           (file.at(0, 2) == "ER" && file.at(512, 2) == "PM");
}

uint64_t littleEndian(std::string_view bytes) {
    uint64_t value = 0;
    for (size_t at = bytes.size(); at-- > 0;)
        value = value << 8 | static_cast<unsigned char>(bytes[at]);
    return value;
}

// An image that was cut off while it was copied says itself how long it should be.
void checkLength(const File& file) {
    const std::string primary = file.at(descriptorsAt, blockBytes);
    if (primary.substr(1, 5) != "CD001" || primary[0] != 1) return;
    const uint64_t blocks = littleEndian(std::string_view(primary).substr(80, 4));
    const uint64_t bytes = littleEndian(std::string_view(primary).substr(128, 2));
    if (blocks * bytes > file.bytes())
        file.refuse("is cut off: its volume has " + std::to_string(blocks * bytes) +
                    " bytes, but the file only " + std::to_string(file.bytes()) + '.');
}

std::string volumeNameOf(std::string_view primary) {
    if (primary[0] != 1 || primary.substr(1, 5) != "CD001") return "";
    std::string name(primary.substr(40, 32));
    name.erase(std::min(name.find('\0'), name.size()));
    return name.erase(name.find_last_not_of(' ') + 1);
}

} // namespace

std::string volumeNameIn(ProducedTrack& track) {
    constexpr uint64_t primaryBlock = 16;
    if (track.form != BlockForm::Data || track.blocks <= primaryBlock) return "";
    const MediumInfo none{};
    uint64_t blocks = track.blocks;
    std::array<std::byte, blockBytes> block{};
    ProduceFlags flags;
    std::string name;
    if (track.producer->prepare(blocks, none) &&
        track.producer->produce(primaryBlock, block, flags) == blockBytes)
        name = volumeNameOf({reinterpret_cast<const char*>(block.data()), block.size()});
    track.producer->cleanupAfterBurn();
    return name;
}

ImageLayout readPlainImage(const std::string& path) {
    const File file(path);
    if (file.bytes() == 0) file.refuse("is empty.");
    const bool isMac = hasMacVolume(file);
    if (!hasVolumeDescriptor(file) && !isMac) {
        constexpr std::string_view sync("\0\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\0", 12);
        if (file.at(0, sync.size()) == sync)
            file.refuse("holds whole sectors of a CD; burn the .cue file beside it.");
        if (file.bytes() >= hfsBlockBytes && file.at(file.bytes() - hfsBlockBytes, 4) == "koly")
            file.refuse(
                "is a compressed disk image; convert it to a plain one, which begins with its file system.");
        file.refuse("is no image of a disc: there is no ISO 9660, UDF or HFS file system in it.");
    }
    checkLength(file);
    if (file.bytes() % (isMac ? hfsBlockBytes : blockBytes) != 0)
        file.refuse("is cut off, or is no image of a disc: its " + std::to_string(file.bytes()) +
                    " bytes are no whole number of blocks.");
    PieceTrack pieces;
    pieces.form = BlockForm::Data;
    pieces.body = {bytesOfFile(path, 0, file.bytes())};
    ProducedTrack track = producedTrack(std::move(pieces));
    track.volumeName = volumeNameIn(track);
    ImageLayout image;
    Track whole;
    whole.content = std::move(track);
    image.layout = Layout::ofTrack(std::move(whole));
    return image;
}

} // namespace engine
