// Sound through libsndfile: WAV, AIFF, FLAC, Ogg and many more.
#include "audio/Decoder.hpp"

#include <sndfile.h>

namespace engine {
namespace {

bool isPlain(int format) {
    switch (format & SF_FORMAT_SUBMASK) {
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

// A frame of these is so many bytes at a place that can be computed. A decoder's seeking is near enough for ears,
// but what a burn compares must be the same to the bit.
bool seeksExactly(int format) {
    if ((format & SF_FORMAT_TYPEMASK) == SF_FORMAT_FLAC) return false;
    switch (format & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
    case SF_FORMAT_PCM_16:
    case SF_FORMAT_PCM_24:
    case SF_FORMAT_PCM_32:
    case SF_FORMAT_FLOAT:
    case SF_FORMAT_DOUBLE:
    case SF_FORMAT_ULAW:
    case SF_FORMAT_ALAW:
        return true;
    default:
        return false;
    }
}

class SndfileDecoder final : public Decoder {
  public:
    explicit SndfileDecoder(SNDFILE* file, const SF_INFO& info) : file_(file) {
        form_.channels = info.channels;
        form_.rate = info.samplerate;
        form_.isPlain = isPlain(info.format);
        form_.seeksExactly = seeksExactly(info.format);
        if (info.frames > 0 && info.frames < SF_COUNT_MAX) form_.frames = static_cast<uint64_t>(info.frames);
        form_.positions.resize(static_cast<size_t>(info.channels));
        const auto bytes = static_cast<int>(form_.positions.size() * sizeof(int));
        if (sf_command(file_, SFC_GET_CHANNEL_MAP_INFO, form_.positions.data(), bytes) == SF_FALSE)
            form_.positions.clear();
    }
    ~SndfileDecoder() override { sf_close(file_); }
    SndfileDecoder(const SndfileDecoder&) = delete;
    SndfileDecoder& operator=(const SndfileDecoder&) = delete;

    const DecodedForm& form() const noexcept override { return form_; }
    uint64_t read(std::span<float> out) override {
        return counted(sf_readf_float(file_, out.data(), frames(out.size())));
    }
    uint64_t readPlain(std::span<int16_t> out) override {
        return counted(sf_readf_short(file_, out.data(), frames(out.size())));
    }
    bool seek(uint64_t frame) override {
        const auto place = static_cast<sf_count_t>(frame);
        return sf_seek(file_, place, SEEK_SET) == place;
    }
    std::string problem() const override {
        return sf_error(file_) != SF_ERR_NO_ERROR ? sf_strerror(file_) : "";
    }

  private:
    sf_count_t frames(size_t samples) const {
        return static_cast<sf_count_t>(samples / static_cast<size_t>(form_.channels));
    }
    static uint64_t counted(sf_count_t got) { return got > 0 ? static_cast<uint64_t>(got) : 0; }

    SNDFILE* file_;
    DecodedForm form_;
};

} // namespace

std::unique_ptr<Decoder> openWithSndfile(const std::string& path, std::string& problem) {
    SF_INFO info{};
    SNDFILE* const file = sf_open(path.c_str(), SFM_READ, &info);
    if (file == nullptr || info.channels < 1) {
        problem = sf_strerror(file);
        if (file != nullptr) sf_close(file);
        return nullptr;
    }
    return std::make_unique<SndfileDecoder>(file, info);
}

std::unique_ptr<Decoder> openDecoder(const std::string& path, std::string& problem) {
    if (looksLikeMpeg(path)) return openMpeg(path, problem);
    SF_INFO info{};
    if (SNDFILE* const file = sf_open(path.c_str(), SFM_READ, &info)) {
        sf_close(file);
        if ((info.format & SF_FORMAT_TYPEMASK) == SF_FORMAT_MPEG) return openMpeg(path, problem);
    }
    return openWithSndfile(path, problem);
}

} // namespace engine
