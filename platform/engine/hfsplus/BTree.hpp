// A B-tree file that is full: records in the order of their keys become leaves, and leaves get an index (TN1150,
// "B-Trees"). It keeps where each node begins, not what is in it: nodes are made when they are asked for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace engine::hfsplus {

/// A record's place: groups in order, and the records in each.
struct Cursor {
    uint32_t group = 0, index = 0;
};

/// What a tree is made of. Sizes are even; no group is empty.
class Records {
  public:
    virtual ~Records() = default;
    virtual uint32_t groups() const = 0;
    virtual uint32_t recordsIn(uint32_t group) const = 0;
    /// The key with the length in front of it.
    virtual size_t keyBytes(Cursor cursor) const = 0;
    virtual size_t dataBytes(Cursor cursor) const = 0;
    /// Into zeroed bytes of those sizes; no data where only the key is wanted.
    virtual void put(Cursor cursor, std::span<std::byte> key, std::span<std::byte> data) const = 0;
};

/// No records: the volume has no extended attributes.
class NoRecords final : public Records {
  public:
    uint32_t groups() const override { return 0; }
    uint32_t recordsIn(uint32_t) const override { return 0; }
    size_t keyBytes(Cursor) const override { return 0; }
    size_t dataBytes(Cursor) const override { return 0; }
    void put(Cursor, std::span<std::byte>, std::span<std::byte>) const override {}
};

class BTree {
  public:
    struct Shape {
        uint32_t nodeBytes;
        uint16_t longestKey;
        bool keysVary; ///< also in the index
    };

    /// The records outlive the tree, and keep their sizes.
    BTree(const Records& records, Shape shape);

    uint32_t nodes() const noexcept { return nodes_; }
    uint64_t bytes() const noexcept { return uint64_t{nodes_} * shape_.nodeBytes; }
    uint32_t nodeBytes() const noexcept { return shape_.nodeBytes; }

    /// Into nodeBytes() bytes.
    void node(uint32_t number, std::span<std::byte> bytes) const;

  private:
    class NodeWriter;

    void header(std::span<std::byte> bytes) const;
    void map(uint32_t index, std::span<std::byte> bytes) const;
    void leaf(uint32_t index, std::span<std::byte> bytes) const;
    void indexNode(uint32_t level, uint32_t index, std::span<std::byte> bytes) const;
    /// The first record below a node of a level of the index, or of the leaves (level 0).
    Cursor firstBelow(uint32_t level, uint32_t index) const;
    uint32_t countOf(uint32_t level) const noexcept;
    uint32_t firstNodeOf(uint32_t level) const noexcept;
    uint32_t depth() const noexcept { return leaves_.empty() ? 0 : static_cast<uint32_t>(index_.size()) + 1; }
    bool next(Cursor& cursor) const;
    uint64_t nodesInHeader() const noexcept;
    uint64_t nodesInMap() const noexcept;

    const Records& records_;
    Shape shape_;
    std::vector<Cursor> leaves_; ///< the first record of each
    std::vector<std::vector<uint32_t>>
        index_; ///< by level, of each node the first child, counted in the level below
    uint32_t leafRecords_ = 0;
    uint32_t mapNodes_ = 0;
    uint32_t nodes_ = 0;
};

} // namespace engine::hfsplus
