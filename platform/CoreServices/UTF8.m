// UTF8: a string's characters as UTF-8, in a buffer of the caller's, and strings from UTF-8.
#import "UTF8.h"

#include <stdint.h>
#include <string.h>

typedef struct {
    unsigned char* next;
    const unsigned char* end;
    unichar high; // a first half that waits for its second, or 0
} Writer;

static BOOL IsHigh(unichar unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
static BOOL IsLow(unichar unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

static BOOL WriteCharacter(Writer* writer, uint32_t character) {
    const int count = character < 0x80 ? 1 : character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
    if (writer->end - writer->next < count)
        return NO;
    static const unsigned char leads[] = {0, 0, 0xC0, 0xE0, 0xF0};
    for (int i = count - 1; i > 0; i--) {
        writer->next[i] = (unsigned char)(0x80 | (character & 0x3F));
        character >>= 6;
    }
    writer->next[0] = (unsigned char)(leads[count] | character);
    writer->next += count;
    return YES;
}

static BOOL WriteUnit(Writer* writer, unichar unit) {
    if (writer->high != 0) {
        if (!IsLow(unit))
            return NO;
        const uint32_t character = 0x10000 + (((uint32_t)writer->high - 0xD800) << 10) + (unit - 0xDC00u);
        writer->high = 0;
        return WriteCharacter(writer, character);
    }
    if (IsHigh(unit)) {
        writer->high = unit;
        return YES;
    }
    return !IsLow(unit) && WriteCharacter(writer, unit);
}

// Copies the characters of ASCII that the units begin with, most of most texts, and answers how many.
static NSUInteger WriteASCII(Writer* writer, const unichar* units, NSUInteger count) {
    if (writer->high != 0)
        return 0;
    const NSUInteger room = MIN(count, (NSUInteger)(writer->end - writer->next));
    NSUInteger i = 0;
    while (i < room && units[i] < 0x80) {
        writer->next[i] = (unsigned char)units[i];
        i++;
    }
    writer->next += i;
    return i;
}

BOOL WriteUTF8(NSString* text, char* buffer, size_t size) {
    if (size == 0)
        return NO;
    Writer writer = {(unsigned char*)buffer, (unsigned char*)buffer + size - 1, 0}; // one for the zero
    unichar units[256];
    const NSUInteger count = [text length];
    for (NSUInteger start = 0; start < count;) {
        const NSUInteger some = MIN(count - start, sizeof units / sizeof *units);
        [text getCharacters:units range:NSMakeRange(start, some)];
        for (NSUInteger i = WriteASCII(&writer, units, some); i < some; i++) {
            if (!WriteUnit(&writer, units[i])) {
                buffer[0] = '\0';
                return NO;
            }
        }
        start += some;
    }
    *writer.next = '\0';
    if (writer.high == 0)
        return YES;
    buffer[0] = '\0';
    return NO;
}

static BOOL IsASCII(const unsigned char* bytes, size_t count) {
    uint64_t all = 0;
    size_t i = 0;
    for (; count - i >= sizeof all; i += sizeof all) {
        uint64_t eight;
        memcpy(&eight, bytes + i, sizeof eight);
        all |= eight;
    }
    for (; i < count; i++)
        all |= bytes[i];
    return (all & 0x8080808080808080u) == 0;
}

NSString* NewStringOfUTF8(const unsigned char* bytes, size_t count) {
    static Class known; // or the runtime looks it up by name each time
    Class strings = __atomic_load_n(&known, __ATOMIC_RELAXED);
    if (strings == Nil) {
        strings = [NSString class];
        __atomic_store_n(&known, strings, __ATOMIC_RELAXED);
    }
    // Foundation makes a string in one piece of what ends in a zero, and in two of any other bytes.
    char text[128];
    if (count < sizeof text && memchr(bytes, 0, count) == NULL) {
        memcpy(text, bytes, count);
        text[count] = '\0';
        return [[strings alloc] initWithUTF8String:text];
    }
    // It looks at each byte of UTF-8 and of ASCII, but takes Latin 1 as it is; and ASCII is the same in all.
    const NSStringEncoding encoding =
        IsASCII(bytes, count) ? NSISOLatin1StringEncoding : NSUTF8StringEncoding;
    return [[strings alloc] initWithBytes:bytes length:count encoding:encoding];
}
