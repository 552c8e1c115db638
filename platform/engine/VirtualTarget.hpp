// The ways of writing to a virtual drive's medium.
#pragma once

#include "BurnTarget.hpp"
#include "VirtualDrive.hpp"

namespace engine {

/// For a medium that is replaced as a whole (re-writable kinds) or written in place (write-once kinds).
std::unique_ptr<BurnTarget> makeVirtualTarget(std::shared_ptr<VirtualDrive> drive,
                                              const MediumRecord& record);

} // namespace engine
