// A whole image with an HFS+ volume in it, with the files' bytes behind its structures.
#pragma once

#include "hfsplus/PartitionMap.hpp"
#include "hfsplus/Volume.hpp"

#include <cstddef>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace test {

namespace hfsplus = engine::hfsplus;

/// Makes trees by path; every fork's bytes are kept until the image is written.
class Image {
  public:
    static constexpr std::time_t time = 1'700'000'000;

    Image() { add(hfsplus::NodeKind::Folder); }

    uint32_t folder(uint32_t parent, const std::string& name) {
        return link(parent, name, add(hfsplus::NodeKind::Folder));
    }
    /// A file whose bytes lie in that many pieces, with a block between each.
    uint32_t file(uint32_t parent, const std::string& name, std::string bytes, uint32_t pieces = 1) {
        const uint32_t node = link(parent, name, add(hfsplus::NodeKind::File));
        tree_.nodes[node].data = place(std::move(bytes), pieces);
        return node;
    }
    void resourceFork(uint32_t node, std::string bytes, uint32_t pieces = 1) {
        tree_.nodes[node].resource = place(std::move(bytes), pieces);
    }
    void ownResourceFork(uint32_t node, std::string bytes) {
        tree_.ownForks.push_back({node, std::move(bytes)});
    }
    uint32_t symbolicLink(uint32_t parent, const std::string& name, const std::string& target) {
        const uint32_t node = link(parent, name, add(hfsplus::NodeKind::SymbolicLink));
        tree_.ownForks.push_back({node, target});
        return node;
    }
    uint32_t alias(uint32_t parent, const std::string& name, uint32_t target) {
        const uint32_t node = link(parent, name, add(hfsplus::NodeKind::Alias));
        tree_.nodes[node].target = target;
        return node;
    }
    /// One more name for a node.
    uint32_t link(uint32_t parent, const std::string& name, uint32_t node) {
        children_[parent].push_back({name, node});
        return node;
    }
    hfsplus::Node& node(uint32_t index) { return tree_.nodes[index]; }

    hfsplus::Tree tree() const {
        hfsplus::Tree result = tree_;
        result.firstEntry = {0};
        for (uint32_t node = 0; node < result.nodes.size(); ++node) {
            const auto found = children_.find(node);
            if (found != children_.end())
                result.entries.insert(result.entries.end(), found->second.begin(), found->second.end());
            result.firstEntry.push_back(static_cast<uint32_t>(result.entries.size()));
        }
        return result;
    }

    /// With a partition map, unless the volume begins with the medium.
    std::string bytes(const hfsplus::VolumeSettings& settings) const {
        constexpr size_t size = hfsplus::blockBytes;
        hfsplus::Volume volume(tree(), settings);
        auto next = settings.structureStart + volume.structureBlocks();
        for (size_t i = 0; i < pieces_.size(); ++i) {
            volume.tree().extents[i].firstBlock = next;
            next += hfsplus::blocksOf(pieces_[i].size()) + 1;
        }
        volume.setContentsEnd(next);
        std::string image(static_cast<size_t>(volume.end()) * size, '\xEE');
        const auto blockAt = [&](uint64_t number) {
            return std::span<std::byte, size>(reinterpret_cast<std::byte*>(image.data()) + number * size,
                                              size);
        };
        for (uint32_t i = 0; i < hfsplus::partitionMapBlocks && settings.volumeStart > 0; ++i)
            hfsplus::putPartitionMap(i, {settings.volumeStart, volume.end(), volume.end()}, blockAt(i));
        for (uint64_t number = 0; number < volume.end(); ++number)
            if (volume.has(number)) volume.block(number, blockAt(number));
        for (size_t i = 0; i < pieces_.size(); ++i)
            image.replace(volume.tree().extents[i].firstBlock * size, pieces_[i].size(), pieces_[i]);
        return image;
    }
    void write(const std::string& path, const hfsplus::VolumeSettings& settings) const {
        std::ofstream(path, std::ios::binary) << bytes(settings);
    }

  private:
    uint32_t add(hfsplus::NodeKind kind) {
        hfsplus::Node node;
        node.kind = kind;
        node.mode = kind == hfsplus::NodeKind::Folder ? 0755 : 0644;
        node.created = node.accessed = node.modified = node.changed = time;
        tree_.nodes.push_back(node);
        return static_cast<uint32_t>(tree_.nodes.size() - 1);
    }
    hfsplus::Fork place(std::string bytes, uint32_t pieces) {
        const auto first = static_cast<uint32_t>(tree_.extents.size());
        const size_t each = (hfsplus::blocksOf(bytes.size()) + pieces - 1) / pieces * hfsplus::blockBytes;
        for (size_t at = 0; at < bytes.size(); at += each) {
            pieces_.push_back(bytes.substr(at, each));
            tree_.extents.push_back({0, pieces_.back().size()});
        }
        return {first, static_cast<uint32_t>(tree_.extents.size()) - first};
    }

    hfsplus::Tree tree_;
    std::map<uint32_t, std::vector<hfsplus::Entry>> children_;
    std::vector<std::string> pieces_; ///< as many as extents
};

} // namespace test
