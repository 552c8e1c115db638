// Any sound file as a CD's samples: 44.1 kHz, two channels, 16 bits, little endian.
#pragma once

#include "Error.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace engine {

inline constexpr size_t bytesPerSample = 4; // of two channels
inline constexpr uint64_t samplesPerBlock = 588;

/// What has one or two channels of 16 bits at 44.1 kHz is passed on bit by bit. All else is mixed (StereoMix),
/// resampled (Resampler) and rounded with dither (Rounding), the same at every run.
class AudioReader {
  public:
    /// AudioFileNotSupported with a sentence for what is no sound, holds none or is damaged.
    static Result<std::unique_ptr<AudioReader>> open(const std::string& path);
    ~AudioReader();

    /// How many samples will be read, exactly.
    uint64_t samples() const noexcept;

    /// The next read begins there. Throws Failure.
    void seek(uint64_t sample);
    /// Whole samples; answers bytes, less than asked for at the end only. Throws Failure.
    size_t read(std::span<std::byte> out);

  private:
    struct Inside;
    explicit AudioReader(std::unique_ptr<Inside> inside);
    std::unique_ptr<Inside> inside_;
};

} // namespace engine
