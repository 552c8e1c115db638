// MSFTest: lengths on a disc as values, as numbers and as text.
#import "Check.h"
#import "DRMSF.h"
#import "DRMSFFormatter.h"

static NSString* Format(uint32_t m, uint32_t s, uint32_t f, NSString* format) {
    return [[DRMSF msfWithFrames:m * 4500 + s * 75 + f] descriptionWithFormat:format];
}

static uint32_t Read(NSString* text) { return [[DRMSF msfWithString:text] sectors]; }

static void TestParts(void) {
    DRMSF* length = [DRMSF msfWithFrames:24822];
    PASS("24822 frames have 5 minutes", [length minutes] == 5);
    PASS("24822 frames have 30 seconds", [length seconds] == 30);
    PASS("24822 frames have 72 frames", [length frames] == 72);
    PASS("sectors are the whole count", [length sectors] == 24822);
    PASS("msf is zero", [[DRMSF msf] sectors] == 0);
    PASS("init is zero", [[[[DRMSF alloc] init] autorelease] sectors] == 0);
    PASS("minutes are not limited to 99", [[DRMSF msfWithFrames:2295104] minutes] == 510);
    PASS("the largest count is kept", [[DRMSF msfWithFrames:UINT32_MAX] sectors] == UINT32_MAX);
    PASS("two seconds are 150 frames", [[DRMSF msfWithString:@"0:02:00"] sectors] == 150);
    PASS("initWithFrames: gives the count", [[[[DRMSF alloc] initWithFrames:7] autorelease] sectors] == 7);
}

static void TestArithmetic(void) {
    DRMSF* a = [DRMSF msfWithFrames:100];
    DRMSF* b = [DRMSF msfWithFrames:30];
    PASS("adding adds", [[a msfByAdding:b] sectors] == 130);
    PASS("subtracting subtracts", [[a msfBySubtracting:b] sectors] == 70);
    PASS("the receiver stays", [a sectors] == 100 && [b sectors] == 30);
    PASS("a difference below zero wraps", [[b msfBySubtracting:a] sectors] == 4294967226u);
    PASS("a sum past 32 bits wraps", [[[DRMSF msfWithFrames:UINT32_MAX] msfByAdding:b] sectors] == 29);
    PASS("adding nil gives an equal value", [[a msfByAdding:nil] sectors] == 100);
    PASS("subtracting nil gives an equal value", [[a msfBySubtracting:nil] sectors] == 100);
}

static void TestNumber(void) {
    DRMSF* length = [DRMSF msfWithFrames:3000000000u];
    PASS("a length is a number", [length isKindOfClass:[NSNumber class]]);
    PASS("the type code is an unsigned int's", strcmp([length objCType], "I") == 0);
    uint32_t value = 0;
    [length getValue:&value];
    PASS("getValue: gives the count", value == 3000000000u);
    PASS("unsignedIntValue", [length unsignedIntValue] == 3000000000u);
    PASS("intValue is the same 32 bits", [length intValue] == (int)3000000000u);
    PASS("longLongValue", [length longLongValue] == 3000000000ll);
    PASS("unsignedLongLongValue", [length unsignedLongLongValue] == 3000000000ull);
    PASS("longValue", [length longValue] == (long)3000000000u);
    PASS("unsignedLongValue", [length unsignedLongValue] == 3000000000ul);
    PASS("integerValue", [length integerValue] == (NSInteger)3000000000u);
    PASS("unsignedIntegerValue", [length unsignedIntegerValue] == 3000000000ul);
    PASS("doubleValue", [length doubleValue] == 3000000000.0);
    PASS("floatValue", [length floatValue] == 3000000000.0f);
    DRMSF* small = [DRMSF msfWithFrames:0x12345];
    PASS("shortValue cuts", [small shortValue] == 0x2345 && [small unsignedShortValue] == 0x2345);
    PASS("charValue cuts", [small charValue] == 0x45 && [small unsignedCharValue] == 0x45);
    PASS("boolValue of something", [small boolValue]);
    PASS("boolValue of nothing", ![[DRMSF msf] boolValue]);
    SAME("stringValue is the count", [small stringValue], @"74565");
    PASS("decimalValue", [[NSDecimalNumber decimalNumberWithDecimal:[small decimalValue]] intValue] == 74565);
    PASS("NSNumber's makers work on the class", [[DRMSF numberWithInt:75] isKindOfClass:[DRMSF class]] &&
                                                    [(DRMSF*)[DRMSF numberWithInt:75] seconds] == 1);
}

