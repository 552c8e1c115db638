// How lengths on a disc are written and read as text.
#import "DRMSFText.h"

// A wider field than this is a mistake in the format, and would only fill memory.
enum { WidestField = 255 };

typedef struct Directive {
    NSUInteger end;   // the index just past the directive
    NSUInteger width; // 0 when none is given
    BOOL zeros;
    BOOL hasWidth;
    unichar letter; // 0 when the text ends before a letter comes
} Directive;

static Directive DirectiveAt(NSString* format, NSUInteger percent) {
    Directive found = {percent + 1, 0, NO, NO, 0};
    NSUInteger length = [format length];
    while (found.end < length) {
        unichar c = [format characterAtIndex:found.end++];
        if (c < '0' || c > '9') {
            found.letter = c;
            break;
        }
        if (!found.hasWidth)
            found.zeros = c == '0';
        found.hasWidth = YES;
        found.width = found.width * 10 + (NSUInteger)(c - '0');
        if (found.width > WidestField)
            found.width = WidestField;
    }
    return found;
}

static void AppendNumber(NSMutableString* text, uint32_t value, Directive directive) {
    NSString* digits = [NSString stringWithFormat:@"%u", value];
    NSUInteger filled;
    for (filled = [digits length]; filled < directive.width; filled++) {
        [text appendString:directive.zeros ? @"0" : @" "];
    }
    [text appendString:digits];
}

NSString* DRMSFTextOfFrames(uint32_t frames, NSString* format) {
    if (format == nil)
        return nil;
    NSUInteger length = [format length];
    BOOL showsMinutes = NO, showsSeconds = NO, showsFrames = NO;
    for (NSUInteger i = 0; i < length;) {
        if ([format characterAtIndex:i] != '%') {
            i++;
            continue;
        }
        Directive directive = DirectiveAt(format, i);
        showsMinutes |= directive.letter == 'm';
        showsSeconds |= directive.letter == 's';
        showsFrames |= directive.letter == 'f';
        i = directive.end;
    }

    uint32_t m = frames / DRMSFFramesPerMinute;
    uint32_t s = frames / DRMSFFramesPerSecond % DRMSFSecondsPerMinute;
    uint32_t f = frames % DRMSFFramesPerSecond;
    // A remainder that is not shown lifts the next higher part that is: a length is never understated.
    BOOL hidden = !showsFrames && f != 0;
    if (hidden && showsSeconds) {
        hidden = NO;
        if (++s == DRMSFSecondsPerMinute) {
            s = 0;
            m++;
        }
    }
    hidden |= !showsSeconds && s != 0;
    if (hidden && showsMinutes)
        m++;

    NSMutableString* text = [NSMutableString string];
    for (NSUInteger i = 0; i < length;) {
        unichar c = [format characterAtIndex:i];
        if (c != '%') {
            [text appendString:[NSString stringWithCharacters:&c length:1]];
            i++;
            continue;
        }
        Directive directive = DirectiveAt(format, i);
        if (directive.letter == 'm') {
            AppendNumber(text, m, directive);
        } else if (directive.letter == 's') {
            AppendNumber(text, s, directive);
        } else if (directive.letter == 'f') {
            AppendNumber(text, f, directive);
        } else if (directive.letter == '%' && !directive.hasWidth) {
            [text appendString:@"%"];
        } else {
            [text appendString:[format substringWithRange:NSMakeRange(i, directive.end - i)]];
        }
        i = directive.end;
    }
    return text;
}

// A run of ASCII digits. NO when there is none or when its value passes 2^32.
static BOOL ReadDigits(const char** cursor, uint64_t* value) {
    const char* start = *cursor;
    uint64_t sum = 0;
    while (**cursor >= '0' && **cursor <= '9') {
        sum = sum * 10 + (uint64_t)(**cursor - '0');
        if (sum > UINT32_MAX)
            return NO;
        ++*cursor;
    }
    *value = sum;
    return *cursor != start;
}

// The frames, to the nearest, in a decimal fraction of a second that starts after its point.
static BOOL ReadFraction(const char** cursor, uint64_t* frames) {
    const char* start = *cursor;
    uint64_t digits = 0, scale = 1;
    while (**cursor >= '0' && **cursor <= '9') {
        if (scale < 1000000000) { // further digits cannot move the result by a frame
            digits = digits * 10 + (uint64_t)(**cursor - '0');
            scale *= 10;
        }
        ++*cursor;
    }
    *frames = (digits * DRMSFFramesPerSecond * 2 + scale) / (2 * scale);
    return *cursor != start;
}

BOOL DRMSFFramesOfText(NSString* text, uint32_t* frames) {
    text = [text stringByTrimmingCharactersInSet:[NSCharacterSet whitespaceAndNewlineCharacterSet]];
    // Only digits, colons and a point can follow, so a text that is not ASCII, or holds a zero, is no length.
    char ascii[128];
    const NSUInteger length = [text length];
    if (text == nil || length >= sizeof ascii)
        return NO;
    for (NSUInteger i = 0; i < length; i++) {
        const unichar c = [text characterAtIndex:i];
        if (c == 0 || c > 127)
            return NO;
        ascii[i] = (char)c;
    }
    ascii[length] = '\0';

    const char* cursor = ascii;
    uint64_t fields[3] = {0, 0, 0};
    uint64_t fraction = 0;
    int count = 0;
    do {
        if (count == 3 || !ReadDigits(&cursor, &fields[count]))
            return NO;
        count++;
        if (*cursor != ':')
            break;
        cursor++;
    } while (YES);
    if (*cursor == '.') {
        cursor++;
        // Only seconds have fractions: a frame is the smallest part there is.
        if (count != 2 || !ReadFraction(&cursor, &fraction))
            return NO;
    }
    if (*cursor != '\0')
        return NO;

    uint64_t total = fields[0];
    if (count == 2)
        total = fields[0] * DRMSFFramesPerMinute + fields[1] * DRMSFFramesPerSecond + fraction;
    if (count == 3) {
        total = fields[0] * DRMSFFramesPerMinute + fields[1] * DRMSFFramesPerSecond + fields[2];
    }
    if (total > UINT32_MAX)
        return NO;
    *frames = (uint32_t)total;
    return YES;
}
