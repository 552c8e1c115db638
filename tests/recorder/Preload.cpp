// The C library's functions that a program reaches a drive through. Preloaded, they show recorders at /dev/sr0 and
// on; every other path and descriptor goes to the C library. No device node, kernel module or privilege is needed.

// On 32 bits open() and open64() are two functions, and not one by two names.
#undef _FILE_OFFSET_BITS
#undef _TIME_BITS
#include "Device.hpp"
#include "Mounts.hpp"

#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace recorder;

// The device driver opens plain files in its folder; those calls come here, too, and go through.
template <typename Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

template <typename... Arguments>
int openAny(const char* name, const char* path, int flags, mode_t mode, Arguments... before) {
    const int device = deviceNamed(path);
    if (device >= 0) return openDevice(device, flags);
    if (isDriveTable(path)) return ownDriveTable();
    const int opened =
        next<int (*)(Arguments..., const char*, int, mode_t)>(name)(before..., path, flags, mode);
    return isMountTable(path) ? withOwnMounts(opened) : opened;
}

} // namespace

// NOLINTBEGIN: the names are the C library's
extern "C" {

#define OPENING(name)                                                                                        \
    int name(const char* path, int flags, ...) {                                                             \
        va_list list;                                                                                        \
        va_start(list, flags);                                                                               \
        const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(list, mode_t) : 0;                 \
        va_end(list);                                                                                        \
        return openAny(#name, path, flags, mode);                                                            \
    }
OPENING(open)
OPENING(open64)

#define OPENING_AT(name)                                                                                     \
    int name(int folder, const char* path, int flags, ...) {                                                 \
        va_list list;                                                                                        \
        va_start(list, flags);                                                                               \
        const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(list, mode_t) : 0;                 \
        va_end(list);                                                                                        \
        return openAny(#name, path, flags, mode, folder);                                                    \
    }
OPENING_AT(openat)
OPENING_AT(openat64)

int __open_2(const char* path, int flags) { return openAny("open", path, flags, 0); }
int __open64_2(const char* path, int flags) { return openAny("open64", path, flags, 0); }

int close(int descriptor) {
    forget(descriptor);
    static const auto real = next<int (*)(int)>("close");
    return real(descriptor);
}

#define CONTROLLING(name)                                                                                    \
    int name(int descriptor, unsigned long request, ...) {                                                   \
        va_list list;                                                                                        \
        va_start(list, request);                                                                             \
        void* argument = va_arg(list, void*);                                                                \
        va_end(list);                                                                                        \
        const int device = deviceOf(descriptor);                                                             \
        if (device >= 0) return control(device, request, argument);                                          \
        static const auto real = next<int (*)(int, unsigned long, ...)>(#name);                              \
        return real(descriptor, request, argument);                                                          \
    }
CONTROLLING(ioctl)
#if __SIZEOF_POINTER__ == 4
CONTROLLING(__ioctl_time64) // what ioctl() is where times have 64 bits
#endif

int access(const char* path, int mode) {
    const int device = deviceNamed(path);
    if (device >= 0 && isAttached(device)) return 0;
    static const auto real = next<int (*)(const char*, int)>("access");
    return real(path, mode);
}

ssize_t readlink(const char* path, char* buffer, size_t size) {
    const int device = deviceNamed(path);
    if (device >= 0) {
        errno = EINVAL; // is there, and is no link
        return -1;
    }
    static const auto real = next<ssize_t (*)(const char*, char*, size_t)>("readlink");
    return real(path, buffer, size);
}

char* realpath(const char* path, char* resolved) {
    if (deviceNamed(path) >= 0) return resolved != nullptr ? std::strcpy(resolved, path) : ::strdup(path);
    static const auto real = next<char* (*)(const char*, char*)>("realpath");
    return real(path, resolved);
}

} // extern "C"
// NOLINTEND
