// Reads a track back and compares it.
#include "TrackVerifier.hpp"
#include "Failure.hpp"
#include "XXH3.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

namespace engine {

TrackVerifier::TrackVerifier(std::shared_ptr<MediumReader> reader, TrackInfo track,
                             std::shared_ptr<TrackSource> source, Verification way,
                             std::vector<uint64_t> checksums, uint64_t bytes, uint64_t preGapBlocks)
    : reader_(std::move(reader)), track_(std::move(track)), source_(std::move(source)), way_(way),
      checksums_(std::move(checksums)), bytes_(bytes), preGapBlocks_(preGapBlocks),
      blockBytes_(track_.blockBytes()) {}

// Deliberate: a producer that was asked to prepare cleans up, whatever was found; what it holds for the verification would
// stay until the burn's end otherwise, and a difference is when it matters. Only an abort leaves it out.
size_t TrackVerifier::next(std::span<std::byte> buffer) {
    try {
        return check(buffer);
    } catch (const Mismatch&) {
        cleanUp();
        throw;
    } catch (const Failure& failure) {
        if (failure.error().code != ErrorCode::UserCanceled) cleanUp();
        throw;
    }
}

// What was found first is told; what goes wrong after it is not.
void TrackVerifier::cleanUp() noexcept {
    if (std::exchange(ended_, true) || way_ == Verification::Checksum) return;
    try {
        source_->endVerification();
    } catch (...) {
    }
}

size_t TrackVerifier::check(std::span<std::byte> buffer) {
    if (!began_) begin(buffer);
    const auto wanted = static_cast<size_t>(std::min<uint64_t>(buffer.size(), bytes_ - position_));
    if (wanted == 0) {
        end();
        return 0;
    }
    const size_t count = readFull(static_cast<int64_t>(position_ / blockBytes_), buffer.first(wanted));
    const uint64_t end = position_ + count;
    if (!isRight(buffer.first(count))) differs(position_, position_ + buffer.size(), {});
    if (count < wanted)
        differs(end, end, std::to_string(end) + " bytes read back of " + std::to_string(bytes_));
    position_ = end;
    ++piece_;
    return count;
}

void TrackVerifier::begin(std::span<std::byte> buffer) {
    began_ = true;
    if (way_ == Verification::Checksum) return;
    if (!source_->beginVerification())
        differs(0, 0, "the producer of track " + std::to_string(track_.number) + " could not prepare for it");
    if (way_ != Verification::ReceiveData) return;
    const auto first = static_cast<int64_t>(track_.preGapBlocks - preGapBlocks_);
    for (auto block = first; block < static_cast<int64_t>(track_.preGapBlocks);) {
        const int64_t before = block - static_cast<int64_t>(track_.preGapBlocks);
        const size_t count = readFull(before, buffer);
        if (count == 0 || !source_->verifyPreGap(static_cast<uint64_t>(block), buffer.first(count)))
            differs(0, 0, "the pre-gap of track " + std::to_string(track_.number));
        block += static_cast<int64_t>(count / blockBytes_);
    }
}

void TrackVerifier::end() {
    if (ended_) return;
    ended_ = true;
    if (way_ != Verification::Checksum && !source_->endVerification())
        differs(0, 0, "the producer of track " + std::to_string(track_.number) + " was not content");
}

size_t TrackVerifier::readFull(int64_t block, std::span<std::byte> buffer) {
    size_t filled = 0;
    while (filled < buffer.size()) {
        const int64_t at = block + static_cast<int64_t>(filled / blockBytes_);
        const auto count = reader_->read(track_, at, buffer.subspan(filled));
        if (!count) {
            const auto byte = static_cast<uint64_t>(std::max<int64_t>(at, 0)) * blockBytes_;
            differs(byte, byte, count.error().message + ' ' + count.error().info);
        }
        if (*count == 0 || (block < 0 && at + static_cast<int64_t>(*count / blockBytes_) >= 0))
            return filled + *count;
        filled += *count;
    }
    return filled;
}

bool TrackVerifier::isRight(std::span<const std::byte> bytes) {
    switch (way_) {
    case Verification::None:
        return true;
    case Verification::Checksum:
        // First, for it knows whose bytes they are.
        if (const auto difference = source_->compareAgain(bytes)) {
            const uint64_t at = position_ + difference->byte;
            differs(at, at, difference->how);
        }
        return piece_ < checksums_.size() && XXH3_64bits(bytes.data(), bytes.size()) == checksums_[piece_];
    case Verification::ReceiveData:
        return source_->verify(position_ / blockBytes_, bytes);
    case Verification::ProduceAgain:
        break;
    }
    again_.resize(std::max(again_.size(), bytes.size()));
    const std::span<std::byte> produced(again_.data(), bytes.size());
    for (size_t filled = 0; filled < produced.size();) {
        const size_t count = source_->read(produced.subspan(filled));
        if (count == 0) return false;
        filled += count;
    }
    return std::memcmp(produced.data(), bytes.data(), bytes.size()) == 0;
}

void TrackVerifier::differs(uint64_t fromByte, uint64_t toByte, const std::string& how) const {
    const uint64_t from = track_.startBlock + fromByte / blockBytes_;
    const uint64_t to = track_.startBlock + toByte / blockBytes_;
    throw Mismatch{from,
                   how.empty() ? "block " + std::to_string(from) + " to " + std::to_string(to - 1) : how};
}

} // namespace engine
