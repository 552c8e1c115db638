// PropertyLimits: which values of items' properties a disc has room for.
#pragma once

#import "DRFSObject.h"

#include "Error.hpp"

namespace discrecording {

/// BadLayout for a value that would be another one on the disc, or none, among those for all file systems and for those of
/// `mask`; dates are looked at in the file systems that show them.
engine::Result<void> checkProperties(DRFSObject* object, uint8_t mask, bool hasRockRidge);

} // namespace discrecording
