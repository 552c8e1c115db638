// Notifications: what happens on the engine's threads, on its way to the observers' run loops.
//
// The engine's threads send no messages: an event carries plain values, and becomes objects on the thread where
// it is delivered.
#pragma once

#import <Foundation/Foundation.h>

#include "BurnJob.hpp"
#include "EraseJob.hpp"

namespace discrecording {

/// Posts to every run loop that has an observer for it; `burn` and `erase` are numbers of living objects
/// (LivingObjects.hpp). Progress that nobody has looked at yet is replaced by the newer one; states are not. From
/// any thread.
void postBurnStatus(uint64_t burn, const engine::BurnStatus& status);
void postEraseStatus(uint64_t erase, const engine::EraseStatus& status);

/// This process has changed something about a drive that the system does not tell of.
void drivesMayHaveChanged();

} // namespace discrecording
