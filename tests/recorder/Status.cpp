// stat() and its relatives for the recorders' device nodes: block devices with the numbers of SCSI CD-ROM drives.

// On 32 bits each width of the answer has functions of its own; those that our own programs use are in StatusTime64.cpp.
#undef _FILE_OFFSET_BITS
#undef _TIME_BITS
#include "Status.hpp"

#include <fcntl.h>

using namespace recorder;

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
