// Reading the contents of an image from its sources, with a check that each is what was planned.
#include "SourceReader.hpp"
#include "Failure.hpp"
#include "MediumKind.hpp"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace engine {
namespace {

constexpr size_t callsPerFile = 16384; // opening and closing a file takes as long as reading so many bytes
constexpr size_t partCost = 256u << 10;

size_t paddingBehind(uint64_t bytes) {
    return static_cast<size_t>((blockSize - bytes % blockSize) % blockSize);
}

uint64_t padded(const SourceFile& file) {
    return file.fingerprint.size + paddingBehind(file.fingerprint.size);
}

} // namespace

size_t FileReader::read(const SourceFile& file, uint64_t offset, std::span<std::byte> buffer) {
    if (offset == 0) begin(file);
    const size_t count = readSome(file, offset, buffer);
    if (offset + count == file.fingerprint.size) end(file);
    return count;
}

void FileReader::readWhole(std::span<const SourceFile> files, std::span<std::byte> buffer) {
    for (const SourceFile& file : files) {
        const auto size = static_cast<size_t>(file.fingerprint.size);
        for (size_t done = 0; done < size;)
            done += read(file, done, buffer.subspan(done, size - done));
        std::memset(buffer.data() + size, 0, paddingBehind(size));
        buffer = buffer.subspan(size + paddingBehind(size));
    }
}

void FileReader::begin(const SourceFile& file) {
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

size_t FileReader::readSome(const SourceFile& file, uint64_t offset, std::span<std::byte> buffer) {
    if (file.data != nullptr) {
        std::memcpy(buffer.data(), file.data + offset, buffer.size());
        return buffer.size();
    }
    if (file.producer != nullptr) return askProducer(list_, file, offset, buffer);
    while (true) {
        const ssize_t count = ::read(file_.get(), buffer.data(), buffer.size());
        if (count > 0) return static_cast<size_t>(count);
        if (count < 0 && errno == EINTR) continue;
        if (count == 0) modified(file, "got shorter");
        fail(ErrorCode::DataProduction, "The file " + inQuotes(list_.pathOf(file)) + " can't be read.",
             systemText(errno));
    }
}

void FileReader::end(const SourceFile& file) {
    if (!file_) return;
    struct stat status {};
    if (::fstat(file_.get(), &status) != 0)
        fail(ErrorCode::DataProduction, "The file " + inQuotes(list_.pathOf(file)) + " can't be examined.",
             systemText(errno));
    expectUnchanged(file, status);
    file_.reset();
}

void FileReader::expectUnchanged(const SourceFile& file, const struct stat& status) const {
    const Fingerprint now = Fingerprint::of(status);
    if (now.size > file.fingerprint.size) modified(file, "got longer");
    if (now.size < file.fingerprint.size) modified(file, "got shorter");
    if (now.device != file.fingerprint.device || now.inode != file.fingerprint.inode)
        modified(file, "became another file");
    // The time of the attributes also moves when only a name or a link count changes: that is no change of
    // contents.
    if (now.modified != file.fingerprint.modified) modified(file, "changed");
}

void FileReader::modified(const SourceFile& file, const char* how) const {
    const std::string path = list_.pathOf(file);
    fail(ErrorCode::FileModifiedDuringBurn,
         "The file " + inQuotes(path) + " " + how +
             " while it was burned: burn it again when nothing writes to it.",
         path);
}

size_t SourceReader::read(std::span<std::byte> buffer) {
    size_t filled = 0;
    while (filled < buffer.size() && next_ < list_.files.size()) {
        if (offset_ == 0) {
            const size_t count = readTogether(buffer.subspan(filled));
            filled += count;
            if (count > 0) continue;
        }
        const SourceFile& file = list_.files[next_];
        const uint64_t left = file.fingerprint.size - offset_;
        const auto wanted = static_cast<size_t>(std::min<uint64_t>(left, buffer.size() - filled));
        const size_t count = readers_[0].read(file, offset_, buffer.subspan(filled, wanted));
        filled += count;
        offset_ += count;
        if (offset_ < file.fingerprint.size) continue;
        const size_t padding = paddingBehind(filled);
        std::memset(buffer.data() + filled, 0, padding);
        filled += padding;
        offset_ = 0;
        ++next_;
    }
    return filled;
}

// All files that come next and fit whole, some at a time by whichever thread is free; 0 when they are too few.
size_t SourceReader::readTogether(std::span<std::byte> buffer) {
    const std::span files = std::span(list_.files).subspan(next_);
    struct Part {
        size_t first, at; ///< file, and byte of the buffer
    };
    std::vector<Part> parts;
    size_t bytes = 0, cost = partCost, count = 0;
    for (; count < files.size() && files[count].producer == nullptr; ++count) {
        if (padded(files[count]) > buffer.size() - bytes) break;
        if (cost >= partCost) {
            parts.push_back({count, bytes});
            cost = 0;
        }
        const auto size = static_cast<size_t>(padded(files[count]));
        bytes += size;
        cost += size + callsPerFile;
    }
    if (parts.size() < 2) return 0;
    parts.push_back({count, bytes});

    std::atomic<size_t> taken = 0;
    std::mutex mutex;
    std::exception_ptr problem;
    size_t problemIn = SIZE_MAX;
    // What comes before a part was taken before it, and is read to its end: so the first file that is wrong is named.
    const auto readParts = [&](FileReader& reader) {
        for (size_t part = taken++; part + 1 < parts.size(); part = taken++) {
            const auto [first, at] = parts[part];
            try {
                reader.readWhole(files.subspan(first, parts[part + 1].first - first), buffer.subspan(at));
            } catch (...) {
                taken = parts.size();
                const std::lock_guard lock(mutex);
                if (part > problemIn) continue;
                problemIn = part;
                problem = std::current_exception();
            }
        }
    };
    assistant_.share([&] { readParts(readers_[0]); }, [&] { readParts(readers_[1]); });
    if (problem) std::rethrow_exception(problem);
    next_ += count;
    return bytes;
}

void SourceReader::checkEmptyFiles() const {
    for (const SourceFile& file : list_.emptyFiles) {
        struct stat status {};
        if (::lstat(list_.pathOf(file).c_str(), &status) != 0) readers_[0].modified(file, "went away");
        readers_[0].expectUnchanged(file, status);
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

} // namespace engine
