// What is on disk: items and whole folders become nodes of the plan's tree.
#pragma once

#include "Signal.hpp"
#include "SourceList.hpp"
#include "Tree.hpp"

#include <cstdint>
#include <dirent.h>
#include <map>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace engine::plan {

/// Throws FileLocationConflict unless an item can have that name: Rock Ridge's have 255 bytes.
void checkName(std::string_view name, size_t mostBytes = 255);

class FolderWalker {
  public:
    FolderWalker(Tree& tree, SourceList& sources, const Signal& signal)
        : tree_(tree), sources_(sources), signal_(signal) {}

    /// The root is what is at that path, links followed.
    void addRoot(const std::string& path, uint8_t filesystems);
    /// A node for what is at that path. A folder goes on with `oldFolder` unless that is `none`, and is walked later.
    /// `isItsOwn`: it gets attributes that no other name of the same file shall have.
    uint32_t addItem(const std::string& path, uint8_t filesystems, uint32_t oldFolder, bool isItsOwn);
    /// Walks all folders that were added, and those in them.
    void walk();

    /// A new content. `nameThere` leads to it from its folder.
    uint32_t addSource(const SourceFile& file, std::string_view name, std::string_view nameThere);

  private:
    struct Pending {
        uint32_t node;
        std::string path;
        Fingerprint expected;
        uint8_t filesystems;
    };
    struct Found {
        std::string name;
        struct stat status;
    };
    struct Linked {
        uint32_t extent = none;
        uint32_t node = none; ///< that all names share which have no attributes of their own
    };
    /// Where something is: in a folder that is open, or by its whole path.
    struct Place {
        int folder;
        uint32_t index; ///< of SourceList::folders
        const std::string& name;
        const std::string& path;
    };

    void walk(const Pending& folder);
    std::vector<Found> read(DIR* stream, const std::string& path) const;
    uint32_t addLeaf(const Place& place, const struct stat& status, bool isItsOwn);
    static void describe(Node& node, const struct stat& status);

    Tree& tree_;
    SourceList& sources_;
    const Signal& signal_;
    std::vector<Pending> pending_;
    std::map<std::pair<uint64_t, uint64_t>, Linked>
        linked_; ///< files with several names, by device and inode
};

} // namespace engine::plan
