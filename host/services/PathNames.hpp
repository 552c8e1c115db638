// PathNames.hpp: names on disk are bytes, names in the platform's file references UTF-16.
#pragma once

#include <string>
#include <string_view>

namespace host {

// As the platform writes them: UTF-8 is read as such; a byte that is no part of valid UTF-8 is the
// private-use unit U+EF00 + byte. Every name comes back from nameOnDisk() as it was.
std::u16string nameFromDisk(std::string_view bytes);
std::string nameOnDisk(std::u16string_view text);

} // namespace host
