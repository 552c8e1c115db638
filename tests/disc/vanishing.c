/* A file that goes away in the middle of its folder being read: preloaded, it removes the file whose name VANISHING says when
 * somebody who has read that name asks for its status. */
/* All names of a call stand here, so none may be made another by the width of offsets or times. */
#undef _TIME_BITS
#undef _FILE_OFFSET_BITS
#undef _FORTIFY_SOURCE
#define _GNU_SOURCE
#include <dlfcn.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

static void look(int folder, const char* name) {
    const char* vanishing = getenv("VANISHING");
    if (vanishing != NULL && strcmp(name, vanishing) == 0) unlinkat(folder, name, 0);
}

#define REAL(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))

int fstatat(int folder, const char* restrict name, struct stat* restrict status, int flags) {
    look(folder, name);
    return REAL(fstatat)(folder, name, status, flags);
}

int fstatat64(int folder, const char* restrict name, struct stat64* restrict status, int flags) {
    look(folder, name);
    return REAL(fstatat64)(folder, name, status, flags);
}

/* What 32-bit programs call whose times have 64 bits. */
int __fstatat64_time64(int folder, const char* name, void* status, int flags);
int __fstatat64_time64(int folder, const char* name, void* status, int flags) {
    look(folder, name);
    return REAL(__fstatat64_time64)(folder, name, status, flags);
}
