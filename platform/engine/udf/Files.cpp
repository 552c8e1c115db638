// Folders and files: a block for each node, and the streams of folders and long links.
#include "Failure.hpp"
#include "Fields.hpp"
#include "Volume.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace engine::udf {
namespace {

constexpr size_t identifierBytes = 38; // of a file identifier without its name (ECMA-167 4/14.4)
constexpr size_t fileEntryBytes = 176; // of a file entry without allocations (ECMA-167 4/14.9)
// The header of extended attributes, and one with the dates that there are (ECMA-167 4/14.10.1 and 4/14.10.5).
constexpr size_t attributeHeaderBytes = 24, fileTimesBytes = 20, timeBytes = 12;
constexpr uint32_t mostExtentBytes = (1u << 30) - blockBytes;
static_assert(largestFile == (blockBytes - fileEntryBytes) / 8 * uint64_t{mostExtentBytes});
constexpr uint8_t isHidden = 1, isFolder = 2, isParent = 8;

constexpr uint64_t extentsOf(uint64_t bytes) { return (bytes + mostExtentBytes - 1) / mostExtentBytes; }

constexpr uint32_t blocksOf(uint64_t bytes) {
    return static_cast<uint32_t>((bytes + blockBytes - 1) / blockBytes);
}

// Identifiers begin at multiples of 4.
uint32_t identifierSize(size_t nameBytes) {
    return static_cast<uint32_t>((identifierBytes + nameBytes + 3) / 4 * 4);
}

// rwx of owner, group and others, each with a bit for changing attributes and one for deleting, which go to who may
// write where nothing else is said (ECMA-167 4/14.9.5).
uint32_t permissionsOf(uint16_t mode, uint8_t more) {
    uint32_t result = 0;
    for (int who = 0; who < 3; ++who) { // others, group, owner
        const uint32_t bits = mode >> (3 * who) & 7;
        const uint32_t added = more == asWhoWrites ? (bits >> 1 & 1) * 3 : more >> (2 * who) & 3;
        result |= (bits | added << 3) << (5 * who);
    }
    return result;
}

uint16_t flagsOf(uint16_t mode, bool isEmbedded) {
    uint16_t flags = isEmbedded ? 3 : 0;
    if ((mode & 04000) != 0) flags |= 1 << 6;
    if ((mode & 02000) != 0) flags |= 1 << 7;
    if ((mode & 01000) != 0) flags |= 1 << 8;
    return flags;
}

// A link's target as path components (ECMA-167 4/14.16).
std::string pathComponents(std::string_view target) {
    enum : char { root = 2, parent = 3, current = 4, name = 5 };
    std::string result;
    const auto add = [&](char kind, const std::string& text) {
        result += kind;
        result += static_cast<char>(text.size());
        result.append(2, '\0');
        result += text;
    };
    if (target.starts_with('/')) add(root, {});
    while (!target.empty()) {
        const size_t slash = target.find('/');
        const std::string_view part = target.substr(0, slash);
        target = slash == std::string_view::npos ? std::string_view() : target.substr(slash + 1);
        if (part.empty()) continue;
        if (part == "..")
            add(parent, {});
        else if (part == ".")
            add(current, {});
        else
            add(name, compressed(part, nameLimit));
    }
    return result;
}

} // namespace

