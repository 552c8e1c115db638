// DRErasePrivate: what the panels ask of an erase.
#ifndef DISCRECORDING_DRERASEPRIVATE_H
#define DISCRECORDING_DRERASEPRIVATE_H

#import "DRErase.h"

@interface DRErase (Keeping)
/**
 * Keeps every other process out of the drive, as exclusive access does, until the erase has ended or, when it is never
 * started, the object is released. NO when the drive can't be had, and once the erase was started.
 */
- (BOOL)keepDevice;
@end

#endif
