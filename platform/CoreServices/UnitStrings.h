// UnitStrings: NSStrings from UTF-16 units, exactly.
#ifndef CORESERVICES_UNITSTRINGS_H
#define CORESERVICES_UNITSTRINGS_H

#import <Foundation/Foundation.h>

/* Foundation's initWithCharacters:length: drops a byte order mark, swaps all bytes behind a swapped one, and
 * gives nil for a surrogate without its partner. This keeps every unit. The caller releases the result. */
static inline NSString* NewStringOfUnits(const unichar* units, NSUInteger count) {
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    const NSStringEncoding native = NSUTF16LittleEndianStringEncoding;
#else
    const NSStringEncoding native = NSUTF16BigEndianStringEncoding;
#endif
    if (count == 0)
        return [[NSString alloc] init];
    NSString* text = [[NSString alloc] initWithBytes:units length:count * sizeof(unichar) encoding:native];
    if (text != nil)
        return text;
    NSMutableString* piecewise = [[NSMutableString alloc] initWithCapacity:count];
    for (NSUInteger i = 0; i < count; i++) {
        [piecewise appendFormat:@"%C", units[i]];
    }
    return piecewise;
}

#endif
