// BurnProperties: a burn's properties as the engine takes them.
#pragma once

#import <Foundation/Foundation.h>

#include "BurnProcess.hpp"

namespace discrecording {

/// The flag under the key; anything that is no number is as if it were absent.
bool burnFlag(NSDictionary* properties, NSString* key, bool otherwise);

/// DRBurnRequestedSpeedKey, or the default.
float requestedSpeed(NSDictionary* properties);

/// Sets what is done with the medium afterwards; also when it answers an error, FunctionNotSupported. After an action
/// that nobody knows nothing is done.
engine::Result<void> readBurnActions(BurnPlan& plan, NSDictionary* properties);

/// Sets everything of the plan but its layout and the actions. What the properties don't say stays as it is: an image may have
/// said it. Errors: BadLayout, CantWriteCDText, DoubleLayerL0DataZoneParameter, StrategyNotAvailable.
engine::Result<void> readBurnProperties(BurnPlan& plan, NSDictionary* properties);

} // namespace discrecording
