// PathStrings: NSString to the bytes of a path on disk, and back.
#pragma once

#import <Foundation/Foundation.h>

#include "PathNames.hpp"
#import "UnitStrings.h"

namespace pathnames {

inline std::string bytesOf(NSString* text) {
    const NSUInteger length = [text length];
    std::u16string units(length, u'\0');
    if (length != 0)
        [text getCharacters:reinterpret_cast<unichar*>(units.data()) range:NSMakeRange(0, length)];
    return encode(units);
}

/// Autoreleased.
inline NSString* textOf(std::string_view bytes) {
    const std::u16string units = decode(bytes);
    return [NewStringOfUnits(reinterpret_cast<const unichar*>(units.data()), units.size()) autorelease];
}

} // namespace pathnames
