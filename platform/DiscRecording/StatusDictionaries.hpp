// StatusDictionaries: a job of the engine as the dictionary that programs read.
#pragma once

#import <Foundation/Foundation.h>

#include "BurnJob.hpp"
#include "EraseJob.hpp"

namespace discrecording {

/// Autoreleased; with every key that holds for the state.
NSDictionary* statusDictionary(const engine::BurnStatus& status);
NSDictionary* statusDictionary(const engine::EraseStatus& status);

/// The value of DREraseTypeKey.
NSString* eraseTypeText(engine::EraseType type);

/// The value of DRErrorStatusKey.
NSDictionary* errorDictionary(const engine::Error& error);

} // namespace discrecording
