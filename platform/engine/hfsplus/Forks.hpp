// Where the bytes of a node's forks lie, and how a fork's extents are written: eight with the file, the rest in the
// extents overflow file.
#pragma once

#include "BTree.hpp"
#include "Fields.hpp"

#include <span>

namespace engine::hfsplus {

enum class ForkKind : uint8_t { Data = 0, Resource = 0xFF };

inline constexpr size_t extentsInRecord = 8;
inline constexpr size_t forkBytes = 80, extentsBytes = 64;

/// Puts the fork's own record (80 bytes). `clump` is for the volume's own files only.
void putFork(Fields& fields, std::span<const Extent> extents, uint32_t volumeStart, uint32_t clump = 0);

std::span<const Extent> extentsOf(const Tree& tree, uint32_t node, ForkKind kind);

/// A node's number in the catalog: 2 for the root, then from 16 on.
constexpr uint32_t idOfNode(uint32_t node) { return node == 0 ? 2 : 15 + node; }

/// The records of the extents overflow file: what a fork has more than eight extents, eight by eight.
class Overflow final : public Records {
  public:
    Overflow(const Tree& tree, uint32_t volumeStart);

    uint32_t groups() const override { return static_cast<uint32_t>(forks_.size()); }
    uint32_t recordsIn(uint32_t group) const override;
    size_t keyBytes(Cursor) const override { return 12; }
    size_t dataBytes(Cursor) const override { return extentsBytes; }
    void put(Cursor cursor, std::span<std::byte> key, std::span<std::byte> data) const override;

  private:
    struct Long {
        uint32_t node;
        ForkKind kind;
    };

    const Tree& tree_;
    uint32_t volumeStart_;
    std::vector<Long> forks_; ///< with more than eight extents, in the order of the nodes
};

} // namespace engine::hfsplus
