// DRPanelTexts.h: every text that a person reads on the panels.
//
// A translation is the table DiscRecordingUI.strings of the main bundle, with the English texts as its keys.
#ifndef DISCRECORDINGUI_DRPANELTEXTS_H
#define DISCRECORDINGUI_DRPANELTEXTS_H

#import <Foundation/Foundation.h>

/** The text in the person's language; itself where there is no translation. */
NSString* DRPanelText(NSString* english);

/** A speed in KB/s as people know it from that class of media (DRDeviceMediaClassKey), and as it is. */
NSString* DRTextOfSpeed(float speed, NSString* mediaClass);

// ---- buttons and boxes

#define DRTextBurn DRPanelText(@"Burn")
#define DRTextErase DRPanelText(@"Erase")
#define DRTextCancel DRPanelText(@"Cancel")
#define DRTextOK DRPanelText(@"OK")
#define DRTextEject DRPanelText(@"Eject")
#define DRTextOpen DRPanelText(@"Open")
#define DRTextClose DRPanelText(@"Close")
#define DRTextStop DRPanelText(@"Stop")
#define DRTextShowOptions DRPanelText(@"Show Options")
#define DRTextHideOptions DRPanelText(@"Hide Options")
#define DRTextKeepBurning DRPanelText(@"Keep Burning")
#define DRTextStopBurning DRPanelText(@"Stop Burning")
#define DRTextReplace DRPanelText(@"Replace what is on the disc")
#define DRTextAppendable DRPanelText(@"Leave the disc open for more")
#define DRTextVerify DRPanelText(@"Verify the disc when it is written")
#define DRTextTestBurn DRPanelText(@"Test only, write nothing")
#define DRTextThenEject DRPanelText(@"Eject the disc")
#define DRTextThenMount DRPanelText(@"Mount the disc")
#define DRTextQuickErase DRPanelText(@"Quickly (the old contents can be restored)")
#define DRTextCompleteErase DRPanelText(@"Completely (takes much longer)")
#define DRTextMaximumSpeed DRPanelText(@"Maximum")
#define DRTextSpeedFormat DRPanelText(@"%@x (%@ KB/s)")

// ---- titles and labels

#define DRTextBurnTitle DRPanelText(@"Burn a Disc")
#define DRTextEraseTitle DRPanelText(@"Erase a Disc")
#define DRTextBurningTitle DRPanelText(@"Burning")
#define DRTextErasingTitle DRPanelText(@"Erasing")
#define DRTextDriveLabel DRPanelText(@"Drive:")
#define DRTextSpeedLabel DRPanelText(@"Speed:")
#define DRTextThenLabel DRPanelText(@"Afterwards:")
#define DRTextDiscLabel DRPanelText(@"Disc:")
#define DRTextEraseLabel DRPanelText(@"Erase:")
#define DRTextNoDrive DRPanelText(@"No drive")

// ---- what is in the drive, and what to do about it; %@ is the drive

#define DRTextPromptNoDrive DRPanelText(@"There is no drive that can write. Connect one to go on.")
#define DRTextPromptTrayOpen DRPanelText(@"Insert a disc into %@ and close its tray.")
#define DRTextPromptNoMedia DRPanelText(@"Insert a disc into %@.")
#define DRTextPromptBusy DRPanelText(@"%@ is in use by another program.")
#define DRTextPromptBlank DRPanelText(@"The disc in %@ is blank and ready to be burned.")
#define DRTextPromptAppend DRPanelText(@"The disc in %@ is ready. What is on it stays.")
#define DRTextPromptNoAppend DRPanelText(@"The disc in %@ is not blank. Insert a blank one.")
#define DRTextPromptMayReplace                                                                               \
    DRPanelText(@"The disc in %@ is full or closed. Insert a blank one, or choose to replace what is on "    \
                @"it.")
#define DRTextPromptWillReplace DRPanelText(@"Everything on the disc in %@ will be replaced.")
#define DRTextPromptUnsuitable DRPanelText(@"The disc in %@ can't be written any more. Insert a blank one.")
#define DRTextPromptErasable DRPanelText(@"Everything on the disc in %@ will be lost.")
#define DRTextPromptBlankErasable DRPanelText(@"The disc in %@ is blank already; it can be erased again.")
#define DRTextPromptNotErasable DRPanelText(@"The disc in %@ can't be erased. Insert a re-writable one.")

// ---- progress

#define DRTextBurningFormat DRPanelText(@"Burning the disc in %@")
#define DRTextErasingFormat DRPanelText(@"Erasing the disc in %@")
#define DRTextStatePreparing DRPanelText(@"Preparing…")
#define DRTextStateWriting DRPanelText(@"Writing…")
#define DRTextStateVerifying DRPanelText(@"Verifying…")
#define DRTextStateFinishing DRPanelText(@"Finishing…")
#define DRTextStateStopping DRPanelText(@"Stopping…")
#define DRTextStateDone DRPanelText(@"Done.")
#define DRTextStateSessionOpen DRPanelText(@"Opening session %u of %u…")
#define DRTextStateTrackOpen DRPanelText(@"Opening track %u of %u…")
#define DRTextStateTrackWrite DRPanelText(@"Writing track %u of %u…")
#define DRTextStateTrackClose DRPanelText(@"Closing track %u of %u…")
#define DRTextStateSessionClose DRPanelText(@"Closing session %u of %u…")
#define DRTextSecondsLeft DRPanelText(@"Less than a minute left")
#define DRTextMinuteLeft DRPanelText(@"About a minute left")
#define DRTextMinutesLeft DRPanelText(@"About %u minutes left")
#define DRTextHoursLeft DRPanelText(@"About %u h %02u min left")
#define DRTextStopQuestion                                                                                   \
    DRPanelText(@"Stop burning? The disc will not be readable; one that can be written only once is lost.")
#define DRTextFailed DRPanelText(@"The disc could not be burned.")
#define DRTextEraseFailed DRPanelText(@"The disc could not be erased.")

#endif
