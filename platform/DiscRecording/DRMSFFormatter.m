// DRMSFFormatter: shows lengths on a disc in text fields, and reads them back.
#import "DRMSFFormatter.h"
#import "DRMSF.h"
#import "DRMSFText.h"

static NSString* const StandardFormat = @"%02m:%02s:%02f";
static NSString* const CoderKey = @"DRMSFFormat";

@implementation DRMSFFormatter

- (id)init {
    return [self initWithFormat:nil];
}

- (id)initWithFormat:(NSString*)format {
    self = [super init];
    if (self != nil)
        [self setFormat:format];
    return self;
}

- (void)dealloc {
    [_format release];
    [super dealloc];
}

- (NSString*)format {
    return _format;
}

- (void)setFormat:(NSString*)format {
    NSString* copy = format == nil ? [StandardFormat retain] : [format copy];
    [_format release];
    _format = copy;
}

- (NSString*)stringForObjectValue:(id)object {
    return [object isKindOfClass:[NSNumber class]] ? DRMSFTextOfFrames([object unsignedIntValue], _format)
                                                   : nil;
}

- (BOOL)getObjectValue:(id*)object forString:(NSString*)string errorDescription:(NSString**)error {
    uint32_t frames = 0;
    if (!DRMSFFramesOfText(string, &frames)) {
        if (error != NULL) {
            *error = [NSString stringWithFormat:@"\"%@\" is not a length; write minutes:seconds:frames, "
                                                @"minutes:seconds or a number of frames.",
                                                string];
        }
        return NO;
    }
    if (object != NULL)
        *object = [DRMSF msfWithFrames:frames];
    return YES;
}

- (id)copyWithZone:(NSZone*)zone {
    DRMSFFormatter* copy = [[self class] allocWithZone:zone];
    return [copy initWithFormat:_format];
}

- (void)encodeWithCoder:(NSCoder*)coder {
    if ([coder allowsKeyedCoding]) {
        [coder encodeObject:_format forKey:CoderKey];
    } else {
        [coder encodeObject:_format];
    }
}

- (id)initWithCoder:(NSCoder*)coder {
    NSString* format = [coder allowsKeyedCoding] ? [coder decodeObjectForKey:CoderKey] : [coder decodeObject];
    return [self initWithFormat:format];
}

@end
