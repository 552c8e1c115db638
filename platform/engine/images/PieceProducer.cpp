// Blocks from pieces, which may end anywhere in one.
#include "images/PieceProducer.hpp"

#include <algorithm>
#include <cstring>

namespace engine {
namespace {

// Pieces one after the other, as one stretch of bytes without end: zeros follow.
class Row {
  public:
    explicit Row(std::vector<PieceRef> pieces) : pieces_(std::move(pieces)) {}

    void open() {
        for (const PieceRef& piece : pieces_)
            piece->open();
    }
    void close() noexcept {
        for (const PieceRef& piece : pieces_)
            piece->close();
    }
    void read(uint64_t at, std::span<std::byte> out) {
        for (const PieceRef& piece : pieces_) {
            if (out.empty()) return;
            if (at >= piece->bytes()) {
                at -= piece->bytes();
                continue;
            }
            const auto some = static_cast<size_t>(std::min<uint64_t>(out.size(), piece->bytes() - at));
            piece->read(at, out.first(some));
            out = out.subspan(some);
            at = 0;
        }
        if (!out.empty()) std::memset(out.data(), 0, out.size());
    }
    uint64_t bytes() const noexcept { return bytesOf(pieces_); }
    bool isEmpty() const noexcept { return pieces_.empty(); }

  private:
    std::vector<PieceRef> pieces_;
};

class PieceProducer final : public TrackProducer {
  public:
    PieceProducer(PieceTrack track, size_t blockBytes)
        : preGap_(std::move(track.preGap)), body_(std::move(track.body)), blockBytes_(blockBytes),
          userBytes_(bytesPerBlock(track.form)), blocks_((body_.bytes() + blockBytes - 1) / blockBytes) {}

    uint64_t blocks() const noexcept { return blocks_; }

    bool prepare(uint64_t& blocks, const MediumInfo&) override {
        preGap_.open();
        body_.open();
        blocks = blocks_;
        return true;
    }
    bool producesPreGap() override { return !preGap_.isEmpty(); }
    size_t producePreGap(uint64_t block, std::span<std::byte> buffer, ProduceFlags& flags) override {
        return produceFrom(preGap_, block, buffer, flags);
    }
    size_t produce(uint64_t block, std::span<std::byte> buffer, ProduceFlags& flags) override {
        if (block >= blocks_) return 0;
        const size_t perBlock = userBytes_ + (flags.subchannelDataRequested ? subchannelBytes : 0);
        const uint64_t left = (blocks_ - block) * perBlock;
        return produceFrom(body_, block,
                           buffer.first(static_cast<size_t>(std::min<uint64_t>(buffer.size(), left))), flags);
    }
    void cleanupAfterBurn() override {
        preGap_.close();
        body_.close();
    }

  private:
    size_t produceFrom(Row& row, uint64_t block, std::span<std::byte> buffer, ProduceFlags& flags) {
        const bool hasSubchannel = blockBytes_ > userBytes_;
        if (flags.subchannelDataRequested == hasSubchannel) {
            const std::span<std::byte> room = buffer.first(buffer.size() / blockBytes_ * blockBytes_);
            row.read(block * blockBytes_, room);
            return room.size();
        }
        // Only one of the two has subchannel data: what isn't wanted is skipped, what isn't there is zeros.
        const size_t wanted = userBytes_ + (flags.subchannelDataRequested ? subchannelBytes : 0);
        size_t done = 0;
        for (; done + wanted <= buffer.size(); done += wanted, ++block) {
            row.read(block * blockBytes_, buffer.subspan(done, userBytes_));
            const auto behind = buffer.subspan(done + userBytes_, wanted - userBytes_);
            if (!behind.empty()) std::memset(behind.data(), 0, behind.size());
        }
        return done;
    }

    Row preGap_, body_;
    const size_t blockBytes_, userBytes_;
    const uint64_t blocks_;
};

} // namespace

uint64_t bytesOf(const std::vector<PieceRef>& pieces) noexcept {
    uint64_t bytes = 0;
    for (const PieceRef& piece : pieces)
        bytes += piece->bytes();
    return bytes;
}

ProducedTrack producedTrack(PieceTrack track) {
    ProducedTrack made;
    made.form = track.form;
    made.subchannel = track.subchannel;
    const size_t blockBytes = bytesPerBlock(track.form, track.subchannel);
    auto producer = std::make_shared<PieceProducer>(std::move(track), blockBytes);
    made.blocks = producer->blocks();
    made.producer = std::move(producer);
    return made;
}

} // namespace engine
