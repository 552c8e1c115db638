// DRProgressPanelPrivate.h: what the two progress panels tell their common half, and what it does for them.
#ifndef DISCRECORDINGUI_DRPROGRESSPANELPRIVATE_H
#define DISCRECORDINGUI_DRPROGRESSPANELPRIVATE_H

#import "DRPanelParts.h"
#import "DRProgressPanel.h"

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
