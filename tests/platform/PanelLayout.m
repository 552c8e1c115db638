// PanelLayout.m: measures the panels in every state, with the texts as they are or with longer ones.
//
//   panel-layout plain|long          a line for each state: its name, and what is wrong with it or "fits"
//   panel-layout plain|long show     the same of the largest panel only, which then stays until it is ended
//
// Longer texts stand for a translation: what is short in English is often twice as long elsewhere.
#import "DRBurnProgressPanel.h"
#import "DRBurnSetupPanel.h"
#import "DREraseProgressPanel.h"
#import "DREraseSetupPanel.h"
#import "DRPanelTexts.h"
#import "DRProgressPanelPrivate.h"
#import "DRSetupPanelPrivate.h"
#import <objc/runtime.h>
#import <stdio.h>

extern unsigned char NSApplicationLoad(void);

static NSString* lengthened(id bundle, SEL selector, NSString* english, NSString* value, NSString* table) {
    NSString* more =
        @" und noch einige Silben mehr, wie sie in anderen Sprachen vorkommen, und dann noch welche";
    const NSUInteger length = [english length];
    return
        [english stringByAppendingString:[more substringToIndex:length < 12 ? length : 6 + length * 2 / 5]];
}

// Like every program it links no user interface.
static Class Named(NSString* name) { return NSClassFromString(name); }

// What is wrong with a part by itself; nil if nothing is.
static NSString* Flaw(NSView* part, NSRect contents) {
    const NSRect frame = [part frame];
    if (NSMinX(frame) < 20 || NSMaxX(frame) > NSWidth(contents) - 20 || NSMinY(frame) < 20 ||
        NSMaxY(frame) > NSHeight(contents) - 20)
        return [NSString stringWithFormat:@"reaches into the margin: %@", NSStringFromRect(frame)];
    if (![part isKindOfClass:Named(@"NSControl")])
        return nil;
    NSCell* cell = [(NSControl*)part cell];
    NSSize needed = [cell cellSize];
    if ([part isKindOfClass:Named(@"NSTextField")] && NSHeight(frame) > 18) // its lines are wrapped
        needed = [[(NSControl*)part stringValue]
                     boundingRectWithSize:NSMakeSize(NSWidth(frame) - 4, 10000)
                                  options:NSStringDrawingUsesLineFragmentOrigin
                               attributes:[NSDictionary dictionaryWithObject:[(NSControl*)part font]
                                                                      forKey:@"NSFont"]]
                     .size;
    if (needed.width > NSWidth(frame) + 0.5 || needed.height > NSHeight(frame))
        return [NSString
            stringWithFormat:@"needs %@ and has %@", NSStringFromSize(needed), NSStringFromSize(frame.size)];
    return nil;
}

static NSString* NameOf(NSView* part) {
    id text = [part isKindOfClass:Named(@"NSButton")]      ? [(NSButton*)part title]
              : [part isKindOfClass:Named(@"NSTextField")] ? [(NSTextField*)part stringValue]
                                                           : NSStringFromClass([part class]);
    return [text length] == 0 ? NSStringFromClass([part class]) : text;
}

static NSString* FlawOf(NSWindow* panel) {
    const NSRect contents = [[panel contentView] bounds];
    NSMutableArray* shown = [NSMutableArray array];
    NSArray* parts = [[panel contentView] subviews];
    CGFloat menusEnd = 0;
    for (NSUInteger i = 0; i < [parts count]; i++) {
        NSView* part = [parts objectAtIndex:i];
        if ([part isHidden])
            continue;
        NSString* flaw = Flaw(part, contents);
        if (flaw != nil)
            return [NSString stringWithFormat:@"\"%@\" %@", NameOf(part), flaw];
        for (NSUInteger j = 0; j < [shown count]; j++) {
            if (NSIntersectsRect([part frame], [[shown objectAtIndex:j] frame]))
                return [NSString stringWithFormat:@"\"%@\" lies over \"%@\"", NameOf(part),
                                                  NameOf([shown objectAtIndex:j])];
        }
        [shown addObject:part];
        if ([part isKindOfClass:Named(@"NSPopUpButton")]) {
            if (menusEnd > 0 && NSMaxX([part frame]) != menusEnd)
                return @"its menus don't end together";
            menusEnd = NSMaxX([part frame]);
        }
    }
    const NSSize size = [panel frame].size;
    if (size.width > 1024 || size.height > 740) // there is a bar on most screens
        return [NSString stringWithFormat:@"does not fit a screen: %@", NSStringFromSize(size)];
    return [shown count] < 3 ? @"shows nothing" : nil;
}

static void Check(NSWindow* panel, NSString* state) {
    NSString* flaw = FlawOf(panel);
    printf("%s: %s\n", [state UTF8String], flaw == nil ? "fits" : [flaw UTF8String]);
}

@interface Prompter : NSObject {
  @public
    DRSetupPanel* panel;
    NSString *name, *text;
    BOOL stays;
}
@end

