// The tree that an HFS+ volume shows, and where its files' bytes lie.
#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

namespace engine::hfsplus {

/// An alias is the Finder's: a file whose resource fork tells where another item of this volume is.
enum class NodeKind : uint8_t { Folder, File, SymbolicLink, Alias };

/// Bytes that lie together on the medium, from the start of a block of 2048.
struct Extent {
    uint32_t firstBlock = 0;
    uint64_t bytes = 0; ///< whole blocks in all but the last extent of a fork; never 0
};

/// A fork's extents in Tree::extents; an empty fork has none.
struct Fork {
    uint32_t first = 0, count = 0;
};

/// No time: what is earlier than HFS+ can tell, which begins with 1904.
inline constexpr std::time_t never = -2'082'844'800;

/// A word of four characters, as in types and creators.
constexpr uint32_t fourCharacters(const char (&text)[5]) {
    uint32_t value = 0;
    for (int i = 0; i < 4; ++i)
        value = value << 8 | static_cast<uint8_t>(text[i]);
    return value;
}

/// Of FinderInfo::flags.
namespace finder {
inline constexpr uint16_t hasBundle = 0x2000, nameLocked = 0x1000, isInvisible = 0x4000, isAlias = 0x8000;
}

/// What the Finder keeps of an item. Windows, scroll positions and views are a folder's, types and creators a file's.
struct FinderInfo {
    uint32_t type = 0, creator = 0;
    uint16_t flags = 0, extendedFlags = 0;
    int16_t iconTop = 0, iconLeft = 0;
    int16_t windowTop = 0, windowLeft = 0, windowBottom = 0, windowRight = 0;
    int16_t scrollTop = 0, scrollLeft = 0;
    uint16_t view = 0;
};

/// What a node is, whatever names lead to it.
struct Node {
    NodeKind kind = NodeKind::File;
    uint16_t mode = 0444;      ///< permission bits, 07777
    uint16_t textEncoding = 0; ///< a hint, of the classic system's encodings; 0: Roman
    uint32_t owner = 0;
    uint32_t group = 0;
    /// Seconds since 1970, UTC. `changed`: what is known of the node, not its contents.
    std::time_t created = never, modified = never, changed = never, accessed = never, backedUp = never;
    Fork data, resource; ///< of a file
    uint32_t target = 0; ///< of an alias: a node. Its type, creator and resource fork are made by the volume.
    FinderInfo finder;
};

/// A name in a folder. Several entries may lead to one file: hard links.
struct Entry {
    std::string
        name; ///< UTF-8, as a shell has it; see storedName(). No two in a folder with the same foldedName().
    uint32_t node = 0;
};

/// Bytes that the volume writes itself: a symbolic link's target, or the resource fork of a file.
struct OwnFork {
    uint32_t node = 0;
    std::string bytes;
    Extent place{}; ///< filled in by the volume
};

/// Nodes by index; 0 is the root folder. The entries of node n are those from firstEntry[n] up to firstEntry[n + 1],
/// so a tree of many files costs little memory.
struct Tree {
    std::vector<Node> nodes;
    std::vector<Entry> entries;
    std::vector<uint32_t> firstEntry;
    std::vector<Extent> extents; ///< a place may be filled in later, their number not
    std::vector<OwnFork> ownForks;
};

struct VolumeSettings {
    std::string volumeName;             ///< UTF-8, as a shell has it
    std::time_t created = 0;            ///< UTC
    std::optional<std::time_t> checked; ///< else when it was created
    int32_t secondsEast =
        0; ///< local time's distance from UTC: a volume tells when it was made in local time
    uint64_t identifier = 0;  ///< a number of the volume's own, unlike others'
    uint32_t volumeStart = 0; ///< block of the medium that the volume begins with
    uint32_t structureStart =
        1; ///< block of the medium where folders and all that begin, behind the volume's start
    uint32_t catalogNodeBytes = 8192; ///< 4096 or 8192 on discs; fewer for tests
};

} // namespace engine::hfsplus
