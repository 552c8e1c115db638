// The file system of an earlier session as the beginning of the plan's tree.
#pragma once

#include "DataImage.hpp"
#include "Tree.hpp"

namespace engine::plan {

/// Fills an empty tree with what the place's earlier file system shows; the contents stay where they are. ISO 9660's items are
/// in UDF and HFS+, too. In Joliet they are where that shows the same files and folders there; what only Joliet has is only in
/// Joliet again. The level is the new volume's: without Rock Ridge names are the same when they are there. Throws MediaInvalid.
void addEarlierSession(Tree& tree, const ImagePlace& place, uint8_t isoLevel);

} // namespace engine::plan
