// Holding the start of a medium back until all else is right.
#include "MediumStart.hpp"
#include "../Failure.hpp"
#include "BurnLibrary.hpp"
#include "PhysicalReader.hpp"

#include <algorithm>
#include <libburn/libburn.h>

namespace engine {
namespace {

constexpr int flushAfter = 1;
constexpr size_t startBytes = MediumStart::blocks * blockSize;

class Through final : public MediumReader {
  public:
    Through(std::shared_ptr<MediumReader> reader, std::shared_ptr<const std::vector<std::byte>> start)
        : reader_(std::move(reader)), start_(std::move(start)) {}

    Result<size_t> read(const TrackInfo& track, int64_t block, std::span<std::byte> buffer) override {
        auto count = reader_->read(track, block, buffer);
        const int64_t address = static_cast<int64_t>(track.startBlock) + block;
        if (!count || track.form != BlockForm::Data || address < 0 ||
            address >= static_cast<int64_t>(MediumStart::blocks))
            return count;
        const auto from = static_cast<size_t>(static_cast<uint64_t>(address) * blockSize);
        std::copy_n(start_->begin() + static_cast<std::ptrdiff_t>(from), std::min(*count, startBytes - from),
                    buffer.begin());
        return count;
    }
    Result<std::vector<uint8_t>> cdText() override { return reader_->cdText(); }

  private:
    std::shared_ptr<MediumReader> reader_;
    std::shared_ptr<const std::vector<std::byte>> start_;
};

} // namespace

void MediumStart::put(Bytes bytes) {
    const std::lock_guard commands(hold_->drive().commands());
    dropLibraryMessages();
    if (burn_random_access_write(hold_->get(), 0, reinterpret_cast<char*>(bytes.data()),
                                 static_cast<off_t>(bytes.size()), flushAfter) <= 0)
        throw Failure(libraryError(ErrorCode::MediaWriteFailure, "The start of the disc in " +
                                                                     inQuotes(hold_->drive().displayName()) +
                                                                     " can't be made new."));
}

Result<std::vector<std::byte>> MediumStart::readBack() {
    TrackInfo start;
    start.blocks = blocks;
    Bytes bytes(startBytes);
    const auto count = PhysicalReader(hold_).read(start, 0, bytes);
    if (!count) return count.error();
    return bytes;
}

void MediumStart::clear() { put(Bytes(startBytes)); }

void MediumStart::set(std::vector<std::byte> bytes) { bytes_ = std::make_shared<Bytes>(std::move(bytes)); }

void MediumStart::holdBack(std::span<std::byte> buffer, uint64_t block) {
    if (block >= blocks) return;
    if (!bytes_) bytes_ = std::make_shared<Bytes>(startBytes);
    const auto from = static_cast<size_t>(block * blockSize);
    const auto kept = buffer.first(std::min(buffer.size(), startBytes - from));
    std::copy(kept.begin(), kept.end(), bytes_->begin() + static_cast<std::ptrdiff_t>(from));
    std::fill(kept.begin(), kept.end(), std::byte{});
}

std::shared_ptr<MediumReader> MediumStart::readerThrough(std::shared_ptr<MediumReader> reader) const {
    if (!bytes_ || bytes_->size() < startBytes) return reader;
    return std::make_shared<Through>(std::move(reader), bytes_);
}

// Deliberate: it is compared even by a burn that verifies nothing else; everybody who reads the disc begins here.
void MediumStart::write() {
    if (!bytes_) return;
    const auto before = readBack();
    try {
        put(*bytes_);
        const auto now = readBack();
        if (!now) throw Failure(now.error());
        if (!std::equal(bytes_->begin(), bytes_->end(), now->begin()))
            fail(ErrorCode::VerificationFailed,
                 "The start of the disc in " + inQuotes(hold_->drive().displayName()) +
                     " is not what was written; don't trust it, and burn again.");
    } catch (...) {
        // Where even that can't be written nothing more can be done; that the burn failed is told in any case.
        guarded([&] { put(before ? *before : Bytes(startBytes)); }).ok();
        throw;
    }
}

} // namespace engine
