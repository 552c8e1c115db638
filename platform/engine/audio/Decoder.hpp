// What a library that decodes sound is asked for.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace engine {

struct DecodedForm {
    int channels = 0;
    int rate = 0;
    std::optional<uint64_t>
        frames;                 ///< as the file says, checked against its end; empty when it must be counted
    bool isPlain = false;       ///< integers of at most 16 bits
    bool seeksExactly = false;  ///< after seek() the samples are those that reading up to there gives
    std::vector<int> positions; ///< libsndfile's SF_CHANNEL_MAP_… of each channel, or none
};

/// Reads on from the start. No member throws; a failure is a short answer, and problem() says why.
class Decoder {
  public:
    virtual ~Decoder() = default;
    virtual const DecodedForm& form() const noexcept = 0;
    /// Frames read; less than asked for, 0 at last, at the end or where the file is damaged.
    virtual uint64_t read(std::span<float> out) = 0;
    virtual uint64_t readPlain(std::span<int16_t> out) = 0;
    virtual bool seek(uint64_t frame) = 0;
    /// The library's text for what went wrong; "" when nothing did.
    virtual std::string problem() const = 0;
};

/// Null, and why, when it isn't such a file.
std::unique_ptr<Decoder> openWithSndfile(const std::string& path, std::string& problem);
std::unique_ptr<Decoder> openMpeg(const std::string& path, std::string& problem);

/// Whether an MPEG frame's header stands at the start, or behind the tag that is there.
bool looksLikeMpeg(const std::string& path);

/// libsndfile, or for MPEG the library below it: libsndfile takes the length of a variable bit rate from an
/// estimate, reads no further than that, and lets warnings be printed.
std::unique_ptr<Decoder> openDecoder(const std::string& path, std::string& problem);

} // namespace engine
