// A node's times, in the width that libisofs has for them.
#pragma once

#include "ImageTree.hpp"

#include <algorithm>
#include <ctime>
#include <limits>
#include <type_traits>

namespace engine {

/// A 32-bit Debian 12 built libisofs with times of 32 bits, and its header names the type that we have with 64:
/// what it declares is not what it has. There a later time becomes the last one that it can say, in 2038.
using NodeTime = std::conditional_t<sizeof(void*) == 4, int32_t, std::time_t>;

inline void setNodeTime(void (*setter)(IsoNode*, std::time_t), IsoNode* node, std::time_t time) {
    constexpr std::time_t first = std::numeric_limits<NodeTime>::min();
    constexpr std::time_t last = std::numeric_limits<NodeTime>::max();
    const auto real = reinterpret_cast<void (*)(IsoNode*, NodeTime)>(reinterpret_cast<void (*)()>(setter));
    real(node, static_cast<NodeTime>(std::clamp(time, first, last)));
}

inline void setModified(IsoNode* node, std::time_t time) { setNodeTime(iso_node_set_mtime, node, time); }
inline void setAccessed(IsoNode* node, std::time_t time) { setNodeTime(iso_node_set_atime, node, time); }
inline void setChanged(IsoNode* node, std::time_t time) { setNodeTime(iso_node_set_ctime, node, time); }

inline std::time_t nodeTime(std::time_t (*getter)(const IsoNode*), const IsoNode* node) {
    return reinterpret_cast<NodeTime (*)(const IsoNode*)>(reinterpret_cast<void (*)()>(getter))(node);
}

inline std::time_t modifiedOf(const IsoNode* node) { return nodeTime(iso_node_get_mtime, node); }
inline std::time_t accessedOf(const IsoNode* node) { return nodeTime(iso_node_get_atime, node); }
inline std::time_t changedOf(const IsoNode* node) { return nodeTime(iso_node_get_ctime, node); }

} // namespace engine
