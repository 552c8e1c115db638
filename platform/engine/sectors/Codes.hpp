// The two codes in a CD's data sectors: the error detection code and the product code's parity (ECMA-130).
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace engine {

/// The error detection code (ECMA-130, 14.3) of whatever bytes it is to cover; stored least significant byte
/// first.
uint32_t errorDetectionCode(std::span<const std::byte> bytes) noexcept;

/// What the product code covers: header, user data, error detection code and the eight bytes after it.
inline constexpr size_t parityDataBytes = 2064;
/// 172 bytes of P parity, then 104 of Q.
inline constexpr size_t parityBytes = 276;

/// The parity of a sector's bytes from 12 on (ECMA-130, annex A).
void errorCorrectionParity(std::span<const std::byte, parityDataBytes> data,
                           std::span<std::byte, parityBytes> parity) noexcept;

} // namespace engine
