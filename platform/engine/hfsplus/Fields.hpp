// Writes HFS+'s fields, in order, into zeroed bytes: all numbers have the high byte first.
#pragma once

#include "Tree.hpp"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <span>
#include <string_view>

namespace engine::hfsplus {

inline constexpr size_t blockBytes = 2048;

constexpr uint32_t blocksOf(uint64_t bytes) {
    return static_cast<uint32_t>((bytes + blockBytes - 1) / blockBytes);
}

/// Seconds since 1904, which last until 2040.
constexpr uint32_t hfsTime(std::time_t seconds) {
    return static_cast<uint32_t>(
        std::clamp<int64_t>(static_cast<int64_t>(seconds) - never, 0, int64_t{UINT32_MAX}));
}

class Fields {
  public:
    explicit Fields(std::span<std::byte> bytes) : bytes_(bytes) {}

    Fields& u8(uint32_t value) { return number(value, 1); }
    Fields& u16(uint32_t value) { return number(value, 2); }
    Fields& i16(int16_t value) { return number(static_cast<uint16_t>(value), 2); }
    Fields& u32(uint32_t value) { return number(value, 4); }
    Fields& u64(uint64_t value) { return number(value, 8); }
    Fields& time(std::time_t seconds) { return u32(hfsTime(seconds)); }
    Fields& skip(size_t count) {
        at_ += count;
        return *this;
    }
    Fields& raw(std::string_view text) {
        if (!text.empty()) std::memcpy(bytes_.data() + at_, text.data(), text.size());
        return skip(text.size());
    }
    /// Length and units of a name.
    Fields& name(std::u16string_view text) {
        u16(static_cast<uint32_t>(text.size()));
        for (const char16_t unit : text)
            u16(unit);
        return *this;
    }

    size_t position() const noexcept { return at_; }

  private:
    Fields& number(uint64_t value, size_t count) {
        for (size_t i = count; i-- > 0;)
            bytes_[at_++] = static_cast<std::byte>(value >> (8 * i));
        return *this;
    }

    std::span<std::byte> bytes_;
    size_t at_ = 0;
};

} // namespace engine::hfsplus
