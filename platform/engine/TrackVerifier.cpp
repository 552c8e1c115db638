// Reads a track back and compares it.
#include "TrackVerifier.hpp"
#include "Failure.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

namespace engine {
namespace {

[[noreturn]] void differs(const TrackInfo& track, uint64_t fromByte, uint64_t toByte,
                          const std::string& how) {
    const uint64_t from = track.startBlock + fromByte / track.blockBytes();
    const uint64_t to = track.startBlock + toByte / track.blockBytes();
    throw Mismatch{from,
                   how.empty() ? "block " + std::to_string(from) + " to " + std::to_string(to - 1) : how};
}

// Fills the buffer from that block on; less where the track ends, or its pre-gap.
size_t readFull(MediumReader& reader, const TrackInfo& track, int64_t block, std::span<std::byte> buffer) {
    const size_t blockBytes = track.blockBytes();
    size_t filled = 0;
    while (filled < buffer.size()) {
        const int64_t at = block + static_cast<int64_t>(filled / blockBytes);
        const auto count = reader.read(track, at, buffer.subspan(filled));
        if (!count) {
            const auto byte = static_cast<uint64_t>(std::max<int64_t>(at, 0)) * blockBytes;
            differs(track, byte, byte, count.error().message + ' ' + count.error().info);
        }
        if (*count == 0 || (block < 0 && at + static_cast<int64_t>(*count / blockBytes) >= 0))
            return filled + *count;
        filled += *count;
    }
    return filled;
}

} // namespace

TrackVerifier::TrackVerifier(Written written, SignalRef signal, std::shared_ptr<MediumReader> reader,
                             std::shared_ptr<TrackSource> source, Verification way)
    : written_(std::move(written)), signal_(std::move(signal)), reader_(std::move(reader)),
      source_(std::move(source)), way_(way), blockBytes_(written_.track.blockBytes()) {}

// Deliberate: a producer that was asked to prepare cleans up, whatever was found; what it holds for the verification would
// stay until the burn's end otherwise, and a difference is when it matters. Only an abort leaves it out.
size_t TrackVerifier::next(std::span<std::byte> scratch) {
    try {
        return check(scratch);
    } catch (const Failure& failure) {
        if (failure.error().code != ErrorCode::UserCanceled) cleanUp();
        throw;
    } catch (...) {
        cleanUp();
        throw;
    }
}

// What was found first is told; what goes wrong after it is not. The medium is left alone first, for whoever marks it.
void TrackVerifier::cleanUp() noexcept {
    if (read_) read_->stop();
    if (std::exchange(ended_, true) || way_ == Verification::Checksum) return;
    try {
        source_->endVerification();
    } catch (...) {
    }
}

size_t TrackVerifier::check(std::span<std::byte> scratch) {
    if (!read_) begin(scratch);
    const auto wanted =
        static_cast<size_t>(std::min<uint64_t>(written_.pieceBytes, written_.bytes - position_));
    if (wanted == 0) {
        end();
        return 0;
    }
    auto piece = read_->take();
    const std::span<std::byte> read = piece ? piece->content() : std::span<std::byte>();
    const uint64_t end = position_ + read.size();
    // What is missing is told as that: nobody is shown nothing, and for a part of a piece there is no sum.
    const bool isComparable = way_ == Verification::Checksum ? read.size() == wanted : !read.empty();
    if (isComparable && !isRight(read, scratch)) differs(written_.track, position_, end, {});
    if (read.size() < wanted)
        differs(written_.track, end, end,
                std::to_string(end) + " bytes read back of " + std::to_string(written_.bytes));
    position_ = end;
    ++piece_;
    read_->giveBack(std::move(piece));
    return wanted;
}

void TrackVerifier::begin(std::span<std::byte> scratch) {
    const TrackInfo& track = written_.track;
    if (way_ != Verification::Checksum && !source_->beginVerification())
        differs(track, 0, 0,
                "the producer of track " + std::to_string(track.number) + " could not prepare for it");
    const auto first = static_cast<int64_t>(track.preGapBlocks - written_.preGapBlocks);
    if (way_ == Verification::ReceiveData)
        for (auto block = first; block < static_cast<int64_t>(track.preGapBlocks);) {
            const int64_t before = block - static_cast<int64_t>(track.preGapBlocks);
            const size_t count = readFull(*reader_, track, before, scratch);
            if (count == 0 || !source_->verifyPreGap(static_cast<uint64_t>(block), scratch.first(count)))
                differs(track, 0, 0, "the pre-gap of track " + std::to_string(track.number));
            block += static_cast<int64_t>(count / blockBytes_);
        }
    // Only from here on: a medium is read by one thread at a time.
    read_.emplace(signal_, "disc-read-back", written_.pieceBytes,
                  [reader = reader_, track, left = written_.bytes,
                   block = int64_t{0}](std::span<std::byte> buffer) mutable {
                      const auto wanted = static_cast<size_t>(std::min<uint64_t>(buffer.size(), left));
                      const size_t count = readFull(*reader, track, block, buffer.first(wanted));
                      left = count < wanted ? 0 : left - count; // the rest is missing
                      block += static_cast<int64_t>(count / track.blockBytes());
                      return count;
                  });
}

void TrackVerifier::end() {
    if (ended_) return;
    ended_ = true;
    if (way_ != Verification::Checksum && !source_->endVerification())
        differs(written_.track, 0, 0,
                "the producer of track " + std::to_string(written_.track.number) + " was not content");
}

bool TrackVerifier::isRight(std::span<const std::byte> bytes, std::span<std::byte> scratch) {
    switch (way_) {
    case Verification::None:
        return true;
    case Verification::Checksum:
        // First, for it knows whose bytes they are.
        if (const auto difference = source_->compareAgain(bytes)) {
            const uint64_t at = position_ + difference->byte;
            differs(written_.track, at, at, difference->how);
        }
        sum_.add(bytes);
        return piece_ < written_.sums.size() && sum_.value() == written_.sums[piece_];
    case Verification::ReceiveData:
        return source_->verify(position_ / blockBytes_, bytes);
    case Verification::ProduceAgain:
        break;
    }
    const std::span<std::byte> produced = scratch.first(bytes.size());
    for (size_t filled = 0; filled < produced.size();) {
        const size_t count = source_->read(produced.subspan(filled));
        if (count == 0) return false;
        filled += count;
    }
    return std::memcmp(produced.data(), bytes.data(), bytes.size()) == 0;
}

} // namespace engine
