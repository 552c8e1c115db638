// UTF-8 text by characters: counting, cutting, comparing without regard to case, changing case.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace host::basic::utf8 {

/// Decodes the character at `at` and moves behind it. A byte that is no UTF-8 counts as one character, 0xDC80
/// + byte.
char32_t next(std::string_view text, size_t& at);
void append(std::string& text, char32_t character);

size_t count(std::string_view text);
/// The byte offset of the character with this number from 0; the text's size when there are fewer.
size_t offsetOf(std::string_view text, size_t character);

std::string lower(std::string_view text);
std::string upper(std::string_view text);
/// Every word's first letter large, the others small.
std::string title(std::string_view text);

/// Less than, equal to or greater than zero; letters are compared without regard to case.
int compare(std::string_view a, std::string_view b);

struct Match {
    size_t offset = std::string_view::npos; // in bytes
    size_t size = 0; // of what was found, in bytes: it may differ from what was looked for
    bool found() const { return offset != std::string_view::npos; }
};
/// The first place at or after byte `from` where `part` stands; case counts only when told so.
Match find(std::string_view text, std::string_view part, size_t from, bool caseCounts);

/// White space at both ends, at the left, at the right.
std::string_view trim(std::string_view text, bool left, bool right);

} // namespace host::basic::utf8
