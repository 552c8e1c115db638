// CFString: CoreFoundation's strings, which are Foundation's.
#import "CoreServices.h"
#import "UTF8.h"
#import "UnitStrings.h"
#import <Foundation/Foundation.h>

#include <string.h>

static const UInt8 UTF8Mark[3] = {0xEF, 0xBB, 0xBF};

// NO for an encoding that is not ours.
static BOOL FoundationEncoding(CFStringEncoding encoding, NSStringEncoding* result) {
    static const struct {
        CFStringEncoding ours;
        NSStringEncoding theirs;
    } table[] = {
        {kCFStringEncodingUTF8, NSUTF8StringEncoding}, // nearly every text
        {kCFStringEncodingMacRoman, NSMacOSRomanStringEncoding},
        {kCFStringEncodingWindowsLatin1, NSWindowsCP1252StringEncoding},
        {kCFStringEncodingISOLatin1, NSISOLatin1StringEncoding},
        {kCFStringEncodingNextStepLatin, NSNEXTSTEPStringEncoding},
        {kCFStringEncodingASCII, NSASCIIStringEncoding},
        {kCFStringEncodingNonLossyASCII, NSNonLossyASCIIStringEncoding},
        {kCFStringEncodingUTF16BE, NSUTF16BigEndianStringEncoding},
        {kCFStringEncodingUTF16LE, NSUTF16LittleEndianStringEncoding},
        {kCFStringEncodingUTF32BE, NSUTF32BigEndianStringEncoding},
        {kCFStringEncodingUTF32LE, NSUTF32LittleEndianStringEncoding},
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
        {kCFStringEncodingUnicode, NSUTF16LittleEndianStringEncoding},
        {kCFStringEncodingUTF32, NSUTF32LittleEndianStringEncoding},
#else
        {kCFStringEncodingUnicode, NSUTF16BigEndianStringEncoding},
        {kCFStringEncodingUTF32, NSUTF32BigEndianStringEncoding},
#endif
    };
    for (size_t i = 0; i < sizeof table / sizeof *table; i++) {
        if (table[i].ours == encoding) {
            *result = table[i].theirs;
            return YES;
        }
    }
    return NO;
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, const UniChar* characters, CFIndex count) {
    (void)allocator;
    if (count < 0 || (characters == NULL && count > 0))
        return NULL;
    return (CFStringRef)NewStringOfUnits(characters, (NSUInteger)count);
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text, CFStringEncoding encoding) {
    if (text == NULL)
        return NULL;
    return CFStringCreateWithBytes(allocator, (const UInt8*)text, (CFIndex)strlen(text), encoding, false);
}

// Bytes that Foundation's table gives zero characters for, though NextStep Latin has none there.
static BOOL HasNextStepGap(const UInt8* bytes, CFIndex count) {
    for (CFIndex i = 0; i < count; i++) {
        if (bytes[i] >= 0xFE)
            return YES;
    }
    return NO;
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex count,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation) {
    (void)allocator;
    NSStringEncoding foundation;
    if (count < 0 || (bytes == NULL && count > 0) || !FoundationEncoding(encoding, &foundation))
        return NULL;
    if (count == 0)
        return (CFStringRef)[[NSString alloc] init];
    if (foundation == NSNEXTSTEPStringEncoding && HasNextStepGap(bytes, count))
        return NULL;
    if (isExternalRepresentation && encoding == kCFStringEncodingUnicode)
        foundation = NSUnicodeStringEncoding;

    // Foundation drops the mark of a UTF-8 text; inside a program it is a character like others.
    const BOOL marked = foundation == NSUTF8StringEncoding && !isExternalRepresentation &&
                        count >= (CFIndex)sizeof UTF8Mark && memcmp(bytes, UTF8Mark, sizeof UTF8Mark) == 0;
    NSString* text;
    @try {
        text = marked || foundation != NSUTF8StringEncoding
                   ? [[NSString alloc] initWithBytes:bytes length:(NSUInteger)count encoding:foundation]
                   : NewStringOfUTF8(bytes, (size_t)count);
        if (marked && text != nil) {
            NSMutableString* whole = [[NSMutableString alloc] initWithFormat:@"%C", (unichar)0xFEFF];
            [whole appendString:text];
            [text release];
            text = whole;
        }
    } @catch (NSException* refused) {
        return NULL;
    }
    return (CFStringRef)text;
}

CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef allocator, CFIndex maximumLength,
                                             CFStringRef string) {
    (void)allocator;
    (void)maximumLength;
    if (string == NULL)
        return NULL;
    // Foundation's mutableCopy loses a text with a surrogate that has no partner.
    NSMutableString* copy = [[NSMutableString alloc] init];
    [copy setString:(NSString*)string];
    return (CFMutableStringRef)copy;
}

// Foundation's normaliser loses a text with a surrogate that has no partner.
static BOOL HasLoneSurrogate(NSString* text) {
    NSUInteger length = [text length];
    for (NSUInteger i = 0; i < length; i++) {
        unichar unit = [text characterAtIndex:i];
        if (unit < 0xD800 || unit > 0xDFFF)
            continue;
        if (unit >= 0xDC00 || i + 1 == length)
            return YES;
        unichar next = [text characterAtIndex:++i];
        if (next < 0xDC00 || next > 0xDFFF)
            return YES;
    }
    return NO;
}

void CFStringNormalize(CFMutableStringRef string, CFStringNormalizationForm form) {
    NSMutableString* text = (NSMutableString*)string;
    if (text == nil || HasLoneSurrogate(text))
        return;
    NSString* normal = nil;
    switch (form) {
    case kCFStringNormalizationFormD:
        normal = [text decomposedStringWithCanonicalMapping];
        break;
    case kCFStringNormalizationFormKD:
        normal = [text decomposedStringWithCompatibilityMapping];
        break;
    case kCFStringNormalizationFormC:
        normal = [text precomposedStringWithCanonicalMapping];
        break;
    case kCFStringNormalizationFormKC:
        normal = [text precomposedStringWithCompatibilityMapping];
        break;
    }
    if (normal != nil)
        [text setString:normal];
}

CFIndex CFStringGetLength(CFStringRef string) { return (CFIndex)[(NSString*)string length]; }

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer) {
    CFIndex length = CFStringGetLength(string);
    if (buffer == NULL || range.location < 0 || range.length < 0 || range.location > length ||
        range.length > length - range.location) {
        return;
    }
    [(NSString*)string getCharacters:buffer
                               range:NSMakeRange((NSUInteger)range.location, (NSUInteger)range.length)];
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size, CFStringEncoding encoding) {
    if (buffer == NULL || size <= 0)
        return false;
    buffer[0] = '\0';
    NSStringEncoding foundation;
    if (string == NULL || !FoundationEncoding(encoding, &foundation))
        return false;
    if (foundation == NSUTF8StringEncoding)
        return WriteUTF8((NSString*)string, buffer, (size_t)size);
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    Boolean done = false;
    @try {
        NSString* text = (NSString*)string;
        NSData* bytes = [text dataUsingEncoding:foundation allowLossyConversion:NO];
        const BOOL written = bytes != nil && ([bytes length] != 0 || [text length] == 0);
        if (written && [bytes length] < (NSUInteger)size) {
            memcpy(buffer, [bytes bytes], [bytes length]);
            buffer[[bytes length]] = '\0';
            done = true;
        }
    } @catch (NSException* refused) {
        done = false;
    }
    [pool release];
    return done;
}
