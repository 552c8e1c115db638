// Reading the contents of an image from its sources, with a check that each is what was planned.
#include "SourceList.hpp"
#include "Failure.hpp"
#include "MediumKind.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace engine {
namespace {

int64_t nanoseconds(const timespec& time) noexcept {
    return int64_t{time.tv_sec} * 1'000'000'000 + int64_t{time.tv_nsec};
}

} // namespace

void Signal::check() const {
    if (isCanceled()) throw Failure(makeError(ErrorCode::UserCanceled));
}

Fingerprint Fingerprint::of(const struct stat& status) noexcept {
    return {status.st_dev, status.st_ino, nanoseconds(status.st_mtim), nanoseconds(status.st_ctim),
            static_cast<uint64_t>(status.st_size)};
}

std::string SourceList::pathOf(const SourceFile& file) const {
    const char* name = names.c_str() + file.nameAt;
    return file.folder == noFolder ? name : folders[file.folder].path + '/' + name;
}

void SourceList::setEmptyAside() {
    for (const SourceFile& file : files)
        if (file.fingerprint.size == 0 && file.data == nullptr && file.producer == nullptr)
            emptyFiles.push_back(file);
    std::erase_if(files, [](const SourceFile& file) { return file.fingerprint.size == 0; });
    files.shrink_to_fit();
}

size_t askProducer(const SourceList& list, const SourceFile& file, uint64_t offset,
                   std::span<std::byte> buffer) {
    size_t count = 0;
    std::string reason;
    try {
        count = file.producer->read(offset, buffer);
    } catch (const std::exception& problem) {
        reason = problem.what();
    }
    const std::string name = inQuotes(list.names.c_str() + file.nameAt);
    if (count > buffer.size())
        fail(ErrorCode::DataProduction,
             "The producer of the file " + name + " says that it gave more than it was asked for.");
    if (count == 0)
        fail(ErrorCode::DataProduction,
             "The producer of the file " + name + " gave " + std::to_string(offset) + " bytes of the " +
                 std::to_string(file.fingerprint.size) + " that it had announced.",
             reason);
    return count;
}

size_t SourceReader::read(std::span<std::byte> buffer) {
    size_t filled = 0;
    while (filled < buffer.size() && next_ < list_.files.size()) {
        const SourceFile& file = list_.files[next_];
        if (offset_ == 0) begin(file);
        const uint64_t left = file.fingerprint.size - offset_;
        const auto wanted = static_cast<size_t>(std::min<uint64_t>(left, buffer.size() - filled));
        const size_t count = readSome(file, buffer.subspan(filled, wanted));
        filled += count;
        offset_ += count;
        if (offset_ < file.fingerprint.size) continue;
        end(file);
        const size_t padding = (blockSize - filled % blockSize) % blockSize;
        std::memset(buffer.data() + filled, 0, padding);
        filled += padding;
        offset_ = 0;
        ++next_;
    }
    return filled;
}

void SourceReader::begin(const SourceFile& file) {
    if (file.data != nullptr || file.producer != nullptr) return;
    if (file.folder != SourceList::noFolder && file.folder != openFolder_) {
        const SourceFolder& folder = list_.folders[file.folder];
        folder_ = Descriptor(::open(folder.path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        struct stat status {};
        if (!folder_ || ::fstat(folder_.get(), &status) != 0)
            fail(ErrorCode::FileModifiedDuringBurn,
                 "The folder " + inQuotes(folder.path) +
                     " went away or can't be read any more while it was burned.",
                 systemText(errno));
        const Fingerprint now = Fingerprint::of(status);
        if (now.device != folder.fingerprint.device || now.inode != folder.fingerprint.inode)
            fail(ErrorCode::FileModifiedDuringBurn,
                 "The folder " + inQuotes(folder.path) + " became another one while it was burned.",
                 folder.path);
        openFolder_ = file.folder;
    }
    const int folder = file.folder == SourceList::noFolder ? AT_FDCWD : folder_.get();
    const char* name = list_.names.c_str() + file.nameAt;
    // Non-blocking, for what was a file may have become a pipe; regular files don't care.
    file_ = Descriptor(::openat(folder, name, O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    if (!file_) {
        const std::string path = list_.pathOf(file);
        if (errno == ENOENT || errno == ENOTDIR || errno == ELOOP) modified(file, "went away");
        fail(ErrorCode::DataProduction, "The file " + inQuotes(path) + " can't be opened.",
             systemText(errno));
    }
    if (file.fingerprint.size > (1u << 20)) ::posix_fadvise(file_.get(), 0, 0, POSIX_FADV_SEQUENTIAL);
}

size_t SourceReader::readSome(const SourceFile& file, std::span<std::byte> buffer) {
    if (file.data != nullptr) {
        std::memcpy(buffer.data(), file.data + offset_, buffer.size());
        return buffer.size();
    }
    if (file.producer != nullptr) return askProducer(list_, file, offset_, buffer);
    while (true) {
        const ssize_t count = ::read(file_.get(), buffer.data(), buffer.size());
        if (count > 0) return static_cast<size_t>(count);
        if (count < 0 && errno == EINTR) continue;
        if (count == 0) modified(file, "got shorter");
        fail(ErrorCode::DataProduction, "The file " + inQuotes(list_.pathOf(file)) + " can't be read.",
             systemText(errno));
    }
}

void SourceReader::end(const SourceFile& file) {
    if (!file_) return;
    struct stat status {};
    if (::fstat(file_.get(), &status) != 0)
        fail(ErrorCode::DataProduction, "The file " + inQuotes(list_.pathOf(file)) + " can't be examined.",
             systemText(errno));
    expectUnchanged(file, status);
    file_.reset();
}

void SourceReader::expectUnchanged(const SourceFile& file, const struct stat& status) const {
    const Fingerprint now = Fingerprint::of(status);
    if (now.size > file.fingerprint.size) modified(file, "got longer");
    if (now.size < file.fingerprint.size) modified(file, "got shorter");
    if (now.device != file.fingerprint.device || now.inode != file.fingerprint.inode)
        modified(file, "became another file");
    // The time of the attributes also moves when only a name or a link count changes: that is no change of
    // contents.
    if (now.modified != file.fingerprint.modified) modified(file, "changed");
}

void SourceReader::checkEmptyFiles() const {
    for (const SourceFile& file : list_.emptyFiles) {
        struct stat status {};
        if (::lstat(list_.pathOf(file).c_str(), &status) != 0) modified(file, "went away");
        expectUnchanged(file, status);
    }
}

void SourceReader::checkFolders() const {
    for (const SourceFolder& folder : list_.folders) {
        struct stat status {};
        if (::stat(folder.path.c_str(), &status) != 0)
            fail(ErrorCode::FileModifiedDuringBurn,
                 "The folder " + inQuotes(folder.path) + " went away while it was burned.",
                 systemText(errno));
        const Fingerprint now = Fingerprint::of(status);
        if (now.inode != folder.fingerprint.inode || now.modified != folder.fingerprint.modified)
            fail(ErrorCode::FileModifiedDuringBurn,
                 "The folder " + inQuotes(folder.path) +
                     " changed while it was burned: burn it again when nothing writes to it.",
                 folder.path);
    }
}

void SourceReader::modified(const SourceFile& file, const char* how) const {
    const std::string path = list_.pathOf(file);
    fail(ErrorCode::FileModifiedDuringBurn,
         "The file " + inQuotes(path) + " " + how +
             " while it was burned: burn it again when nothing writes to it.",
         path);
}

} // namespace engine
