// UdfProperties: what the root's and the items' properties say of UDF only.
#pragma once

#import "DRFolder.h"

#include "Layout.hpp"

namespace discrecording {

/// Reads the version and the numbers, dates and texts that identify the volume from the root into the track. BadLayout for
/// values that UDF has no place for.
engine::Result<void> readUdfProperties(DRFolder* root, engine::DataTrack& track);

/// Reads what UDF only keeps of an item.
void readUdfAttributes(DRFSObject* object, engine::Rare<engine::Attributes>& attributes);

} // namespace discrecording
