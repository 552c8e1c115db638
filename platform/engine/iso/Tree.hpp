// The tree that an ISO 9660 or a Joliet volume shows, and where its files' bytes lie.
#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace engine::iso {

enum class NodeKind : uint8_t { Folder, File, SymbolicLink };

/// A part of a file, contiguous on the medium (ECMA-119 6.5.1: a file section). All parts of a file but the last are
/// multiples of a block, and none is empty. An empty file has none.
struct Section {
    uint32_t firstBlock = 0; ///< on the medium
    uint32_t bytes = 0;
};

/// What a node is, whatever names lead to it.
struct Node {
    NodeKind kind = NodeKind::File;
    uint16_t mode = 0444; ///< permission bits, 07777
    uint32_t owner = 0;
    uint32_t group = 0;
    std::time_t accessed = 0, modified = 0, changed = 0; ///< seconds since 1970, UTC
    uint32_t first = 0, count = 0; ///< of a file, its sections; of a link, the bytes of its target
};

/// What a Macintosh keeps of a file: type and creator, of four characters each, and the Finder's flags.
struct MacFile {
    uint32_t type = 0, creator = 0;
    uint16_t flags = 0;
};

/// Dates that few items have. The first stands in the item's record, in the place of when it was modified; the others only
/// Rock Ridge can hold.
struct MoreDates {
    std::optional<std::time_t> recorded, created, backedUp, expires, effective;
};

/// A name in a folder. Two entries may lead to one file: a hard link.
struct Entry {
    uint32_t node = 0;
    uint32_t text = 0; ///< where the name stands, with the Rock Ridge name behind it
    uint16_t nameBytes = 0, rockRidgeBytes = 0;
    bool hidden = false; ///< from those who read ISO 9660 as it is; Rock Ridge knows no such thing
};

/// Nodes by index; 0 is the root folder. The entries of node n are those from firstEntry[n] up to firstEntry[n + 1].
/// Names, targets and sections stand in common stores, so a node costs 48 bytes and an entry 16.
struct Tree {
    std::vector<Node> nodes;
    std::vector<Entry> entries;
    std::vector<uint32_t> firstEntry;
    std::vector<Section> sections;
    std::string text;
    std::unordered_map<uint32_t, MacFile> mac; ///< of few nodes
    std::unordered_map<uint32_t, MoreDates> dates;

    /// Names are final: ISO 9660's as they shall stand there, with dot and version where wanted ("READ_ME.TXT;1");
    /// Joliet's in UTF-8. The Rock Ridge name is any bytes; empty where there is no Rock Ridge.
    Entry makeEntry(uint32_t node, std::string_view name, std::string_view rockRidge = {},
                    bool hidden = false);
    void setTarget(Node& link, std::string_view target);
    /// Makes the file's sections for that many bytes in a row; placeFile() says where.
    void setSize(Node& file, uint64_t bytes);
    void placeFile(const Node& file, uint32_t firstBlock);

    std::string_view nameOf(const Entry& entry) const {
        return std::string_view(text).substr(entry.text, entry.nameBytes);
    }
    std::string_view rockRidgeOf(const Entry& entry) const {
        return std::string_view(text).substr(entry.text + entry.nameBytes, entry.rockRidgeBytes);
    }
    std::string_view targetOf(const Node& link) const {
        return std::string_view(text).substr(link.first, link.count);
    }
    std::span<const Section> sectionsOf(const Node& file) const {
        return std::span(sections).subspan(file.first, file.count);
    }
    uint64_t sizeOf(const Node& file) const;
    /// Null for most.
    const MoreDates* datesOf(uint32_t node) const {
        const auto found = dates.find(node);
        return found == dates.end() ? nullptr : &found->second;
    }
    /// The one date of a record.
    std::time_t recordedOf(uint32_t node) const {
        const MoreDates* const more = datesOf(node);
        return more ? more->recorded.value_or(nodes[node].modified) : nodes[node].modified;
    }
};

/// How ISO 9660 and Rock Ridge are written, and Joliet beside them.
struct Rules {
    uint8_t level = 3;         ///< 1 to 3: 8.3 names; 31 characters; and files of several sections
    bool rockRidge = true;     ///< the entries have Rock Ridge names; modes, owners, links
    bool anyCharacter = false; ///< ISO 9660 names of any printable characters, not only A to Z, 0 to 9 and _
    /// Folders deeper than ISO 9660's eight levels stay where they are. Else Rock Ridge moves them to the folder
    /// RR_MOVED and says so, which several readers don't understand.
    bool allowDeepPaths = true;
    bool longJoliet = false; ///< names of 103 UTF-16 units instead of 64
};

struct VolumeSettings {
    Rules rules;
    /// UTF-8. Kept as far as the fields go: cut between characters.
    std::string volumeName, volumeSet, publisher, dataPreparer, application, system;
    std::string jolietName; ///< the volume's in Joliet; empty: the same
    /// Names of files in the root.
    std::string copyrightFile, abstractFile, bibliographicFile;
    std::time_t recorded = 0; ///< of what has no time of its own
    std::optional<std::time_t> created, modified, expires,
        effective;   ///< of the volume; the first two else recorded
    int8_t zone = 0; ///< of all dates, in quarters of an hour east of Greenwich: -48 to 52
    uint32_t sessionStart = 0;
    /// Where path tables and folders begin, from the session's start. Behind the descriptors, wherever that is.
    uint32_t structureStart = 0; ///< 0: right behind the descriptors
};

} // namespace engine::iso
