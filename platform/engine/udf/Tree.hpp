// The tree that a UDF volume shows, and where its files' bytes lie.
#pragma once

#include <array>
#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace engine::udf {

enum class NodeKind : uint8_t { Folder, File, SymbolicLink };

/// For Node::permissions: who may write may change attributes and delete.
inline constexpr uint8_t asWhoWrites = 0xFF;

/// What a node is, whatever names lead to it.
struct Node {
    NodeKind kind = NodeKind::File;
    bool isRealTime = false; ///< a file whose bytes are to be read at a constant speed
    uint16_t mode = 0444;    ///< permission bits, 07777
    /// Of others, the group and the owner, a bit for changing attributes and one for deleting, lowest first.
    uint8_t permissions = asWhoWrites;
    uint32_t owner = 0;
    uint32_t group = 0;
    std::time_t accessed = 0, modified = 0, changed = 0; ///< seconds since 1970, UTC
    uint64_t size = 0;                                   ///< of a file, in bytes
    uint64_t firstBlock = 0; ///< on the medium, of a file that is not empty; contiguous
    std::string target;      ///< of a symbolic link, UTF-8, parts divided by '/'
};

/// Dates that few items have: an extended attribute of theirs.
struct MoreDates {
    std::optional<std::time_t> created, effective, backedUp;
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
    std::unordered_map<uint32_t, MoreDates> dates; ///< of few nodes
};

/// UDF 1.02 or 1.50, as they write it: in binary-coded decimals.
enum class Revision : uint16_t { V102 = 0x0102, V150 = 0x0150 };

/// What a program may say of a volume and its set. By itself a volume is the one volume of its set.
struct VolumeIdentity {
    uint32_t primaryNumber = 0; ///< of the primary volume descriptor
    uint16_t sequenceNumber = 1, maximumSequenceNumber = 1;
    uint16_t interchangeLevel = 2, maximumInterchangeLevel = 2;
    std::string applicationSuffix;      ///< up to 8 bytes behind the application's identifier
    std::string setName;                ///< goes before VolumeSettings::volumeSetName
    std::optional<std::time_t> setTime; ///< else when the volume was recorded
    std::array<uint8_t, 8> setUse{'0', '0', '0', '0', '0', '0', '0', '0'}; ///< Latin-1
};

struct VolumeSettings {
    Revision revision = Revision::V102;
    std::string volumeName;    ///< UTF-8; at most 30 characters are kept, 15 when one is beyond Latin-1
    std::string volumeSetName; ///< UTF-8; behind 16 characters that make it unique
    VolumeIdentity identity = {};
    std::time_t recorded = 0;
    uint32_t sessionStart =
        0; ///< of the volume's own blocks; the partition begins in the medium's first session
};

} // namespace engine::udf
