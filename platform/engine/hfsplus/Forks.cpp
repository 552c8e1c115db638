// Extents: a first block in the volume and a count of blocks.
#include "Forks.hpp"

#include <algorithm>

namespace engine::hfsplus {
namespace {

void putExtents(Fields& fields, std::span<const Extent> extents, uint32_t volumeStart) {
    for (const Extent& extent : extents)
        fields.u32(extent.firstBlock - volumeStart).u32(blocksOf(extent.bytes));
    fields.skip((extentsInRecord - extents.size()) * 8);
}

uint32_t blocksOf(std::span<const Extent> extents) {
    uint32_t blocks = 0;
    for (const Extent& extent : extents)
        blocks += hfsplus::blocksOf(extent.bytes);
    return blocks;
}

} // namespace

void putFork(Fields& fields, std::span<const Extent> extents, uint32_t volumeStart, uint32_t clump) {
    uint64_t bytes = 0;
    for (const Extent& extent : extents)
        bytes += extent.bytes;
    fields.u64(bytes).u32(clump).u32(blocksOf(extents));
    putExtents(fields, extents.first(std::min(extents.size(), extentsInRecord)), volumeStart);
}

std::span<const Extent> extentsOf(const Tree& tree, uint32_t index, ForkKind kind) {
    const Node& node = tree.nodes[index];
    const auto placed = [&](Fork fork) { return std::span(tree.extents).subspan(fork.first, fork.count); };
    if (node.kind == NodeKind::Folder) return {};
    const bool isLink = node.kind == NodeKind::SymbolicLink;
    const ForkKind mayBeOwn = isLink ? ForkKind::Data : ForkKind::Resource;
    if (kind == mayBeOwn) {
        const auto own = std::ranges::lower_bound(tree.ownForks, index, {}, &OwnFork::node);
        if (own != tree.ownForks.end() && own->node == index)
            return {&own->place, own->bytes.empty() ? size_t{0} : size_t{1}};
    }
    return placed(kind == ForkKind::Data ? node.data : node.resource);
}

Overflow::Overflow(const Tree& tree, uint32_t volumeStart) : tree_(tree), volumeStart_(volumeStart) {
    for (uint32_t node = 0; node < tree.nodes.size(); ++node)
        for (const ForkKind kind : {ForkKind::Data, ForkKind::Resource}) // as keys are ordered
            if (extentsOf(tree, node, kind).size() > extentsInRecord) forks_.push_back({node, kind});
}

uint32_t Overflow::recordsIn(uint32_t group) const {
    const size_t count = extentsOf(tree_, forks_[group].node, forks_[group].kind).size();
    return static_cast<uint32_t>((count - 1) / extentsInRecord);
}

void Overflow::put(Cursor cursor, std::span<std::byte> key, std::span<std::byte> data) const {
    const auto [node, kind] = forks_[cursor.group];
    const auto all = extentsOf(tree_, node, kind);
    const size_t before = (cursor.index + 1) * extentsInRecord;
    Fields(key)
        .u16(10)
        .u8(static_cast<uint32_t>(kind))
        .u8(0)
        .u32(idOfNode(node))
        .u32(blocksOf(all.first(before)));
    if (data.empty()) return;
    Fields fields(data);
    putExtents(fields, all.subspan(before, std::min(extentsInRecord, all.size() - before)), volumeStart_);
}

} // namespace engine::hfsplus
