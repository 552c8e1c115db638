// Sense data: what a drive says when it refuses a command, in fixed format (SPC-3, 4.5.3).
#pragma once

#include "../Error.hpp"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace engine {

struct Sense {
    uint8_t key = 0, code = 0, qualifier = 0;
};

/// What was read, nobody has written.
inline constexpr uint8_t blankCheckKey = 0x8;

/// The three numbers of 18 bytes; empty for what is no sense data.
std::optional<Sense> senseOf(std::span<const uint8_t> bytes) noexcept;
std::vector<uint8_t> bytesOf(const Sense& sense);

/// "Medium Error" and so on, in the standard's words; "" for a key that has no name.
std::string_view textOfSenseKey(uint8_t key) noexcept;
/// "Write error" and so on; "Code 47/03" for one that is not in the table.
std::string textOfAdditionalSense(const Sense& sense);

/// The error that fits best, or `otherwise`.
ErrorCode codeOf(const Sense& sense, ErrorCode otherwise) noexcept;

} // namespace engine
