// Nodes: 0 is the header, then the leaves, the levels of the index, and what the header's map has no room for.
#include "BTree.hpp"
#include "Fields.hpp"

namespace engine::hfsplus {
namespace {

constexpr size_t descriptorBytes = 14;
constexpr size_t headerRecordBytes = 106, userRecordBytes = 128;
constexpr size_t offsetBytes = 2;
enum class Kind : uint8_t { Leaf = 0xFF, Index = 0, Header = 1, Map = 2 };

} // namespace

// Records from the front of a node, their offsets from its back.
class BTree::NodeWriter {
  public:
    NodeWriter(std::span<std::byte> bytes, Kind kind, uint32_t height) : bytes_(bytes) {
        std::ranges::fill(bytes, std::byte{0});
        Fields(bytes).skip(8).u8(static_cast<uint32_t>(kind)).u8(height);
    }
    ~NodeWriter() {
        putOffset();
        Fields(bytes_.subspan(10)).u16(count_);
    }
    NodeWriter(const NodeWriter&) = delete;
    NodeWriter& operator=(const NodeWriter&) = delete;

    void links(uint32_t forward, uint32_t backward) { Fields(bytes_).u32(forward).u32(backward); }
    std::span<std::byte> record(size_t size) {
        putOffset();
        ++count_;
        at_ += size;
        return bytes_.subspan(at_ - size, size);
    }

  private:
    void putOffset() {
        Fields(bytes_.subspan(bytes_.size() - offsetBytes * (count_ + 1))).u16(static_cast<uint32_t>(at_));
    }

