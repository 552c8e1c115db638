// DRTrack: a track to be burned, or one that is on a disc.
#import "DRTrack.h"
#import "DRTrackPrivate.h"
#include "LayoutReader.hpp"
#include "PathStrings.hpp"

@implementation DRTrack

- (id)initWithProducer:(id)producer {
    self = [super init];
    if (self == nil)
        return nil;
    _properties = [[NSDictionary alloc] init];
    // Keeping itself alive would keep it for ever.
    _producer = producer == self ? producer : [producer retain];
    return self;
}

- (id)init {
    return [self initWithProducer:nil];
}

+ (DRTrack*)trackForRootFolder:(DRFolder*)rootFolder {
    if (rootFolder == nil)
        return nil;
    if (![rootFolder isKindOfClass:[DRFolder class]]) {
        [NSException raise:NSInvalidArgumentException
                    format:@"A track can be made for a DRFolder only, not for a %@.", [rootFolder class]];
    }
    DRTrack* track = [[[self alloc] initWithProducer:nil] autorelease];
    track->_rootFolder = [rootFolder retain];
    [track setProperties:[NSDictionary
                             dictionaryWithObjectsAndKeys:[NSNumber numberWithInt:kDRBlockSizeMode1Data],
                                                          DRBlockSizeKey,
                                                          [NSNumber numberWithInt:kDRBlockTypeMode1Data],
                                                          DRBlockTypeKey,
                                                          [NSNumber numberWithInt:kDRDataFormMode1Data],
                                                          DRDataFormKey,
                                                          [NSNumber numberWithInt:kDRSessionFormatMode1Data],
                                                          DRSessionFormatKey,
                                                          [NSNumber numberWithInt:kDRTrackMode1Data],
                                                          DRTrackModeKey, nil]];
    return track;
}

- (void)dealloc {
    if (_producer != self)
        [_producer release];
    [_properties release];
    [_rootFolder release];
    [super dealloc];
}

// A track is one thing; dictionaries have tracks as keys.
- (id)copyWithZone:(NSZone*)zone {
    return [self retain];
}

- (NSDictionary*)properties {
    return [[_properties retain] autorelease];
}

- (void)setProperties:(NSDictionary*)properties {
    NSDictionary* copy = properties == nil ? [[NSDictionary alloc] init]
                                           : [[NSDictionary alloc] initWithDictionary:properties];
    [_properties release];
    _properties = copy;
}

- (DRMSF*)lengthForKey:(NSString*)key {
    id value = [_properties objectForKey:key];
    if ([value isKindOfClass:[DRMSF class]])
        return value;
    return [DRMSF msfWithFrames:[value isKindOfClass:[NSNumber class]] ? [value unsignedIntValue] : 0];
}

- (DRMSF*)length {
    return [self lengthForKey:DRTrackLengthKey];
}

- (DRMSF*)preGap {
    return [self lengthForKey:DRPreGapLengthKey];
}

- (void)setPreGap:(DRMSF*)preGap {
    NSMutableDictionary* properties = [NSMutableDictionary dictionaryWithDictionary:_properties];
    if (preGap == nil) {
        [properties removeObjectForKey:DRPreGapLengthKey];
    } else {
        [properties setObject:preGap forKey:DRPreGapLengthKey];
    }
    [self setProperties:properties];
}

- (uint64_t)estimateLength {
    if (_rootFolder == nil) {
        return [_producer respondsToSelector:@selector(estimateLengthOfTrack:)]
                   ? [_producer estimateLengthOfTrack:self]
                   : 0;
    }
    const auto track = discrecording::dataTrackOf(self, true);
    const auto blocks = track.ok() ? engine::plannedBlocks(*track) : engine::Result<uint64_t>(track.error());
    if (blocks.ok())
        return *blocks;
    NSLog(@"The length of a track can't be estimated: %@", pathnames::textOf(blocks.error().message));
    return 0;
}

@end

@implementation DRTrack (Private)

- (DRFolder*)rootFolder {
    return _rootFolder;
}

@end