Volume::Volume(Tree tree, VolumeSettings settings) : tree_(std::move(tree)), settings_(std::move(settings)) {
    const auto count = static_cast<uint32_t>(tree_.nodes.size());
    linkCounts_.assign(count, 0);
    parents_.assign(count, 0);
    entryOffsets_.reserve(tree_.entries.size());
    linkCounts_[0] = 1;
    uint32_t next = firstEntryBlock + count;
    for (uint32_t node = 0; node < count; ++node) {
        uint32_t bytes = 0;
        if (tree_.nodes[node].kind == NodeKind::Folder) {
            ++folderCount_;
            bytes = identifierSize(0); // the parent's
            for (uint32_t i = tree_.firstEntry[node]; i < tree_.firstEntry[node + 1]; ++i) {
                const uint32_t child = tree_.entries[i].node;
                entryOffsets_.push_back(bytes);
                bytes += identifierSize(compressed(tree_.entries[i].name, nameLimit).size());
                addLink(child, tree_.entries[i]);
                if (tree_.nodes[child].kind != NodeKind::Folder) continue;
                parents_[child] = node;
                addLink(node, tree_.entries[i]);
            }
        } else {
            ++fileCount_;
            if (fileEntryBytes + attributeBytes(node) + extentsOf(tree_.nodes[node].size) * 8 > blockBytes)
                fail(ErrorCode::FilesystemsNotSupported, "A file of " + megabytes(tree_.nodes[node].size) +
                                                             " can have no date of creation, backup or "
                                                             "effect in UDF; leave out the date, or UDF.");
            if (tree_.nodes[node].kind == NodeKind::SymbolicLink)
                bytes = static_cast<uint32_t>(pathComponents(tree_.nodes[node].target).size());
            if (bytes <= blockBytes - fileEntryBytes - attributeBytes(node))
                continue; // the target stands in the node's own block
        }
        streams_.push_back({node, next, bytes});
        next += blocksOf(bytes);
    }
    structureBlocks_ = next;
}

void Volume::addLink(uint32_t node, const Entry& because) {
    if (linkCounts_[node]++ < UINT16_MAX) return;
    if (tree_.nodes[node].kind == NodeKind::Folder)
        fail(ErrorCode::FilesystemsNotSupported,
             "The folder that " + inQuotes(because.name) +
                 " is in has more folders than UDF can count, which is 65,534; leave out UDF.");
    fail(ErrorCode::FilesystemsNotSupported, "The file " + inQuotes(because.name) +
                                                 " has more names than UDF can count, which is 65,535; "
                                                 "leave some of its links out, or UDF.");
}

const Volume::Stream* Volume::streamOf(uint32_t node) const noexcept {
    const auto found = std::ranges::lower_bound(streams_, node, {}, &Stream::node);
    return found != streams_.end() && found->node == node ? &*found : nullptr;
}

void Volume::fileEntry(uint32_t index, std::span<std::byte> block) const {
    const Node& node = tree_.nodes[index];
    const Stream* stream = streamOf(index);
    const std::string embedded =
        node.kind == NodeKind::SymbolicLink && !stream ? pathComponents(node.target) : std::string();
    const uint64_t bytes = node.kind == NodeKind::File ? node.size : stream ? stream->bytes : embedded.size();
    // Folder, file, symbolic link. A real-time file's type is one that writer and reader agree on (ECMA-167 4/14.6.6);
    // later revisions of UDF give it this number.
    constexpr std::array<uint8_t, 3> fileTypes = {4, 5, 12};
    constexpr uint8_t realTimeFile = 249;
    const uint8_t type = node.kind == NodeKind::File && node.isRealTime
                             ? realTimeFile
                             : fileTypes[static_cast<size_t>(node.kind)];

    Fields fields(block);
    // How the entry is kept: strategy 4, one entry, no parent entry (ECMA-167 4/14.6).
    fields.u32(0).u16(4).u16(0).u16(1).u8(0).u8(type).skip(6);
    fields.u16(flagsOf(node.mode, !embedded.empty()));
    fields.u32(node.owner)
        .u32(node.group)
        .u32(permissionsOf(node.mode, node.permissions))
        .u16(linkCounts_[index]);
    fields.u8(0).u8(0).u32(0).u64(bytes).u64(embedded.empty() ? blocksOf(bytes) : 0);
    fields.time(node.accessed).time(node.modified).time(node.changed).u32(1).longAllocation(0, 0).developer();
    const uint32_t more = attributeBytes(index);
    fields.u64(uniqueIdOf(index)).u32(more);
    // Behind the length of the allocations.
    putAttributes(index, block.subspan(fields.position() + 4, more));
    if (!embedded.empty()) {
        fields.u32(static_cast<uint32_t>(embedded.size())).skip(more).raw(embedded);
        return fields.finish(TagKind::FileEntry, entryBlockOf(index));
    }
    uint32_t at =
        stream ? inPartition(stream->firstBlock) : static_cast<uint32_t>(node.firstBlock - partitionStart);
    fields.u32(static_cast<uint32_t>(extentsOf(bytes) * 8)).skip(more);
    for (uint64_t left = bytes; left > 0;) {
        const auto part = static_cast<uint32_t>(std::min<uint64_t>(left, mostExtentBytes));
        fields.extent(part, at);
        at += blocksOf(part);
        left -= part;
    }
    fields.finish(TagKind::FileEntry, entryBlockOf(index));
}

