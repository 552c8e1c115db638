// DRProgressPanelPrivate.h: what is inside a progress panel, what the two tell it, and what it does for them.
#ifndef DISCRECORDINGUI_DRPROGRESSPANELPRIVATE_H
#define DISCRECORDINGUI_DRPROGRESSPANELPRIVATE_H

#import "DRDriveWatch.h"
#import "DRPanelParts.h"
#import "DRProgressPanel.h"
#import "DRProgressTime.h"
#import "DRSheet.h"

typedef enum { Idle, Running, Asking, Stopping, Failed } DRJobStage;

struct DRProgressPanelInside {
    NSTextField *headline, *state, *timeLeft, *speed;
    NSProgressIndicator* bar;
    NSButton *stop, *keep, *done; // done ends what is shown of a failure
    NSView* picture;
    NSString* text;
    BOOL verbose;
    DRJobStage stage;
    id job;
    DRSheet* sheet;
    DRDriveWatch* watch;
    DRProgressTime* time;
    BOOL stopped;
};

@interface DRProgressPanel (Parts)
- (void)addParts;
/** Places everything again, after a text or the number of parts changed. */
- (void)layoutPanel;
/** What is on the panel follows from the stage, but for the text under its headline. */
- (void)showStage:(DRJobStage)stage text:(NSString*)text;
/** How far the job is. */
- (void)showStatus:(NSDictionary*)status;
@end

@interface DRProgressPanel (ForSubclasses)
/**
 * Shows the panel, on a window if there is one, and starts the job. Raises NSInvalidArgumentException without a job and
 * NSInternalInconsistencyException while another one runs. What raises when the job is started is raised again when
 * the panel has gone.
 */
- (void)beginJob:(id)job layout:(id)layout window:(NSWindow*)owner;
- (id)job;
/** Asks the person in the panel whether to stop, and goes on until that is answered. */
- (void)askToStop;
/** Ends the job as soon as it can be ended. */
- (void)stopJob;
@end

/** Each panel answers all of these. */
@interface DRProgressPanel (Overridden)
- (NSString*)panelTitle;
/** The sentence at the top while no other was set. */
- (NSString*)standardDescription;
- (NSString*)failureText;
- (NSString*)stateTextFor:(NSDictionary*)status;
- (NSString*)willBeginName;
- (NSString*)didFinishName;
- (SEL)willBeginAction;
- (SEL)didFinishAction;
/** Whether the delegate has told the person of the end. */
- (BOOL)delegateShowsTheEnd;
- (BOOL)canStop;
- (NSDictionary*)jobStatus;
- (void)startWithLayout:(id)layout;
- (void)abortJob;
@end

#endif