static void TestEquality(void) {
    DRMSF* a = [DRMSF msfWithFrames:75];
    PASS("equal lengths", [a isEqualToMSF:[DRMSF msfWithFrames:75]]);
    PASS("different lengths", ![a isEqualToMSF:[DRMSF msfWithFrames:76]]);
    PASS("nil is not equal", ![a isEqualToMSF:nil] && ![a isEqual:nil] && ![a isEqualToNumber:nil]);
    PASS("equal to a number, and it to this",
         [a isEqual:[NSNumber numberWithInt:75]] && [[NSNumber numberWithInt:75] isEqual:a]);
    PASS("no equal of a text", ![a isEqual:@"75"]);
    PASS("the hash is the number's", [a hash] == [[NSNumber numberWithInt:75] hash]);
    PASS("compares as a number", [a compare:[NSNumber numberWithInt:76]] == NSOrderedAscending &&
                                     [a compare:[DRMSF msfWithFrames:2]] == NSOrderedDescending);
    PASS("large lengths don't compare as negative ones",
         [[DRMSF msfWithFrames:UINT32_MAX] compare:[NSNumber numberWithInt:1]] == NSOrderedDescending);
    NSDictionary* table = [NSDictionary dictionaryWithObject:@"x" forKey:[NSNumber numberWithInt:75]];
    SAME("finds an equal number in a dictionary", [table objectForKey:a], @"x");
    DRMSF* copy = [a copy];
    PASS("a copy is equal", [copy isEqualToMSF:a] && [copy isKindOfClass:[DRMSF class]]);
    [copy release];
    id back = [NSUnarchiver unarchiveObjectWithData:[NSArchiver archivedDataWithRootObject:a]];
    PASS("comes back from an archive", [back isKindOfClass:[DRMSF class]] && [back isEqualToMSF:a]);
    back = [NSKeyedUnarchiver unarchiveObjectWithData:[NSKeyedArchiver archivedDataWithRootObject:a]];
    PASS("comes back from a keyed archive", [back isKindOfClass:[DRMSF class]] && [back isEqualToMSF:a]);
}

static void TestFormat(void) {
    SAME("the description is mm:ss:ff", [[DRMSF msfWithFrames:24822] description], @"05:30:72");
    SAME("of a DVD", [[DRMSF msfWithFrames:2295104] description], @"510:01:29");
    SAME("of nothing", [[DRMSF msf] description], @"00:00:00");
    SAME("in another object's text", ([NSString stringWithFormat:@"%@", [DRMSF msfWithFrames:75]]),
         @"00:01:00");
    SAME("parts", Format(5, 30, 72, @"%m-%s-%f"), @"5-30-72");
    SAME("a hidden part rounds up", Format(3, 9, 15, @"%02m:%02s"), @"03:10");
    SAME("a single hidden frame rounds up", Format(3, 9, 1, @"%02m:%02s"), @"03:10");
    SAME("nothing hidden, nothing rounded", Format(3, 9, 0, @"%02m:%02s"), @"03:09");
    SAME("the carry reaches the minutes", Format(3, 59, 10, @"%02m:%02s"), @"04:00");
    SAME("a hidden frame lifts the minutes", Format(3, 0, 1, @"%m"), @"4");
    SAME("hidden seconds lift the minutes", Format(3, 1, 0, @"%m"), @"4");
    SAME("whole minutes stay", Format(3, 0, 0, @"%m"), @"3");
    SAME("frames beside minutes: the seconds are hidden", Format(3, 9, 10, @"%m %f"), @"4 10");
    SAME("shown frames lift nothing", Format(3, 0, 10, @"%m %f"), @"3 10");
    SAME("seconds alone are the part", Format(3, 9, 0, @"%s"), @"9");
    SAME("seconds alone carry too", Format(3, 59, 10, @"%s"), @"0");
    SAME("frames alone are the part", Format(3, 9, 7, @"%03f"), @"007");
    SAME("a width pads with spaces", Format(3, 0, 0, @"[%3m]"), @"[  3]");
    SAME("a width cuts nothing", Format(100, 0, 0, @"%02m"), @"100");
    SAME("%% is a percent sign", Format(3, 0, 0, @"%m%% %%m"), @"3% %m");
    SAME("an unknown letter is copied", Format(3, 0, 0, @"%x%05q%m"), @"%x%05q3");
    SAME("a % at the end is copied", Format(3, 0, 0, @"%m%"), @"3%");
    SAME("digits at the end are copied", Format(3, 0, 0, @"%m%02"), @"3%02");
    SAME("an unknown directive hides nothing", Format(3, 9, 15, @"%m %s %x"), @"3 10 %x");
    SAME("other text is kept", Format(3, 0, 0, @"längé %m ☃"), @"längé 3 ☃");
    PASS("a senseless width does not fill memory",
         [Format(3, 0, 0, @"%0999999999999999999999m") length] == 255);
    SAME("no format, no text", Format(3, 0, 0, nil), nil);
    SAME("an empty format", Format(3, 0, 0, @""), @"");
}

