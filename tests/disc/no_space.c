/* A disk that fills up while a disc's files are written: preloaded, it lets files named medium.* in a drive's folder
 * take NO_SPACE_AFTER bytes, all writes together, and then answers ENOSPC. Space can't be reserved beforehand. */
/* Both names of a call stand here, so neither may be made the other by the width of offsets. */
#undef _TIME_BITS
#undef _FILE_OFFSET_BITS
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/types.h>
#include <unistd.h>

static atomic_llong taken;

static int isMedium(int file) {
    char link[64], path[4096];
    snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    const ssize_t length = readlink(link, path, sizeof path - 1);
    if (length < 0) return 0;
    path[length] = 0;
    const char* name = strrchr(path, '/');
    return name != NULL && strncmp(name, "/medium.", 8) == 0;
}

static int isFull(int file, size_t bytes) {
    const char* limit = getenv("NO_SPACE_AFTER");
    if (limit == NULL || !isMedium(file)) return 0;
    if (atomic_fetch_add(&taken, (long long)bytes) + (long long)bytes <= atoll(limit)) return 0;
    errno = ENOSPC;
    return 1;
}

#define REAL(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))

ssize_t write(int file, const void* bytes, size_t count) {
    static __typeof__(&write) real;
    if (real == NULL) real = REAL(write);
    return isFull(file, count) ? -1 : real(file, bytes, count);
}

ssize_t pwrite64(int file, const void* bytes, size_t count, off64_t offset) {
    static __typeof__(&pwrite64) real;
    if (real == NULL) real = REAL(pwrite64);
    return isFull(file, count) ? -1 : real(file, bytes, count, offset);
}

int fallocate64(int file, int mode, off64_t offset, off64_t length) {
    static __typeof__(&fallocate64) real;
    if (real == NULL) real = REAL(fallocate64);
    if (getenv("NO_SPACE_AFTER") == NULL) return real(file, mode, offset, length);
    errno = EOPNOTSUPP;
    return -1;
}

ssize_t pwrite(int file, const void* bytes, size_t count, off_t offset) {
    return pwrite64(file, bytes, count, offset);
}

int fallocate(int file, int mode, off_t offset, off_t length) {
    return fallocate64(file, mode, offset, length);
}
