// A sound file as libsndfile decodes it, in frames of its own rate.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace engine {

/// Made for one pass from the start; all of it throws Failure.
class SoundFile {
  public:
    /// AudioFileNotSupported with a sentence for what is no sound, holds none, or ends before its header says.
    explicit SoundFile(std::string path);
    ~SoundFile();
    SoundFile(SoundFile&&) noexcept;

    const std::string& path() const noexcept;
    uint32_t rate() const noexcept;
    /// Exact: what can be read, counted by reading where the file only estimates it.
    uint64_t frames() const noexcept;
    /// Whether the samples are one or two channels of at most 16 bits, which can go to a CD as they are.
    bool isPlain() const noexcept;

    /// Goes to a frame; from there reading gives the same as after reading up to it.
    void seek(uint64_t frame);

    /// Frames of two channels; less than asked for at the end only. DataProduction when the file breaks off.
    size_t read(std::span<float> out);
    /// The same for a plain file.
    size_t readPlain(std::span<int16_t> out);

  private:
    struct Inside;
    std::unique_ptr<Inside> inside_;
};

} // namespace engine
