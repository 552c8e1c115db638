// Opening, measuring and reading sound files; what is wrong with one is said before a disc is touched.
#include "audio/SoundFile.hpp"

#include "Failure.hpp"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <sndfile.h>
#include <sys/stat.h>
#include <vector>

namespace engine {
namespace {

// Outside of these no sound is recorded, and the resampler's filters would take all memory.
constexpr int lowestRate = 1000, highestRate = 1536000;
constexpr size_t pieceFrames = 4096;

bool isInterleavedPCM(int format) {
    switch (format & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
    case SF_FORMAT_PCM_16:
    case SF_FORMAT_PCM_24:
    case SF_FORMAT_PCM_32:
    case SF_FORMAT_FLOAT:
    case SF_FORMAT_DOUBLE:
        return true;
    default:
        return false;
    }
}

} // namespace

struct SoundFile::Inside {
    explicit Inside(std::string name) : path(std::move(name)) {}
    ~Inside() { close(); }
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;

    [[noreturn]] void refuse(const std::string& why, std::string info = {}) const {
        fail(ErrorCode::AudioFileNotSupported, "The file " + inQuotes(path) + ' ' + why, std::move(info));
    }

    void open() {
        close();
        format = {};
        file = sf_open(path.c_str(), SFM_READ, &format);
        if (file == nullptr)
            refuse("is no sound that can be read; use WAV, AIFF, FLAC, Ogg or MP3.", sf_strerror(nullptr));
    }
    void close() {
        if (file != nullptr) sf_close(file);
        file = nullptr;
    }

    void check() const {
        struct stat status {};
        if (::stat(path.c_str(), &status) != 0) refuse("can't be opened: " + systemText(errno) + '.');
        // Anything else could keep the reader waiting for ever.
        if (!S_ISREG(status.st_mode)) refuse("is no file, so it can't be read as sound.");
        if (status.st_size == 0) refuse("is empty.");
    }

    // The frames that are really there. A header may promise more than a file holds, and MP3 has no length at all
    // but an estimate.
    uint64_t measure() {
        if (format.frames > 0 && format.seekable != 0 && endsAt(format.frames)) {
            open(); // decoders start as if nothing had been read
            return static_cast<uint64_t>(format.frames);
        }
        open();
        const sf_count_t promised = format.frames;
        uint64_t counted = 0;
        std::vector<float> piece(pieceFrames * static_cast<size_t>(format.channels));
        while (const sf_count_t got = sf_readf_float(file, piece.data(), pieceFrames))
            counted += static_cast<uint64_t>(got);
        const std::string problem = sf_error(file) != SF_ERR_NO_ERROR ? sf_strerror(file) : "";
        if (counted == 0 && problem.empty() && promised <= 0) refuse("holds no sound.");
        const bool estimates = (format.format & SF_FORMAT_SUBMASK) == SF_FORMAT_MPEG_LAYER_III ||
                               (format.format & SF_FORMAT_SUBMASK) == SF_FORMAT_MPEG_LAYER_II ||
                               (format.format & SF_FORMAT_SUBMASK) == SF_FORMAT_MPEG_LAYER_I;
        const bool promises = promised > 0 && promised < SF_COUNT_MAX && !estimates;
        if (counted == 0 || !problem.empty() || (promises && counted < static_cast<uint64_t>(promised)))
            refuse("is damaged: its sound breaks off after " + std::to_string(counted) + " samples.",
                   problem);
        open();
        return counted;
    }
    bool endsAt(sf_count_t count) {
        std::vector<float> two(2 * static_cast<size_t>(format.channels));
        return sf_seek(file, count - 1, SEEK_SET) == count - 1 && sf_readf_float(file, two.data(), 2) == 1;
    }

    void findMix() {
        std::vector<int> positions(static_cast<size_t>(format.channels));
        const auto bytes = static_cast<int>(positions.size() * sizeof(int));
        if (sf_command(file, SFC_GET_CHANNEL_MAP_INFO, positions.data(), bytes) == SF_FALSE)
            positions.clear();
        mix = StereoMix::of(format.channels, positions);
        if (!mix)
            refuse("has " + std::to_string(format.channels) +
                   " channels and doesn't say which they are; mix them to two.");
    }

