// stat() of a device node, for every width of its answer.
#pragma once

#include "Device.hpp"

#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace recorder {

/// The C library's own.
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
    status->st_ino =
        static_cast<ino_t>(1000 + device + 64 * attachment(device)); // the kernel makes a new node
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

} // namespace recorder
