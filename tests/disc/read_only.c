/* A drive that can no longer be written to: preloaded, it lets READ_ONLY_AFTER calls that would change something in a
 * drive's folder pass, and then answers them all with READ_ONLY_ERROR ("EROFS" or "EACCES"). READ_ONLY_WHAT says what
 * is meant: "medium" is the files named medium.*, "drive" all that is there. Needs no file system to be mounted anew, and
 * holds for root, too. With READ_ONLY_COUNT the number of such calls goes to standard error at the end. */
/* Both names of a call stand here, so neither may be made the other by the width of offsets. */
#undef _TIME_BITS
#undef _FILE_OFFSET_BITS
#undef _FORTIFY_SOURCE
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/types.h>
#include <unistd.h>

#define REAL(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))

static atomic_long calls;

static int isMeant(const char* path) {
    const char *drives = getenv("DISC_DRIVES"), *what = getenv("READ_ONLY_WHAT");
    if (drives == NULL || what == NULL || strncmp(path, drives, strlen(drives)) != 0) return 0;
    const char* name = strrchr(path, '/');
    return strcmp(what, "drive") == 0 || strncmp(name, "/medium.", 8) == 0;
}

static int refuses(const char* path) {
    const char *after = getenv("READ_ONLY_AFTER"), *error = getenv("READ_ONLY_ERROR");
    if (after == NULL || !isMeant(path)) return 0;
    if (atomic_fetch_add(&calls, 1) < atol(after)) return 0;
    errno = error != NULL && strcmp(error, "EACCES") == 0 ? EACCES : EROFS;
    return 1;
}

static int refusesFile(int file) {
    char link[64], path[4096];
    snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    const ssize_t length = readlink(link, path, sizeof path - 1);
    if (length < 0) return 0;
    path[length] = 0;
    return refuses(path);
}

static int refusesName(int folder, const char* name) {
    if (folder == AT_FDCWD || name[0] == '/') return refuses(name);
    char link[64], path[4096];
    snprintf(link, sizeof link, "/proc/self/fd/%d", folder);
    const ssize_t length = readlink(link, path, sizeof path / 2);
    if (length < 0) return 0;
    snprintf(path + length, sizeof path - (size_t)length, "/%s", name);
    return refuses(path);
}

static int changes(int flags) { return (flags & (O_WRONLY | O_RDWR | O_CREAT | O_TRUNC)) != 0; }

/* What may stand behind the flags. */
#define MODE(flags, mode)                                                                                    \
    mode_t mode = 0;                                                                                         \
    if (((flags) & (O_CREAT | __O_TMPFILE)) != 0) {                                                          \
        va_list more;                                                                                        \
        va_start(more, flags);                                                                               \
        mode = va_arg(more, mode_t);                                                                         \
        va_end(more);                                                                                        \
    }

int open(const char* name, int flags, ...) {
    MODE(flags, mode)
    return changes(flags) && refusesName(AT_FDCWD, name) ? -1 : REAL(open)(name, flags, mode);
}

int open64(const char* name, int flags, ...) {
    MODE(flags, mode)
    return changes(flags) && refusesName(AT_FDCWD, name) ? -1 : REAL(open64)(name, flags, mode);
}

int openat(int folder, const char* name, int flags, ...) {
    MODE(flags, mode)
    return changes(flags) && refusesName(folder, name) ? -1 : REAL(openat)(folder, name, flags, mode);
}

int openat64(int folder, const char* name, int flags, ...) {
    MODE(flags, mode)
    return changes(flags) && refusesName(folder, name) ? -1 : REAL(openat64)(folder, name, flags, mode);
}

ssize_t write(int file, const void* bytes, size_t count) {
    static __typeof__(&write) real;
    if (real == NULL) real = REAL(write);
    return refusesFile(file) ? -1 : real(file, bytes, count);
}

ssize_t pwrite(int file, const void* bytes, size_t count, off_t offset) {
    return refusesFile(file) ? -1 : REAL(pwrite)(file, bytes, count, offset);
}

ssize_t pwrite64(int file, const void* bytes, size_t count, off64_t offset) {
    return refusesFile(file) ? -1 : REAL(pwrite64)(file, bytes, count, offset);
}

int fallocate(int file, int mode, off_t offset, off_t length) {
    return refusesFile(file) ? -1 : REAL(fallocate)(file, mode, offset, length);
}

int fallocate64(int file, int mode, off64_t offset, off64_t length) {
    return refusesFile(file) ? -1 : REAL(fallocate64)(file, mode, offset, length);
}

int ftruncate(int file, off_t length) { return refusesFile(file) ? -1 : REAL(ftruncate)(file, length); }

int ftruncate64(int file, off64_t length) { return refusesFile(file) ? -1 : REAL(ftruncate64)(file, length); }

int fsync(int file) { return refusesFile(file) ? -1 : REAL(fsync)(file); }

int fdatasync(int file) { return refusesFile(file) ? -1 : REAL(fdatasync)(file); }

int rename(const char* from, const char* to) {
    return refusesName(AT_FDCWD, to) ? -1 : REAL(rename)(from, to);
}

int renameat(int fromFolder, const char* from, int toFolder, const char* to) {
    return refusesName(toFolder, to) ? -1 : REAL(renameat)(fromFolder, from, toFolder, to);
}

int unlink(const char* name) { return refusesName(AT_FDCWD, name) ? -1 : REAL(unlink)(name); }

int unlinkat(int folder, const char* name, int flags) {
    return refusesName(folder, name) ? -1 : REAL(unlinkat)(folder, name, flags);
}

__attribute__((destructor)) static void tell(void) {
    if (getenv("READ_ONLY_COUNT") != NULL) fprintf(stderr, "%ld calls\n", atomic_load(&calls));
}
