// Alias records and the resource forks they are in. Sizes and places are those of the classic system's Alias Manager
// and Resource Manager.
#include "Alias.hpp"
#include "Failure.hpp"
#include "Fields.hpp"

#include <array>

namespace engine::hfsplus {
namespace {

constexpr uint32_t aroundRootId = 1, rootId = 2;

// In the fields of the record that are older than Unicode: what isn't ASCII is '?'. The tags below have the real names.
std::string plain(std::u16string_view text, size_t most) {
    std::string result;
    for (const char16_t unit : text.substr(0, most))
        result += unit < 0x80 && unit != u':' ? static_cast<char>(unit) : '?';
    return result;
}

std::string bigEndian(uint64_t value, size_t bytes) {
    std::string result;
    for (size_t i = bytes; i-- > 0;)
        result += static_cast<char>(value >> (8 * i));
    return result;
}

std::string counted(std::u16string_view name) {
    std::string result = bigEndian(name.size(), 2);
    for (const char16_t unit : name)
        result += bigEndian(unit, 2);
    return result;
}

// A time in 65536ths of a second.
std::string fineTime(std::time_t seconds) { return bigEndian(uint64_t{hfsTime(seconds)} << 16, 8); }

enum Tag : uint16_t {
    folderName = 0,
    folderIds = 1,
    classicPath = 2,
    unicodeName = 14,
    unicodeVolumeName = 15,
    volumeFineTime = 16,
    fineTimeOfTarget = 17,
    path = 18,
    pathOfVolume = 19,
    endOfTags = 0xFFFF,
};

void addTag(std::string& to, Tag tag, std::string_view data) {
    to += bigEndian(tag, 2);
    to += bigEndian(data.size(), 2);
    to += data;
    if (data.size() % 2 != 0) to += '\0';
}

std::string tagsOf(const AliasTarget& target) {
    const std::string volume = plain(target.volumeName, 255);
    std::string tags, ids, classic = volume;
    for (auto folder = target.folders.rbegin(); folder != target.folders.rend(); ++folder)
        ids += bigEndian(folder->id, 4);
    for (const auto& folder : target.folders)
        classic += ':' + plain(folder.name, 255);
    classic += ':' + (target.id == rootId ? std::string() : plain(target.name, 255));
    addTag(tags, folderName, target.folders.empty() ? volume : plain(target.folders.back().name, 255));
    if (!ids.empty()) addTag(tags, folderIds, ids);
    addTag(tags, classicPath, classic);
    addTag(tags, unicodeName, counted(target.name));
    addTag(tags, unicodeVolumeName, counted(target.volumeName));
    addTag(tags, volumeFineTime, fineTime(target.volumeCreated));
    addTag(tags, fineTimeOfTarget, fineTime(target.created));
    addTag(tags, path, target.path);
    addTag(tags, pathOfVolume, "/Volumes/" + plain(target.volumeName, 255));
    addTag(tags, endOfTags, {});
    return tags;
}

void putPascal(Fields& fields, size_t size, std::u16string_view text) {
    const std::string kept = plain(text, size - 1);
    fields.u8(static_cast<uint32_t>(kept.size())).raw(kept).skip(size - 1 - kept.size());
}

} // namespace

std::string aliasRecord(const AliasTarget& target) {
    const std::string tags = tagsOf(target);
    std::array<std::byte, 150> head{};
    // Each tag has a length of 16 bits, too: one that is too long makes the whole too long.
    if (head.size() + tags.size() > UINT16_MAX)
        fail(ErrorCode::FileLocationConflict,
             "A Finder alias can't lead to " + inQuotes(target.path.substr(target.path.rfind('/') + 1)) +
                 ", which lies too deep in the tree; leave the alias out.",
             target.path);
    Fields fields(head);
    fields.u32(0).u16(static_cast<uint32_t>(head.size() + tags.size())).u16(2).u16(target.isFolder ? 1 : 0);
    putPascal(fields, 28, target.volumeName);
    constexpr uint32_t ejectable = 5;
    fields.time(target.volumeCreated + target.secondsEast).raw("H+").u16(ejectable);
    fields.u32(target.id == rootId      ? aroundRootId
               : target.folders.empty() ? rootId
                                        : target.folders.back().id);
    putPascal(fields, 64, target.name);
    fields.u32(target.id).time(target.created).u32(target.type).u32(target.creator);
    fields.i16(-1).i16(-1).u32(0).u16(
        0); // no way from the alias to the target; the volume's attributes and driver
    return std::string(reinterpret_cast<const char*>(head.data()), head.size()) + tags;
}

std::string aliasResourceFork(std::string_view record) {
    constexpr size_t headBytes = 256, mapBytes = 50;
    constexpr uint32_t typesAt = 28; // in the map
    const size_t dataBytes = 4 + record.size();
    std::string fork(headBytes + dataBytes + mapBytes, '\0');
    const auto bytes = std::as_writable_bytes(std::span(fork));
    const auto putHead = [&](Fields fields) {
        fields.u32(headBytes).u32(static_cast<uint32_t>(headBytes + dataBytes));
        fields.u32(static_cast<uint32_t>(dataBytes)).u32(mapBytes);
    };
    putHead(Fields(bytes));
    Fields(bytes.subspan(headBytes)).u32(static_cast<uint32_t>(record.size())).raw(record);
    // The map: the head once more, then the types, one less than there are, and of each the resources, likewise.
    const auto map = bytes.subspan(headBytes + dataBytes);
    putHead(Fields(map));
    Fields(map.subspan(24)).u16(typesAt).u16(mapBytes).u16(0).raw("alis").u16(0).u16(10);
    Fields(map.subspan(38))
        .u16(0)
        .u16(0xFFFF)
        .u8(0)
        .u8(0)
        .u16(0)
        .u32(0); // number 0, no name, the first of the data
    return fork;
}

} // namespace engine::hfsplus
