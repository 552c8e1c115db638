// MP3 and its elder brothers through libmpg123, which can count their samples exactly.
#include "audio/Decoder.hpp"

#include <array>
#include <fstream>
#include <mpg123.h>

namespace engine {
namespace {

class MpegDecoder final : public Decoder {
  public:
    explicit MpegDecoder(mpg123_handle* handle) : handle_(handle) {}
    ~MpegDecoder() override { mpg123_delete(handle_); }
    MpegDecoder(const MpegDecoder&) = delete;
    MpegDecoder& operator=(const MpegDecoder&) = delete;

    bool open(const std::string& path) {
        // Without more words on the terminal, and in the form that keeps what is louder than full scale.
        mpg123_param(handle_, MPG123_ADD_FLAGS, MPG123_QUIET | MPG123_FORCE_FLOAT, 0);
        if (mpg123_open(handle_, path.c_str()) != MPG123_OK) return false;
        long rate = 0;
        int encoding = 0;
        if (mpg123_getformat(handle_, &rate, &form_.channels, &encoding) != MPG123_OK) return false;
        // One form for the whole file, whatever stands later in it.
        mpg123_format_none(handle_);
        mpg123_format(handle_, rate, form_.channels, encoding);
        form_.rate = static_cast<int>(rate);
        // Walks from header to header without decoding.
        if (mpg123_scan(handle_) != MPG123_OK) return false;
        if (const off_t length = mpg123_length(handle_); length > 0)
            form_.frames = static_cast<uint64_t>(length);
        return true;
    }

    const DecodedForm& form() const noexcept override { return form_; }
    uint64_t read(std::span<float> out) override {
        size_t bytes = 0;
        const size_t frameBytes = sizeof(float) * static_cast<size_t>(form_.channels);
        int result = MPG123_NEW_FORMAT;
        while (result == MPG123_NEW_FORMAT && bytes == 0)
            result = mpg123_read(handle_, out.data(), out.size_bytes() / frameBytes * frameBytes, &bytes);
        failed_ = result != MPG123_OK && result != MPG123_DONE && result != MPG123_NEW_FORMAT;
        return bytes / frameBytes;
    }
    uint64_t readPlain(std::span<int16_t>) override { return 0; }
    bool seek(uint64_t frame) override {
        const auto place = static_cast<off_t>(frame);
        return mpg123_seek(handle_, place, SEEK_SET) == place;
    }
    std::string problem() const override { return failed_ ? mpg123_strerror(handle_) : ""; }

  private:
    mpg123_handle* handle_;
    DecodedForm form_;
    bool failed_ = false;
};

} // namespace

bool looksLikeMpeg(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::array<unsigned char, 10> head{};
    const auto readHead = [&] {
        return bool(
            file.read(reinterpret_cast<char*>(head.data()), static_cast<std::streamsize>(head.size())));
    };
    if (!readHead()) return false;
    if (head[0] == 'I' && head[1] == 'D' && head[2] == '3') { // ID3v2: its length in four times seven bits
        unsigned long bytes = 10;
        for (size_t at = 6; at < 10; ++at)
            bytes += static_cast<unsigned long>(head[at] & 0x7F) << (7 * (9 - at));
        if (!file.seekg(static_cast<std::streamoff>(bytes)) || !readHead()) return false;
    }
    // Eleven bits of sync, then no reserved version, layer, bit rate or sampling rate.
    return head[0] == 0xFF && (head[1] & 0xE0) == 0xE0 && (head[1] & 0x18) != 0x08 && (head[1] & 0x06) != 0 &&
           (head[2] & 0xF0) != 0xF0 && (head[2] & 0x0C) != 0x0C;
}

std::unique_ptr<Decoder> openMpeg(const std::string& path, std::string& problem) {
    static const int ready = mpg123_init();
    int result = ready;
    mpg123_handle* const handle = ready == MPG123_OK ? mpg123_new(nullptr, &result) : nullptr;
    if (handle == nullptr) {
        problem = mpg123_plain_strerror(result);
        return nullptr;
    }
    auto decoder = std::make_unique<MpegDecoder>(handle);
    if (decoder->open(path)) return decoder;
    problem = mpg123_strerror(handle);
    return nullptr;
}

} // namespace engine
