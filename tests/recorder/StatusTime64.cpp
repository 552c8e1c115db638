// stat() and its relatives with times of 64 bits, which are functions of their own in a 32-bit C library.
#include "Status.hpp"

#include <fcntl.h>

#if defined(_TIME_BITS) && __SIZEOF_POINTER__ == 4

using namespace recorder;

extern "C" {

// The headers give these the names that they have in the library.
int stat(const char* path, struct stat* status) noexcept { return byPath("__stat64_time64", path, status); }
int lstat(const char* path, struct stat* status) noexcept { return byPath("__lstat64_time64", path, status); }
int fstat(int descriptor, struct stat* status) noexcept {
    return byDescriptor("__fstat64_time64", descriptor, status);
}
int fstatat(int folder, const char* path, struct stat* status, int flags) noexcept {
    const int device = deviceNamed(path);
    if (device >= 0) return describe(device, status);
    return next<int (*)(int, const char*, struct stat*, int)>("__fstatat64_time64")(folder, path, status,
                                                                                    flags);
}

} // extern "C"

#endif