    std::string path;
    SNDFILE* file = nullptr;
    SF_INFO format{};
    uint64_t frames = 0, position = 0;
    std::optional<StereoMix> mix;
    std::vector<float> channels;
};

SoundFile::SoundFile(std::string path) : inside_(std::make_unique<Inside>(std::move(path))) {
    Inside& in = *inside_;
    in.check();
    in.open();
    if (in.format.channels < 1) in.refuse("has no channels.");
    if (in.format.samplerate < lowestRate || in.format.samplerate > highestRate)
        in.refuse("says that it has " + std::to_string(in.format.samplerate) +
                  " samples a second, which is no sound.");
    in.findMix();
    in.frames = in.measure();
    in.channels.resize(pieceFrames * static_cast<size_t>(in.format.channels));
}

SoundFile::~SoundFile() = default;
SoundFile::SoundFile(SoundFile&&) noexcept = default;

const std::string& SoundFile::path() const noexcept { return inside_->path; }
uint32_t SoundFile::rate() const noexcept { return static_cast<uint32_t>(inside_->format.samplerate); }
uint64_t SoundFile::frames() const noexcept { return inside_->frames; }

bool SoundFile::isPlain() const noexcept {
    if (inside_->format.channels > 2) return false;
    switch (inside_->format.format & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
    case SF_FORMAT_PCM_16:
    case SF_FORMAT_ALAC_16:
    case SF_FORMAT_ULAW:
    case SF_FORMAT_ALAW:
        return true;
    default:
        return false;
    }
}

void SoundFile::seek(uint64_t frame) {
    Inside& in = *inside_;
    frame = std::min(frame, in.frames);
    if (frame == in.position) return;
    const bool isExact = isInterleavedPCM(in.format.format);
    if (isExact && sf_seek(in.file, static_cast<sf_count_t>(frame), SEEK_SET) >= 0) {
        in.position = frame;
        return;
    }
    // A decoder's seeking is near enough for ears, but what a burn compares must be the same to the bit.
    if (frame < in.position) {
        in.open();
        in.position = 0;
    }
    std::vector<float> skipped(2 * pieceFrames);
    while (in.position < frame) {
        const auto some = static_cast<size_t>(std::min<uint64_t>(frame - in.position, pieceFrames));
        if (read(std::span(skipped).first(2 * some)) == 0) break;
    }
}

size_t SoundFile::read(std::span<float> out) {
    Inside& in = *inside_;
    size_t done = 0;
    for (const size_t wanted = out.size() / 2; done < wanted && in.position < in.frames;) {
        const auto some = static_cast<sf_count_t>(
            std::min<uint64_t>({wanted - done, pieceFrames, in.frames - in.position}));
        const bool direct = in.mix->isIdentity();
        float* const to = direct ? out.data() + 2 * done : in.channels.data();
        const sf_count_t got = sf_readf_float(in.file, to, some);
        if (got <= 0)
            fail(ErrorCode::DataProduction,
                 "The sound file " + inQuotes(in.path) + " breaks off: it is damaged or was changed.",
                 sf_strerror(in.file));
        const auto frames = static_cast<size_t>(got);
        if (!direct)
            in.mix->mix(std::span(in.channels).first(frames * static_cast<size_t>(in.format.channels)),
                        out.subspan(2 * done, 2 * frames));
        done += frames;
        in.position += frames;
    }
    return done;
}

size_t SoundFile::readPlain(std::span<int16_t> out) {
    Inside& in = *inside_;
    size_t done = 0;
    for (const size_t wanted = out.size() / 2; done < wanted && in.position < in.frames;) {
        const auto some = static_cast<sf_count_t>(std::min<uint64_t>(wanted - done, in.frames - in.position));
        int16_t* const to = out.data() + 2 * done;
        const sf_count_t got = sf_readf_short(in.file, to, some);
        if (got <= 0)
            fail(ErrorCode::DataProduction,
                 "The sound file " + inQuotes(in.path) + " breaks off: it is damaged or was changed.",
                 sf_strerror(in.file));
        const auto frames = static_cast<size_t>(got);
        if (in.format.channels == 1)
            for (size_t frame = frames; frame-- > 0;) // backwards: both halves lie where one came from
                to[2 * frame] = to[2 * frame + 1] = to[frame];
        done += frames;
        in.position += frames;
    }
    return done;
}

} // namespace engine
