// An ISO 9660 reader that believes nothing.
#include "FileSystemCheck.hpp"
#include "Console.hpp"
#include "Failure.hpp"
#include "Files.hpp"
#include "MediumKind.hpp"
#include "Utf8.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <set>
#include <unistd.h>
#include <vector>

namespace drives {
namespace {

using Block = std::array<std::byte, engine::blockSize>;
constexpr uint64_t firstDescriptor = 16, mostDescriptors = 100;
constexpr size_t recordHead = 33;

uint32_t byteAt(std::span<const std::byte> bytes, size_t offset) {
    return std::to_integer<uint32_t>(bytes[offset]);
}

// A number that stands there twice, in both orders of bytes; nothing when the two differ.
std::optional<uint32_t> twice(std::span<const std::byte> bytes, size_t offset) {
    uint32_t little = 0, big = 0;
    for (size_t index = 0; index < 4; ++index) {
        little |= byteAt(bytes, offset + index) << (8 * index);
        big |= byteAt(bytes, offset + 4 + index) << (8 * (3 - index));
    }
    return little == big ? std::optional(little) : std::nullopt;
}

bool hasIdentifier(std::span<const std::byte> block, const char* identifier) {
    return std::memcmp(block.data() + 1, identifier, 5) == 0;
}

std::string volumeNameIn(std::span<const std::byte> descriptor) {
    std::string name(reinterpret_cast<const char*>(descriptor.data()) + 40, 32);
    name.erase(name.find_last_not_of(std::string(" \0", 2)) + 1);
    return engine::printable(name);
}

struct Extent {
    uint32_t block, bytes;
    bool operator<(const Extent& other) const { return block < other.block; }
};

class Walk {
  public:
    Walk(const BlockReader& read, uint64_t end, FileSystemReport& report)
        : read_(read), end_(end), report_(report) {}

    void from(std::span<const std::byte> rootRecord) {
        take(rootRecord);
        while (report_.problem.empty() && !open_.empty()) {
            const Extent folder = open_.back();
            open_.pop_back();
            checkInterruption();
            list(folder);
        }
    }

  private:
    void problem(const std::string& text) {
        if (report_.problem.empty()) report_.problem = text;
    }

    void list(const Extent& folder) {
        constexpr size_t blockSize{engine::blockSize};
        std::vector<std::byte> bytes((folder.bytes + blockSize - 1) / blockSize * blockSize);
        if (!read_(folder.block, bytes))
            return problem("the folder at block " + std::to_string(folder.block) + " can't be read");
        for (size_t offset = 0; offset < folder.bytes && report_.problem.empty();) {
            const size_t inBlock = offset % blockSize, length = byteAt(bytes, offset);
            if (length == 0) { // no record crosses a block's end
                offset += blockSize - inBlock;
                continue;
            }
            if (length <= recordHead || inBlock + length > blockSize)
                return problem("the folder at block " + std::to_string(folder.block) + " is damaged");
            const std::span<const std::byte> record(bytes.data() + offset, length);
            const size_t nameLength = byteAt(record, 32);
            const bool itself = nameLength == 1 && byteAt(record, recordHead) <= 1;
            if (!itself) take(record);
            offset += length;
        }
    }

    void take(std::span<const std::byte> record) {
        const auto block = twice(record, 2), bytes = twice(record, 10);
        if (!block || !bytes) return problem("a record holds two numbers that should be the same");
        const uint64_t last =
            uint64_t{*block} + (uint64_t{*bytes} + engine::blockSize - 1) / engine::blockSize;
        const bool isFolder = (byteAt(record, 25) & 2) != 0;
        if (*bytes > 0 && last > end_)
            return problem(std::string(isFolder ? "a folder" : "a file") + " lies at block " +
                           std::to_string(*block) + ", behind the end of what was written");
        if (!isFolder) {
            ++report_.files;
            return;
        }
        ++report_.folders;
        if (*bytes > folderLimit) return problem("a folder is too large to be one");
        if (!seen_.insert(*block).second) return problem("a folder stands in two places");
        open_.push_back({*block, *bytes});
    }

