// The bytes of path tables, folders and continuation areas.
#include "Hierarchy.hpp"
#include "RockRidge.hpp"

#include <algorithm>
#include <array>

namespace engine::iso {
namespace {

enum : uint8_t { hiddenFlag = 1, folderFlag = 2, moreSectionsFlag = 128 };

// What a whole has from `offset` on, copied as far as it lies in the block that begins at `from`.
void copyOverlap(std::span<const std::byte> whole, uint32_t offset, uint32_t from,
                 std::span<std::byte> block) {
    const uint32_t start = std::max(offset, from);
    const uint32_t end =
        std::min(offset + static_cast<uint32_t>(whole.size()), from + static_cast<uint32_t>(block.size()));
    if (start < end) std::memcpy(block.data() + (start - from), whole.data() + (start - offset), end - start);
}

} // namespace

void Hierarchy::block(uint32_t index, std::span<std::byte, blockBytes> block) const {
    constexpr auto blockSize = static_cast<uint32_t>(blockBytes);
    std::ranges::fill(block, std::byte{0});
    const uint32_t tableBlocks = blocksOf(pathTableBytes_);
    if (index < tableBlocks) return pathTableBlock(false, index * blockSize, block);
    if (index < 2 * tableBlocks) return pathTableBlock(true, (index - tableBlocks) * blockSize, block);
    const Folder& folder = *std::prev(std::ranges::upper_bound(folders_, index, {}, &Folder::firstBlock));
    const uint32_t own = blocksOf(folder.bytes), at = index - folder.firstBlock;
    if (at < own) return folderBlock(folder, at * blockSize, block);
    continuationBlock(folder, (at - own) * blockSize, block);
}

void Hierarchy::pathTableBlock(bool big, uint32_t from, std::span<std::byte> block) const {
    auto at = std::ranges::upper_bound(folders_, from, {}, &Folder::pathOffset);
    if (at != folders_.begin()) --at; // the one that may have begun in the block before
    for (; at != folders_.end() && at->pathOffset < from + block.size(); ++at) {
        std::array<std::byte, 8 + 255 + 1> whole{};
        const std::string_view name =
            at->entry == none ? identifierOf(*at, 0) : tree_.nameOf(tree_.entries[at->entry]);
        const auto parent = static_cast<uint16_t>(at->parent + 1);
        Fields fields(whole);
        fields.u8(static_cast<uint8_t>(name.size())).u8(0);
        if (big)
            fields.big32(blockOf(*at)).big16(parent);
        else
            fields.little32(blockOf(*at)).little16(parent);
        fields.raw(name);
        copyOverlap(std::span(whole).first(8 + (name.size() + 1) / 2 * 2), at->pathOffset, from, block);
    }
}

void Hierarchy::folderBlock(const Folder& folder, uint32_t from, std::span<std::byte> block) const {
    const auto end = from + static_cast<uint32_t>(block.size());
    const auto first = itemOffsets_.begin() + folder.firstItem;
    const uint32_t count = itemCount(folder);
    auto item = static_cast<uint32_t>(std::upper_bound(first, first + count, from) - first);
    if (item > 0) --item; // one of many sections may have begun in a block before
    SystemUse use;
    for (; item < count && first[item] < end; ++item) {
        const std::string_view name = identifierOf(folder, item);
        const size_t plainBytes = recordBytes(name.size());
        size_t bytes = plainBytes;
        if (usesSystemUse()) {
            describe(use, folder, item);
            const auto continued =
                std::ranges::lower_bound(continued_, folder.firstItem + item, {}, &Continued::item);
            uint32_t cursor = continued != continued_.end() ? continued->offset : 0;
            use.fit(mostRecordBytes - plainBytes, cursor);
            bytes += (use.parts()[0].bytes + 1) / 2 * 2;
        }
        Record record{0, 0, folderFlag, name, 0};
        std::span<const Section> sections;
        if (item < 2) {
            const Folder& shown = item == 0 ? folder : folders_[folder.parent];
            record.block = blockOf(shown);
            record.bytes = shown.bytes;
            record.time = tree_.recordedOf(shown.node);
        } else {
            const Entry& entry = entryOf(folder, item);
            const Node& node = tree_.nodes[entry.node];
            record.time = tree_.recordedOf(entry.node);
            record.flags = entry.hidden ? hiddenFlag : 0;
            if (node.kind == NodeKind::Folder && !isPlaceholder(folder.node, entry)) {
                const Folder& shown = folders_[folderOf_[entry.node]];
                record.block = blockOf(shown);
                record.bytes = shown.bytes;
                record.flags |= folderFlag;
            } else if (node.kind == NodeKind::File) {
                sections = tree_.sectionsOf(node);
            }
        }
        uint32_t offset = first[item];
        for (size_t part = 0; part < std::max<size_t>(sections.size(), 1); ++part) {
            if (offset % blockBytes + bytes > blockBytes)
                offset = (offset / static_cast<uint32_t>(blockBytes) + 1) * static_cast<uint32_t>(blockBytes);
            if (offset >= end) break;
            if (offset >= from) {
                if (!sections.empty()) {
                    record.block = sections[part].firstBlock;
                    record.bytes = sections[part].bytes;
                }
                Record this_ = record;
                if (part + 1 < sections.size()) this_.flags |= moreSectionsFlag;
                const auto to = block.subspan(offset - from, bytes);
                putRecord(this_, to);
                if (usesSystemUse()) use.put(0, continuationOf(folder), to.subspan(plainBytes));
            }
            offset += static_cast<uint32_t>(bytes);
        }
    }
}

void Hierarchy::continuationBlock(const Folder& folder, uint32_t from, std::span<std::byte> block) const {
    const auto begin = std::ranges::lower_bound(continued_, folder.firstItem, {}, &Continued::item);
    const auto end = std::ranges::lower_bound(begin, continued_.end(), folder.firstItem + itemCount(folder),
                                              {}, &Continued::item);
    auto at = std::ranges::upper_bound(begin, end, from, {}, &Continued::offset);
    if (at != begin) --at; // it may go on here
    SystemUse use;
    std::array<std::byte, blockBytes> bytes;
    for (; at != end && at->offset < from + block.size(); ++at) {
        const uint32_t item = at->item - folder.firstItem;
        describe(use, folder, item);
        uint32_t cursor = at->offset;
        use.fit(mostRecordBytes - recordBytes(identifierOf(folder, item).size()), cursor);
        for (size_t part = 1; part < use.parts().size(); ++part) {
            const auto place = std::span(bytes).first(use.parts()[part].bytes);
            use.put(part, continuationOf(folder), place);
            copyOverlap(place, use.parts()[part].offset, from, block);
        }
    }
}

void Hierarchy::putRecord(const Record& record, std::span<std::byte> to) const {
    Fields(to)
        .u8(static_cast<uint8_t>(to.size()))
        .u8(0)
        .both32(record.block)
        .both32(record.bytes)
        .date(record.time, zone_)
        .u8(record.flags)
        .u8(0)
        .u8(0)
        .both16(1)
        .u8(static_cast<uint8_t>(record.name.size()))
        .raw(record.name);
}

void Hierarchy::rootRecord(std::span<std::byte, 34> to) const {
    const Folder& root = folders_[0];
    putRecord({blockOf(root), root.bytes, folderFlag, identifierOf(root, 0), tree_.recordedOf(0)}, to);
}

std::string_view Hierarchy::identifierOf(const Folder& folder, uint32_t item) const {
    constexpr std::string_view self("\0", 1), parent("\1", 1);
    return item == 0 ? self : item == 1 ? parent : tree_.nameOf(entryOf(folder, item));
}

const Entry& Hierarchy::entryOf(const Folder& folder, uint32_t item) const {
    return tree_.entries[tree_.firstEntry[folder.node] + item - 2];
}

void Hierarchy::describe(SystemUse& use, const Folder& folder, uint32_t item) const {
    use.clear();
    // In front of all else: whoever wants these looks into the record only.
    if (item >= 2)
        if (const auto mac = tree_.mac.find(entryOf(folder, item).node); mac != tree_.mac.end())
            rockRidge::addMac(use, mac->second);
    if (!usesRockRidge()) return;
    const auto attributes = [&](uint32_t node) {
        rockRidge::addAttributes(use, tree_.nodes[node], tree_.datesOf(node), links_[node], node + 1, zone_);
    };
    if (item == 0) {
        if (folder.entry == none) rockRidge::addPresence(use);
        attributes(folder.node);
        if (folder.entry == none) rockRidge::addExtension(use);
    } else if (item == 1) {
        const uint32_t origin = originOf(folder.node);
        attributes(origin == none ? folders_[folder.parent].node : origin);
        if (origin != none) rockRidge::addParent(use, blockOf(folders_[folderOf_[origin]]));
    } else {
        const Entry& entry = entryOf(folder, item);
        const Node& node = tree_.nodes[entry.node];
        attributes(entry.node);
        if (isPlaceholder(folder.node, entry))
            rockRidge::addChild(use, blockOf(folders_[folderOf_[entry.node]]));
        if (folder.node == movedFolder_) rockRidge::addRelocated(use);
        rockRidge::addName(use, tree_.rockRidgeOf(entry));
        if (node.kind == NodeKind::SymbolicLink) rockRidge::addTarget(use, tree_.targetOf(node));
    }
}

} // namespace engine::iso
