// Reads an image's catalog byte by byte, as TN1150 describes it, with none of the writer's code.
#pragma once

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace test {

inline uint64_t number(std::string_view bytes, size_t at, size_t count) {
    uint64_t value = 0;
    for (size_t i = 0; i < count; ++i)
        value = value << 8 | static_cast<uint8_t>(bytes.at(at + i));
    return value;
}

/// The byte that a block number in the volume stands for.
inline size_t blockAt(std::string_view bytes, size_t at) {
    return static_cast<size_t>(number(bytes, at, 4)) * 2048;
}

/// A B-tree file that lies in one extent.
struct Tree {
    /// `fork`: the 80 bytes of the volume header that tell where it lies.
    Tree(std::string_view volume, std::string_view fork)
        : bytes(volume.substr(blockAt(fork, 16), static_cast<size_t>(number(fork, 0, 8)))),
          nodeBytes(static_cast<size_t>(number(bytes, 14 + 18, 2))) {}

    std::string_view node(uint64_t index) const {
        return bytes.substr(static_cast<size_t>(index) * nodeBytes, nodeBytes);
    }
    uint64_t header(size_t at, size_t count) const { return number(bytes, 14 + at, count); }
    static size_t recordCount(std::string_view node) { return static_cast<size_t>(number(node, 10, 2)); }
    std::string_view record(std::string_view node, size_t index) const {
        const auto at = [&](size_t i) {
            return static_cast<size_t>(number(node, nodeBytes - 2 * (i + 1), 2));
        };
        return node.substr(at(index), at(index + 1) - at(index));
    }

    std::string_view bytes;
    size_t nodeBytes;
};

struct Record {
    uint32_t parent;
    std::u16string name;
    std::string_view data;
};

inline Record catalogRecord(std::string_view record) {
    const auto keyLength = static_cast<size_t>(number(record, 0, 2));
    const auto units = static_cast<size_t>(number(record, 6, 2));
    EXPECT_EQ(keyLength, 6 + 2 * units);
    Record result{static_cast<uint32_t>(number(record, 2, 4)), {}, record.substr(2 + keyLength)};
    for (size_t i = 0; i < units; ++i)
        result.name += static_cast<char16_t>(number(record, 8 + 2 * i, 2));
    return result;
}

/// All of the leaves' records, from the first leaf to the last one.
inline std::vector<std::string_view> leavesOf(const Tree& tree) {
    std::vector<std::string_view> result;
    uint64_t before = 0;
    for (uint64_t at = tree.header(10, 4); at != 0; at = number(tree.node(at), 0, 4)) {
        const auto node = tree.node(at);
        EXPECT_EQ(number(node, 4, 4), before) << "the node before";
        EXPECT_EQ(number(node, 8, 2), 0xFF01u) << "a leaf, of height 1";
        EXPECT_GT(Tree::recordCount(node), 0u);
        for (size_t i = 0; i < Tree::recordCount(node); ++i)
            result.push_back(tree.record(node, i));
        before = at;
    }
    EXPECT_EQ(before, tree.header(14, 4)) << "the last leaf";
    EXPECT_EQ(result.size(), tree.header(6, 4)) << "count of records";
    return result;
}

struct Catalog {
    explicit Catalog(std::string_view volume) : tree(volume, volume.substr(1024 + 272, 80)) {
        for (const auto record : leavesOf(tree))
            records.push_back(catalogRecord(record));
    }
    std::string_view at(uint32_t parent, const std::u16string& name) const {
        for (const auto& record : records)
            if (record.parent == parent && record.name == name) return record.data;
        ADD_FAILURE() << "no record in " << parent;
        return {};
    }

    Tree tree;
    std::vector<Record> records;
};

} // namespace test