    static constexpr uint32_t folderLimit = 256u << 20;
    const BlockReader& read_;
    uint64_t end_;
    FileSystemReport& report_;
    std::vector<Extent> open_;
    std::set<uint32_t> seen_;
};

bool isHFSPlusHeader(const Block& block) {
    constexpr size_t offset = 1024;
    return std::memcmp(block.data() + offset, "H+", 2) == 0 ||
           std::memcmp(block.data() + offset, "HX", 2) == 0;
}

// At the start of the disc, or where the partition map that stands there leads: its entries have 512 bytes, and count from the
// medium's start in such units (engine/hfsplus/PartitionMap.hpp).
bool hasHFSPlus(const BlockReader& read, uint64_t start, uint64_t end) {
    constexpr size_t unit = 512, unitsInBlock = engine::blockSize / unit, mostEntries = 8;
    constexpr size_t startAt = 8, typeAt = 48;
    Block block;
    if (start >= end || !read(start, block)) return false;
    if (isHFSPlusHeader(block)) return true;
    if (std::memcmp(block.data(), "ER", 2) != 0) return false;
    for (size_t entry = 1; entry < mostEntries; ++entry) {
        if (!read(start + entry / unitsInBlock, block)) return false;
        const auto at = std::span(block).subspan(entry % unitsInBlock * unit, unit);
        if (std::memcmp(at.data(), "PM", 2) != 0) return false;
        if (std::memcmp(at.data() + typeAt, "Apple_HFS", 10) != 0) continue;
        uint32_t first = 0;
        for (size_t index = 0; index < 4; ++index)
            first = first << 8 | byteAt(at, startAt + index);
        return read(first / unitsInBlock, block) && isHFSPlusHeader(block);
    }
    return false;
}

std::vector<std::string> otherSystems(const BlockReader& read, uint64_t start, uint64_t end) {
    std::vector<std::string> others;
    Block block;
    if (hasHFSPlus(read, start, end)) others.push_back("HFS+");
    for (uint64_t index = firstDescriptor; index < firstDescriptor + mostDescriptors; ++index) {
        if (start + index >= end || !read(start + index, block)) break;
        if (hasIdentifier(block, "NSR02") || hasIdentifier(block, "NSR03")) {
            others.push_back("UDF");
            break;
        }
        if (!hasIdentifier(block, "CD001") && !hasIdentifier(block, "BEA01")) break;
    }
    return others;
}

} // namespace

FileSystemReport checkFileSystem(const BlockReader& read, uint64_t start, uint64_t end) {
    FileSystemReport report;
    report.others = otherSystems(read, start, end);
    Block block;
    for (uint64_t index = firstDescriptor; index < firstDescriptor + mostDescriptors; ++index) {
        if (start + index >= end) break;
        if (!read(start + index, block)) {
            if (report.isISO9660 && report.problem.empty()) report.problem = "its descriptors can't be read";
            return report;
        }
        if (!hasIdentifier(block, "CD001")) break;
        const uint32_t type = byteAt(block, 0);
        if (type == 255) return report;
        // 2 is a tree beside the first, for other systems (Joliet).
        if (type != 1 && type != 2) continue;
        if (type == 1 && !report.isISO9660) report.volumeName = volumeNameIn(block);
        report.isISO9660 = true;
        const auto size = twice(block, 80);
        if (!size) report.problem = "its descriptor holds two numbers that should be the same";
        if (size && start == 0 && *size > end)
            report.problem = "it is " + std::to_string(*size) + " blocks long, but only " +
                             std::to_string(end) + " were written";
        if (!report.problem.empty()) return report;
        FileSystemReport tree;
        Walk(read, end, tree).from(std::span<const std::byte>(block).subspan(156, 34));
        report.files = std::max(report.files, tree.files);
        report.folders = std::max(report.folders, tree.folders);
        report.problem = tree.problem;
        if (!report.problem.empty()) return report;
    }
    if (report.isISO9660) report.problem = "its list of descriptors has no end";
    return report;
}

std::optional<std::string> volumeIn(const std::string& path) {
    const engine::Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file)
        engine::fail(engine::ErrorCode::FileLocationConflict, engine::inQuotes(path) + " can't be read.",
                     engine::systemText(errno));
    Block block;
    const auto readAt = [&](uint64_t number) {
        return ::pread(file.get(), block.data(), block.size(), static_cast<off_t>(number * block.size())) ==
               static_cast<ssize_t>(block.size());
    };
    if (readAt(firstDescriptor) && hasIdentifier(block, "CD001")) return volumeNameIn(block);
    if (readAt(firstDescriptor) && hasIdentifier(block, "BEA01")) return "";
    if (readAt(0) && isHFSPlusHeader(block)) return "";
    return std::nullopt;
}

} // namespace drives
