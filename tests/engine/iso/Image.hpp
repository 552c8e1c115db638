// A whole image of an ISO 9660 volume, with the files' bytes behind its structures, and a list of what is in it.
#pragma once

#include "iso/Volume.hpp"

#include <array>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace test {

namespace iso = engine::iso;

using Block = std::array<std::byte, iso::blockBytes>;

inline Block blockOf(const iso::Volume& volume, uint64_t at) {
    Block block;
    block.fill(std::byte{0xEE});
    volume.block(at, block);
    return block;
}
inline uint32_t little(std::span<const std::byte> bytes, size_t at, size_t count) {
    uint32_t value = 0;
    for (size_t i = 0; i < count; ++i)
        value |= std::to_integer<uint32_t>(bytes[at + i]) << (8 * i);
    return value;
}
inline uint32_t big(std::span<const std::byte> bytes, size_t at, size_t count) {
    uint32_t value = 0;
    for (size_t i = 0; i < count; ++i)
        value = value << 8 | std::to_integer<uint32_t>(bytes[at + i]);
    return value;
}
inline std::string textAt(std::span<const std::byte> bytes, size_t at, size_t count) {
    return {reinterpret_cast<const char*>(bytes.data()) + at, count};
}

/// An item's names; an empty one: it isn't there.
struct Names {
    std::string iso, rockRidge, joliet;
};

/// Makes trees item by item; every file's bytes are kept until the image is written.
class Image {
  public:
    explicit Image(iso::VolumeSettings settings = {}) : settings(std::move(settings)) {
        add(iso::NodeKind::Folder);
    }

    uint32_t folder(uint32_t parent, const Names& names) {
        return link(parent, names, add(iso::NodeKind::Folder));
    }
    /// `sections`: how many bytes each part of the file has; the rest is the last one.
    uint32_t file(uint32_t parent, const Names& names, std::string bytes,
                  std::vector<uint32_t> sections = {}) {
        const uint32_t node = link(parent, names, add(iso::NodeKind::File));
        contents[node] = std::move(bytes);
        parts[node] = std::move(sections);
        return node;
    }
    uint32_t symbolicLink(uint32_t parent, const Names& names, const std::string& target) {
        const uint32_t node = link(parent, names, add(iso::NodeKind::SymbolicLink));
        targets[node] = target;
        return node;
    }
    /// One more name for a node.
    uint32_t link(uint32_t parent, const Names& names, uint32_t node, bool hidden = false) {
        items.push_back({parent, node, names, hidden});
        return node;
    }

    iso::Tree tree(bool isJoliet = false) const {
        iso::Tree tree;
        tree.nodes = nodes;
        tree.firstEntry = {0};
        for (uint32_t node = 0; node < nodes.size(); ++node) {
            for (const Item& item : items) {
                const std::string& name = isJoliet ? item.names.joliet : item.names.iso;
                if (item.parent != node || name.empty()) continue;
                const std::string rockRidge =
                    settings.rules.rockRidge && !isJoliet ? item.names.rockRidge : std::string();
                tree.entries.push_back(tree.makeEntry(item.node, name, rockRidge, item.hidden));
            }
            tree.firstEntry.push_back(static_cast<uint32_t>(tree.entries.size()));
        }
        for (const auto& [node, target] : targets)
            tree.setTarget(tree.nodes[node], target);
        for (const auto& [node, bytes] : contents) {
            iso::Node& file = tree.nodes[node];
            file.first = static_cast<uint32_t>(tree.sections.size());
            size_t left = bytes.size();
            for (const uint32_t part : parts.at(node)) {
                tree.sections.push_back({0, part});
                left -= part;
            }
            if (left > 0) tree.sections.push_back({0, static_cast<uint32_t>(left)});
            file.count = static_cast<uint32_t>(tree.sections.size()) - file.first;
        }
        return tree;
    }

    iso::Volume volume() const {
        std::optional<iso::Tree> second;
        if (joliet) second = tree(true);
        return iso::Volume(tree(), std::move(second), settings);
    }

