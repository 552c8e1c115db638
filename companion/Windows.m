// Windows.m: NSWindowQRX and NSPanelQRX, from which the classes of panels derive.
//
// The window classes are in a library that is loaded only where there is a display, so they are reached by name.
// An object without a window, as all are without a display, answers empty and does nothing.
#import "companion/Classes.h"
#import "companion/Exceptions.h"
#import "companion/Geometry.h"

// What is asked of windows and of the application.
@interface NSObject (CompanionWindow)
- (id)initWithContentRect:(NSRect)rect
                styleMask:(NSUInteger)mask
                  backing:(NSUInteger)backing
                    defer:(BOOL)defer;
- (void)setReleasedWhenClosed:(BOOL)value;
- (void)makeKeyAndOrderFront:(id)sender;
- (void)orderOut:(id)sender;
- (BOOL)isVisible;
- (NSString*)title;
- (void)setTitle:(NSString*)title;
- (NSRect)frame;
- (void)setFrame:(NSRect)frame display:(BOOL)display;
+ (id)sharedApplication;
@end

// The platform's; its own header and that of the interface to plug-ins declare the same records.
extern unsigned char NSApplicationLoad(void);

enum {
    TitledClosableResizable = 1 | 2 | 8, // the platform's bits of a window's style
    BackedByABuffer = 2
};

static void construct(REALobject self, NSString* platformClass, REALstring title, REALobject bounds) {
    if (held(self) != nil)
        return raiseConstructedTwice();
    NSApplicationLoad();
    [NSClassFromString(@"NSApplication") sharedApplication];
    id window = [[NSClassFromString(platformClass) alloc] initWithContentRect:rectOf(bounds)
                                                                    styleMask:TitledClosableResizable
                                                                      backing:BackedByABuffer
                                                                        defer:YES];
    // The slot is filled last: an object has a finished window or none, and may be constructed again.
    @try {
        // The host object owns the window, also when a person has closed it.
        [window setReleasedWhenClosed:NO];
        // Bounds are those of the whole window, as they are read; it was made by what lies inside its frame.
        if (bounds != NULL)
            [window setFrame:rectOf(bounds) display:NO];
        [window setTitle:platformString(title)];
        *slot(self) = window;
        window = nil;
    } @finally {
        [window release];
    }
}

static void constructWindow(REALobject self, REALstring title, REALobject bounds) {
    GUARDED_VOID(construct(self, @"NSWindow", title, bounds))
}

static void constructPanel(REALobject self, REALstring title, REALobject bounds) {
    GUARDED_VOID(construct(self, @"NSPanel", title, bounds))
}

static void constructEmpty(REALobject self) {}

static void show(REALobject self) { GUARDED_VOID([held(self) makeKeyAndOrderFront:nil]) }
static void hide(REALobject self) { GUARDED_VOID([held(self) orderOut:nil]) }
static uint8_t visible(REALobject self) { GUARDED(uint8_t, [held(self) isVisible] != 0) }
static REALstring title(REALobject self) { GUARDED(REALstring, hostString([held(self) title])) }
static void setTitle(REALobject self, REALstring text) {
    GUARDED_VOID([held(self) setTitle:platformString(text)])
}

// A structure that nil answers is not defined, so nil is not asked.
static REALobject bounds(REALobject self) {
    GUARDED(REALobject, held(self) == nil ? NULL : newHostRect([held(self) frame]))
}

// Nil is no place for a window: it stays where it is.
static void setBounds(REALobject self, REALobject rect) {
    if (rect != NULL)
        GUARDED_VOID([held(self) setFrame:rectOf(rect) display:YES])
}

static REALmethodDefinition windowMethods[] = {
    METHOD(constructEmpty, "Constructor"),
    METHOD(constructWindow, "Constructor(title as string, bounds as NSRectQRX)"),
    METHOD(show, "show"),
    METHOD(hide, "hide"),
    METHOD(visible, "visible as boolean"),
    PROPERTY(title, setTitle, "title as string"),
    PROPERTY(bounds, setBounds, "bounds as NSRectQRX"),
};

// The instance data begins with the window, here and in all that derive from it: none of them has data of its
// own, and this destructor, the last to run, releases what is still there.
REALclassDefinition NSWindowQRXClass = HOLDER_CLASS("NSWindowQRX", windowMethods);

static REALmethodDefinition panelMethods[] = {
    METHOD(constructEmpty, "Constructor"),
    METHOD(constructPanel, "Constructor(title as string, bounds as NSRectQRX)"),
};

REALclassDefinition NSPanelQRXClass = {CLASS_BASICS, .name = "NSPanelQRX", .superName = "NSWindowQRX",
                                       .methods = panelMethods, .methodCount = COUNT_OF(panelMethods)};