@implementation Prompter
- (BOOL)setupPanel:(DRSetupPanel*)asking
    deviceContainsSuitableMedia:(DRDevice*)device
                   promptString:(NSString**)prompt {
    if (text != nil)
        *prompt = [NSString stringWithFormat:text, [device displayName]];
    return YES;
}
- (void)shown:(NSTimer*)timer {
    NSString* prompts[] = {DRTextPromptNoDrive,
                           DRTextPromptTrayOpen,
                           DRTextPromptNoMedia,
                           DRTextPromptBusy,
                           DRTextPromptBlank,
                           DRTextPromptAppend,
                           DRTextPromptNoAppend,
                           DRTextPromptMayReplace,
                           DRTextPromptWillReplace,
                           DRTextPromptErasable,
                           DRTextPromptBlankErasable,
                           DRTextPromptNotErasable,
                           @"",
                           DRTextPromptUnsuitable};
    const BOOL burns = [panel respondsToSelector:@selector(expand:)];
    for (int expanded = 0; expanded <= burns; expanded++) {
        for (unsigned i = 0; i < sizeof prompts / sizeof *prompts; i++) {
            [text release];
            text = [prompts[i] retain];
            [panel reviewMedia];
            Check(panel, [NSString stringWithFormat:@"%@%s %u", name, expanded ? ", all options," : "", i]);
        }
        if (burns && !expanded)
            [(DRBurnSetupPanel*)panel expand:nil];
    }
    if (burns) {
        [(DRBurnSetupPanel*)panel
            setDefaultButtonTitle:@"Burn all these photos onto this disc, at once and for ever"];
        Check(panel, @"a long title of the button");
    }
    fflush(stdout);
    if (!stays)
        [panel cancel:nil];
}
@end

static void MeasureSetup(Prompter* prompter, NSString* name, BOOL stays) {
    DRSetupPanel* panel = [NSClassFromString(name) setupPanel];
    if ([panel respondsToSelector:@selector(setCanSelectTestBurn:)])
        [(DRBurnSetupPanel*)panel setCanSelectTestBurn:YES];
    prompter->panel = panel;
    prompter->name = name;
    prompter->stays = stays;
    [panel setDelegate:(id)prompter];
    NSTimer* timer = [NSTimer timerWithTimeInterval:0
                                             target:prompter
                                           selector:@selector(shown:)
                                           userInfo:nil
                                            repeats:NO];
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:@"NSModalPanelRunLoopMode"];
    [panel runSetupPanel];
    [panel setDelegate:nil];
}

static void MeasureProgress(NSString* name, NSString* failure) {
    DRProgressPanel* panel = [NSClassFromString(name) progressPanel];
    NSString* drive = @"MANUFACT A DRIVE OF RANK"; // as long as drives call themselves
    NSString* headlines[] = {
        [NSString stringWithFormat:DRTextBurningFormat, drive],
        @"Burning the photos of the summer, all six hundred of them, and the letters that "
        @"belong to them, in the order in which they were written"};
    NSString* reason = @"The drive \"MANUFACT A DRIVE OF RANK\" is already writing; wait until it is done.";
    NSString* texts[] = {@"",
                         DRTextStatePreparing,
                         [NSString stringWithFormat:DRTextStateSessionOpen, 99, 99],
                         DRTextStopQuestion,
                         DRTextStateStopping,
                         [NSString stringWithFormat:@"%@ %@", failure, reason]};
    const DRJobStage stages[] = {Running, Running, Running, Asking, Stopping, Failed};
    NSArray* progress =
        [NSArray arrayWithObjects:[NSNumber numberWithDouble:47520], [NSNumber numberWithDouble:16], nil];
    NSDictionary* speed =
        [NSDictionary dictionaryWithObjects:progress
                                    forKeys:[NSArray arrayWithObjects:DRStatusProgressCurrentKPS,
                                                                      DRStatusProgressCurrentXFactor, nil]];
    for (unsigned i = 0; i < 24; i++) {
        const unsigned what = i % 6;
        [panel setDescription:headlines[i / 12]];
        [panel setVerboseProgressStatus:i / 6 % 2 == 1];
        [panel showStatus:[NSDictionary dictionaryWithObject:speed forKey:DRStatusProgressInfoKey]];
        struct DRProgressPanelInside* inside = NULL;
        object_getInstanceVariable(panel, "_inside", (void**)&inside);
        [inside->timeLeft setStringValue:[NSString stringWithFormat:DRTextHoursLeft, 99, 59]];
        [panel showStage:stages[what] text:texts[what]];
        Check(panel, [NSString stringWithFormat:@"%@ %u", name, i]);
    }
}

int main(int argc, char** argv) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    if (argc < 2 || !NSApplicationLoad())
        return 1;
    if (strcmp(argv[1], "long") == 0)
        class_replaceMethod([NSBundle class], @selector(localizedStringForKey:value:table:), (IMP)lengthened,
                            "@@:@@@");
    [NSClassFromString(@"NSApplication") sharedApplication];
    Prompter* prompter = [Prompter new];
    if (argc == 2) {
        MeasureSetup(prompter, @"DREraseSetupPanel", NO);
        MeasureProgress(@"DRBurnProgressPanel", DRTextFailed);
        MeasureProgress(@"DREraseProgressPanel", DRTextEraseFailed);
    }
    MeasureSetup(prompter, @"DRBurnSetupPanel", argc > 2);
    [prompter release];
    [pool release];
    return 0;
}
