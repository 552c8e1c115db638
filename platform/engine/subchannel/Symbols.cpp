// The subchannels of a sector: a symbol of eight channels a byte, or channel by channel.
#include "subchannel/Symbols.hpp"

#include <cstdint>

namespace engine {
namespace {

constexpr size_t channels = 8;

// Rows and columns of 8 by 8 bits change places; a row is a byte, the highest one first.
constexpr uint64_t transposed(uint64_t bits) noexcept {
    uint64_t moved = (bits ^ (bits >> 7)) & 0x00AA00AA00AA00AA;
    bits ^= moved ^ (moved << 7);
    moved = (bits ^ (bits >> 14)) & 0x0000CCCC0000CCCC;
    bits ^= moved ^ (moved << 14);
    moved = (bits ^ (bits >> 28)) & 0x00000000F0F0F0F0;
    return bits ^ moved ^ (moved << 28);
}
static_assert(transposed(0xFF) == 0x0101010101010101);
static_assert(transposed(0x8000000000000000) == 0x8000000000000000);
static_assert(transposed(0x4000000000000000) == 0x0080000000000000);

// Eight bytes, so far apart, to eight bytes, so far apart.
void turn(const std::byte* from, size_t fromStep, std::byte* to, size_t toStep) noexcept {
    uint64_t bits = 0;
    for (size_t row = 0; row < channels; ++row)
        bits = bits << 8 | static_cast<uint64_t>(from[row * fromStep]);
    bits = transposed(bits);
    for (size_t row = channels; row-- > 0; bits >>= 8)
        to[row * toStep] = static_cast<std::byte>(bits & 0xFF);
}

} // namespace

void channelsOfSymbols(std::span<const std::byte, subchannelBytes> symbols,
                       std::span<std::byte, subchannelBytes> channelRows) noexcept {
    for (size_t group = 0; group < channelBytes; ++group)
        turn(&symbols[group * channels], 1, &channelRows[group], channelBytes);
}

void symbolsOfChannels(std::span<const std::byte, subchannelBytes> channelRows,
                       std::span<std::byte, subchannelBytes> symbols) noexcept {
    for (size_t group = 0; group < channelBytes; ++group)
        turn(&channelRows[group], channelBytes, &symbols[group * channels], 1);
}

void clearDrivesChannels(std::span<std::byte> symbols) noexcept {
    constexpr std::byte users{0x3F};
    for (std::byte& symbol : symbols)
        symbol &= users;
}

} // namespace engine
