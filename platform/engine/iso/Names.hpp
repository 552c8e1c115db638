// Names of ISO 9660 and Joliet: what they may be, how they are stored, and their order.
#pragma once

#include "Tree.hpp"

#include <string>
#include <string_view>

namespace engine::iso {

enum class Form : uint8_t { Iso, Joliet };

/// Appends a character as UTF-16 with the high byte first; past U+FFFF it is a pair of surrogates.
void appendWide(std::string& to, char32_t character);
/// A Joliet name as it is stored; what is no UTF-8 becomes '_'.
std::string wideOf(std::string_view utf8);
/// The way back; single surrogates become '_'.
std::string utf8Of(std::string_view wide);

/// Why a final name can't be had, as the end of a sentence ("in ISO 9660 level 1 ..."); empty when it can.
std::string faultOf(std::string_view name, bool isFolder, Form form, const Rules& rules);
/// The same for a Rock Ridge name.
std::string rockRidgeFaultOf(std::string_view name);

/// The order of a folder's records (ECMA-119 9.3), for stored names: below, at or above 0. Names that differ only in a
/// trailing dot or in a version of 1 that is stated or not are the same.
int compareNames(std::string_view a, std::string_view b, Form form) noexcept;
/// The order of folders in the path table (6.9.1).
int compareFolders(std::string_view a, std::string_view b, Form form) noexcept;

} // namespace engine::iso
