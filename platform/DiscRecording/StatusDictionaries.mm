// StatusDictionaries: a job of the engine as the dictionary that programs read.
#include "StatusDictionaries.hpp"

#import "DREraseConstants.h"
#import "DRStatusConstants.h"
#include "PathStrings.hpp"
#include "physical/Sense.hpp"

namespace discrecording {
namespace {

NSString* stateText(engine::BurnState state) {
    switch (state) {
    case engine::BurnState::None:
        return DRStatusStateNone;
    case engine::BurnState::Preparing:
        return DRStatusStatePreparing;
    case engine::BurnState::SessionOpen:
        return DRStatusStateSessionOpen;
    case engine::BurnState::TrackOpen:
        return DRStatusStateTrackOpen;
    case engine::BurnState::TrackWrite:
        return DRStatusStateTrackWrite;
    case engine::BurnState::TrackClose:
        return DRStatusStateTrackClose;
    case engine::BurnState::SessionClose:
        return DRStatusStateSessionClose;
    case engine::BurnState::Finishing:
        return DRStatusStateFinishing;
    case engine::BurnState::Verifying:
        return DRStatusStateVerifying;
    case engine::BurnState::Done:
        return DRStatusStateDone;
    case engine::BurnState::Failed:
        return DRStatusStateFailed;
    }
    return DRStatusStateNone;
}

NSString* stateText(engine::EraseState state) {
    switch (state) {
    case engine::EraseState::None:
        return DRStatusStateNone;
    case engine::EraseState::Preparing:
        return DRStatusStatePreparing;
    case engine::EraseState::Erasing:
        return DRStatusStateErasing;
    case engine::EraseState::Finishing:
        return DRStatusStateFinishing;
    case engine::EraseState::Done:
        return DRStatusStateDone;
    case engine::EraseState::Failed:
        return DRStatusStateFailed;
    }
    return DRStatusStateNone;
}

NSNumber* real(double value) { return [NSNumber numberWithFloat:static_cast<float>(value)]; }
NSNumber* count(uint32_t value) { return [NSNumber numberWithUnsignedInt:value]; }

} // namespace

NSDictionary* errorDictionary(const engine::Error& error) {
    NSMutableDictionary* told = [NSMutableDictionary dictionary];
    // An OSStatus is signed.
    [told setObject:[NSNumber numberWithInt:static_cast<int32_t>(error.code)] forKey:DRErrorStatusErrorKey];
    [told setObject:pathnames::textOf(error.message) forKey:DRErrorStatusErrorStringKey];
    if (!error.info.empty()) {
        [told setObject:pathnames::textOf(error.info) forKey:DRErrorStatusErrorInfoStringKey];
    }
    // Only where a drive has said something.
    if (const auto sense = engine::senseOf(error.sense)) {
        [told setObject:[NSData dataWithBytes:error.sense.data() length:error.sense.size()]
                 forKey:DRErrorStatusSenseKey];
        [told setObject:pathnames::textOf(std::string(engine::textOfSenseKey(sense->key)))
                 forKey:DRErrorStatusSenseCodeStringKey];
        [told setObject:pathnames::textOf(engine::textOfAdditionalSense(*sense))
                 forKey:DRErrorStatusAdditionalSenseStringKey];
    }
    return [NSDictionary dictionaryWithDictionary:told];
}

static NSDictionary* errorOf(const std::optional<engine::Error>& error) {
    return errorDictionary(error.value_or(engine::makeError(engine::ErrorCode::Internal)));
}

NSDictionary* statusDictionary(const engine::BurnStatus& status) {
    NSMutableDictionary* told = [NSMutableDictionary dictionary];
    [told setObject:stateText(status.state) forKey:DRStatusStateKey];
    [told setObject:real(status.percent) forKey:DRStatusPercentCompleteKey];
    [told setObject:count(status.currentSession) forKey:DRStatusCurrentSessionKey];
    [told setObject:count(status.currentTrack) forKey:DRStatusCurrentTrackKey];
    [told setObject:count(status.totalSessions) forKey:DRStatusTotalSessionsKey];
    [told setObject:count(status.totalTracks) forKey:DRStatusTotalTracksKey];
    [told setObject:real(status.speed) forKey:DRStatusCurrentSpeedKey];
    if (status.speed > 0) {
        [told setObject:[NSDictionary dictionaryWithObjectsAndKeys:real(status.speed),
                                                                   DRStatusProgressCurrentKPS,
                                                                   real(status.xFactor),
                                                                   DRStatusProgressCurrentXFactor, nil]
                 forKey:DRStatusProgressInfoKey];
    }
    if (status.state == engine::BurnState::Failed)
        [told setObject:errorOf(status.error) forKey:DRErrorStatusKey];
    return [NSDictionary dictionaryWithDictionary:told];
}

NSString* eraseTypeText(engine::EraseType type) {
    return type == engine::EraseType::Complete ? DREraseTypeComplete : DREraseTypeQuick;
}

NSDictionary* statusDictionary(const engine::EraseStatus& status) {
    NSMutableDictionary* told = [NSMutableDictionary dictionary];
    [told setObject:stateText(status.state) forKey:DRStatusStateKey];
    [told setObject:real(status.percent) forKey:DRStatusPercentCompleteKey];
    [told setObject:eraseTypeText(status.type) forKey:DRStatusEraseTypeKey];
    if (status.state == engine::EraseState::Failed)
        [told setObject:errorOf(status.error) forKey:DRErrorStatusKey];
    return [NSDictionary dictionaryWithDictionary:told];
}

} // namespace discrecording
