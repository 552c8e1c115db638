// PathNames: names on disk are bytes, names in the platform are UTF-16; how one becomes the other and back.
#pragma once

#include <string>
#include <string_view>

namespace pathnames {

/// Text for bytes from disk. UTF-8 is read as such. A byte that is not part of valid UTF-8 becomes the
/// private-use character U+EF00 + byte (U+EF80 to U+EFFF); so that this can be told from a name that holds
/// such a character itself, the three bytes of the latter are treated in the same way. Every name thus comes
/// back from encode() as it was.
std::u16string decode(std::string_view bytes);

/// The bytes on disk for a text: U+EF80 to U+EFFF give their byte, all else UTF-8. A surrogate without its
/// partner gives the three bytes of its number, which no UTF-8 has, so nothing is lost.
std::string encode(std::u16string_view text);

} // namespace pathnames
