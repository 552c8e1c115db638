// DRErase: one erase of a re-writable disc.
#ifndef DISCRECORDING_DRERASE_H
#define DISCRECORDING_DRERASE_H

#import "DRDevice.h"
#import "DREraseConstants.h"
#import "DRStatusConstants.h"
#import <Foundation/Foundation.h>

struct DREraseInside;

/**
 * Makes the medium of a drive blank, on a thread of its own. An object is good for one erase, and there is no
 * aborting it. A drive that erases goes on to its end, also when the last reference goes.
 *
 * start and the properties belong to one thread; status may be asked for from any.
 */
@interface DRErase : NSObject {
  @private
    DRDevice* _device;
    NSDictionary* _properties;
    struct DREraseInside* _inside;
}

/** An erase in a drive, which is retained. A nil drive is allowed; the erase then fails with 0x80020023. */
+ (DRErase*)eraseForDevice:(DRDevice*)device;
/** As eraseForDevice:. */
- (id)initWithDevice:(DRDevice*)device;

/** The drive. */
- (DRDevice*)device;

/**
 * Starts the erase and returns; what becomes of it stands in the status. A medium that can't be erased fails with
 * 0x80020045, no medium with 0x80020041, a drive that is busy with 0x80020021. Raises
 * NSInternalInconsistencyException when this object has been started before.
 */
- (void)start;

/**
 * The erase at this moment; the keys stand in DRStatusConstants.h. The states are None, Preparing, Erasing,
 * Finishing, Done and Failed. Valid before, during and after the erase.
 */
- (NSDictionary*)status;

/** A copy of the properties that were set; never nil, and empty at first: what is absent has its default. */
- (NSDictionary*)properties;
/** Replaces all properties; nil clears them. They count when start is called. */
- (void)setProperties:(NSDictionary*)properties;

/**
 * DREraseTypeKey: DREraseTypeQuick (when unset), only what is needed for a blank medium, or DREraseTypeComplete,
 * every block. Any other text fails with 0x80020067. Nil removes the key.
 */
- (NSString*)eraseType;
- (void)setEraseType:(NSString*)type;

@end

#endif
