// UTF8Test: UTF-8 to strings and back, at the sizes and places where the conversion goes from one way to another.
#import "Check.h"
#import "CoreServices.h"

static NSString* Made(NSData* bytes) {
    return [(NSString*)CFStringCreateWithBytes(NULL, [bytes bytes], (CFIndex)[bytes length],
                                               kCFStringEncodingUTF8, false) autorelease];
}

// The string's UTF-8 in a buffer that it just fits, and nil where one byte less is not too little or the zero is
// missing.
static NSData* Written(NSString* text, NSUInteger size) {
    NSMutableData* buffer = [NSMutableData dataWithLength:size + 1];
    char* bytes = [buffer mutableBytes];
    if (CFStringGetCString((CFStringRef)text, bytes, (CFIndex)size, kCFStringEncodingUTF8) ||
        bytes[0] != '\0')
        return nil;
    bytes[size] = 'x';
    if (!CFStringGetCString((CFStringRef)text, bytes, (CFIndex)size + 1, kCFStringEncodingUTF8) ||
        bytes[size] != '\0')
        return nil;
    return [NSData dataWithBytes:bytes length:size];
}

static NSString* Repeated(NSString* text, NSUInteger times) {
    return [@"" stringByPaddingToLength:[text length] * times withString:text startingAtIndex:0];
}

// Foundation's own conversions say what is right.
static void TestSizes(void) {
    NSString* const texts[] = {@"x", @"é", @"€", @"😀", @"aé€😀"};
    const NSUInteger times[] = {1, 31, 32, 63, 64, 126, 127, 128, 129, 255, 256, 257, 512, 1000};
    for (size_t i = 0; i < sizeof texts / sizeof *texts; i++) {
        for (size_t k = 0; k < sizeof times / sizeof *times; k++) {
            // One unit before it, so that characters of two units lie across every border.
            NSString* text = [@"y" stringByAppendingString:Repeated(texts[i], times[k])];
            NSData* bytes = [text dataUsingEncoding:NSUTF8StringEncoding];
            SAME("made", Made(bytes), text);
            SAME("written", Written(text, [bytes length]), bytes);
        }
    }
}

static void TestZeros(void) {
    for (NSUInteger length = 100; length < 160; length += 30) {
        NSMutableData* bytes = [NSMutableData dataWithLength:length];
        NSString* text = Made(bytes);
        PASS("zero characters stay", [text length] == length && [text characterAtIndex:length - 1] == 0);
        SAME("and are written", Written(text, length), bytes);
    }
}

static void TestDamage(void) {
    const char* const bad[] = {"\xC0\x80", "\xED\xA0\x80", "a\xE2\x82", "\xFF", "\x80", "\xF4\x90\x80\x80"};
    for (size_t i = 0; i < sizeof bad / sizeof *bad; i++) {
        for (NSUInteger before = 0; before < 300; before += 99) {
            NSMutableData* bytes =
                [[[Repeated(@"x", before) dataUsingEncoding:NSUTF8StringEncoding] mutableCopy] autorelease];
            [bytes appendBytes:bad[i] length:strlen(bad[i])];
            SAME("damaged bytes give null", Made(bytes), nil);
        }
    }
}

static void TestHalves(void) {
    const UniChar wrong[][3] = {{'x', 0xD800, 'x'},    {'x', 'x', 0xD800},    {'x', 0xDC00, 'x'},
                                {0xD800, 'x', 0xDC00}, {'x', 0xD800, 0xD800}, {'x', 0xDC00, 0xD800}};
    char buffer[2000];
    for (size_t i = 0; i < sizeof wrong / sizeof *wrong; i++) {
        for (NSUInteger before = 253; before < 258; before++) {
            CFMutableStringRef half = (CFMutableStringRef)[[Repeated(@"x", before) mutableCopy] autorelease];
            CFStringRef end = CFStringCreateWithCharacters(NULL, wrong[i], 3);
            [(NSMutableString*)half appendString:(NSString*)end];
            CFRelease(end);
            PASS("half a character is no UTF-8",
                 [(NSString*)half length] == before + 3 &&
                     !CFStringGetCString((CFStringRef)half, buffer, sizeof buffer, kCFStringEncodingUTF8) &&
                     buffer[0] == '\0');
        }
    }
}

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    TestSizes();
    TestZeros();
    TestDamage();
    TestHalves();
    [pool release];
    return Finish();
}
