// ContentLinks: what becomes of the links in a tree of files and folders.
#pragma once

#import "DRFile.h"
#import "DRFolder.h"

#include "Content.hpp"
#include "Error.hpp"

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace discrecording {

/// The links of one tree. Each stands in the file systems of its mask.
class ContentLinks {
  public:
    ContentLinks(DRFolder* root, bool hasRockRidge) : root_(root), hasRockRidge_(hasRockRidge) {}

    /// A link of the tree, in the file systems of `mask`. The path of a symbolic link is known when all names are.
    engine::Result<engine::Content> contentOf(DRFile* link, std::string name, uint8_t mask);

    /// Gives symbolic links their paths.
    engine::Result<void> finish(engine::Content& root);

    /// Why there is no disc when the mask of a link leaves it nowhere.
    static engine::Error leftOut(DRFile* link, const std::string& name);

  private:
    struct Link {
        DRFile* file;
        DRFSObject* target;
    };
    bool isInTree(DRFSObject* target);
    void list(engine::Content& root);
    engine::Result<std::string> pathOf(const Link& link, const engine::Content& item) const;

    DRFolder* root_;
    bool hasRockRidge_;
    std::unordered_set<DRFSObject*> tree_;                    ///< all in it, once there is a link
    std::vector<Link> links_;                                 ///< symbolic ones
    std::unordered_map<DRFSObject*, engine::Content*> items_; ///< what became of each
};

} // namespace discrecording
