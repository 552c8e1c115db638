// Numbers as SCSI writes them: most significant byte first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>
#include <vector>

namespace recorder {

using Data = std::vector<uint8_t>;
using View = std::span<const uint8_t>;

inline uint32_t number(View bytes, size_t at, size_t count) noexcept {
    uint32_t value = 0;
    for (size_t index = 0; index < count; ++index)
        value = value << 8 | (at + index < bytes.size() ? bytes[at + index] : 0u);
    return value;
}

inline void put(Data& bytes, size_t at, size_t count, uint64_t value) {
    if (bytes.size() < at + count) bytes.resize(at + count);
    for (size_t index = 0; index < count; ++index)
        bytes[at + index] = static_cast<uint8_t>(value >> (8 * (count - 1 - index)));
}

inline void append(Data& bytes, size_t count, uint64_t value) { put(bytes, bytes.size(), count, value); }

inline void append(Data& bytes, const Data& more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

/// Text in a field of fixed width, filled with spaces.
inline void putText(Data& bytes, size_t at, size_t width, std::string_view text) {
    if (bytes.size() < at + width) bytes.resize(at + width);
    for (size_t index = 0; index < width; ++index)
        bytes[at + index] = static_cast<uint8_t>(index < text.size() ? text[index] : ' ');
}

/// Minute, second and frame of an address, 150 frames before block 0 (MMC-5, 4.2.3.8): blocks before -150
/// count down from minute 100.
inline void appendTime(Data& bytes, int64_t block) {
    int64_t frames = block + 150;
    if (frames < 0) frames += 450000;
    bytes.push_back(static_cast<uint8_t>(frames / 4500));
    bytes.push_back(static_cast<uint8_t>(frames / 75 % 60));
    bytes.push_back(static_cast<uint8_t>(frames % 75));
}

inline int64_t blockOfTime(View bytes, size_t at) noexcept {
    const int64_t frames = (bytes[at] * 60 + bytes[at + 1]) * 75 + bytes[at + 2];
    return bytes[at] >= 90 ? frames - 450150 : frames - 150;
}

} // namespace recorder
