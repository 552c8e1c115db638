// The way of a sound file to a CD: as it is, or mixed, resampled and rounded.
#include "audio/AudioReader.hpp"

#include "Failure.hpp"
#include "audio/Resampler.hpp"
#include "audio/Rounding.hpp"
#include "audio/SoundFile.hpp"

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>
#include <vector>

namespace engine {

// CDs are little endian, and so are the machines that this is built for: samples go out as they lie in memory.
static_assert(std::endian::native == std::endian::little);

static constexpr size_t pieceSamples = 4096;

struct AudioReader::Inside {
    explicit Inside(const std::string& path)
        : file(path), isPlain(file.isPlain()), isResampled(file.rate() != cdSampleRate),
          samples(resampledLength(file.frames(), file.rate())) {
        if (samples == 0)
            fail(ErrorCode::AudioFileNotSupported,
                 "The file " + inQuotes(path) + " holds less sound than one sample of a CD.");
        floats.resize(2 * pieceSamples);
        shorts.resize(2 * pieceSamples);
    }

    void restart(uint64_t sample) {
        rounding.restart();
        position = 0;
        if (!isResampled) {
            file.seek(sample);
            position = sample;
            return;
        }
        file.seek(0);
        resampler.emplace(file.rate(), [this](std::span<float> out) { return file.read(out); });
        while (position < sample)
            readPiece(static_cast<size_t>(std::min<uint64_t>(sample - position, pieceSamples)));
    }

    // The next samples, at most a piece, in `shorts`. What the resampler gives less than was promised is silence.
    void readPiece(size_t some) {
        const std::span<int16_t> out = std::span(shorts).first(2 * some);
        size_t got = 0;
        if (isPlain && !isResampled) {
            got = file.readPlain(out);
        } else {
            const std::span<float> in = std::span(floats).first(2 * some);
            got = isResampled ? resampler->read(in) : file.read(in);
            rounding.round(in.first(2 * got), out);
        }
        std::fill(out.begin() + static_cast<std::ptrdiff_t>(2 * got), out.end(), int16_t{0});
        position += some;
    }

    SoundFile file;
    const bool isPlain, isResampled;
    const uint64_t samples;
    uint64_t position = 0;
    std::optional<Resampler> resampler;
    Rounding rounding;
    std::vector<float> floats;
    std::vector<int16_t> shorts;
};

AudioReader::AudioReader(std::unique_ptr<Inside> inside) : inside_(std::move(inside)) {}
AudioReader::~AudioReader() = default;

Result<std::unique_ptr<AudioReader>> AudioReader::open(const std::string& path) {
    return guarded([&] {
        auto inside = std::make_unique<Inside>(path);
        inside->restart(0);
        return std::unique_ptr<AudioReader>(new AudioReader(std::move(inside)));
    });
}

uint64_t AudioReader::samples() const noexcept { return inside_->samples; }

void AudioReader::seek(uint64_t sample) {
    // Also where the next read would begin there anyway: the noise of the rounding must be the same each time.
    inside_->restart(std::min(sample, inside_->samples));
}

size_t AudioReader::read(std::span<std::byte> out) {
    Inside& in = *inside_;
    const uint64_t wanted = std::min<uint64_t>(out.size() / bytesPerSample, in.samples - in.position);
    std::byte* to = out.data();
    for (uint64_t left = wanted; left > 0;) {
        const auto some = static_cast<size_t>(std::min<uint64_t>(left, pieceSamples));
        in.readPiece(some);
        std::memcpy(to, in.shorts.data(), some * bytesPerSample);
        to += some * bytesPerSample;
        left -= some;
    }
    return static_cast<size_t>(wanted) * bytesPerSample;
}

} // namespace engine
