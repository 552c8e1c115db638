// CDTextValues: the values under the keys of CD-Text, and what they are in the engine's blocks.
#pragma once

#import <Foundation/Foundation.h>

#include "CDText.hpp"

namespace discrecording {

/// The value as the disc will have it. Raises NSInvalidArgumentException for a key that has no place there and
/// for a value of a wrong kind.
id fittingCDTextValue(id value, NSString* key, NSUInteger track, engine::CDTextCharacters characters);

/// The dictionaries of disc and tracks as texts of the engine's block, whose characters are set.
void putCDTextDictionaries(engine::CDTextBlock& block, NSArray* dictionaries);

/// An array of NSMutableDictionary objects; autoreleased.
NSMutableArray* cdTextDictionaries(const engine::CDTextBlock& block);

} // namespace discrecording
