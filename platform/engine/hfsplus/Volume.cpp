// The header, the bitmap, and where everything lies.
#include "Volume.hpp"
#include "Alias.hpp"
#include "Names.hpp"

#include <algorithm>
#include <cstring>

namespace engine::hfsplus {
namespace {

constexpr BTree::Shape overflowShape{4096, 10, false};
constexpr BTree::Shape attributesShape{8192, 266, true};
constexpr uint16_t longestCatalogKey = 516;
constexpr size_t headerAt = 1024;

void addFoldersAround(AliasTarget& target, const Tree& tree, const Catalog& catalog, uint32_t folder) {
    for (; folder != 0; folder = catalog.folderOf(catalog.entryOf(folder))) {
        const std::string& name = tree.entries[catalog.entryOf(folder)].name;
        target.folders.insert(target.folders.begin(), {idOfNode(folder), storedName(name)});
        target.path.insert(0, "/" + name);
    }
}

Tree withOwnForksInOrder(Tree tree) {
    std::ranges::sort(tree.ownForks, {}, &OwnFork::node);
    return tree;
}

} // namespace

Volume::Volume(Tree tree, VolumeSettings settings)
    : tree_(withOwnForksInOrder(std::move(tree))), settings_(std::move(settings)),
      overflow_(tree_, settings_.volumeStart), catalog_(tree_, settings_),
      overflowTree_(overflow_, overflowShape), attributesTree_(attributes_, attributesShape),
      catalogTree_(catalog_, {settings_.catalogNodeBytes, longestCatalogKey, true}) {
    makeAliases();
    uint32_t next = settings_.structureStart;
    const auto place = [&](Extent& extent, uint64_t bytes) {
        extent = {next, bytes};
        next += blocksOf(bytes);
    };
    place(overflowPlace_, overflowTree_.bytes());
    place(attributesPlace_, attributesTree_.bytes());
    place(catalogPlace_, catalogTree_.bytes());
    for (OwnFork& own : tree_.ownForks)
        place(own.place, own.bytes.size());
    structureBlocks_ = next - settings_.structureStart;
}

void Volume::makeAliases() {
    for (uint32_t node = 0; node < tree_.nodes.size(); ++node) {
        if (tree_.nodes[node].kind != NodeKind::Alias) continue;
        const uint32_t index = tree_.nodes[node].target;
        const Node& target = tree_.nodes[index];
        AliasTarget to;
        to.isFolder = target.kind == NodeKind::Folder;
        to.volumeName = storedName(settings_.volumeName);
        to.volumeCreated = settings_.created;
        to.secondsEast = settings_.secondsEast;
        to.created = target.created;
        to.type = target.finder.type;
        to.creator = target.finder.creator;
        if (index == 0) {
            to.name = to.volumeName;
            to.id = idOfNode(0);
            to.path = "/";
        } else {
            const uint32_t entry = catalog_.entryOf(index);
            to.name = storedName(tree_.entries[entry].name);
            to.id = catalog_.idOfEntry(entry);
            to.path = "/" + tree_.entries[entry].name;
            addFoldersAround(to, tree_, catalog_, catalog_.folderOf(entry));
        }
        tree_.ownForks.push_back({node, aliasResourceFork(aliasRecord(to))});
    }
    std::ranges::sort(tree_.ownForks, {}, &OwnFork::node);
}

uint32_t Volume::endBlocks(uint64_t contentsEnd) const noexcept {
    // The bitmap counts itself and the last block.
    const uint64_t before = contentsEnd - settings_.volumeStart + 1;
    uint32_t bitmapBlocks = 1;
    while ((before + bitmapBlocks + 7) / 8 > uint64_t{bitmapBlocks} * blockBytes)
        ++bitmapBlocks;
    return bitmapBlocks + 1;
}

void Volume::setContentsEnd(uint64_t contentsEnd) noexcept {
    bitmapStart_ = contentsEnd;
    end_ = contentsEnd + endBlocks(contentsEnd);
}

bool Volume::has(uint64_t number) const noexcept {
    return number == settings_.volumeStart ||
           (number >= settings_.structureStart && number - settings_.structureStart < structureBlocks_) ||
           (number >= bitmapStart_ && number < end_);
}

void Volume::block(uint64_t number, std::span<std::byte, blockBytes> block) {
    std::ranges::fill(block, std::byte{0});
    // The header stands at byte 1024 of the volume, and 1024 bytes before its end.
    if (number == settings_.volumeStart || number + 1 == end_) return header(block.subspan(headerAt));
    if (number >= bitmapStart_) return bitmap(static_cast<uint32_t>(number - bitmapStart_), block);
    structure(static_cast<uint32_t>(number), block);
}

void Volume::header(std::span<std::byte> bytes) const {
    const uint32_t start = settings_.volumeStart;
    constexpr uint32_t wasUnmounted = 1 << 8, isLocked = 1 << 15;
    Fields fields(bytes);
    fields.raw("H+").u16(4).u32(wasUnmounted | isLocked).raw("disc").u32(0);
    // The one time in the volume that isn't UTC is when it was made.
    fields.time(settings_.created + settings_.secondsEast).time(settings_.created).time(never);
    fields.time(settings_.checked.value_or(settings_.created))
        .u32(catalog_.fileCount())
        .u32(catalog_.folderCount());
    fields.u32(blockBytes).u32(totalBlocks()).u32(0).u32(0).u32(blockBytes).u32(blockBytes);
    fields.u32(catalog_.nextId()).u32(1).u64(encodings());
    fields.skip(24).u64(settings_.identifier); // nothing to start or to open
    const auto file = [&](const Extent& extent, uint32_t clump) {
        putFork(fields, {&extent, 1}, start, clump);
    };
    const auto bits = static_cast<uint32_t>(end_ - 1 - bitmapStart_);
    file({static_cast<uint32_t>(bitmapStart_), uint64_t{bits} * blockBytes}, blockBytes);
    file(overflowPlace_, overflowTree_.nodeBytes());
    file(catalogPlace_, catalogTree_.nodeBytes());
    file(attributesPlace_, attributesTree_.nodeBytes());
    putFork(fields, {}, start); // nothing to start from
}

// A bit for each text encoding that a node hints at; two have a bit that isn't their number (TN1150, "Text Encodings").
uint64_t Volume::encodings() const {
    uint64_t bits = 1;
    for (const Node& node : tree_.nodes) {
        const uint32_t bit = node.textEncoding == 152   ? 48
                             : node.textEncoding == 140 ? 49
                                                        : node.textEncoding;
        if (bit < 64) bits |= uint64_t{1} << bit;
    }
    return bits;
}

void Volume::bitmap(uint32_t index, std::span<std::byte> block) const {
    const uint64_t before = uint64_t{index} * blockBytes * 8;
    const uint64_t bits = std::min<uint64_t>(totalBlocks() - before, blockBytes * 8);
    for (uint64_t bit = 0; bit < bits; ++bit)
        block[static_cast<size_t>(bit / 8)] |= std::byte{0x80} >> static_cast<int>(bit % 8);
}

void Volume::structure(uint32_t at, std::span<std::byte> block) {
    if (at < attributesPlace_.firstBlock)
        return treeBlock(overflowTree_, at - overflowPlace_.firstBlock, block);
    if (at < catalogPlace_.firstBlock)
        return treeBlock(attributesTree_, at - attributesPlace_.firstBlock, block);
    if (at < catalogPlace_.firstBlock + blocksOf(catalogPlace_.bytes))
        return treeBlock(catalogTree_, at - catalogPlace_.firstBlock, block);
    const auto after = std::ranges::upper_bound(tree_.ownForks, at, {},
                                                [](const OwnFork& own) { return own.place.firstBlock; });
    const OwnFork& own = *std::prev(after);
    const size_t from = (at - own.place.firstBlock) * blockBytes;
    std::memcpy(block.data(), own.bytes.data() + from, std::min(blockBytes, own.bytes.size() - from));
}

// A node is several blocks, or a block several nodes where tests make them small.
void Volume::treeBlock(const BTree& tree, uint32_t index, std::span<std::byte> block) {
    const size_t size = tree.nodeBytes();
    for (size_t at = 0; at < blockBytes; at += size) {
        const uint64_t from = uint64_t{index} * blockBytes + at;
        const auto number = static_cast<uint32_t>(from / size);
        if (number >= tree.nodes()) return;
        if (nodeTree_ != &tree || nodeNumber_ != number) tree.node(number, std::span(node_).first(size));
        nodeTree_ = &tree;
        nodeNumber_ = number;
        std::memcpy(block.data() + at, node_.data() + from % size, std::min(blockBytes, size));
    }
}

} // namespace engine::hfsplus
