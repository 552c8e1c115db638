// DREraseProgressPanel: what is an erase's about a progress panel.
#import "DREraseProgressPanel.h"
#import "DRPanelTexts.h"
#import "DRProgressPanelPrivate.h"
#import "DRSheet.h"

@implementation DREraseProgressPanel

+ (DREraseProgressPanel*)progressPanel {
    return [[[self alloc] init] autorelease];
}

- (void)beginProgressPanelForErase:(DRErase*)erase {
    [self beginJob:erase layout:nil window:nil];
}

- (void)beginProgressSheetForErase:(DRErase*)erase modalForWindow:(NSWindow*)owner {
    [DRSheet requireWindow:owner for:[self title]];
    [self beginJob:erase layout:nil window:owner];
}

- (NSString*)panelTitle {
    return DRTextErasingTitle;
}

- (NSString*)standardDescription {
    DRDevice* device = [(DRErase*)[self job] device];
    return device == nil ? DRTextErasingTitle
                         : [NSString stringWithFormat:DRTextErasingFormat, [device displayName]];
}

- (NSString*)failureText {
    return DRTextEraseFailed;
}

// An erase has one step that takes time, so the bar says it all.
- (NSString*)stateTextFor:(NSDictionary*)status {
    return @"";
}

- (NSString*)willBeginName {
    return DREraseProgressPanelWillBeginNotification;
}
- (NSString*)didFinishName {
    return DREraseProgressPanelDidFinishNotification;
}
- (SEL)willBeginAction {
    return @selector(eraseProgressPanelWillBegin:);
}
- (SEL)didFinishAction {
    return @selector(eraseProgressPanelDidFinish:);
}

- (BOOL)delegateShowsTheEnd {
    id delegate = [self delegate];
    return [delegate respondsToSelector:@selector(eraseProgressPanel:eraseDidFinish:)] &&
           [delegate eraseProgressPanel:self eraseDidFinish:[self job]];
}

- (BOOL)canStop {
    return NO;
}
- (NSDictionary*)jobStatus {
    return [(DRErase*)[self job] status];
}
- (void)startWithLayout:(id)layout {
    [(DRErase*)[self job] start];
}
- (void)abortJob {
}

@end
