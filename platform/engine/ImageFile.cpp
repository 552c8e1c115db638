// A file that holds bytes of a medium.
#include "ImageFile.hpp"
#include "Background.hpp"
#include "Failure.hpp"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace engine {
namespace {

constexpr size_t pageBytes = 4096;
constexpr uint64_t rhythmBytes = 8u << 20;

Descriptor openImage(int folder, const std::string& name, int flags, bool& direct) {
    Descriptor file;
    if (direct)
        file = Descriptor(::openat(folder, name.c_str(), flags | O_CLOEXEC | O_NOFOLLOW | O_DIRECT, 0666));
    const bool isCached = !direct || (!file && errno == EINVAL);
    direct = static_cast<bool>(file);
    if (isCached) file = Descriptor(::openat(folder, name.c_str(), flags | O_CLOEXEC | O_NOFOLLOW, 0666));
    return file;
}

bool makeCached(int file) {
    const int flags = ::fcntl(file, F_GETFL);
    return flags >= 0 && (flags & O_DIRECT) != 0 && ::fcntl(file, F_SETFL, flags & ~O_DIRECT) == 0;
}

bool isZero(std::span<const std::byte> bytes) {
    return bytes.empty() || (bytes.front() == std::byte{} &&
                             std::memcmp(bytes.data(), bytes.data() + 1, bytes.size() - 1) == 0);
}

[[noreturn]] void writingFailed(int errorNumber) {
    if (errorNumber == ENOSPC || errorNumber == EDQUOT || errorNumber == EFBIG)
        fail(ErrorCode::MediaWriteFailure,
             "The computer's disk has no room left for the disc; make room and burn again.",
             systemText(errorNumber));
    fail(ErrorCode::MediaWriteFailure, "The disc's file can't be written.", systemText(errorNumber));
}

} // namespace

ImageFile::ImageFile(int folder, std::string name, uint64_t from, bool mayBeDirect)
    : folder_(folder), name_(std::move(name)), direct_(mayBeDirect && from % pageBytes == 0), length_(from),
      position_(from), startedTo_(from), dropped_(from) {
    file_ = std::make_shared<Descriptor>(
        openImage(folder, name_, O_RDWR | O_CREAT | (from == 0 ? O_TRUNC : 0), direct_));
    if (!*file_) writingFailed(errno);
    // What a cut-off burn left behind is not to stand in a gap.
    if (from > 0 && ::ftruncate(file_->get(), static_cast<off_t>(from)) != 0) writingFailed(errno);
}

ImageFile::~ImageFile() { dropInBackground(std::move(file_)); }

void ImageFile::reserve(uint64_t bytes, const std::string& driveName) {
    struct statvfs space {};
    const bool known = ::fstatvfs(file_->get(), &space) == 0;
    const uint64_t free = known ? uint64_t{space.f_bavail} * space.f_frsize : UINT64_MAX;
    int problem = 0;
    if (free < bytes) {
        problem = ENOSPC;
    } else if (bytes > 0 &&
               ::fallocate(file_->get(), 0, static_cast<off_t>(length_), static_cast<off_t>(bytes)) != 0) {
        problem = errno;
    }
    // Without fallocate the check of the free space has to do; writing reports the rest.
    if (problem == 0 || problem == EOPNOTSUPP || problem == ENOSYS) return;
    if (problem == EFBIG)
        fail(ErrorCode::MediaWriteFailure,
             "The disc in " + inQuotes(driveName) + " needs a file of " + megabytes(bytes) +
                 ", which is larger than this program is allowed to write.",
             systemText(problem));
    fail(ErrorCode::MediaWriteFailure,
         "The computer's disk has only " + megabytes(known ? free : 0) + " free for the disc in " +
             inQuotes(driveName) + ", which needs " + megabytes(bytes) + "; make room and burn again.",
         systemText(problem));
}

