// DRDevicePrivate: the engine's drive behind a DRDevice.
#ifndef DISCRECORDING_DRDEVICEPRIVATE_H
#define DISCRECORDING_DRDEVICEPRIVATE_H

#import "DRDevice.h"

#include "Drive.hpp"

/// Null for nil, and for an object that stands for no drive. A function: a message to nil can't answer a C++
/// object.
engine::DriveRef DRDriveOfDevice(DRDevice* device);

/// The one object that stands for a drive, autoreleased; also for a drive that is gone. Nil for none.
DRDevice* DRDeviceOfDrive(const engine::DriveRef& drive);

/// The value of DRDeviceMediaTypeKey for a kind of medium.
NSString* DRMediaTypeOfKind(engine::MediumKind kind);

/// As DRMSF counts: what is beyond 2^32-1 blocks is cut off there.
DRMSF* DRMSFOfBlocks(uint64_t blocks);

/// The name of the medium under /dev, or what stands for it on a virtual drive.
NSString* DRBSDNameOfDrive(const engine::Drive& drive);

#endif
