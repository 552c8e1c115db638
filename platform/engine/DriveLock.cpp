// The locks in a drive's folder: two bytes of one file, and another file.
#include "DriveLock.hpp"
#include "Failure.hpp"
#include "VirtualMedium.hpp"

#include <cerrno>
#include <fcntl.h>

namespace engine {
namespace {

// What is locked need not exist as bytes; 0 for a length is all there will ever be.
constexpr struct { off_t start, length; } owner{0, 1}, clearing{1, 1}, whole{0, 0};

struct flock exclusive(auto range) {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = range.start;
    lock.l_len = range.length;
    return lock;
}

Descriptor openLock(int folder, const char* name) {
    Descriptor file(::openat(folder, name, O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666));
    if (!file) fail(ErrorCode::DeviceAccess, "The drive's lock can't be opened.", systemText(errno));
    return file;
}

enum class Patience { None, Waits };

bool lockRange(const Descriptor& file, auto range, Patience patience) {
    struct flock lock = exclusive(range);
    int failed = 0;
    do
        failed = ::fcntl(file.get(), patience == Patience::None ? F_OFD_SETLK : F_OFD_SETLKW, &lock);
    while (failed != 0 && errno == EINTR);
    if (failed == 0) return true;
    if (errno != EAGAIN && errno != EACCES)
        fail(ErrorCode::DeviceAccess, "The drive can't be locked.", systemText(errno));
    return false;
}

} // namespace

Descriptor tryOwnDrive(int folder) {
    Descriptor file = openLock(folder, names::lock);
    if (!lockRange(file, owner, Patience::None)) return {};
    lockRange(file, clearing, Patience::Waits);
    return file;
}

bool isDriveOwned(int folder) {
    const Descriptor file(::openat(folder, names::lock, O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    if (!file && errno == ENOENT) return false;
    if (!file) fail(ErrorCode::DeviceAccess, "The drive's lock can't be opened.", systemText(errno));
    struct flock lock = exclusive(owner);
    if (::fcntl(file.get(), F_OFD_GETLK, &lock) != 0)
        fail(ErrorCode::DeviceAccess, "The drive can't be locked.", systemText(errno));
    return lock.l_type != F_UNLCK;
}

Descriptor tryClearUp(int folder) {
    Descriptor file = openLock(folder, names::lock);
    if (!lockRange(file, clearing, Patience::None)) return {};
    return file;
}

Descriptor tryReserve(int folder) {
    Descriptor file = openLock(folder, names::reservation);
    if (!lockRange(file, whole, Patience::None)) return {};
    return file;
}

} // namespace engine
