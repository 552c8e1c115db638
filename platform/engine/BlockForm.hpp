// The forms that a block of a track can have.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace engine {

/// What the producer of a track gives for each block, and what is read back from it. Everything but Data
/// needs a CD.
enum class BlockForm : uint8_t {
    Data,       ///< 2048 bytes: mode 1 on a CD, the plain block of a DVD or BD
    Audio,      ///< 2352 bytes: 588 samples of 16 bits, stereo, interleaved, little endian
    Mode2,      ///< 2336 bytes, formless
    Mode2Form1, ///< 2048 bytes; the medium adds the subheader
    Mode2Form2, ///< 2324 bytes; the medium adds the subheader
    XA,         ///< 2336 bytes: subheader (8), then form 1 or 2 as it says
    Mixed, ///< 2332 bytes: as XA, without the last four; form 1's data is followed by 276 bytes of no meaning
    RawMode1, ///< 2352 bytes: whole sectors
    RawMode2, ///< 2352 bytes: whole sectors
};

/// Bytes of a sector on a CD, without subchannel data.
inline constexpr size_t sectorBytes = 2352;
/// Subchannel data of a block, for tracks that bring it.
inline constexpr size_t subchannelBytes = 96;

/// What stands behind each block's bytes, for tracks that bring subchannel data: 96 symbols, one a byte, with the channels
/// R to W in bits 5 to 0. Bits 7 and 6 are P and Q, which a drive makes: what a producer puts there counts nowhere, and
/// zeros are read back.
enum class SubchannelForm : uint8_t {
    None,
    Pack, ///< four packs of 24 symbols, in their order and with their parity
    Raw,  ///< the symbols as they stand on the disc
};

/// Bytes that a producer gives for one block, without subchannel data.
constexpr size_t bytesPerBlock(BlockForm form) noexcept {
    switch (form) {
    case BlockForm::Data:
    case BlockForm::Mode2Form1:
        return 2048;
    case BlockForm::Mode2:
    case BlockForm::XA:
        return 2336;
    case BlockForm::Mixed:
        return 2332;
    case BlockForm::Mode2Form2:
        return 2324;
    case BlockForm::Audio:
    case BlockForm::RawMode1:
    case BlockForm::RawMode2:
        return sectorBytes;
    }
    return sectorBytes;
}

/// With the subchannel data behind it.
constexpr size_t bytesPerBlock(BlockForm form, SubchannelForm subchannel) noexcept {
    return bytesPerBlock(form) + (subchannel == SubchannelForm::None ? 0 : subchannelBytes);
}

/// As in medium.json and in sentences: "data", "audio", "mode 2", "mode 2 form 1", "mode 2 form 2", "XA",
/// "mode 2 mixed", "raw mode 1", "raw mode 2".
std::string_view nameOf(BlockForm form) noexcept;
std::optional<BlockForm> blockFormNamed(std::string_view name) noexcept;

/// "none", "pack", "raw".
std::string_view nameOf(SubchannelForm form) noexcept;
std::optional<SubchannelForm> subchannelFormNamed(std::string_view name) noexcept;

} // namespace engine
