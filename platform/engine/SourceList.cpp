// Where the contents of an image come from.
#include "SourceList.hpp"
#include "Failure.hpp"
#include "Signal.hpp"

#include <utility>

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

std::optional<Error> SourceList::cleanUp() noexcept {
    std::optional<Error> first;
    for (const PreparedFile& file : std::exchange(prepared, {})) {
        std::string reason;
        try {
            file.producer->cleanup();
            continue;
        } catch (const std::exception& problem) {
            reason = problem.what();
        } catch (...) {
        }
        if (first) continue;
        const char* name = file.nameAt < names.size() ? names.c_str() + file.nameAt : "";
        first = Error{ErrorCode::DataProduction,
                      "The producer of the file " + inQuotes(name) +
                          " failed when it was to clean up; the burn itself was over.",
                      std::move(reason)};
    }
    return first;
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
    if (count > 0 && count <= buffer.size()) return count;
    const std::string name = inQuotes(list.names.c_str() + file.nameAt);
    if (count > buffer.size())
        fail(ErrorCode::DataProduction,
             "The producer of the file " + name + " says that it gave more than it was asked for.");
    fail(ErrorCode::DataProduction,
         "The producer of the file " + name + " gave " + std::to_string(offset) + " bytes of the " +
             std::to_string(file.fingerprint.size) + " that it had announced.",
         reason);
}

} // namespace engine
