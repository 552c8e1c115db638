// Writes the fields of ISO 9660's records, in order, into zeroed bytes (ECMA-119 7 to 9).
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <optional>
#include <span>
#include <string_view>

namespace engine::iso {

inline constexpr size_t blockBytes = 2048;

constexpr uint32_t blocksOf(uint64_t bytes) {
    return static_cast<uint32_t>((bytes + blockBytes - 1) / blockBytes);
}

class Fields {
  public:
    explicit Fields(std::span<std::byte> bytes) : bytes_(bytes) {}

    Fields& u8(uint8_t value) {
        bytes_[at_++] = static_cast<std::byte>(value);
        return *this;
    }
    Fields& little16(uint16_t value) { return little(value, 2); }
    Fields& little32(uint32_t value) { return little(value, 4); }
    Fields& big16(uint16_t value) { return big(value, 2); }
    Fields& big32(uint32_t value) { return big(value, 4); }
    /// Both orders, one behind the other (7.2.3, 7.3.3).
    Fields& both16(uint16_t value) { return little16(value).big16(value); }
    Fields& both32(uint32_t value) { return little32(value).big32(value); }
    Fields& skip(size_t count) {
        at_ += count;
        return *this;
    }
    Fields& raw(std::string_view text) {
        if (!text.empty()) std::memcpy(bytes_.data() + at_, text.data(), text.size());
        return skip(text.size());
    }
    /// UTF-8 as it is, cut between characters, then spaces.
    Fields& text(size_t size, std::string_view utf8);
    /// UCS-2 with the high byte first, then spaces of that kind; the last byte of an odd size stays zero (Joliet).
    Fields& wideText(size_t size, std::string_view utf8);
    /// 7 bytes, from years since 1900 to the zone (9.1.5). Years before 1900 and behind 2155 become those.
    Fields& date(std::time_t seconds, int8_t zone);
    /// 17 bytes: 16 digits and the zone; zeros where there is none (8.4.26.1).
    Fields& digits(std::optional<std::time_t> seconds, int8_t zone);

    size_t position() const noexcept { return at_; }

  private:
    Fields& little(uint32_t value, size_t count) {
        for (size_t i = 0; i < count; ++i)
            bytes_[at_++] = static_cast<std::byte>(value >> (8 * i));
        return *this;
    }
    Fields& big(uint32_t value, size_t count) {
        for (size_t i = count; i-- > 0;)
            bytes_[at_++] = static_cast<std::byte>(value >> (8 * i));
        return *this;
    }

    std::span<std::byte> bytes_;
    size_t at_ = 0;
};

} // namespace engine::iso
