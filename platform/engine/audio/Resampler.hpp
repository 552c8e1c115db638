// Two channels of any rate become two of a CD's rate.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace engine {

inline constexpr uint32_t cdSampleRate = 44100;

/// How many samples come out when `samples` of this rate go in, rounded to the nearest.
uint64_t resampledLength(uint64_t samples, uint32_t rate) noexcept;

/// libsoxr at its high quality: 20 bits, the pass band up to 0.91 of half the lower rate, in linear phase.
class Resampler {
  public:
    /// Fills the span with interleaved samples and answers how many frames; less only at the end.
    using Source = std::function<size_t(std::span<float>)>;

    Resampler(uint32_t rate, Source source); ///< throws Failure
    ~Resampler();

    /// As its source: frames, less than asked for at the end only. Throws Failure.
    size_t read(std::span<float> out);

  private:
    struct Inside;
    std::unique_ptr<Inside> inside_;
};

} // namespace engine
