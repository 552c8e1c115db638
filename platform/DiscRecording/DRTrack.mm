// DRTrack: a track to be burned, or one that is on a disc.
#import "DRTrack.h"
#import "DRDevicePrivate.h"
#import "DRTrackPrivate.h"
#include "LayoutReader.hpp"
#include "PathStrings.hpp"
#include "ProductionSpeed.hpp"
#include "TrackReader.hpp"
#include "audio/AudioTrack.hpp"

#include <mutex>
#include <utility>

namespace {

// Held to look or to exchange, never while a message is sent that could come back.
std::mutex propertiesMutex;

NSDictionary* requiredProperties(int blockSize, int blockType, int dataForm, int sessionFormat, int trackMode,
                                 DRMSF* length) {
    NSMutableDictionary* properties = [NSMutableDictionary dictionary];
    [properties setObject:[NSNumber numberWithInt:blockSize] forKey:DRBlockSizeKey];
    [properties setObject:[NSNumber numberWithInt:blockType] forKey:DRBlockTypeKey];
    [properties setObject:[NSNumber numberWithInt:dataForm] forKey:DRDataFormKey];
    [properties setObject:[NSNumber numberWithInt:sessionFormat] forKey:DRSessionFormatKey];
    [properties setObject:[NSNumber numberWithInt:trackMode] forKey:DRTrackModeKey];
    if (length != nil)
        [properties setObject:length forKey:DRTrackLengthKey];
    return properties;
}

NSDictionary* audioProperties(DRMSF* length) {
    return requiredProperties(kDRBlockSizeAudio, kDRBlockTypeAudio, kDRDataFormAudio, kDRSessionFormatAudio,
                              kDRTrackModeAudio, length);
}

float speedOf(DRTrack* track, const engine::SpeedTestEnd& end) {
    auto made = discrecording::trackOf(track, {});
    const auto speed =
        made.ok() ? engine::productionSpeed(std::move(*made), end) : engine::Result<double>(made.error());
    if (speed.ok())
        return static_cast<float>(*speed);
    NSLog(@"The speed of a track can't be tested: %@", pathnames::textOf(speed.error().message));
    return 0;
}

} // namespace

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
    [track
        setProperties:requiredProperties(kDRBlockSizeMode1Data, kDRBlockTypeMode1Data, kDRDataFormMode1Data,
                                         kDRSessionFormatMode1Data, kDRTrackMode1Data, nil)];
    return track;
}

+ (DRTrack*)trackForAudioFile:(NSString*)path {
    if (path == nil)
        return nil;
    const auto audio = engine::trackForAudioFile(pathnames::bytesOf(path));
    if (!audio.ok()) {
        NSLog(@"No track can be made: %@", pathnames::textOf(audio.error().message));
        return nil;
    }
    DRTrack* track = [[[self alloc] initWithProducer:nil] autorelease];
    track->_audioPath = [path copy];
    track->_audioBlocks = audio->blocks;
    [track setProperties:audioProperties(DRMSFOfBlocks(audio->blocks))];
    return track;
}

+ (DRTrack*)trackForAudioOfLength:(DRMSF*)length producer:(id)producer {
    DRTrack* track = [[[self alloc] initWithProducer:producer] autorelease];
    [track setProperties:audioProperties(length == nil ? [DRMSF msf] : length)];
    return track;
}

- (void)dealloc {
    if (_producer != self)
        [_producer release];
    [_properties release];
    [_rootFolder release];
    [_audioPath release];
    [super dealloc];
}

// A track is one thing; dictionaries have tracks as keys.
- (id)copyWithZone:(NSZone*)zone {
    return [self retain];
}

// A burn asks on its own threads while the program may assign.
- (NSDictionary*)properties {
    const std::lock_guard lock(propertiesMutex);
    return [[_properties retain] autorelease];
}

- (void)setProperties:(NSDictionary*)properties {
    NSDictionary* copy = properties == nil ? [[NSDictionary alloc] init]
                                           : [[NSDictionary alloc] initWithDictionary:properties];
    {
        const std::lock_guard lock(propertiesMutex);
        std::swap(_properties, copy);
    }
    [copy release];
}

- (DRMSF*)lengthForKey:(NSString*)key {
    id value = [[self properties] objectForKey:key];
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
    NSMutableDictionary* properties = [NSMutableDictionary dictionaryWithDictionary:[self properties]];
    if (preGap == nil) {
        [properties removeObjectForKey:DRPreGapLengthKey];
    } else {
        [properties setObject:preGap forKey:DRPreGapLengthKey];
    }
    [self setProperties:properties];
}

- (uint64_t)estimateLength {
    if (_audioPath != nil)
        return [[self length] sectors];
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

- (float)testProductionSpeedForInterval:(NSTimeInterval)interval {
    return speedOf(self, {interval, std::nullopt});
}

- (float)testProductionSpeedForLength:(uint32_t)length {
    return speedOf(self, {std::nullopt, length});
}

@end

@implementation DRTrack (Private)

- (DRFolder*)rootFolder {
    return _rootFolder;
}

- (NSString*)audioPath {
    return _audioPath;
}

- (uint64_t)audioBlocks {
    return _audioBlocks;
}

- (id)producer {
    return _producer;
}

@end
