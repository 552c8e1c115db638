// What each channel of a sound file gives to left and right.
#include "audio/StereoMix.hpp"

#include <algorithm>
#include <cstring>
#include <sndfile.h>

namespace engine {
namespace {

constexpr float less3dB = 0.70710678F;

// What WAV and FLAC files hold when they don't say: 1 to 8 channels.
const std::vector<int>& usualPositions(int channels) {
    static const std::vector<int> byCount[] = {
        {},
        {SF_CHANNEL_MAP_MONO},
        {SF_CHANNEL_MAP_LEFT, SF_CHANNEL_MAP_RIGHT},
        {SF_CHANNEL_MAP_LEFT, SF_CHANNEL_MAP_RIGHT, SF_CHANNEL_MAP_CENTER},
        {SF_CHANNEL_MAP_LEFT, SF_CHANNEL_MAP_RIGHT, SF_CHANNEL_MAP_REAR_LEFT, SF_CHANNEL_MAP_REAR_RIGHT},
        {SF_CHANNEL_MAP_LEFT, SF_CHANNEL_MAP_RIGHT, SF_CHANNEL_MAP_CENTER, SF_CHANNEL_MAP_REAR_LEFT,
         SF_CHANNEL_MAP_REAR_RIGHT},
        {SF_CHANNEL_MAP_LEFT, SF_CHANNEL_MAP_RIGHT, SF_CHANNEL_MAP_CENTER, SF_CHANNEL_MAP_LFE,
         SF_CHANNEL_MAP_REAR_LEFT, SF_CHANNEL_MAP_REAR_RIGHT},
        {SF_CHANNEL_MAP_LEFT, SF_CHANNEL_MAP_RIGHT, SF_CHANNEL_MAP_CENTER, SF_CHANNEL_MAP_LFE,
         SF_CHANNEL_MAP_REAR_CENTER, SF_CHANNEL_MAP_SIDE_LEFT, SF_CHANNEL_MAP_SIDE_RIGHT},
        {SF_CHANNEL_MAP_LEFT, SF_CHANNEL_MAP_RIGHT, SF_CHANNEL_MAP_CENTER, SF_CHANNEL_MAP_LFE,
         SF_CHANNEL_MAP_REAR_LEFT, SF_CHANNEL_MAP_REAR_RIGHT, SF_CHANNEL_MAP_SIDE_LEFT,
         SF_CHANNEL_MAP_SIDE_RIGHT}};
    const auto count = static_cast<size_t>(channels);
    return count < std::size(byCount) ? byCount[count] : byCount[0];
}

struct Sides {
    float left, right;
};

std::optional<Sides> sidesOf(int position) {
    switch (position) {
    case SF_CHANNEL_MAP_LEFT:
    case SF_CHANNEL_MAP_FRONT_LEFT:
        return Sides{1, 0};
    case SF_CHANNEL_MAP_RIGHT:
    case SF_CHANNEL_MAP_FRONT_RIGHT:
        return Sides{0, 1};
    case SF_CHANNEL_MAP_MONO:
        return Sides{1, 1};
    case SF_CHANNEL_MAP_CENTER:
    case SF_CHANNEL_MAP_FRONT_CENTER:
        return Sides{less3dB, less3dB};
    case SF_CHANNEL_MAP_REAR_LEFT:
    case SF_CHANNEL_MAP_SIDE_LEFT:
    case SF_CHANNEL_MAP_FRONT_LEFT_OF_CENTER:
        return Sides{less3dB, 0};
    case SF_CHANNEL_MAP_REAR_RIGHT:
    case SF_CHANNEL_MAP_SIDE_RIGHT:
    case SF_CHANNEL_MAP_FRONT_RIGHT_OF_CENTER:
        return Sides{0, less3dB};
    case SF_CHANNEL_MAP_REAR_CENTER:
        return Sides{0.5F, 0.5F};
    case SF_CHANNEL_MAP_LFE:
        return Sides{0, 0};
    default:
        return std::nullopt;
    }
}

} // namespace

std::optional<StereoMix> StereoMix::of(int channels, std::span<const int> positions) {
    StereoMix mix;
    if (channels == 2) return mix; // whatever they are called
    if (channels == 1) {
        mix.gains_ = {{1, 1}};
        return mix;
    }
    const std::vector<int>& usual = usualPositions(channels);
    for (const std::span<const int> asked : {positions, std::span<const int>(usual)}) {
        mix.gains_.clear();
        for (const int position : asked)
            if (const auto sides = sidesOf(position)) mix.gains_.push_back({sides->left, sides->right});
        if (mix.gains_.size() != static_cast<size_t>(channels)) continue;
        float left = 0, right = 0;
        for (const Gain& gain : mix.gains_) {
            left += gain.left;
            right += gain.right;
        }
        const float loudest = std::max(left, right);
        if (loudest <= 0) continue;
        for (Gain& gain : mix.gains_)
            gain = {gain.left / loudest, gain.right / loudest};
        return mix;
    }
    return std::nullopt;
}

void StereoMix::mix(std::span<const float> in, std::span<float> out) const noexcept {
    if (isIdentity()) {
        std::memcpy(out.data(), in.data(), in.size_bytes());
        return;
    }
    const float* from = in.data();
    for (size_t frame = 0; frame < out.size() / 2; ++frame) {
        float left = 0, right = 0;
        for (const Gain& gain : gains_) {
            left += gain.left * *from;
            right += gain.right * *from++;
        }
        out[2 * frame] = left;
        out[2 * frame + 1] = right;
    }
}

} // namespace engine
