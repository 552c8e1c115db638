// Blocks of a sound file, as often as they are asked for, always the same.
#include "audio/AudioTrack.hpp"

#include "Failure.hpp"
#include "audio/AudioReader.hpp"

#include <algorithm>
#include <cstring>

namespace engine {
namespace {

class AudioProducer final : public TrackProducer {
  public:
    AudioProducer(std::string path, uint64_t samples) : path_(std::move(path)), samples_(samples) {}

    static uint64_t blocksOf(uint64_t samples) { return (samples + samplesPerBlock - 1) / samplesPerBlock; }

    bool prepare(uint64_t& blocks, const MediumInfo&) override {
        auto reader = AudioReader::open(path_);
        if (!reader) throw Failure(reader.error());
        if ((*reader)->samples() != samples_)
            fail(ErrorCode::FileModifiedDuringBurn,
                 "The sound file " + inQuotes(path_) + " has another length than when its track was made.");
        reader_ = std::move(*reader);
        next_ = 0;
        blocks = std::min(blocks, blocksOf(samples_));
        return true;
    }

    size_t produce(uint64_t block, std::span<std::byte> buffer, ProduceFlags&) override {
        constexpr size_t blockBytes = bytesPerBlock(BlockForm::Audio);
        if (!reader_) return 0;
        if (block != next_) reader_->seek(block * samplesPerBlock);
        const std::span<std::byte> room = buffer.first(buffer.size() / blockBytes * blockBytes);
        const size_t sound = reader_->read(room);
        const size_t whole = (sound + blockBytes - 1) / blockBytes * blockBytes;
        std::memset(room.data() + sound, 0, whole - sound);
        next_ = block + whole / blockBytes;
        return whole;
    }

    bool prepareForVerification() override {
        restart();
        return true;
    }
    void cleanupAfterBurn() override { reader_.reset(); }

  private:
    // Also when it stands there already: what rounding adds must be the same again.
    void restart() {
        if (reader_) reader_->seek(0);
        next_ = 0;
    }

    const std::string path_;
    const uint64_t samples_;
    std::unique_ptr<AudioReader> reader_; // only during a burn
    uint64_t next_ = 0;
};

} // namespace

Result<ProducedTrack> trackForAudioFile(const std::string& path) {
    auto reader = AudioReader::open(path);
    if (!reader) return reader.error();
    const uint64_t samples = (*reader)->samples();
    ProducedTrack track;
    track.form = BlockForm::Audio;
    track.blocks = AudioProducer::blocksOf(samples);
    track.producer = std::make_shared<AudioProducer>(path, samples);
    return track;
}

} // namespace engine
