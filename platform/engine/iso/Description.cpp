// Reads system use entries (SUSP 1.12, RRIP 1.10 and 1.12).
#include "Description.hpp"
#include "Failure.hpp"

#include <algorithm>
#include <chrono>

namespace engine::iso {
namespace {

constexpr int mostContinuations = 64;                // of one record
constexpr uint32_t mostContinuationsInAll = 1 << 22; // of a volume

void readTarget(Bytes components, Description& told) {
    told.hasTarget = true;
    while (components.size() >= 2) {
        const uint8_t flags = byteAt(components, 0);
        const size_t size = std::min<size_t>(byteAt(components, 1), components.size() - 2);
        if (!told.target.empty() && !told.target.ends_with('/') && !told.targetGoesOn) told.target += '/';
        if ((flags & 8) != 0)
            told.target = "/";
        else if ((flags & 6) != 0)
            told.target += (flags & 4) != 0 ? ".." : ".";
        else
            told.target += textAt(components, 2, size);
        told.targetGoesOn = (flags & 1) != 0;
        components = components.subspan(2 + size);
    }
}

void readEntry(std::string_view signature, Bytes entry, Description& told) {
    const size_t size = entry.size();
    if (signature == "PX" && size >= 36) {
        const Node before = told.node.value_or(Node{});
        Node node = before;
        const uint32_t mode = numberAt(entry, 4);
        node.kind = (mode & 0170000) == 0040000 ? NodeKind::Folder : NodeKind::File;
        node.mode = static_cast<uint16_t>(mode & 07777);
        node.owner = numberAt(entry, 20);
        node.group = numberAt(entry, 28);
        told.node = node;
    } else if (signature == "TF" && size >= 5 && (byteAt(entry, 4) & 128) == 0) { // in the short form
        Node node = told.node.value_or(Node{});
        std::time_t* const places[] = {nullptr, &node.modified, &node.accessed, &node.changed};
        size_t at = 5;
        for (size_t bit = 0; bit < 7; ++bit) {
            if ((byteAt(entry, 4) >> bit & 1) == 0) continue;
            if (at + 7 > size) break;
            if (bit < std::size(places) && places[bit]) *places[bit] = dateAt(entry, at);
            at += 7;
        }
        told.node = node;
    } else if (signature == "NM" && size >= 5 && (byteAt(entry, 4) & 6) == 0) {
        told.name += textAt(entry, 5, size - 5);
    } else if (signature == "SL" && size >= 5) {
        readTarget(entry.subspan(5), told);
    } else if (signature == "CL" && size >= 12) {
        told.child = numberAt(entry, 4);
    } else if (signature == "RE") {
        told.isMoved = true;
    }
}

} // namespace

void damaged(const std::string& what, uint64_t block) {
    fail(ErrorCode::MediaInvalid, "The disc's file system can't be read: " + what + ".",
         "block " + std::to_string(block));
}

void readBlock(const BlockReader& read, uint64_t address, std::span<std::byte, blockBytes> block) {
    if (!read(address, block)) damaged("a block can't be read", address);
}

// 7 bytes, see Fields::date().
std::time_t dateAt(Bytes bytes, size_t at) {
    using namespace std::chrono;
    const auto field = [&](size_t index) { return int{byteAt(bytes, at + index)}; };
    const auto date = year_month_day(year(1900 + field(0)), month(static_cast<unsigned>(field(1))),
                                     day(static_cast<unsigned>(field(2))));
    if (!date.ok()) return 0;
    const auto zone = static_cast<int8_t>(field(6));
    const auto time = sys_days(date) + hours(field(3)) + minutes(field(4) - 15 * zone) + seconds(field(5));
    return static_cast<std::time_t>(duration_cast<seconds>(time.time_since_epoch()).count());
}

Bytes Continuations::block(uint32_t address) {
    if (++count_ > mostContinuationsInAll) damaged("too much goes on elsewhere", address);
    if (address != address_) readBlock(read_, address, last_);
    address_ = address;
    return last_;
}

Description describe(Bytes first, Continuations& continuations) {
    Description told;
    Bytes area = first;
    for (int count = 0; count < mostContinuations; ++count) {
        uint32_t next = noBlock, offset = 0, length = 0;
        for (; area.size() >= 4; area = area.subspan(byteAt(area, 2))) {
            const size_t size = byteAt(area, 2);
            if (size < 4 || size > area.size()) break;
            const Bytes entry = area.first(size);
            if (textAt(entry, 0, 2) == "CE" && size >= 28) {
                next = numberAt(entry, 4);
                offset = numberAt(entry, 12);
                length = numberAt(entry, 20);
            } else {
                readEntry(textAt(entry, 0, 2), entry, told);
            }
        }
        if (next == noBlock) return told;
        if (offset > blockBytes || length > blockBytes - offset)
            damaged("what goes on elsewhere is damaged", next);
        area = continuations.block(next).subspan(offset, length);
    }
    damaged("what goes on elsewhere has no end", 0);
}

} // namespace engine::iso
