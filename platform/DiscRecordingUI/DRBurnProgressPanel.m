// DRBurnProgressPanel: what is a burn's about a progress panel.
#import "DRBurnProgressPanel.h"
#import "DRPanelTexts.h"
#import "DRProgressPanelPrivate.h"
#import "DRSheet.h"

@implementation DRBurnProgressPanel

+ (DRBurnProgressPanel*)progressPanel {
    return [[[self alloc] init] autorelease];
}

// A burn takes nil and does nothing, so the panel would stand there for ever.
static void RequireLayout(id layout) {
    if (layout == nil)
        [NSException raise:NSInvalidArgumentException format:@"A progress panel needs a layout to burn."];
}

- (void)beginProgressPanelForBurn:(DRBurn*)burn layout:(id)layout {
    RequireLayout(layout);
    [self beginJob:burn layout:layout window:nil];
}

- (void)beginProgressSheetForBurn:(DRBurn*)burn layout:(id)layout modalForWindow:(NSWindow*)owner {
    [DRSheet requireWindow:owner for:[self title]];
    RequireLayout(layout);
    [self beginJob:burn layout:layout window:owner];
}

// A program that sends this has decided; a person who clicks is asked, because a disc may be lost.
- (IBAction)stopBurn:(id)sender {
    [self stopJob];
}

- (NSString*)panelTitle {
    return DRTextBurningTitle;
}

- (NSString*)standardDescription {
    DRDevice* device = [(DRBurn*)[self job] device];
    return device == nil ? DRTextBurningTitle
                         : [NSString stringWithFormat:DRTextBurningFormat, [device displayName]];
}

- (NSString*)failureText {
    return DRTextFailed;
}

static NSString* Counted(NSString* format, NSDictionary* status, NSString* current, NSString* total) {
    return [NSString stringWithFormat:format, [[status objectForKey:current] unsignedIntValue],
                                      [[status objectForKey:total] unsignedIntValue]];
}

- (NSString*)stateTextFor:(NSDictionary*)status {
    NSString* state = [status objectForKey:DRStatusStateKey];
    if (status == nil || [state isEqual:DRStatusStateNone] || [state isEqual:DRStatusStatePreparing])
        return DRTextStatePreparing;
    if ([state isEqual:DRStatusStateVerifying])
        return DRTextStateVerifying;
    if ([state isEqual:DRStatusStateFinishing])
        return DRTextStateFinishing;
    if ([state isEqual:DRStatusStateDone])
        return DRTextStateDone;
    if (![self verboseProgressStatus])
        return DRTextStateWriting;
    NSString *session = DRStatusCurrentSessionKey, *sessions = DRStatusTotalSessionsKey;
    NSString *track = DRStatusCurrentTrackKey, *tracks = DRStatusTotalTracksKey;
    if ([state isEqual:DRStatusStateSessionOpen])
        return Counted(DRTextStateSessionOpen, status, session, sessions);
    if ([state isEqual:DRStatusStateSessionClose])
        return Counted(DRTextStateSessionClose, status, session, sessions);
    if ([state isEqual:DRStatusStateTrackOpen])
        return Counted(DRTextStateTrackOpen, status, track, tracks);
    if ([state isEqual:DRStatusStateTrackClose])
        return Counted(DRTextStateTrackClose, status, track, tracks);
    return Counted(DRTextStateTrackWrite, status, track, tracks);
}

- (NSString*)willBeginName {
    return DRBurnProgressPanelWillBeginNotification;
}
- (NSString*)didFinishName {
    return DRBurnProgressPanelDidFinishNotification;
}
- (SEL)willBeginAction {
    return @selector(burnProgressPanelWillBegin:);
}
- (SEL)didFinishAction {
    return @selector(burnProgressPanelDidFinish:);
}

- (BOOL)delegateShowsTheEnd {
    id delegate = [self delegate];
    return [delegate respondsToSelector:@selector(burnProgressPanel:burnDidFinish:)] &&
           [delegate burnProgressPanel:self burnDidFinish:[self job]];
}

- (BOOL)canStop {
    return YES;
}
- (NSDictionary*)jobStatus {
    return [(DRBurn*)[self job] status];
}
- (void)startWithLayout:(id)layout {
    [(DRBurn*)[self job] writeLayout:layout];
}
- (void)abortJob {
    [(DRBurn*)[self job] abort];
}

@end
