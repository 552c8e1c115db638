// The entries of Rock Ridge (RRIP 1.12), by what they say.
#pragma once

#include "SystemUse.hpp"
#include "Tree.hpp"

#include <cstdint>
#include <string_view>

namespace engine::iso::rockRidge {

/// In the record "." of the root: that there are such entries at all, and whose (SP first, ER after all others).
void addPresence(SystemUse& use);
void addExtension(SystemUse& use);

/// Mode, links, owner, dates, and a serial number that is the same for all names of one file (PX, TF). `more` may be null.
void addAttributes(SystemUse& use, const Node& node, const MoreDates* more, uint32_t links, uint32_t serial,
                   int8_t zone);
/// Type, creator and the Finder's flags (AA, which is no part of Rock Ridge: Apple's extensions, in the form for HFS).
void addMac(SystemUse& use, const MacFile& file);
/// The name, in pieces of at most 250 bytes (NM).
void addName(SystemUse& use, std::string_view name);
/// A link's target, by components (SL).
void addTarget(SystemUse& use, std::string_view target);

/// Of folders that were moved: where it is now (CL), where it came from (PL), and that this is such a one (RE).
void addChild(SystemUse& use, uint32_t block);
void addParent(SystemUse& use, uint32_t block);
void addRelocated(SystemUse& use);

} // namespace engine::iso::rockRidge
