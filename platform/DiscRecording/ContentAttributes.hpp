// ContentAttributes: what items' properties say, as the engine takes it.
#pragma once

#import "DRFSObject.h"

#include "Content.hpp"

#include <memory>
#include <sys/stat.h>

namespace discrecording {

/// Dates, mode, owner, group and flags, in the file systems of `mask`; nothing where the item has no properties.
engine::Rare<engine::Attributes> attributesOf(DRFSObject* object, uint8_t mask);

/// A folder that was made virtual is on the disc as the folder on disk would be, where its properties don't say otherwise.
void keepSource(const struct stat& source, engine::Rare<engine::Attributes>& attributes);

/// Only for what has one of the values that ISO 9660's extensions hold.
std::shared_ptr<const engine::MacAttributes> isoMacOf(DRFSObject* object);

} // namespace discrecording
