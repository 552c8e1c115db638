// Descriptors that close themselves, and files that are replaced whole or not at all.
#include "Files.hpp"
#include "Failure.hpp"

#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace engine {

void Descriptor::reset() noexcept {
    if (number_ >= 0) ::close(std::exchange(number_, -1));
}

std::optional<std::string> readSmallFile(int folder, const std::string& name) {
    const Descriptor file(::openat(folder, name.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    if (!file) {
        if (errno == ENOENT) return std::nullopt;
        fail(ErrorCode::DeviceAccess, "The drive's file " + inQuotes(name) + " can't be opened.",
             systemText(errno));
    }
    constexpr size_t limit = 16u << 20;
    std::string bytes;
    std::array<char, 16384> part;
    while (true) {
        const ssize_t count = ::read(file.get(), part.data(), part.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0)
            fail(ErrorCode::DeviceAccess, "The drive's file " + inQuotes(name) + " can't be read.",
                 systemText(errno));
        if (count == 0) return bytes;
        bytes.append(part.data(), static_cast<size_t>(count));
        if (bytes.size() > limit)
            fail(ErrorCode::DeviceAccess, "The drive's file " + inQuotes(name) + " is too large to be one.");
    }
}

void replaceSmallFile(int folder, const std::string& name, std::string_view bytes, Lasting lasting) {
    const std::string temporary = name + ".new";
    const auto failed = [&](int errorNumber) {
        ::unlinkat(folder, temporary.c_str(), 0);
        fail(ErrorCode::MediaWriteFailure, "The drive's file " + inQuotes(name) + " can't be written.",
             systemText(errorNumber));
    };
    Descriptor file(
        ::openat(folder, temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0666));
    if (!file) failed(errno);
    while (!bytes.empty()) {
        const ssize_t count = ::write(file.get(), bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) failed(errno);
        bytes.remove_prefix(static_cast<size_t>(count));
    }
    if (lasting == Lasting::Durable && ::fsync(file.get()) != 0) failed(errno);
    file.reset();
    if (::renameat(folder, temporary.c_str(), folder, name.c_str()) != 0) failed(errno);
    if (lasting == Lasting::Durable) syncFolder(folder);
}

void makeFolders(const std::string& path) {
    std::error_code problem;
    std::filesystem::create_directories(path, problem);
    if (problem)
        fail(ErrorCode::DeviceAccess, "The folder " + inQuotes(path) + " for drives can't be made.",
             problem.message());
}

void syncFolder(int folder) {
    // Some file systems have no fsync for folders and say so; their renames are as durable as they can be.
    if (::fsync(folder) != 0 && errno != EINVAL && errno != ENOTSUP)
        fail(ErrorCode::MediaWriteFailure, "The drive's folder can't be synced.", systemText(errno));
}

} // namespace engine
