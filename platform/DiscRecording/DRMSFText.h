// How lengths on a disc are written and read as text; shared by DRMSF and its formatter.
#ifndef DISCRECORDING_DRMSFTEXT_H
#define DISCRECORDING_DRMSFTEXT_H

#import <Foundation/Foundation.h>

enum { DRMSFFramesPerSecond = 75, DRMSFSecondsPerMinute = 60, DRMSFFramesPerMinute = 4500 };

/** The text of a count of frames in the format language of descriptionWithFormat:. */
NSString* DRMSFTextOfFrames(uint32_t frames, NSString* format);

/** Reads a length as initWithString: does. NO, and *frames untouched, when the text is not one. */
BOOL DRMSFFramesOfText(NSString* text, uint32_t* frames);

#endif