    std::span<std::byte> bytes_;
    size_t at_ = descriptorBytes;
    uint32_t count_ = 0;
};

BTree::BTree(const Records& records, Shape shape) : records_(records), shape_(shape) {
    const size_t room = shape.nodeBytes - descriptorBytes - offsetBytes;
    // Opens a node where a record of that size doesn't go into the last one any more.
    size_t left = 0;
    const auto opens = [&](size_t size, bool isFirst) {
        const bool isNew = isFirst || size + offsetBytes > left;
        if (isNew) left = room;
        left -= size + offsetBytes;
        return isNew;
    };
    if (records.groups() > 0) {
        Cursor at;
        do {
            if (opens(records.keyBytes(at) + records.dataBytes(at), leaves_.empty())) leaves_.push_back(at);
            ++leafRecords_;
        } while (next(at));
    }
    for (uint32_t level = 0; countOf(level) > 1; ++level) {
        std::vector<uint32_t> made;
        for (uint32_t child = 0; child < countOf(level); ++child)
            if (opens(records.keyBytes(firstBelow(level, child)) + sizeof(uint32_t), child == 0))
                made.push_back(child);
        index_.push_back(std::move(made));
    }
    nodes_ = firstNodeOf(depth());
    const uint32_t others = nodes_;
    while (nodesInHeader() + mapNodes_ * nodesInMap() < nodes_)
        nodes_ = others + ++mapNodes_;
}

uint32_t BTree::countOf(uint32_t level) const noexcept {
    return static_cast<uint32_t>(level == 0 ? leaves_.size() : index_[level - 1].size());
}

uint32_t BTree::firstNodeOf(uint32_t level) const noexcept {
    uint32_t node = 1;
    for (uint32_t below = 0; below < level; ++below)
        node += countOf(below);
    return node;
}

Cursor BTree::firstBelow(uint32_t level, uint32_t index) const {
    for (; level > 0; --level)
        index = index_[level - 1][index];
    return leaves_[index];
}

bool BTree::next(Cursor& cursor) const {
    if (++cursor.index < records_.recordsIn(cursor.group)) return true;
    cursor = {cursor.group + 1, 0};
    return cursor.group < records_.groups();
}

// A bit for each node. In the header: what its other records and four offsets leave; a map node keeps six bytes at its
// end, two more than it needs, as is the custom.
uint64_t BTree::nodesInHeader() const noexcept {
    return 8 * (uint64_t{shape_.nodeBytes} - descriptorBytes - headerRecordBytes - userRecordBytes -
                4 * offsetBytes);
}
uint64_t BTree::nodesInMap() const noexcept { return 8 * (uint64_t{shape_.nodeBytes} - descriptorBytes - 6); }

void BTree::node(uint32_t number, std::span<std::byte> bytes) const {
    if (number == 0) return header(bytes);
    const uint32_t firstMap = nodes_ - mapNodes_;
    if (number >= firstMap) return map(number - firstMap, bytes);
    uint32_t level = 0, first = 1;
    for (; number - first >= countOf(level); ++level)
        first += countOf(level);
    if (level == 0) return leaf(number - first, bytes);
    indexNode(level, number - first, bytes);
}

namespace {

// Every node is in use.
void putMap(std::span<std::byte> record, uint64_t nodes) {
    for (uint64_t node = 0; node < nodes && node / 8 < record.size(); ++node)
        record[static_cast<size_t>(node / 8)] |= std::byte{0x80} >> static_cast<int>(node % 8);
}

} // namespace

void BTree::header(std::span<std::byte> bytes) const {
    NodeWriter writer(bytes, Kind::Header, 0);
    if (mapNodes_ > 0) writer.links(nodes_ - mapNodes_, 0);
    const uint32_t leaves = countOf(0);
    Fields fields(writer.record(headerRecordBytes));
    fields.u16(depth()).u32(depth() == 0 ? 0 : firstNodeOf(depth() - 1)).u32(leafRecords_);
    fields.u32(leaves == 0 ? 0 : 1).u32(leaves).u16(shape_.nodeBytes).u16(shape_.longestKey);
    // None is free; a clump is a node; the kind is 0, of the volume's own files.
    fields.u32(nodes_).u32(0).u16(0).u32(shape_.nodeBytes).u8(0).u8(0);
    constexpr uint32_t bigKeys = 2, keysVaryInIndex = 4;
    fields.u32(bigKeys | (shape_.keysVary ? keysVaryInIndex : 0));
    writer.record(userRecordBytes);
    putMap(writer.record(static_cast<size_t>(nodesInHeader() / 8)), nodes_);
}

void BTree::map(uint32_t index, std::span<std::byte> bytes) const {
    NodeWriter writer(bytes, Kind::Map, 0);
    const uint32_t number = nodes_ - mapNodes_ + index;
    writer.links(index + 1 < mapNodes_ ? number + 1 : 0, index > 0 ? number - 1 : 0);
    putMap(writer.record(static_cast<size_t>(nodesInMap() / 8)),
           nodes_ - nodesInHeader() - index * nodesInMap());
}

void BTree::leaf(uint32_t index, std::span<std::byte> bytes) const {
    NodeWriter writer(bytes, Kind::Leaf, 1);
    const bool isLast = index + 1 == countOf(0);
    writer.links(isLast ? 0 : index + 2, index);
    Cursor at = leaves_[index];
    const Cursor end = isLast ? Cursor{records_.groups(), 0} : leaves_[index + 1];
    while (at.group != end.group || at.index != end.index) {
        const size_t key = records_.keyBytes(at);
        const auto record = writer.record(key + records_.dataBytes(at));
        records_.put(at, record.first(key), record.subspan(key));
        next(at);
    }
}

void BTree::indexNode(uint32_t level, uint32_t index, std::span<std::byte> bytes) const {
    NodeWriter writer(bytes, Kind::Index, level + 1);
    const bool isLast = index + 1 == countOf(level);
    const uint32_t number = firstNodeOf(level) + index;
    writer.links(isLast ? 0 : number + 1, index > 0 ? number - 1 : 0);
    const uint32_t end = isLast ? countOf(level - 1) : index_[level - 1][index + 1];
    for (uint32_t child = index_[level - 1][index]; child < end; ++child) {
        const Cursor first = firstBelow(level - 1, child);
        const size_t key = records_.keyBytes(first);
        const auto record = writer.record(key + sizeof(uint32_t));
        records_.put(first, record.first(key), {});
        Fields(record.subspan(key)).u32(firstNodeOf(level - 1) + child);
    }
}

} // namespace engine::hfsplus