void ImageFile::append(std::span<std::byte> buffer) {
    size_t padded = buffer.size();
    if (direct_) {
        padded = (buffer.size() + pageBytes - 1) / pageBytes * pageBytes;
        std::memset(buffer.data() + buffer.size(), 0, padded - buffer.size());
    }
    // Zeros stand there already: the file was cut off at `from`, and nothing behind what was appended is ever written. Their
    // space is reserved as that of all others.
    size_t done = isZero({buffer.data(), padded}) ? padded : 0;
    while (done < padded) {
        const ssize_t count =
            ::pwrite(file_->get(), buffer.data() + done, padded - done, static_cast<off_t>(position_ + done));
        if (count > 0) {
            done += static_cast<size_t>(count);
            if (direct_ && done % pageBytes != 0) direct_ = !makeCached(file_->get());
            continue;
        }
        if (count < 0 && errno == EINTR) continue;
        if (count < 0 && errno == EINVAL && direct_ && makeCached(file_->get())) {
            direct_ = false; // a device with larger sectors
            continue;
        }
        writingFailed(count < 0 ? errno : EIO);
    }
    position_ += padded;
    length_ += buffer.size();
    if (!direct_) writeOutBehind();
}

void ImageFile::writeOutBehind() {
    if (position_ - startedTo_ < rhythmBytes) return;
    const auto start = static_cast<off_t>(startedTo_), length = static_cast<off_t>(position_ - startedTo_);
    ::sync_file_range(file_->get(), start, length, SYNC_FILE_RANGE_WRITE);
    if (startedTo_ > dropped_) {
        const auto from = static_cast<off_t>(dropped_), count = static_cast<off_t>(startedTo_ - dropped_);
        ::sync_file_range(file_->get(), from, count,
                          SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WAIT_AFTER);
        ::posix_fadvise(file_->get(), from, count, POSIX_FADV_DONTNEED);
        dropped_ = startedTo_;
    }
    startedTo_ = position_;
}

void ImageFile::flush(const SignalRef& signal) {
    const std::shared_ptr<Descriptor> folder =
        std::make_shared<Descriptor>(::fcntl(folder_, F_DUPFD_CLOEXEC, 0));
    runAbandonable(signal, "disc-sync", [file = file_, folder, length = length_] {
        if (::ftruncate(file->get(), static_cast<off_t>(length)) != 0) writingFailed(errno);
        if (::fsync(file->get()) != 0) writingFailed(errno);
        syncFolder(folder->get());
        ::posix_fadvise(file->get(), 0, 0, POSIX_FADV_DONTNEED);
        return true;
    });
}

ImageReader::ImageReader(int folder, const std::string& name) : name_(name) {
    direct_ = true;
    file_ = openImage(folder, name, O_RDONLY, direct_);
    if (!file_)
        fail(ErrorCode::MediaInvalid,
             "The disc can't be read: its file " + inQuotes(name) + " can't be opened.", systemText(errno));
}

size_t ImageReader::read(uint64_t offset, std::span<std::byte> buffer) {
    const bool isAligned = offset % pageBytes == 0 && buffer.size() % pageBytes == 0 &&
                           reinterpret_cast<uintptr_t>(buffer.data()) % pageBytes == 0;
    if (direct_ && !isAligned) direct_ = !makeCached(file_.get());
    size_t filled = 0;
    while (filled < buffer.size()) {
        const ssize_t count = ::pread(file_.get(), buffer.data() + filled, buffer.size() - filled,
                                      static_cast<off_t>(offset + filled));
        if (count == 0) break;
        if (count > 0) {
            filled += static_cast<size_t>(count);
            // Only the end of the file gives part of a page, and a direct read must not go on from there.
            if (direct_ && filled % pageBytes != 0) break;
            continue;
        }
        if (errno == EINTR) continue;
        if (errno == EINVAL && direct_ && makeCached(file_.get())) {
            direct_ = false;
            continue;
        }
        fail(ErrorCode::MediaInvalid,
             "The disc can't be read: its file " + inQuotes(name_) + " gives an error.", systemText(errno));
    }
    return filled;
}

} // namespace engine
