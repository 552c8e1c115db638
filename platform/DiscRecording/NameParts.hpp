// NameParts: how names are cut, alone and for a suffix.
#pragma once

#include "NameRules.hpp"

namespace discrecording {

struct Parts {
    std::u16string stem;
    std::u16string extension; // without the "."
};

/// A "." in front of a name begins no extension.
Parts split(std::u16string_view name, bool isFolder);

/// Cut to the rule's limit with `reserved` units left for a suffix.
Parts fitting(NameRule rule, Parts parts, size_t reserved);

bool isASCII(std::u16string_view text);

} // namespace discrecording
