// Opening, measuring and reading sound files; what is wrong with one is said before a disc is touched.
#include "audio/SoundFile.hpp"

#include "Failure.hpp"
#include "audio/Decoder.hpp"
#include "audio/StereoMix.hpp"

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>

namespace engine {
namespace {

// Outside of these no sound is recorded, and the resampler's filters would take all memory.
constexpr int lowestRate = 1000, highestRate = 1536000;
constexpr size_t pieceFrames = 4096;

} // namespace

struct SoundFile::Inside {
    explicit Inside(std::string name) : path(std::move(name)) {}

    [[noreturn]] void refuse(const std::string& why, std::string info = {}) const {
        fail(ErrorCode::AudioFileNotSupported, "The file " + inQuotes(path) + ' ' + why, std::move(info));
    }
    [[noreturn]] void breaksOff() const {
        fail(ErrorCode::DataProduction,
             "The sound file " + inQuotes(path) + " breaks off: it is damaged or was changed.",
             decoder->problem());
    }

    void check() const {
        struct stat status {};
        if (::stat(path.c_str(), &status) != 0) refuse("can't be opened: " + systemText(errno) + '.');
        // Anything else could keep the reader waiting for ever.
        if (!S_ISREG(status.st_mode)) refuse("is no file, so it can't be read as sound.");
        if (status.st_size == 0) refuse("is empty.");
    }

    void open() {
        std::string problem;
        decoder = openDecoder(path, problem);
        if (!decoder) refuse("is no sound that can be read; use WAV, AIFF, FLAC, Ogg or MP3.", problem);
        channels = static_cast<size_t>(decoder->form().channels);
        position = 0;
    }

    // The frames that are really there: a header may promise more than a file holds.
    uint64_t measure() {
        const auto promised = decoder->form().frames;
        if (promised && endsAt(*promised)) {
            open(); // decoders start as if nothing had been read
            return *promised;
        }
        open();
        uint64_t counted = 0;
        while (const uint64_t got = decoder->read(buffer(pieceFrames)))
            counted += got;
        const std::string problem = decoder->problem();
        if (counted == 0 && problem.empty() && !promised) refuse("holds no sound.");
        if (!problem.empty() || (promised && counted < *promised))
            refuse("is damaged: its sound breaks off after " + std::to_string(counted) + " samples" +
                       (promised ? " of " + std::to_string(*promised) : "") + '.',
                   problem);
        open();
        return counted;
    }
    bool endsAt(uint64_t count) {
        return decoder->seek(count - 1) && decoder->read(buffer(1)) == 1 && decoder->read(buffer(1)) == 0;
    }

    std::span<float> buffer(size_t frames) {
        all.resize(std::max(all.size(), frames * channels));
        return std::span(all).first(frames * channels);
    }

    std::string path;
    std::unique_ptr<Decoder> decoder;
    size_t channels = 0;
    uint64_t frames = 0, position = 0;
    std::optional<StereoMix> mix;
    std::vector<float> all;
};

SoundFile::SoundFile(std::string path) : inside_(std::make_unique<Inside>(std::move(path))) {
    Inside& in = *inside_;
    in.check();
    in.open();
    const DecodedForm& form = in.decoder->form();
    if (form.rate < lowestRate || form.rate > highestRate)
        in.refuse("says that it has " + std::to_string(form.rate) + " samples a second, which is no sound.");
    in.mix = StereoMix::of(form.channels, form.positions);
    if (!in.mix)
        in.refuse("has " + std::to_string(form.channels) +
                  " channels and doesn't say which they are; mix them to two.");
    in.frames = in.measure();
}

SoundFile::~SoundFile() = default;
SoundFile::SoundFile(SoundFile&&) noexcept = default;

const std::string& SoundFile::path() const noexcept { return inside_->path; }
uint32_t SoundFile::rate() const noexcept { return static_cast<uint32_t>(inside_->decoder->form().rate); }
uint64_t SoundFile::frames() const noexcept { return inside_->frames; }
bool SoundFile::isPlain() const noexcept {
    return inside_->channels <= 2 && inside_->decoder->form().isPlain;
}

void SoundFile::seek(uint64_t frame) {
    Inside& in = *inside_;
    frame = std::min(frame, in.frames);
    if (frame == in.position) return;
    if (in.decoder->form().seeksExactly && in.decoder->seek(frame)) {
        in.position = frame;
        return;
    }
    if (frame < in.position) in.open();
    while (in.position < frame) {
        const auto some = static_cast<size_t>(std::min<uint64_t>(frame - in.position, pieceFrames));
        const uint64_t got = in.decoder->read(in.buffer(some));
        if (got == 0) in.breaksOff();
        in.position += got;
    }
}

size_t SoundFile::read(std::span<float> out) {
    Inside& in = *inside_;
    size_t done = 0;
    for (const size_t wanted = out.size() / 2; done < wanted && in.position < in.frames;) {
        const auto some =
            static_cast<size_t>(std::min<uint64_t>({wanted - done, pieceFrames, in.frames - in.position}));
        const bool direct = in.mix->isIdentity();
        const std::span<float> to = direct ? out.subspan(2 * done, 2 * some) : in.buffer(some);
        const auto got = static_cast<size_t>(in.decoder->read(to));
        if (got == 0) in.breaksOff();
        if (!direct) in.mix->mix(to.first(got * in.channels), out.subspan(2 * done, 2 * got));
        done += got;
        in.position += got;
    }
    return done;
}

size_t SoundFile::readPlain(std::span<int16_t> out) {
    Inside& in = *inside_;
    size_t done = 0;
    for (const size_t wanted = out.size() / 2; done < wanted && in.position < in.frames;) {
        const auto some = static_cast<size_t>(std::min<uint64_t>(wanted - done, in.frames - in.position));
        int16_t* const to = out.data() + 2 * done;
        const auto got = static_cast<size_t>(in.decoder->readPlain({to, some * in.channels}));
        if (got == 0) in.breaksOff();
        if (in.channels == 1)
            for (size_t frame = got; frame-- > 0;) // backwards: both halves lie where one came from
                to[2 * frame] = to[2 * frame + 1] = to[frame];
        done += got;
        in.position += got;
    }
    return done;
}

} // namespace engine
