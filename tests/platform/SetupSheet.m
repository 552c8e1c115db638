// SetupSheet.m: a program that shows a setup panel as a sheet, which the plug-in has no member for.
//
//   setup-sheet DRBurnSetupPanel|DREraseSetupPanel|raising|deciding
//
// Like every program it links no user interface: the window classes are reached by name once they are loaded. Its
// delegate raises when it is asked who reserves media, the first time, if the word is "raising"; with "deciding" it is
// the window's delegate, too, and doesn't let it close. The program ends with the sheet.
#import "DRBurnSetupPanel.h"
#import "DREraseSetupPanel.h"
#import <stdio.h>

extern unsigned char NSApplicationLoad(void);

@interface Judge : NSObject {
  @public
    BOOL ended, raises;
}
@end

@implementation Judge
- (BOOL)setupPanelShouldHandleMediaReservations:(DRSetupPanel*)panel {
    if (raises)
        [NSException raise:@"Judgement" format:@"no opinion"];
    return YES;
}
- (BOOL)windowShouldClose:(id)sender {
    printf("asked\n");
    return NO;
}
- (void)panel:(DRSetupPanel*)panel didEnd:(int)code context:(void*)context {
    printf("%d, shown: %d, context: %s\n", code, [panel isVisible], (const char*)context);
    ended = YES;
}
@end

static void begin(DRSetupPanel* panel, NSWindow* window, Judge* judge) {
    @try {
        [panel beginSetupSheetForWindow:window
                          modalDelegate:judge
                         didEndSelector:@selector(panel:didEnd:context:)
                            contextInfo:"ours"];
        printf("begun\n");
    } @catch (NSException* refused) {
        printf("%s\n", [[refused name] UTF8String]);
    }
}

int main(int argc, char** argv) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    (void)argc;
    setvbuf(stdout, NULL, _IONBF, 0);
    if (!NSApplicationLoad())
        return 1;
    NSApplication* application = [NSClassFromString(@"NSApplication") sharedApplication];
    const BOOL raising = strcmp(argv[1], "raising") == 0;
    const BOOL deciding = strcmp(argv[1], "deciding") == 0;
    id made = NSClassFromString(raising || deciding ? @"DRBurnSetupPanel"
                                                    : [NSString stringWithUTF8String:argv[1]]);
    DRSetupPanel* panel = [made setupPanel];
    Judge* judge = [Judge new];
    [panel setDelegate:judge];
    NSWindow* window =
        [[NSClassFromString(@"NSWindow") alloc] initWithContentRect:NSMakeRect(200, 200, 640, 400)
                                                          styleMask:NSTitledWindowMask | NSClosableWindowMask
                                                            backing:NSBackingStoreBuffered
                                                              defer:YES];
    [window setTitle:@"Photos"];
    [window setReleasedWhenClosed:NO];
    if (deciding)
        [window setDelegate:(id)judge];
    [window makeKeyAndOrderFront:nil];
    begin(panel, nil, judge);
    judge->raises = raising;
    begin(panel, window, judge);
    if (raising) { // and is good for another time
        judge->raises = NO;
        begin(panel, window, judge);
    }
    begin(panel, window, judge); // one at a time: this changes nothing
    while (!judge->ended) {
        NSAutoreleasePool* turn = [NSAutoreleasePool new];
        NSEvent* event = [application nextEventMatchingMask:NSAnyEventMask
                                                  untilDate:[NSDate dateWithTimeIntervalSinceNow:0.1]
                                                     inMode:NSDefaultRunLoopMode
                                                    dequeue:YES];
        [application sendEvent:event];
        [turn release];
    }
    id chosen = [panel respondsToSelector:@selector(burnObject)]
                    ? (id)[(DRBurnSetupPanel*)panel burnObject]
                    : (id)[(DREraseSetupPanel*)panel eraseObject];
    printf("%s, shown: %d, window: %d\n",
           chosen == nil ? "none" : [NSStringFromClass([chosen class]) UTF8String], [panel isVisible],
           [window isVisible]);
    [panel setDelegate:nil];
    [window setDelegate:nil];
    [judge release];
    [window release];
    [pool release];
    return 0;
}
