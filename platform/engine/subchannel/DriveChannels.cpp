// P and Q, the two subchannels that a drive makes: where a sector lies, and the disc's and the track's codes.
#include "subchannel/DriveChannels.hpp"
#include "Layout.hpp"

#include <algorithm>

namespace engine {
namespace {

using Q = std::span<std::byte, channelBytes>;

constexpr size_t codeAt = 10, digitsAt = 1, frameAt = 9;
constexpr int64_t codeRhythm = 100, catalogNumberIn = 63, recordingCodeIn = 88; // sectors
constexpr int64_t framesPerSecond = 75, framesPerMinute = 4500;

std::byte decimal(uint64_t number) noexcept {
    number = std::min<uint64_t>(number, 99);
    return static_cast<std::byte>(number / 10 * 16 + number % 10);
}

void putTime(Q q, size_t at, int64_t frames) noexcept {
    q[at] = decimal(static_cast<uint64_t>(frames / framesPerMinute));
    q[at + 1] = decimal(static_cast<uint64_t>(frames / framesPerSecond % 60));
    q[at + 2] = decimal(static_cast<uint64_t>(frames % framesPerSecond));
}

// x^16 + x^12 + x^5 + 1 over the ten bytes before it, and inverted.
uint16_t codeOf(std::span<const std::byte, channelBytes> q) noexcept {
    uint32_t code = 0;
    for (size_t at = 0; at < codeAt; ++at) {
        code ^= static_cast<uint32_t>(q[at]) << 8;
        for (int bit = 0; bit < 8; ++bit)
            code = (code << 1) ^ ((code & 0x8000) != 0 ? 0x11021u : 0u);
    }
    return static_cast<uint16_t>(~code & 0xFFFF);
}

// Four channels, data, copying permitted, pre-emphasis. Of a copy that is protected the bit for copying goes on and off.
uint8_t controlOf(const TrackInfo& track, int64_t address) noexcept {
    const bool isOn = track.isCopy && (address & 4) != 0;
    return static_cast<uint8_t>((track.fourChannel ? 8 : 0) | (track.form != BlockForm::Audio ? 4 : 0) |
                                (track.copyPermitted || isOn ? 2 : 0) | (track.preEmphasis ? 1 : 0));
}

void putPlace(Q q, const TrackInfo& track, int64_t address) noexcept {
    const int64_t inside = address - static_cast<int64_t>(track.startBlock);
    size_t index = 0;
    if (inside >= 0) {
        const auto passed = std::upper_bound(track.indexPoints.begin(), track.indexPoints.end(),
                                             static_cast<uint64_t>(inside));
        index = 1 + static_cast<size_t>(passed - track.indexPoints.begin());
    }
    q[1] = decimal(track.number);
    q[2] = decimal(index);
    putTime(q, 3, inside >= 0 ? inside : -1 - inside); // counts down to zero in a pause
    putTime(q, 7, address + static_cast<int64_t>(usualPreGap));
}

// From digitsAt on, in pieces of any width.
class Bits {
  public:
    explicit Bits(Q q) : q_(q) {}
    void put(unsigned value, size_t width) noexcept {
        while (width-- > 0) {
            if ((value >> width & 1) != 0) q_[at_ / 8] |= std::byte{0x80} >> (at_ % 8);
            ++at_;
        }
    }

  private:
    Q q_;
    size_t at_ = digitsAt * 8;
};

void putCatalogNumber(Q q, const std::string& digits) noexcept {
    Bits bits(q);
    for (const char digit : digits)
        bits.put(static_cast<unsigned>(digit - '0'), 4);
}

// Country and owner have six bits a character, which is what it is behind '0'; year and number are digits.
void putRecordingCode(Q q, const std::string& code) noexcept {
    constexpr size_t wide = 5;
    Bits bits(q);
    for (size_t at = 0; at < code.size(); ++at) {
        if (at == wide) bits.put(0, 2);
        bits.put(static_cast<unsigned>(code[at] - '0'), at < wide ? 6 : 4);
    }
}

} // namespace

void DriveChannels::make(int64_t address, std::span<std::byte, 2 * channelBytes> made) const {
    std::fill(made.begin(), made.end(), std::byte{});
    const bool isPause = address < static_cast<int64_t>(track_.startBlock);
    if (isPause) std::fill_n(made.begin(), channelBytes, std::byte{0xFF});
    const Q q = made.subspan<channelBytes>();
    const int64_t turn = (address + static_cast<int64_t>(usualPreGap)) % codeRhythm;
    uint8_t mode = 1;
    if (turn == catalogNumberIn && !catalogNumber_.empty())
        mode = 2;
    else if (turn == recordingCodeIn && !isPause && !track_.isrc.empty())
        mode = 3;
    q[0] = static_cast<std::byte>(controlOf(track_, address) << 4 | mode);
    if (mode == 1) putPlace(q, track_, address);
    if (mode == 2) putCatalogNumber(q, catalogNumber_);
    if (mode == 3) putRecordingCode(q, track_.isrc);
    if (mode != 1)
        q[frameAt] =
            decimal(static_cast<uint64_t>((address + static_cast<int64_t>(usualPreGap)) % framesPerSecond));
    const uint16_t code = codeOf(q);
    q[codeAt] = static_cast<std::byte>(code >> 8);
    q[codeAt + 1] = static_cast<std::byte>(code & 0xFF);
}

bool isIntactQ(std::span<const std::byte, channelBytes> q) noexcept {
    const uint16_t code = codeOf(q);
    return q[codeAt] == static_cast<std::byte>(code >> 8) &&
           q[codeAt + 1] == static_cast<std::byte>(code & 0xFF);
}

} // namespace engine
