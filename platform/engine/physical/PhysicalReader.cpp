// Reading through the drive: data and audio.
#include "PhysicalReader.hpp"
#include "../Failure.hpp"
#include "BurnLibrary.hpp"

#include <algorithm>
#include <cstdlib>
#include <libburn/libburn.h>

namespace engine {
namespace {

// A second attempt would take a drive minutes for a damaged disc.
constexpr int withoutRetry = 1 << 2;

} // namespace

Result<size_t> PhysicalReader::read(const TrackInfo& track, int64_t block, std::span<std::byte> buffer) {
    return guarded([&]() -> size_t {
        const bool isAudio = track.form == BlockForm::Audio;
        if (!isAudio && track.form != BlockForm::Data)
            fail(ErrorCode::FunctionNotSupported, "Tracks of this form can't be read through a drive.");
        const size_t bytes = bytesPerBlock(track.form);
        const int64_t left = block < 0 ? -block : static_cast<int64_t>(track.blocks) - block;
        if (left <= 0) return 0;
        const auto wanted = static_cast<off_t>(
            std::min<uint64_t>(static_cast<uint64_t>(left), buffer.size() / bytes) * bytes);
        const int64_t address = static_cast<int64_t>(track.startBlock) + block;
        auto* memory = reinterpret_cast<char*>(buffer.data());
        off_t count = 0;
        const std::lock_guard commands(hold_->drive().commands());
        dropLibraryMessages();
        const int done = isAudio ? burn_read_audio(hold_->get(), static_cast<int>(address), memory, wanted,
                                                   &count, withoutRetry)
                                 : burn_read_data(hold_->get(),
                                                  static_cast<off_t>(address) * static_cast<off_t>(blockSize),
                                                  memory, wanted, &count, withoutRetry);
        if (done > 0) return static_cast<size_t>(wanted);
        const int64_t bad = address + static_cast<int64_t>(count) / static_cast<int64_t>(bytes);
        Error error = libraryError(ErrorCode::MediaInvalid,
                                   "Block " + std::to_string(bad) + " of the disc in " +
                                       inQuotes(hold_->drive().displayName()) + " can't be read.");
        error.info = "block " + std::to_string(bad) + (error.info.empty() ? "" : ": " + error.info);
        throw Failure(error);
    });
}

Result<std::vector<uint8_t>> PhysicalReader::cdText() {
    return guarded([&] {
        const std::lock_guard commands(hold_->drive().commands());
        unsigned char* packs = nullptr;
        int count = 0;
        std::vector<uint8_t> bytes;
        if (burn_disc_get_leadin_text(hold_->get(), &packs, &count, 0) > 0 && packs != nullptr)
            bytes.assign(packs, packs + count * 18);
        std::free(packs);
        dropLibraryMessages();
        return bytes;
    });
}

} // namespace engine
