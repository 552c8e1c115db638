// Names as HFS+ stores and compares them (TN1150, "HFS Plus Names" and "Case-Insensitive String Comparison").
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace engine::hfsplus {

/// The longest name, in UTF-16 units.
inline constexpr size_t nameLimit = 255;

/// The name as it stands in the catalog: UTF-16, taken apart into letters and marks, and ':' where '/' is not a
/// divider but part of the name, and the other way round: "1/2" of a Finder is "1:2" of a shell, which is what `utf8`
/// is. What is no UTF-8 becomes '_', so does a zero, and a name without a character. Longer ones are cut between
/// characters.
std::u16string storedName(std::string_view utf8, size_t limit = nameLimit);

/// The character that one with marks is put together of, first of all: E of \u00C9. Others are that themselves.
char32_t withoutMarks(char32_t character);

/// What two stored names have in common when they can't both be in a folder. The folder's order is that of these,
/// unit by unit.
std::u16string foldedName(std::u16string_view stored);

} // namespace engine::hfsplus
