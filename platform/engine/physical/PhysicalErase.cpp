// Making a medium blank: by the drive where it knows how, else by zeros.
#include "../Failure.hpp"
#include "BurnLibrary.hpp"
#include "PhysicalTarget.hpp"

#include <algorithm>
#include <libburn/libburn.h>

namespace engine {
namespace {

constexpr uint64_t stepBlocks = 512;
constexpr uint64_t quickBlocks = 64; // descriptors of a file system, and room around them
constexpr int flushAfter = 1;

// Such media are blank when nothing is found where readers look.
void overwriteWithZeros(burn_drive* drive, const MediumInfo& medium, EraseType type,
                        const EraseProgress& progress) {
    const uint64_t total = type == EraseType::Quick ? quickBlocks : std::max(medium.blocksUsed, quickBlocks);
    std::vector<char> zeros(stepBlocks * blockSize);
    // From the end: cut off in the middle, the disc is not taken for a blank one.
    for (uint64_t left = total; left > 0;) {
        if (!progress(static_cast<double>(total - left) / static_cast<double>(total)))
            fail(ErrorCode::UserCanceled, "The erasing was canceled.");
        const uint64_t from = (left - 1) / stepBlocks * stepBlocks;
        const auto bytes = static_cast<off_t>((left - from + 31) / 32 * 32 * blockSize);
        dropLibraryMessages();
        if (burn_random_access_write(drive, static_cast<off_t>(from * blockSize), zeros.data(), bytes,
                                     flushAfter) <= 0)
            throw Failure(libraryError(ErrorCode::MediaWriteFailure, "The disc can't be erased."));
        left = from;
    }
}

} // namespace

void eraseMedium(burn_drive* drive, const MediumInfo& medium, EraseType type, const EraseProgress& progress) {
    if (!medium.erasable)
        fail(ErrorCode::MediaNotErasable, "The " + std::string(factsOf(medium.kind).name) +
                                              " in the drive can't be erased; put in another disc.");
    if (takesBlocksInAnyOrder(drive)) {
        if (!medium.blank) overwriteWithZeros(drive, medium, type, progress);
        return;
    }
    // The drive does it alone and can't be stopped.
    progress(-1);
    if (medium.blank && type == EraseType::Quick) return;
    dropLibraryMessages();
    burn_disc_erase(drive, type == EraseType::Quick ? 1 : 0);
    waitUntilIdle(drive, [&] {
        burn_progress now{};
        burn_drive_get_status(drive, &now);
        if (now.sectors > 0) progress(std::clamp(static_cast<double>(now.sector) / now.sectors, 0.0, 1.0));
    });
    if (burn_drive_wrote_well(drive) == 0)
        throw Failure(libraryError(ErrorCode::MediaWriteFailure, "The disc can't be erased."));
}

} // namespace engine
