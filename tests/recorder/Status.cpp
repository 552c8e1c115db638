// stat() and its relatives for the recorders' device nodes: block devices with the numbers of SCSI CD-ROM drives.
#include "Device.hpp"

#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace {

using namespace recorder;

template <typename Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

template <typename Status>
int describe(int device, Status* status) {
    if (!isAttached(device)) {
        errno = ENOENT;
        return -1;
    }
    std::memset(status, 0, sizeof *status);
    status->st_mode = S_IFBLK | 0660;
    status->st_rdev = makedev(11, static_cast<unsigned>(device));
    status->st_ino = static_cast<ino_t>(1000 + device);
    status->st_dev = makedev(0, 5);
    status->st_nlink = 1;
    status->st_blksize = 4096;
    return 0;
}

template <typename Status>
int byPath(const char* name, const char* path, Status* status) {
    const int device = deviceNamed(path);
    if (device >= 0) return describe(device, status);
    return next<int (*)(const char*, Status*)>(name)(path, status);
}

template <typename Status>
int byDescriptor(const char* name, int descriptor, Status* status) {
    const int device = deviceOf(descriptor);
    if (device >= 0) return describe(device, status);
    return next<int (*)(int, Status*)>(name)(descriptor, status);
}

} // namespace

extern "C" {

int stat(const char* path, struct stat* status) noexcept { return byPath("stat", path, status); }
int lstat(const char* path, struct stat* status) noexcept { return byPath("lstat", path, status); }
int fstat(int descriptor, struct stat* status) noexcept { return byDescriptor("fstat", descriptor, status); }
int stat64(const char* path, struct stat64* status) noexcept { return byPath("stat64", path, status); }
int lstat64(const char* path, struct stat64* status) noexcept { return byPath("lstat64", path, status); }
int fstat64(int descriptor, struct stat64* status) noexcept {
    return byDescriptor("fstat64", descriptor, status);
}

// Programs built for older C libraries come this way.
#define BY_VERSION(path_function, link_function, descriptor_function, Status)                                \
    int path_function(int version, const char* path, struct Status* status) noexcept {                       \
        const int device = deviceNamed(path);                                                                \
        if (device >= 0) return describe(device, status);                                                    \
        return next<int (*)(int, const char*, struct Status*)>(#path_function)(version, path, status);       \
    }                                                                                                        \
    int link_function(int version, const char* path, struct Status* status) noexcept {                       \
        const int device = deviceNamed(path);                                                                \
        if (device >= 0) return describe(device, status);                                                    \
        return next<int (*)(int, const char*, struct Status*)>(#link_function)(version, path, status);       \
    }                                                                                                        \
    int descriptor_function(int version, int descriptor, struct Status* status) noexcept {                   \
        const int device = deviceOf(descriptor);                                                             \
        if (device >= 0) return describe(device, status);                                                    \
        return next<int (*)(int, int, struct Status*)>(#descriptor_function)(version, descriptor, status);   \
    }
BY_VERSION(__xstat, __lxstat, __fxstat, stat)
BY_VERSION(__xstat64, __lxstat64, __fxstat64, stat64)

int fstatat(int folder, const char* path, struct stat* status, int flags) noexcept {
    const int device = deviceNamed(path);
    if (device >= 0) return describe(device, status);
    return next<int (*)(int, const char*, struct stat*, int)>("fstatat")(folder, path, status, flags);
}
int fstatat64(int folder, const char* path, struct stat64* status, int flags) noexcept {
    const int device = deviceNamed(path);
    if (device >= 0) return describe(device, status);
    return next<int (*)(int, const char*, struct stat64*, int)>("fstatat64")(folder, path, status, flags);
}

} // extern "C"
