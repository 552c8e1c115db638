// Fields with a form of their own: identifiers, times, and the tag in front of every descriptor.
#include "Fields.hpp"

#include <algorithm>
#include <array>

namespace engine::udf {
namespace {

constexpr auto makeTable() {
    std::array<uint16_t, 256> table{};
    for (uint32_t value = 0; value < 256; ++value) {
        uint32_t rest = value << 8;
        for (int bit = 0; bit < 8; ++bit)
            rest = (rest & 0x8000) != 0 ? (rest << 1) ^ 0x1021 : rest << 1;
        table[value] = static_cast<uint16_t>(rest);
    }
    return table;
}
constexpr auto table = makeTable();

constexpr uint16_t descriptorVersion = 2; // ECMA-167, second edition

} // namespace

uint16_t checksumOf(std::span<const std::byte> bytes) noexcept {
    uint32_t sum = 0;
    for (const std::byte byte : bytes)
        sum = (table[(sum >> 8) ^ std::to_integer<uint32_t>(byte)] ^ (sum << 8)) & 0xFFFF;
    return static_cast<uint16_t>(sum);
}

Fields& Fields::identifier(std::string_view name, std::string_view suffix) {
    u8(0).raw(name.substr(0, 23)).skip(23 - std::min<size_t>(name.size(), 23));
    return raw(suffix.substr(0, 8)).skip(8 - std::min<size_t>(suffix.size(), 8));
}

Fields& Fields::domain(Revision revision) {
    const auto number = static_cast<uint16_t>(revision);
    // The last byte: hard and soft write protection, for a volume that is written once as a whole.
    const char suffix[] = {static_cast<char>(number & 0xFF), static_cast<char>(number >> 8), 3};
    return identifier("*OSTA UDF Compliant", {suffix, sizeof suffix});
}

Fields& Fields::time(std::time_t seconds) {
    std::tm parts{};
    if (gmtime_r(&seconds, &parts) == nullptr) return skip(12);
    constexpr uint16_t localTime = 1 << 12;
    u16(localTime)
        .u16(static_cast<uint16_t>(parts.tm_year + 1900))
        .u8(static_cast<uint8_t>(parts.tm_mon + 1));
    u8(static_cast<uint8_t>(parts.tm_mday)).u8(static_cast<uint8_t>(parts.tm_hour));
    return u8(static_cast<uint8_t>(parts.tm_min))
        .u8(static_cast<uint8_t>(std::min(parts.tm_sec, 59)))
        .skip(3);
}

Fields& Fields::longAllocation(uint32_t bytes, uint32_t block, uint32_t uniqueId) {
    return u32(bytes).u32(block).u16(0).u16(0).u32(uniqueId);
}

void Fields::finish(TagKind kind, uint32_t location, size_t end) {
    if (end == 0) end = at_;
    const auto body = bytes_.subspan(tagBytes, end - tagBytes);
    at_ = 0;
    u16(static_cast<uint16_t>(kind)).u16(descriptorVersion).u8(0).u8(0).u16(0);
    u16(checksumOf(body)).u16(static_cast<uint16_t>(body.size())).u32(location);
    uint32_t sum = 0;
    for (size_t i = 0; i < tagBytes; ++i)
        sum += i == 4 ? 0 : std::to_integer<uint32_t>(bytes_[i]);
    bytes_[4] = static_cast<std::byte>(sum);
    at_ = end;
}

} // namespace engine::udf
