// Kinds and capacities of media as people name them.
#pragma once

#include "MediumKind.hpp"

#include <string>

namespace drives {

/// Throws Failure with all names.
engine::MediumKind kindNamed(const std::string& name);
/// For "": 0, as usual for the kind. Throws Failure for what no medium of the kind could have.
uint64_t capacityFor(engine::MediumKind kind, const std::string& capacity);
/// A blank medium that can never be written is of no use.
void requireWritable(engine::MediumKind kind);
/// "CD-R, CD-RW, …"
std::string kindNames(bool onlyWritable);

} // namespace drives
