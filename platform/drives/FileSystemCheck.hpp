// Whether a file system on a medium holds together: an ISO 9660 reader of its own, that believes nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace drives {

/// Fills `buffer` (whole blocks of 2048 bytes) from a block of the disc on; false when that can't be read.
using BlockReader = std::function<bool(uint64_t block, std::span<std::byte> buffer)>;

struct FileSystemReport {
    bool isISO9660 = false;
    std::string volumeName;
    uint64_t files = 0, folders = 0;
    std::vector<std::string> others; ///< UDF and HFS+, whose folders are not looked into
    std::string problem; ///< empty: all folders can be read, and all files lie inside of what was written
};

/// Looks at the file system that begins at block `start`; what was written ends in front of block `end`.
FileSystemReport checkFileSystem(const BlockReader& read, uint64_t start, uint64_t end);

/// The name of the volume in an image file; empty when it has none, nothing when there is no file system that
/// is known (ISO 9660, UDF, HFS+). Throws Failure when the file can't be read.
std::optional<std::string> volumeIn(const std::string& path);

} // namespace drives
