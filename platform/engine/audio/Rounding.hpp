// From samples of floating point to the 16 bits of a CD.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

namespace engine {

/// Rounds with dither: noise of triangular density, two steps wide, so that what is rounded away is noise and
/// not distortion. The noise is the same at every run: a burn that is verified by producing again compares with
/// it. Silence stays silence.
class Rounding {
  public:
    void round(std::span<const float> in, std::span<int16_t> out) noexcept {
        for (size_t at = 0; at < in.size(); ++at)
            out[at] = rounded(in[at]);
    }
    void restart() noexcept { state_ = seed; }

  private:
    static constexpr uint32_t seed = 0x9E3779B9;

    int16_t rounded(float sample) noexcept {
        if (!(sample > 0 || sample < 0)) return 0; // what is no number, too
        const float noise = uniform() - uniform();
        const float value = sample * 32768.0F + noise;
        if (value >= 32767) return 32767;
        if (value <= -32768) return -32768;
        return static_cast<int16_t>(std::lrintf(value));
    }
    float uniform() noexcept {
        state_ = state_ * 1664525u + 1013904223u;
        return static_cast<float>(state_ >> 8) * 0x1p-24F;
    }

    uint32_t state_ = seed;
};

} // namespace engine
