// The resampling library behind a plain pull: what is not asked for yet waits in its filters.
#include "audio/Resampler.hpp"

#include "Failure.hpp"

#include <soxr.h>
#include <vector>

namespace engine {

// Frames; the same for every reader, so that the same file always gives the same samples.
static constexpr size_t pieceFrames = 4096;

struct Resampler::Inside {
    explicit Inside(Source from) : source(std::move(from)), piece(2 * pieceFrames) {}
    ~Inside() { soxr_delete(resampler); }
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;

    Source source;
    std::vector<float> piece;
    size_t used = 0, filled = 0; // frames of the piece
    bool atEnd = false;
    soxr_t resampler = nullptr;
};

uint64_t resampledLength(uint64_t samples, uint32_t rate) noexcept {
    // In two steps, because the product of a day's samples with 44,100 has more bits than a float keeps exactly.
    const uint64_t whole = samples / rate, rest = samples % rate;
    return whole * cdSampleRate + (rest * cdSampleRate + rate / 2) / rate;
}

Resampler::Resampler(uint32_t rate, Source source) : inside_(std::make_unique<Inside>(std::move(source))) {
    const soxr_io_spec_t samples = soxr_io_spec(SOXR_FLOAT32_I, SOXR_FLOAT32_I);
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
    const soxr_runtime_spec_t thisThread = soxr_runtime_spec(1);
    soxr_error_t problem = nullptr;
    inside_->resampler = soxr_create(rate, cdSampleRate, 2, &problem, &samples, &quality, &thisThread);
    if (problem != nullptr)
        fail(ErrorCode::AudioFileNotSupported,
             "Sound of " + std::to_string(rate) + " samples a second can't be converted to a CD's rate.",
             problem);
}

Resampler::~Resampler() = default;

size_t Resampler::read(std::span<float> out) {
    Inside& in = *inside_;
    const size_t wanted = out.size() / 2;
    size_t done = 0;
    while (done < wanted) {
        if (in.used == in.filled && !in.atEnd) {
            in.filled = in.source(in.piece);
            in.used = 0;
            in.atEnd = in.filled < pieceFrames;
        }
        // Null as the input says that there is no more; what waits in the filters then comes out.
        const bool nothingLeft = in.used == in.filled;
        size_t taken = 0, given = 0;
        const soxr_error_t problem =
            soxr_process(in.resampler, nothingLeft ? nullptr : &in.piece[2 * in.used], in.filled - in.used,
                         &taken, out.data() + 2 * done, wanted - done, &given);
        if (problem != nullptr) fail(ErrorCode::DataProduction, "Sound could not be resampled.", problem);
        in.used += taken;
        done += given;
        if (nothingLeft && in.atEnd && given == 0) break;
    }
    return done;
}

} // namespace engine
