// DRBurn: one burn of one disc.
#ifndef DISCRECORDING_DRBURN_H
#define DISCRECORDING_DRBURN_H

#import "DRBurnConstants.h"
#import "DRDevice.h"
#import "DRStatusConstants.h"
#import "DRTrack.h"
#import <Foundation/Foundation.h>

struct DRBurnInside;

/**
 * Writes one layout onto the medium of a drive, on a thread of its own. An object is good for one burn.
 * Whoever starts it must keep it: releasing the last reference ends a running burn, and waits until the
 * medium is consistent.
 *
 * writeLayout: and the properties belong to one thread; status and abort may be called from any.
 */
@interface DRBurn : NSObject {
  @private
    DRDevice* _device;
    NSDictionary* _properties;
    NSArray* _sessions; // what is being written, kept for as long as the burn is
    struct DRBurnInside* _inside;
}

/**
 * A layout from an image file, for writeLayout: only: `.iso` and other images of file systems, `.cue` and `.toc`
 * sheets with all the files that they name. Nil for what can't be read as an image; the reason goes to the log.
 */
+ (id)layoutForImageFile:(NSString*)path;

/** A burn for a drive, which is retained. A nil drive is allowed; the burn then fails with 0x80020023. */
+ (DRBurn*)burnForDevice:(DRDevice*)device;
/** As burnForDevice:. */
- (id)initWithDevice:(DRDevice*)device;

/** The drive. */
- (DRDevice*)device;

/**
 * Starts the burn and returns; what becomes of it stands in the status. With DRSynchronousBehaviorKey it
 * returns when the burn has ended; until then producers are called on this thread. A layout is a DRTrack (one session), an array of DRTracks (one session),
 * or an array of such arrays (a session each), or
 * what layoutForImageFile: answered. Nil does nothing, and the burn can still be used.
 *
 * Raises NSInvalidArgumentException for anything else, empty arrays included, and
 * NSInternalInconsistencyException when this object has been used before. Nothing is written then.
 */
- (void)writeLayout:(id)layout;

/**
 * Asks the burn to end. It becomes Failed with error 0x80020066 soon after. No effect before the start and
 * after the end. A disc that can be written once only is lost.
 */
- (void)abort;

/** The burn at this moment; the keys stand in DRStatusConstants.h. Valid before, during and after the burn.
 */
- (NSDictionary*)status;

/** A copy of the properties that were set; never nil, and empty at first: what is absent has its default. */
- (NSDictionary*)properties;
/** Replaces all properties; nil clears them. They count when writeLayout: is called. */
- (void)setProperties:(NSDictionary*)properties;

// Single properties: the getters answer the value in effect, the setters write the key.

/** DRBurnRequestedSpeedKey in KB/s; DRDeviceBurnSpeedMax when unset. */
- (float)requestedBurnSpeed;
- (void)setRequestedBurnSpeed:(float)speed;
/** DRBurnAppendableKey; NO when unset. */
- (BOOL)appendable;
- (void)setAppendable:(BOOL)appendable;
/** DRBurnVerifyDiscKey; YES when unset. Only tracks with a verification type are verified. */
- (BOOL)verifyDisc;
- (void)setVerifyDisc:(BOOL)verify;
/** DRBurnCompletionActionKey; DRBurnCompletionActionEject when unset. Nil removes the key. */
- (NSString*)completionAction;
- (void)setCompletionAction:(NSString*)action;

@end

#endif
