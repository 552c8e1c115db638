// From any number of channels to the two of a CD.
#pragma once

#include <optional>
#include <span>
#include <vector>

namespace engine {

/// Gains of every channel of a sound file for left and right.
///
/// One channel goes to both sides as it is, two stay what they are. More are mixed as ITU-R BS.775 says: centre
/// and surround go down by 3 dB, low-frequency effects are left out, and the sum is scaled so that it can't
/// clip.
class StereoMix {
  public:
    /// `positions` are libsndfile's channel positions (SF_CHANNEL_MAP_…); where a file doesn't tell, give none and
    /// the order of WAV files holds. Empty when it isn't known what the channels are.
    static std::optional<StereoMix> of(int channels, std::span<const int> positions);

    /// Whether the mix changes nothing.
    bool isIdentity() const noexcept { return gains_.empty(); }

    /// `in` holds frames of all channels; `out` gets two samples for each.
    void mix(std::span<const float> in, std::span<float> out) const noexcept;

  private:
    struct Gain {
        float left, right;
    };
    std::vector<Gain> gains_; // empty for two channels that stay as they are
};

} // namespace engine
