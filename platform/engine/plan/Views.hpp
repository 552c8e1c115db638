// The plan's tree as each file system has it: its own nodes, in its own order, with its own names.
#pragma once

#include "Tree.hpp"
#include "hfsplus/Tree.hpp"
#include "iso/Tree.hpp"
#include "udf/Tree.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace engine::plan {

/// A file system's tree, and which of its nodes each of the plan's nodes is (`none` for those that it doesn't
/// show).
template <typename Made>
struct View {
    Made tree;
    std::vector<uint32_t> nodeOf;
};

/// What becomes of names that a file system can't hold, or of two that it takes for one: see Names.hpp. All throw
/// FileLocationConflict for two items of one folder with the same name. Contents get their places with the functions below.
View<iso::Tree> isoView(const Tree& tree, const iso::Rules& rules);
View<iso::Tree> jolietView(const Tree& tree);
/// Throws FilesystemsNotSupported for what UDF can't hold.
View<udf::Tree> udfView(const Tree& tree);
/// `volumeStart`: what lies in front of it can't be shown, which is FilesystemsNotSupported.
View<hfsplus::Tree> hfsPlusView(const Tree& tree, uint32_t volumeStart);

void placeContents(const Tree& tree, const std::vector<uint32_t>& nodeOf, iso::Tree& made);
void placeContents(const Tree& tree, const std::vector<uint32_t>& nodeOf, udf::Tree& made);
void placeContents(const Tree& tree, const std::vector<uint32_t>& nodeOf, hfsplus::Tree& made);

} // namespace engine::plan
