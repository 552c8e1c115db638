// Erasing the medium of a virtual drive.
//
// Cut off at any point, the medium is what it was, openly incomplete, or blank: the description says
// "incomplete" before the first block is overwritten, and "blank" before the files go.
#include "Background.hpp"
#include "BurnTarget.hpp"
#include "Failure.hpp"
#include "VirtualDrive.hpp"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace engine {
namespace {

constexpr off_t pieceBytes = 1 << 20;

struct MediumFile {
    std::string name;
    std::shared_ptr<Descriptor> file;
    off_t bytes = 0;
};

[[noreturn]] void failed(const std::string& name) {
    fail(ErrorCode::MediaWriteFailure,
         "The disc can't be erased: its file " + inQuotes(name) + " can't be written.", systemText(errno));
}

// All that holds bytes of the medium. What a person has put beside it, whatever its name begins with, is not of it.
std::vector<MediumFile> filesOfMedium(int folder) {
    std::vector<MediumFile> files;
    for (const std::string& name : mediumFiles(folder)) {
        struct stat status {};
        if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0)
            files.push_back({name, nullptr, status.st_size});
    }
    return files;
}

// Writes zeros over every block that was ever written; holes have nothing to hide.
void overwrite(const std::vector<MediumFile>& files, const EraseProgress& progress) {
    off_t total = 0, done = 0;
    for (const MediumFile& each : files)
        total += each.bytes;
    const std::vector<char> zeros(pieceBytes);
    for (const MediumFile& each : files) {
        const int file = each.file->get();
        for (off_t at = 0; at < each.bytes;) {
            const off_t data = ::lseek(file, at, SEEK_DATA);
            if (data < 0 && errno == ENXIO) break;
            at = data < 0 ? at : data; // a file system that knows no holes has none
            const auto count = static_cast<size_t>(std::min(pieceBytes, each.bytes - at));
            const ssize_t written = ::pwrite(file, zeros.data(), count, at);
            if (written < 0 && errno == EINTR) continue;
            if (written <= 0) failed(each.name);
            at += written;
            if (!progress(static_cast<double>(done + at) / static_cast<double>(total)))
                fail(ErrorCode::UserCanceled,
                     "The erase was cut off; the disc is incomplete and can be erased again.");
        }
        if (::fdatasync(file) != 0) failed(each.name);
        done += each.bytes;
    }
}

} // namespace

Result<void> VirtualDrive::erase(EraseType type, const EraseProgress& progress) {
    return guarded([&] {
        // The drive is this job's until the target goes; a target that is given nothing changes nothing.
        const auto held = beginBurn();
        if (!held) throw Failure(held.error());
        const MediumInfo& medium = (*held)->medium();
        if (!medium.erasable)
            fail(ErrorCode::MediaNotErasable,
                 "The " + std::string(factsOf(medium.kind).name) + " in " + inQuotes(displayName()) +
                     " can't be erased; put in a disc that can be written again.");
        progress(type == EraseType::Complete ? 0 : -1);
        std::vector<MediumFile> files = filesOfMedium(folder());
        const bool overwrites = type == EraseType::Complete;
        for (MediumFile& each : files) {
            const int access = overwrites ? O_WRONLY : O_RDONLY;
            each.file = std::make_shared<Descriptor>(
                ::openat(folder(), each.name.c_str(), access | O_CLOEXEC | O_NOFOLLOW));
            if (!*each.file) failed(each.name);
        }
        if (overwrites && !files.empty()) {
            auto record = loadMedium(folder());
            record->state = MediumState::Incomplete;
            saveMedium(folder(), *record);
            overwrite(files, progress);
        }
        saveMedium(folder(), MediumRecord::blank(medium.kind, medium.capacityBlocks));
        for (const MediumFile& each : files)
            ::unlinkat(folder(), each.name.c_str(), 0);
        // Freeing the blocks of large files takes long: the last descriptors go elsewhere.
        dropInBackground(std::make_shared<std::vector<MediumFile>>(std::move(files)));
    });
}

} // namespace engine
