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

// A medium without a format has no blocks that could hold anything.
bool isFormatted(burn_drive* drive) {
    int status = 0, formats = 0;
    off_t size = 0;
    unsigned more = 0;
    return burn_disc_get_formats(drive, &status, &size, &more, &formats) <= 0 ||
           status != BURN_FORMAT_IS_UNFORMATTED;
}

// Such media are blank when nothing is found where readers look. Deliberate: a complete erase takes every block, also of
// a medium that looks blank: behind its start may lie all that was on it, and no file system tells how far.
void overwriteWithZeros(burn_drive* drive, const MediumInfo& medium, EraseType type,
                        const EraseProgress& progress) {
    const uint64_t total = type == EraseType::Quick ? quickBlocks : medium.capacityBlocks;
    std::vector<char> zeros(stepBlocks * blockSize);
    uint64_t done = 0;
    const auto overwrite = [&](uint64_t from, int flush) {
        if (!progress(static_cast<double>(done) / static_cast<double>(total)))
            fail(ErrorCode::UserCanceled, "The erasing was canceled.");
        const uint64_t count = std::min(stepBlocks, total - from);
        dropLibraryMessages();
        if (burn_random_access_write(drive, static_cast<off_t>(from * blockSize), zeros.data(),
                                     static_cast<off_t>(count * blockSize), flush) <= 0)
            throw Failure(libraryError(ErrorCode::MediaWriteFailure, "The disc can't be erased."));
        done += count;
    };
    // The start last: cut off in the middle, the disc is not taken for a blank one.
    for (uint64_t from = stepBlocks; from < total; from += stepBlocks)
        overwrite(from, 0);
    overwrite(0, flushAfter);
}

} // namespace

void eraseMedium(burn_drive* drive, const MediumInfo& medium, EraseType type, const EraseProgress& progress) {
    if (!medium.erasable)
        fail(ErrorCode::MediaNotErasable, "The " + std::string(factsOf(medium.kind).name) +
                                              " in the drive can't be erased; put in another disc.");
    if (takesBlocksInAnyOrder(drive)) {
        const bool isDone = type == EraseType::Quick ? medium.blank : !isFormatted(drive);
        if (!isDone) overwriteWithZeros(drive, medium, type, progress);
        return;
    }
    // The drive does it alone and can't be stopped.
    progress(-1);
    if (medium.blank && type == EraseType::Quick) return;
    // A CD-RW whose session nobody closed is none that the library would blank, and is blanked like a full one.
    if (burn_disc_get_status(drive) == BURN_DISC_UNSUITABLE) burn_disc_pretend_full(drive);
    dropLibraryMessages();
    burn_disc_erase(drive, type == EraseType::Quick ? 1 : 0);
    waitUntilIdle(drive, [&] {
        burn_progress now{};
        burn_drive_get_status(drive, &now);
        progress(now.sectors > 0 ? std::clamp(static_cast<double>(now.sector) / now.sectors, 0.0, 1.0) : -1);
    });
    if (burn_drive_wrote_well(drive) == 0)
        throw Failure(libraryError(ErrorCode::MediaWriteFailure, "The disc can't be erased."));
}

} // namespace engine
