// The Finder's alias: a record that tells in several ways where an item is, kept as a resource of a file.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

namespace engine::hfsplus {

/// What an alias record tells. Names are stored ones (storedName()), ids the catalog's.
struct AliasTarget {
    bool isFolder = false;
    std::u16string volumeName;
    std::time_t volumeCreated = 0; ///< UTC
    int32_t secondsEast = 0;       ///< VolumeSettings::secondsEast
    std::u16string name;
    uint32_t id = 0;
    std::time_t created = 0;
    uint32_t type = 0, creator = 0;
    /// The folders around it, from the root's first one inwards; none when it lies in the root.
    struct Around {
        uint32_t id;
        std::u16string name;
    };
    std::vector<Around> folders;
    std::string path; ///< from the volume's root, which is "/", in UTF-8
};

/// An alias record of version 2. Throws FileLocationConflict when it would be longer than 65,535 bytes.
std::string aliasRecord(const AliasTarget& target);

/// A resource fork with one resource: that record, as 'alis' number 0.
std::string aliasResourceFork(std::string_view record);

} // namespace engine::hfsplus
