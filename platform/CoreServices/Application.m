// Application: brings up the user interface library inside a program that was not built with it.
#import "CoreServices.h"
#import <Foundation/Foundation.h>

#include <dlfcn.h>
#include <pthread.h>
#include <stdlib.h>
#include <unistd.h>

static const char InterfaceLibrary[] = "libgnustep-gui.so.0.29";

// Whether the loader would find the library; loading it to see would already run its start-up code.
static BOOL IsInstalled(const char* library) {
    Dl_serinfo size;
    Dl_info here;
    if (dladdr((void*)&NSApplicationLoad, &here) == 0)
        return NO;
    void* self = dlopen(here.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
    if (self == NULL)
        return NO;
    BOOL found = NO;
    if (dlinfo(self, RTLD_DI_SERINFOSIZE, &size) == 0) {
        Dl_serinfo* folders = calloc(1, size.dls_size);
        if (folders != NULL) {
            folders->dls_size = size.dls_size;
            folders->dls_cnt = size.dls_cnt;
            if (dlinfo(self, RTLD_DI_SERINFO, folders) == 0) {
                for (unsigned i = 0; i < folders->dls_cnt && !found; i++) {
                    char path[4096];
                    snprintf(path, sizeof path, "%s/%s", folders->dls_serpath[i].dls_name, library);
                    found = access(path, R_OK) == 0;
                }
            }
            free(folders);
        }
    }
    dlclose(self);
    return found;
}

// A display that does not answer would end the process as soon as the application object is made.
static BOOL DisplayAnswers(void) {
    void* library = dlopen("libX11.so.6", RTLD_LAZY | RTLD_LOCAL);
    if (library == NULL)
        return NO;
    void* (*openDisplay)(const char*) = (void* (*)(const char*))dlsym(library, "XOpenDisplay");
    int (*closeDisplay)(void*) = (int (*)(void*))dlsym(library, "XCloseDisplay");
    void* display = openDisplay != NULL && closeDisplay != NULL ? openDisplay(NULL) : NULL;
    if (display != NULL)
        closeDisplay(display);
    return display != NULL;
}

Boolean NSApplicationLoad(void) {
    static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
    const char* display = getenv("DISPLAY");
    pthread_mutex_lock(&lock);
    Boolean loaded = NSClassFromString(@"NSApplication") != Nil;
    if (!loaded && display != NULL && *display != '\0' && IsInstalled(InterfaceLibrary) && DisplayAnswers()) {
        loaded = dlopen(InterfaceLibrary, RTLD_NOW | RTLD_GLOBAL) != NULL &&
                 NSClassFromString(@"NSApplication") != Nil;
    }
    pthread_mutex_unlock(&lock);
    return loaded;
}
