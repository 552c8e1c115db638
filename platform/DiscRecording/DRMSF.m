// DRMSF: a length or position on a disc, in blocks.
#import "DRMSF.h"
#import "DRMSFText.h"

static NSString* const CoderKey = @"DRMSFFrames";

@implementation DRMSF

+ (DRMSF*)msf {
    return [[[self alloc] initWithFrames:0] autorelease];
}

+ (DRMSF*)msfWithFrames:(uint32_t)frames {
    return [[[self alloc] initWithFrames:frames] autorelease];
}

+ (DRMSF*)msfWithString:(NSString*)string {
    return [[[self alloc] initWithString:string] autorelease];
}

- (id)init {
    return [self initWithFrames:0];
}

- (id)initWithFrames:(uint32_t)frames {
    self = [super init];
    if (self != nil)
        _frames = frames;
    return self;
}

- (id)initWithString:(NSString*)string {
    uint32_t frames = 0;
    DRMSFFramesOfText(string, &frames);
    return [self initWithFrames:frames];
}

// NSNumber's own makers (numberWithInt: and its kin) come through here when they are sent to this class.
- (id)initWithBytes:(const void*)value objCType:(const char*)type {
    NSNumber* number = [[NSNumber alloc] initWithBytes:value objCType:type];
    uint32_t frames = [number unsignedIntValue];
    [number release];
    return [self initWithFrames:frames];
}

// ---- parts

- (uint32_t)minutes {
    return _frames / DRMSFFramesPerMinute;
}

- (uint32_t)seconds {
    return _frames / DRMSFFramesPerSecond % DRMSFSecondsPerMinute;
}

- (uint32_t)frames {
    return _frames % DRMSFFramesPerSecond;
}

- (uint32_t)sectors {
    return _frames;
}

// ---- arithmetic: unsigned 32-bit, wrapping

- (DRMSF*)msfByAdding:(DRMSF*)msf {
    return [[self class] msfWithFrames:_frames + [msf unsignedIntValue]];
}

- (DRMSF*)msfBySubtracting:(DRMSF*)msf {
    return [[self class] msfWithFrames:_frames - [msf unsignedIntValue]];
}

// ---- comparison: as the number it is, so that it meets equal numbers of other classes in a dictionary

- (BOOL)isEqualToMSF:(DRMSF*)otherMSF {
    return otherMSF != nil && [self isEqualToNumber:otherMSF];
}

- (BOOL)isEqualToNumber:(NSNumber*)other {
    return other != nil && [self compare:other] == NSOrderedSame;
}

- (BOOL)isEqualToValue:(NSValue*)other {
    return [other isKindOfClass:[NSNumber class]] && [self isEqualToNumber:(NSNumber*)other];
}

- (BOOL)isEqual:(id)other {
    return self == other || ([other isKindOfClass:[NSNumber class]] && [self isEqualToNumber:other]);
}

- (NSUInteger)hash {
    return [[NSNumber numberWithUnsignedInt:_frames] hash];
}

- (NSComparisonResult)compare:(NSNumber*)other {
    return [[NSNumber numberWithUnsignedInt:_frames] compare:other];
}

// ---- the number: every accessor, because the class cluster leaves them all to its subclasses

- (const char*)objCType {
    return @encode(uint32_t);
}

- (void)getValue:(void*)value {
    *(uint32_t*)value = _frames;
}

- (BOOL)boolValue {
    return _frames != 0;
}

- (signed char)charValue {
    return (signed char)_frames;
}

- (unsigned char)unsignedCharValue {
    return (unsigned char)_frames;
}

- (short)shortValue {
    return (short)_frames;
}

- (unsigned short)unsignedShortValue {
    return (unsigned short)_frames;
}

- (int)intValue {
    return (int)_frames;
}

- (unsigned int)unsignedIntValue {
    return _frames;
}

- (NSInteger)integerValue {
    return (NSInteger)_frames;
}

- (NSUInteger)unsignedIntegerValue {
    return _frames;
}

- (long)longValue {
    return (long)_frames;
}

- (unsigned long)unsignedLongValue {
    return _frames;
}

- (long long)longLongValue {
    return _frames;
}

- (unsigned long long)unsignedLongLongValue {
    return _frames;
}

- (float)floatValue {
    return (float)_frames;
}

- (double)doubleValue {
    return _frames;
}

- (NSDecimal)decimalValue {
    return [[NSNumber numberWithUnsignedInt:_frames] decimalValue];
}

- (NSString*)stringValue {
    return [NSString stringWithFormat:@"%u", _frames];
}

// ---- text

- (NSString*)description {
    return DRMSFTextOfFrames(_frames, @"%02m:%02s:%02f");
}

- (NSString*)descriptionWithLocale:(id)locale {
    return [self description];
}

- (NSString*)descriptionWithFormat:(NSString*)format {
    return DRMSFTextOfFrames(_frames, format);
}

// ---- copies and archives

- (id)copyWithZone:(NSZone*)zone {
    return [self retain]; // never changes, so it is its own copy
}

- (Class)classForCoder {
    return [self class];
}

- (id)replacementObjectForPortCoder:(NSPortCoder*)coder {
    return self;
}

- (void)encodeWithCoder:(NSCoder*)coder {
    if ([coder allowsKeyedCoding]) {
        [coder encodeInt64:_frames forKey:CoderKey];
    } else {
        [coder encodeValueOfObjCType:@encode(uint32_t) at:&_frames];
    }
}

- (id)initWithCoder:(NSCoder*)coder {
    uint32_t frames = 0;
    if ([coder allowsKeyedCoding]) {
        frames = (uint32_t)[coder decodeInt64ForKey:CoderKey];
    } else {
        [coder decodeValueOfObjCType:@encode(uint32_t) at:&frames];
    }
    return [self initWithFrames:frames];
}

@end
