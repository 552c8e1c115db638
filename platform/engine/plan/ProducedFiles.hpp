// Files whose bytes a producer gives: asked to prepare, and for their forks where HFS+ shows them.
#pragma once

#include "Content.hpp"
#include "FolderWalker.hpp"
#include "SourceList.hpp"
#include "Tree.hpp"

#include <cstdint>
#include <string_view>
#include <unordered_map>

namespace engine::plan {

class ProducedFiles {
  public:
    /// `filesystems` are those of the disc.
    ProducedFiles(Tree& tree, SourceList& sources, FolderWalker& walker, uint8_t filesystems)
        : tree_(tree), sources_(sources), walker_(walker),
          hasHfsPlus_((filesystems & filesystem::hfsPlus) != 0) {}

    /// Has the producer prepare, and tell the file's size. Throws DataProduction.
    void prepare(const ProducedFile& produced, std::string_view name, SourceFile& file);

    /// The node is that item's, in these file systems; its data has its extent. `item` lives on.
    void add(const Node& node, const Content& item, uint8_t filesystems);

    /// Another name shows the file in HFS+.
    void showInHfsPlus(const Node& node);

  private:
    void addResourceFork(const Node& node, const Content& item);

    Tree& tree_;
    SourceList& sources_;
    FolderWalker& walker_;
    bool hasHfsPlus_;
    std::unordered_map<uint32_t, const Content*>
        forkless_; ///< those that HFS+ doesn't show yet, by their extents
};

} // namespace engine::plan
