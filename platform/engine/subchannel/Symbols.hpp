// The subchannels of a sector: a symbol of eight channels a byte, or channel by channel.
#pragma once

#include "../BlockForm.hpp"

#include <cstddef>
#include <span>

namespace engine {

/// Bytes of one channel in a sector.
inline constexpr size_t channelBytes = 12;

/// 96 symbols, P in bit 7 to W in bit 0, become 12 bytes of P, 12 of Q and so on to W, the first symbol in the highest
/// bit; and back.
void channelsOfSymbols(std::span<const std::byte, subchannelBytes> symbols,
                       std::span<std::byte, subchannelBytes> channels) noexcept;
void symbolsOfChannels(std::span<const std::byte, subchannelBytes> channels,
                       std::span<std::byte, subchannelBytes> symbols) noexcept;

/// Makes zeros of P and Q, which are the drive's, in any number of symbols.
void clearDrivesChannels(std::span<std::byte> symbols) noexcept;

} // namespace engine
