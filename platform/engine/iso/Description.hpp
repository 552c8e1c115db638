// What a record says in Rock Ridge, read from its system use entries.
#pragma once

#include "Fields.hpp"
#include "Reader.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace engine::iso {

using Bytes = std::span<const std::byte>;

inline uint8_t byteAt(Bytes bytes, size_t at) { return std::to_integer<uint8_t>(bytes[at]); }
inline uint32_t numberAt(Bytes bytes, size_t at) {
    return byteAt(bytes, at) | uint32_t{byteAt(bytes, at + 1)} << 8 | uint32_t{byteAt(bytes, at + 2)} << 16 |
           uint32_t{byteAt(bytes, at + 3)} << 24;
}
inline std::string_view textAt(Bytes bytes, size_t at, size_t size) {
    return {reinterpret_cast<const char*>(bytes.data()) + at, size};
}

/// As Fields::date() writes it; 0 for what is no date.
std::time_t dateAt(Bytes bytes, size_t at);

[[noreturn]] void damaged(const std::string& what, uint64_t block);
void readBlock(const BlockReader& read, uint64_t address, std::span<std::byte, blockBytes> block);

constexpr uint32_t noBlock = 0xFFFF'FFFF;

/// What the entries of Rock Ridge say of one record.
struct Description {
    std::optional<Node> node;
    std::string name, target;
    uint32_t child = noBlock; ///< where a moved folder is
    bool isMoved = false;
    bool targetGoesOn = false; ///< no '/' before the next component
    bool hasTarget = false;
};

/// Reads what goes on elsewhere. Neighbours' continuation areas mostly stand in one block, so the last one is kept. A volume
/// has no more of them than can be followed in good time.
class Continuations {
  public:
    explicit Continuations(const BlockReader& read) : read_(read) {}
    /// Throws MediaInvalid when the block can't be read, and after too many calls.
    Bytes block(uint32_t address);

  private:
    const BlockReader& read_;
    std::array<std::byte, blockBytes> last_{};
    uint32_t address_ = noBlock, count_ = 0;
};

/// Follows continuation areas. Throws MediaInvalid for such that can't be read or have no end.
Description describe(Bytes systemUse, Continuations& continuations);

} // namespace engine::iso
