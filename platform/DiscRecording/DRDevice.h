// DRDevice: an optical drive.
#ifndef DISCRECORDING_DRDEVICE_H
#define DISCRECORDING_DRDEVICE_H

#import "DRDeviceConstants.h"
#import "DRMSF.h"
#import <Foundation/Foundation.h>

struct DRDeviceInside;

/**
 * A drive that can write. The class hands out one object for each drive as long as it is attached, so drives
 * may be compared by address too; programs make none themselves. Every method may be called from any thread.
 */
@interface DRDevice : NSObject <NSCopying> {
  @private
    struct DRDeviceInside* _inside;
}

/** The drives attached now that can write, always in the same order. Empty, never nil, when there are none.
 */
+ (NSArray*)devices;
/** The drive whose medium has that name under /dev, without "/dev/"; a virtual drive's medium has the name of
 * the drive's folder. Nil when there is none: a drive without a medium has no such name. */
+ (DRDevice*)deviceForBSDName:(NSString*)bsdName;
/** The drive with that ioRegistryEntryPath; nil when there is none. */
+ (DRDevice*)deviceForIORegistryEntryPath:(NSString*)path;

/** NO once the drive is gone; it stays so when a drive like it comes later. */
- (BOOL)isValid;
/** YES for the same drive; NO for nil. */
- (BOOL)isEqualToDevice:(DRDevice*)otherDevice;

/** Vendor and product, for people. */
- (NSString*)displayName;
/** What tells this drive from all others, and stays the same from run to run. */
- (NSString*)ioRegistryEntryPath;
/** See deviceForBSDName:; nil with no medium. */
- (NSString*)bsdName;
/** Whether it can write any kind of CD, or of DVD. */
- (BOOL)writesCD;
- (BOOL)writesDVD;

// The media questions answer NO, nil or zero with no medium.
- (BOOL)mediaIsPresent;
/** NO: a drive that is getting ready is waited for by whoever asks what is in it, and a virtual one is ready at once. */
- (BOOL)mediaIsTransitioning;
/** Some process uses the medium; this one counts. */
- (BOOL)mediaIsBusy;
- (BOOL)mediaIsBlank;
- (BOOL)mediaIsAppendable;
/** Can be written again from its first block. */
- (BOOL)mediaIsOverwritable;
- (BOOL)mediaIsErasable;
/** This process holds the reservation of the blank medium that is in the drive. */
- (BOOL)mediaIsReserved;
/** One of the DRDeviceMediaType constants. */
- (NSString*)mediaType;
/** Lengths in blocks. What a DRMSF can't count is cut off at its largest value. */
- (DRMSF*)mediaSpaceFree;
- (DRMSF*)mediaSpaceUsed;
- (DRMSF*)mediaSpaceOverwritable;

/** The drive has a tray, and it is open. */
- (BOOL)trayIsOpen;
/** NO when the tray did not open; with a medium inside it stays closed: use ejectMedia. */
- (BOOL)openTray;
- (BOOL)closeTray;
/** Pushes the medium out; with none it is openTray. NO while somebody writes, and on a physical drive while the disc
 * is mounted: mounted volumes are the system's, and nothing here unmounts them. */
- (BOOL)ejectMedia;

/** Keeps every other process out until released as often as acquired. NO when another has the drive, or
 * the system has mounted its disc. */
- (BOOL)acquireExclusiveAccess;
- (void)releaseExclusiveAccess;

/** Counted wish for blank media in this drive. One process holds it at a time: mediaIsReserved and the
 * status-changed notification say when it is this one. Releasing passes it on; releasing more often than
 * acquiring does nothing. */
- (void)acquireMediaReservation;
- (void)releaseMediaReservation;

@end

@interface DRDevice (Dictionaries)
/** What holds for the drive whatever is in it; the keys stand in DRDeviceConstants.h. */
- (NSDictionary*)info;
/** The medium, and what depends on it, at this moment; the keys stand in DRDeviceConstants.h. */
- (NSDictionary*)status;
@end

#endif