static void TestReading(void) {
    PASS("m:s:f", Read(@"74:00:00") == 333000);
    PASS("m:s:f with all parts", Read(@"5:30:72") == 24822);
    PASS("m:s", Read(@"3:10") == 14250);
    PASS("frames alone", Read(@"24822") == 24822);
    PASS("a fraction of a second becomes frames", Read(@"03:45.67") == 3 * 4500 + 45 * 75 + 50);
    PASS("a fraction rounds to the nearest frame", Read(@"0:00.99") == 74 && Read(@"0:00.999") == 75);
    PASS("a fraction may be long", Read(@"0:01.00000000000000000000001") == 75);
    PASS("parts may exceed their range", Read(@"0:90:00") == 6750);
    PASS("space around is ignored", Read(@" \t5:30:72\n") == 24822);
    PASS("what description writes reads back", Read([[DRMSF msfWithFrames:987654] description]) == 987654);
    PASS("the largest", Read(@"4294967295") == UINT32_MAX);
    NSString* bad[] = {@"",
                       @"abc",
                       @"5:",
                       @":5",
                       @"1:2:3:4",
                       @"-5",
                       @"5:3a",
                       @"1:2:3.5",
                       @"12.5",
                       @"1:2.",
                       @"1 2",
                       @"4294967296",
                       @"99999999:0:0",
                       @"٣:١٠",
                       @"0x10",
                       @"1:.5",
                       @"+1",
                       @"1:2:3 x",
                       @"99999999999999999999999"};
    for (size_t i = 0; i < sizeof bad / sizeof *bad; i++) {
        SAME("a text that is no length is zero", [DRMSF msfWithString:bad[i]], [DRMSF msf]);
    }
    SAME("nil is zero", [DRMSF msfWithString:nil], [DRMSF msf]);
    const unichar hidden[] = {'5', 0, '7'};
    PASS("a zero character hides nothing", Read([NSString stringWithCharacters:hidden length:3]) == 0);
}

static void TestFormatter(void) {
    DRMSFFormatter* formatter =
        [[(DRMSFFormatter*)[DRMSFFormatter alloc] initWithFormat:@"%m:%02s"] autorelease];
    SAME("keeps its format", [formatter format], @"%m:%02s");
    SAME("writes", [formatter stringForObjectValue:[DRMSF msfWithFrames:14250]], @"3:10");
    SAME("writes plain numbers of frames too", [formatter stringForObjectValue:[NSNumber numberWithInt:75]],
         @"0:01");
    SAME("writes nothing else", [formatter stringForObjectValue:@"3:10"], nil);
    id value = nil;
    NSString* error = nil;
    PASS("reads", [formatter getObjectValue:&value forString:@"3:10" errorDescription:&error]);
    SAME("reads the value", value, [DRMSF msfWithFrames:14250]);
    PASS("refuses", ![formatter getObjectValue:&value forString:@"x" errorDescription:&error]);
    PASS("says what was refused", [error rangeOfString:@"\"x\" is not a length"].length != 0);
    PASS("refuses nil", ![formatter getObjectValue:NULL forString:nil errorDescription:NULL]);
    [formatter setFormat:nil];
    SAME("has a standard format", [formatter format], @"%02m:%02s:%02f");
    DRMSFFormatter* copy = [[formatter copy] autorelease];
    SAME("copies", [copy format], [formatter format]);
}

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    TestParts();
    TestArithmetic();
    TestNumber();
    TestEquality();
    TestFormat();
    TestReading();
    TestFormatter();
    [pool release];
    return Finish();
}
