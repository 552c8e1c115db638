// What HFS+ knows of characters up to U+FFFF: three tables, each in the order of the characters.
#pragma once

#include <cstdint>
#include <span>

namespace engine::hfsplus {

/// A character that is stored as one or two others, which may have parts themselves. `second` is 0 where there is one.
struct Parts {
    char16_t character, first, second;
};
extern const std::span<const Parts> parts;

/// What a character counts as when names are compared; 0: it doesn't count.
struct Folding {
    char16_t character, as;
};
extern const std::span<const Folding> foldings;

/// Characters that stand on the one before, and where among others of their kind (canonical combining class).
struct CombiningRange {
    char16_t first, last;
    uint8_t order;
};
extern const std::span<const CombiningRange> combiningRanges;

} // namespace engine::hfsplus
