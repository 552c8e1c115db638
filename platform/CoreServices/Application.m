// Application: brings up the user interface library inside a program that was not built with it.
#import "CoreServices.h"
#import <Foundation/Foundation.h>

#include <dlfcn.h>
#include <pthread.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

static const char InterfaceLibrary[] = "libgnustep-gui.so.0.29";
static const char PanelsLibrary[] = "libDiscRecordingUI.so"; // in the folder of this library

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

// The panels are built on the interface library, so they come after it. Without them the rest works as without a display.
static void LoadPanels(void) {
    Dl_info here;
    if (dladdr((void*)&NSApplicationLoad, &here) == 0)
        return;
    NSString* folder = [[NSString stringWithUTF8String:here.dli_fname] stringByDeletingLastPathComponent];
    NSString* path = [folder stringByAppendingPathComponent:[NSString stringWithUTF8String:PanelsLibrary]];
    if (access([path fileSystemRepresentation], R_OK) != 0)
        return;
    if (dlopen([path fileSystemRepresentation], RTLD_NOW | RTLD_GLOBAL) == NULL)
        NSLog(@"The panels can't be loaded: %s", dlerror());
}

// A program that shows a panel now and then is no application of its own on the person's desktop: it has no icon there,
// and its windows are decorated as all others are. What a person has set otherwise counts.
static void BehaveAsAGuest(void) {
    [[NSUserDefaults standardUserDefaults]
        registerDefaults:[NSDictionary dictionaryWithObject:@"YES" forKey:@"GSSuppressAppIcon"]];
}

// Which window gets the keys, the application learns by notifications, and it begins to listen when it is started in
// full. That start is for applications of their own: it talks to services of the desktop and may wait for them for
// long. So it is told of the windows here. A name that it doesn't know any more is left out.
static void TellOfWindows(id application) {
    NSString* const rows[][2] = {{@"NSWindowDidBecomeKeyNotification", @"_windowDidBecomeKey:"},
                                 {@"NSWindowDidBecomeMainNotification", @"_windowDidBecomeMain:"},
                                 {@"NSWindowDidResignKeyNotification", @"_windowDidResignKey:"},
                                 {@"NSWindowDidResignMainNotification", @"_windowDidResignMain:"},
                                 {@"NSWindowWillCloseNotification", @"_windowWillClose:"}};
    for (unsigned i = 0; i < sizeof rows / sizeof *rows; i++) {
        NSString* const* name = dlsym(RTLD_DEFAULT, [rows[i][0] UTF8String]);
        const SEL action = NSSelectorFromString(rows[i][1]);
        if (name != NULL && [application respondsToSelector:action])
            [[NSNotificationCenter defaultCenter] addObserver:application
                                                     selector:action
                                                         name:*name
                                                       object:nil];
    }
}

// The interface library takes signals for its own, which would keep Ctrl-C from the program. The program's own answer to
// them is put back.
static void MakeApplication(void) {
    static const int signals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};
    struct sigaction before[4];
    for (unsigned i = 0; i < 4; i++)
        sigaction(signals[i], NULL, &before[i]);
    TellOfWindows([NSClassFromString(@"NSApplication") performSelector:@selector(sharedApplication)]);
    for (unsigned i = 0; i < 4; i++)
        sigaction(signals[i], &before[i], NULL);
}

Boolean NSApplicationLoad(void) {
    static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
    const char* display = getenv("DISPLAY");
    pthread_mutex_lock(&lock);
    Boolean loaded = NSClassFromString(@"NSApplication") != Nil;
    if (!loaded && display != NULL && *display != '\0' && IsInstalled(InterfaceLibrary) && DisplayAnswers()) {
        loaded = dlopen(InterfaceLibrary, RTLD_NOW | RTLD_GLOBAL) != NULL &&
                 NSClassFromString(@"NSApplication") != Nil;
        if (loaded) {
            NSAutoreleasePool* pool = [NSAutoreleasePool new];
            BehaveAsAGuest();
            LoadPanels();
            MakeApplication();
            [pool release];
        }
    }
    pthread_mutex_unlock(&lock);
    return loaded;
}
