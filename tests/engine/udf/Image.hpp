// A whole image of a UDF volume alone, with the files' bytes behind its structures.
#pragma once

#include "udf/Volume.hpp"

#include <cstddef>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace test {

namespace udf = engine::udf;

/// Makes trees by path; every file's bytes are kept until the image is written.
class Image {
  public:
    Image() { add(0, udf::NodeKind::Folder); }

    uint32_t folder(uint32_t parent, const std::string& name) {
        return link(parent, name, add(0, udf::NodeKind::Folder));
    }
    uint32_t file(uint32_t parent, const std::string& name, std::string bytes) {
        const uint32_t node = link(parent, name, add(bytes.size(), udf::NodeKind::File));
        contents[node] = std::move(bytes);
        return node;
    }
    uint32_t symbolicLink(uint32_t parent, const std::string& name, const std::string& target) {
        const uint32_t node = link(parent, name, add(0, udf::NodeKind::SymbolicLink));
        nodes[node].target = target;
        return node;
    }
    /// One more name for a node.
    uint32_t link(uint32_t parent, const std::string& name, uint32_t node) {
        children[parent].push_back({name, node});
        return node;
    }

    udf::Tree tree() const {
        udf::Tree result;
        result.nodes = nodes;
        result.firstEntry = {0};
        for (uint32_t node = 0; node < nodes.size(); ++node) {
            const auto found = children.find(node);
            if (found != children.end())
                result.entries.insert(result.entries.end(), found->second.begin(), found->second.end());
            result.firstEntry.push_back(static_cast<uint32_t>(result.entries.size()));
        }
        return result;
    }

    void write(const std::string& path, const udf::VolumeSettings& settings) const {
        udf::Volume volume(tree(), settings);
        uint64_t next = udf::partitionStart + volume.structureBlocks();
        std::string data;
        for (uint32_t node = 0; node < nodes.size(); ++node) {
            const auto found = contents.find(node);
            if (found == contents.end() || found->second.empty()) continue;
            volume.tree().nodes[node].firstBlock = next + data.size() / udf::blockBytes;
            data += found->second;
            data.resize((data.size() + udf::blockBytes - 1) / udf::blockBytes * udf::blockBytes);
        }
        const auto total = static_cast<size_t>(next) + data.size() / udf::blockBytes + 150 + 1;
        volume.setTotalBlocks(total);
        std::string image(total * udf::blockBytes, '\0');
        const auto blockAt = [&](uint64_t number) {
            return std::span<std::byte, udf::blockBytes>(
                reinterpret_cast<std::byte*>(image.data()) + number * udf::blockBytes, udf::blockBytes);
        };
        for (uint32_t i = 0; i < udf::recognitionBlocks; ++i)
            udf::putRecognition(i, blockAt(16 + i));
        for (uint64_t number = 0; number < total; ++number)
            if (volume.has(number)) volume.block(number, blockAt(number));
        image.replace(static_cast<size_t>(next) * udf::blockBytes, data.size(), data);
        std::ofstream(path, std::ios::binary) << image;
    }

    std::vector<udf::Node> nodes;
    std::map<uint32_t, std::vector<udf::Entry>> children;
    std::map<uint32_t, std::string> contents;

  private:
    uint32_t add(uint64_t size, udf::NodeKind kind) {
        udf::Node node;
        node.kind = kind;
        node.size = size;
        node.mode = kind == udf::NodeKind::Folder ? 0755 : 0644;
        node.accessed = node.modified = node.changed = 1'700'000'000;
        nodes.push_back(node);
        return static_cast<uint32_t>(nodes.size() - 1);
    }
};

} // namespace test
