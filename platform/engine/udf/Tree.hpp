// The tree that a UDF volume shows, and where its files' bytes lie.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

namespace engine::udf {

enum class NodeKind : uint8_t { Folder, File, SymbolicLink };

/// What a node is, whatever names lead to it.
struct Node {
    NodeKind kind = NodeKind::File;
    uint16_t mode = 0444; ///< permission bits, 07777
    uint32_t owner = 0;
    uint32_t group = 0;
    std::time_t accessed = 0, modified = 0, changed = 0; ///< seconds since 1970, UTC
    uint64_t size = 0;                                   ///< of a file, in bytes
    uint64_t firstBlock = 0; ///< on the medium, of a file that is not empty; contiguous
    std::string target;      ///< of a symbolic link, UTF-8, parts divided by '/'
};

/// A name in a folder. Two entries may lead to one file: a hard link.
struct Entry {
    std::string name; ///< UTF-8; see compressed() for what is kept of it
    uint32_t node = 0;
    bool hidden = false; ///< from who lists the folder
};

/// Nodes by index; 0 is the root folder. The entries of node n are those from firstEntry[n] up to
/// firstEntry[n + 1], so a tree of many files costs little memory.
struct Tree {
    std::vector<Node> nodes;
    std::vector<Entry> entries;
    std::vector<uint32_t> firstEntry;
};

/// UDF 1.02 or 1.50, as they write it: in binary-coded decimals.
enum class Revision : uint16_t { V102 = 0x0102, V150 = 0x0150 };

struct VolumeSettings {
    Revision revision = Revision::V102;
    std::string volumeName;    ///< UTF-8; at most 30 characters are kept, 15 when one is beyond Latin-1
    std::string volumeSetName; ///< UTF-8; behind 16 hexadecimal digits that make it unique
    std::time_t recorded = 0;
    uint32_t sessionStart =
        0; ///< of the volume's own blocks; the partition begins in the medium's first session
};

} // namespace engine::udf
