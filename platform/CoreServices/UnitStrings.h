// UnitStrings: NSStrings from UTF-16 units, exactly.
#ifndef CORESERVICES_UNITSTRINGS_H
#define CORESERVICES_UNITSTRINGS_H

#import <Foundation/Foundation.h>

static inline BOOL AreASCII(const unichar* units, NSUInteger count) {
    unichar all = 0;
    for (NSUInteger i = 0; i < count; i++) {
        all |= units[i];
    }
    return all < 0x80;
}

/* Nil where there are too many. One byte for each: Foundation opens a converter for 16-bit units each time, which costs
 * more than all that is done with most names, and takes bytes of Latin 1 as they are. */
static inline NSString* NewShortStringOfASCII(const unichar* units, NSUInteger count) {
    unsigned char bytes[256];
    if (count > sizeof bytes)
        return nil;
    for (NSUInteger i = 0; i < count; i++) {
        bytes[i] = (unsigned char)units[i];
    }
    return [[NSString alloc] initWithBytes:bytes length:count encoding:NSISOLatin1StringEncoding];
}

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
    NSString* text = AreASCII(units, count) ? NewShortStringOfASCII(units, count) : nil;
    if (text != nil)
        return text;
    text = [[NSString alloc] initWithBytes:units length:count * sizeof(unichar) encoding:native];
    if (text != nil)
        return text;
    NSMutableString* piecewise = [[NSMutableString alloc] initWithCapacity:count];
    for (NSUInteger i = 0; i < count; i++) {
        [piecewise appendFormat:@"%C", units[i]];
    }
    return piecewise;
}

#endif
