// What is said of an item, over what its source says.
#pragma once

#include "Content.hpp"
#include "Tree.hpp"

#include <cstdint>

namespace engine::plan {

/// Whether anything is said.
bool isChanged(const Attributes& given);

/// What is said goes before what the node has; the rest stays.
void apply(Tree& tree, uint32_t node, const Attributes& given);

} // namespace engine::plan
