// How system use entries are spread over the record and continuation areas.
#include "SystemUse.hpp"

namespace engine::iso {
namespace {

constexpr size_t continuationEntryBytes = 28;

} // namespace

Fields SystemUse::add(std::string_view signature, size_t size, uint8_t version) {
    const size_t start = bytes_.size();
    starts_.push_back(start);
    bytes_.resize(start + size);
    Fields fields{std::span(bytes_).subspan(start)};
    return fields.raw(signature).u8(static_cast<uint8_t>(size)).u8(version);
}

bool SystemUse::fit(size_t room, uint32_t& cursor) {
    parts_.clear();
    size_t entry = 0;
    uint32_t offset = 0;
    for (;;) {
        Part part{entry, entry, offset, 0};
        const size_t all = bytes_.size() - startOf(entry);
        if (all <= room) {
            part.endEntry = entry = starts_.size();
            part.bytes = static_cast<uint32_t>(all);
        } else {
            while (startOf(entry + 1) - startOf(part.firstEntry) + continuationEntryBytes <= room)
                ++entry;
            part.endEntry = entry;
            part.bytes =
                static_cast<uint32_t>(startOf(entry) - startOf(part.firstEntry) + continuationEntryBytes);
        }
        if (!parts_.empty()) cursor = offset + part.bytes;
        parts_.push_back(part);
        if (entry == starts_.size()) return parts_.size() > 1;
        const size_t rest = blockBytes - cursor % blockBytes;
        if (rest < blockBytes && bytes_.size() - startOf(entry) > rest) cursor += static_cast<uint32_t>(rest);
        offset = cursor;
        room = blockBytes - cursor % blockBytes;
    }
}

void SystemUse::put(size_t index, uint32_t firstBlock, std::span<std::byte> to) const {
    const Part& part = parts_[index];
    const size_t start = startOf(part.firstEntry), size = startOf(part.endEntry) - start;
    if (size > 0) std::memcpy(to.data(), bytes_.data() + start, size);
    if (index + 1 == parts_.size()) return;
    const Part& next = parts_[index + 1];
    Fields(to.subspan(size))
        .raw("CE")
        .u8(continuationEntryBytes)
        .u8(1)
        .both32(firstBlock + next.offset / static_cast<uint32_t>(blockBytes))
        .both32(next.offset % static_cast<uint32_t>(blockBytes))
        .both32(next.bytes);
}

} // namespace engine::iso
