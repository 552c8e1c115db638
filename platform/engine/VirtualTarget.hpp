// Writing to a virtual drive's medium: replaced as a whole, written in place, appended to, or only tested.
#pragma once

#include "BurnTarget.hpp"
#include "VirtualDrive.hpp"

namespace engine {

/// The medium is `record`'s. Kinds that can be written again take what is burned from their first block on in
/// new files, which replace the old ones at the end; all else grows in place.
std::unique_ptr<BurnTarget> makeVirtualTarget(std::shared_ptr<VirtualDrive> drive,
                                              const MediumRecord& record);

} // namespace engine
