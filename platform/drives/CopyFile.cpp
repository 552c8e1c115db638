// Copying a medium's files.
#include "CopyFile.hpp"
#include "Failure.hpp"
#include "Files.hpp"
#include "LeftBehind.hpp"
#include "VirtualMedium.hpp"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace drives {
namespace {

namespace fs = std::filesystem;
using engine::ErrorCode;
using engine::fail;
using engine::inQuotes;

constexpr size_t pieceBytes = 4u << 20;
constexpr std::string_view stagingPrefix = ".staging-";
constexpr char marker[] = ".disc-drives"; // by which a folder that was left behind is known as ours

[[noreturn]] void writingFailed(const std::string& path) {
    const int number = errno;
    fail(ErrorCode::MediaWriteFailure,
         inQuotes(path) + " can't be written" +
             (number == ENOSPC ? "; make room on the computer's disk." : "."),
         engine::systemText(number));
}

void copyPiece(int from, int to, off_t offset, size_t bytes, const std::string& source,
               const std::string& target) {
    static thread_local std::vector<char> buffer(pieceBytes);
    size_t filled = 0;
    while (filled < bytes) {
        const ssize_t count =
            ::pread(from, buffer.data() + filled, bytes - filled, offset + static_cast<off_t>(filled));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0)
            fail(ErrorCode::DataProduction, inQuotes(source) + " can't be read to its end.",
                 engine::systemText(count < 0 ? errno : EIO));
        filled += static_cast<size_t>(count);
    }
    for (size_t done = 0; done < bytes;) {
        const ssize_t count =
            ::pwrite(to, buffer.data() + done, bytes - done, offset + static_cast<off_t>(done));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) writingFailed(target);
        done += static_cast<size_t>(count);
    }
}

void copyContents(int from, int to, off_t size, const std::string& source, const std::string& target,
                  Progress& progress) {
    if (size > 0 && ::ioctl(to, FICLONE, from) == 0) {
        progress.add(static_cast<uint64_t>(size));
        return;
    }
    if (::ftruncate(to, size) != 0) writingFailed(target);
    off_t offset = 0;
    while (offset < size) {
        checkInterruption();
        const off_t data = ::lseek(from, offset, SEEK_DATA);
        if (data < 0 && errno == ENXIO) break; // a hole up to the end
        const off_t hole = data < 0 ? size : ::lseek(from, data, SEEK_HOLE);
        if (data > offset) {
            progress.add(static_cast<uint64_t>(data - offset));
            offset = data;
        }
        for (const off_t end = hole < 0 ? size : hole; offset < end;) {
            checkInterruption();
            const size_t bytes = end - offset < static_cast<off_t>(pieceBytes)
                                     ? static_cast<size_t>(end - offset)
                                     : pieceBytes;
            copyPiece(from, to, offset, bytes, source, target);
            offset += static_cast<off_t>(bytes);
            progress.add(bytes);
        }
    }
    progress.add(static_cast<uint64_t>(size - offset));
}

} // namespace

uint64_t fileSize(const std::string& path) {
    struct stat facts {};
    if (::stat(path.c_str(), &facts) != 0)
        fail(ErrorCode::FileLocationConflict, inQuotes(path) + " can't be found or read.",
             engine::systemText(errno));
    if (!S_ISREG(facts.st_mode)) fail(ErrorCode::FileLocationConflict, inQuotes(path) + " is no file.");
    return static_cast<uint64_t>(facts.st_size);
}

void copyFile(const std::string& from, const std::string& to, Progress& progress) {
    const auto size = static_cast<off_t>(fileSize(from));
    const engine::Descriptor source(::open(from.c_str(), O_RDONLY | O_CLOEXEC));
    if (!source)
        fail(ErrorCode::FileLocationConflict, inQuotes(from) + " can't be read.", engine::systemText(errno));
    const engine::Descriptor target(
        ::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666));
    if (!target) writingFailed(to);
    try {
        copyContents(source.get(), target.get(), size, from, to, progress);
        if (::fsync(target.get()) != 0) writingFailed(to);
    } catch (...) {
        ::unlink(to.c_str());
        throw;
    }
}

Staging::Staging(const std::string& parent) {
    std::error_code ignored;
    std::vector<fs::path> left;
    for (const auto& entry : fs::directory_iterator(parent, ignored))
        if (isOfDeadProcess(entry.path().filename().string(), stagingPrefix)) left.push_back(entry.path());
    // A drive's folder is ours. In a person's, what has our name may be theirs all the same.
    const bool isDrive = fs::exists(fs::path(parent) / engine::names::drive, ignored);
    for (const fs::path& each : left)
        if (isDrive || fs::is_regular_file(fs::symlink_status(each / marker, ignored)))
            fs::remove_all(each, ignored);
    path_ = parent + '/' + std::string(stagingPrefix) + std::to_string(::getpid()) + "-XXXXXX";
    if (::mkdtemp(path_.data()) == nullptr)
        fail(ErrorCode::DeviceAccess, "Nothing can be written to " + inQuotes(parent) + '.',
             engine::systemText(errno));
    const engine::Descriptor made(
        ::open((path_ + '/' + marker).c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
}

Staging::~Staging() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

} // namespace drives