    /// Says where the files' parts are, and gives them: a block stands between each two.
    std::string placeAll(iso::Volume& volume) const {
        std::string data;
        const uint32_t start = settings.sessionStart + volume.structureStart() + volume.structureBlocks();
        for (const auto& [node, bytes] : contents) {
            const auto sections = volume.tree().sectionsOf(volume.tree().nodes[node]);
            size_t begin = 0;
            for (size_t i = 0; i < sections.size(); ++i) {
                place(volume, node, i, start + static_cast<uint32_t>(data.size() / iso::blockBytes));
                data += bytes.substr(begin, sections[i].bytes);
                data.resize((data.size() / iso::blockBytes + 2) * iso::blockBytes, 'x');
                begin += sections[i].bytes;
            }
        }
        return data;
    }

    /// The session, behind as many empty blocks as are in front of it, and with its descriptors in front of those, too,
    /// as on a medium that is overwritten.
    void write(const std::string& path) const {
        iso::Volume volume = this->volume();
        const uint32_t start = settings.sessionStart + volume.structureStart() + volume.structureBlocks();
        std::string data = placeAll(volume);
        const uint64_t total = start - settings.sessionStart + data.size() / iso::blockBytes + 150;
        volume.setTotalBlocks(total);
        std::ofstream file(path, std::ios::binary);
        for (uint64_t number = 0; number < 32; ++number) {
            Block block{};
            if (volume.has(number)) block = blockOf(volume, number);
            file.write(reinterpret_cast<const char*>(block.data()), block.size());
        }
        file.seekp(static_cast<std::streamoff>(settings.sessionStart * iso::blockBytes));
        for (uint64_t number = 0; number < start - settings.sessionStart; ++number) {
            Block block{};
            if (volume.has(number)) block = blockOf(volume, number);
            file.write(reinterpret_cast<const char*>(block.data()), block.size());
        }
        data.resize(data.size() + 150 * iso::blockBytes);
        file.write(data.data(), static_cast<std::streamsize>(data.size()));
    }

    /// For iso_read.py: a line for each name, and the files' bytes, each under its node's number.
    void list(const std::filesystem::path& folder) const {
        std::filesystem::create_directories(folder);
        std::ofstream lines(folder / "items");
        for (const Item& item : items) {
            const iso::Node& node = nodes[item.node];
            lines << item.parent << ' ' << item.node << ' ' << "dfl"[static_cast<size_t>(node.kind)] << ' '
                  << node.mode << ' ' << node.owner << ' ' << node.group << ' ' << node.modified << ' '
                  << (item.hidden ? "hidden" : "shown");
            for (const std::string& text :
                 {item.names.iso, item.names.rockRidge, joliet ? item.names.joliet : std::string(),
                  targets.contains(item.node) ? targets.at(item.node) : std::string()})
                lines << ' ' << '=' << hex(text);
            lines << '\n';
        }
        for (const auto& [node, bytes] : contents)
            std::ofstream(folder / std::to_string(node), std::ios::binary) << bytes;
    }

    struct Item {
        uint32_t parent, node;
        Names names;
        bool hidden;
    };
    iso::VolumeSettings settings;
    bool joliet = true;
    std::vector<iso::Node> nodes;
    std::vector<Item> items;
    std::map<uint32_t, std::string> contents, targets;
    std::map<uint32_t, std::vector<uint32_t>> parts;

  private:
    static std::string hex(const std::string& text) {
        std::string result;
        for (const char c : text) {
            result += "0123456789abcdef"[static_cast<unsigned char>(c) >> 4];
            result += "0123456789abcdef"[c & 15];
        }
        return result;
    }
    static void place(iso::Volume& volume, uint32_t node, size_t part, uint32_t block) {
        volume.tree().sections[volume.tree().nodes[node].first + part].firstBlock = block;
        if (volume.joliet())
            volume.joliet()->sections[volume.joliet()->nodes[node].first + part].firstBlock = block;
    }
    uint32_t add(iso::NodeKind kind) {
        iso::Node node;
        node.kind = kind;
        node.mode = kind == iso::NodeKind::Folder ? 0755 : kind == iso::NodeKind::File ? 0644 : 0777;
        node.accessed = node.modified = node.changed = 1'700'000'000;
        nodes.push_back(node);
        return static_cast<uint32_t>(nodes.size() - 1);
    }
};

} // namespace test