uint32_t Volume::attributeBytes(uint32_t node) const {
    const auto found = tree_.dates.find(node);
    if (found == tree_.dates.end()) return 0;
    const MoreDates& more = found->second;
    const int count = more.created.has_value() + more.effective.has_value() + more.backedUp.has_value();
    return static_cast<uint32_t>(attributeHeaderBytes + fileTimesBytes +
                                 static_cast<size_t>(count) * timeBytes);
}

void Volume::putAttributes(uint32_t node, std::span<std::byte> to) const {
    if (to.empty()) return;
    const auto bytes = static_cast<uint32_t>(to.size());
    Fields fields(to);
    // No attributes of an implementation or application: they would begin behind the end.
    fields.u32(bytes).u32(bytes).finish(TagKind::ExtendedAttributes, entryBlockOf(node));
    const MoreDates& more = tree_.dates.at(node);
    const std::pair<const std::optional<std::time_t>&, uint32_t> dates[] = {
        {more.created, 1}, {more.effective, 8}, {more.backedUp, 32}}; // each with its bit, in their order
    uint32_t existing = 0;
    for (const auto& [date, bit] : dates)
        existing |= date ? bit : 0;
    constexpr uint32_t fileTimes = 5;
    const auto length = static_cast<uint32_t>(bytes - attributeHeaderBytes);
    fields.u32(fileTimes).u8(1).skip(3).u32(length).u32(length - uint32_t{fileTimesBytes}).u32(existing);
    for (const auto& [date, bit] : dates)
        if (date) fields.time(*date);
}

void Volume::streamBlock(const Stream& stream, uint32_t index, std::span<std::byte> block) const {
    const uint32_t from = index * static_cast<uint32_t>(blockBytes);
    if (tree_.nodes[stream.node].kind == NodeKind::Folder) return folderBlock(stream, from, block);
    const std::string text = pathComponents(tree_.nodes[stream.node].target);
    std::memcpy(block.data(), text.data() + from, std::min<size_t>(blockBytes, text.size() - from));
}

// Identifiers lie one behind the other, across the blocks' borders.
void Volume::folderBlock(const Stream& stream, uint32_t from, std::span<std::byte> block) const {
    const auto put = [&](uint32_t offset, uint8_t kind, uint32_t node, std::string_view name) {
        std::array<std::byte, identifierBytes + nameLimit + 3> whole{};
        const uint32_t size = identifierSize(name.size());
        Fields fields(whole);
        fields.u16(1).u8(kind).u8(static_cast<uint8_t>(name.size()));
        fields.longAllocation(blockBytes, entryBlockOf(node), static_cast<uint32_t>(uniqueIdOf(node)));
        fields.u16(0).raw(name).finish(TagKind::FileIdentifier,
                                       inPartition(stream.firstBlock + offset / uint32_t{blockBytes}), size);
        const uint32_t start = std::max(offset, from);
        const uint32_t end = std::min(offset + size, from + static_cast<uint32_t>(blockBytes));
        if (start < end)
            std::memcpy(block.data() + (start - from), whole.data() + (start - offset), end - start);
    };
    if (from == 0) put(0, isFolder | isParent, parents_[stream.node], {});
    const auto begin = entryOffsets_.begin() + tree_.firstEntry[stream.node];
    const auto end = entryOffsets_.begin() + tree_.firstEntry[stream.node + 1];
    auto at = std::upper_bound(begin, end, from);
    if (at != begin) --at; // the one that may have begun in the block before
    for (; at != end && *at < from + blockBytes; ++at) {
        const Entry& entry = tree_.entries[static_cast<size_t>(at - entryOffsets_.begin())];
        const bool folder = tree_.nodes[entry.node].kind == NodeKind::Folder;
        const auto kind = static_cast<uint8_t>((folder ? isFolder : 0) | (entry.hidden ? isHidden : 0));
        put(*at, kind, entry.node, compressed(entry.name, nameLimit));
    }
}

} // namespace engine::udf
