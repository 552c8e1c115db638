// BurnProperties: a burn's properties as the engine takes them.
#include "BurnProperties.hpp"

#import "DRBurnConstants.h"
#import "DRCDTextPrivate.h"
#import "DRDeviceConstants.h"
#include "Elements.hpp"
#include "PathStrings.hpp"

#include <algorithm>

namespace discrecording {
namespace {

using engine::Error;
using engine::ErrorCode;
using engine::Result;
using engine::Strategy;

Error refusal(ErrorCode code, NSString* sentence) { return {code, pathnames::bytesOf(sentence), {}}; }

// YES to eject; a text that is neither of the two actions is an error.
Result<bool> ejects(NSDictionary* properties, NSString* key, NSString* ejectText, NSString* stayText) {
    id action = [properties objectForKey:key];
    if (action == nil || [action isEqual:ejectText])
        return true;
    if ([action isEqual:stayText])
        return false;
    return refusal(ErrorCode::FunctionNotSupported,
                   [NSString stringWithFormat:@"The burn's %@ is \"%@\"; use %@ or %@.", key, action,
                                              ejectText, stayText]);
}

Result<void> readCatalogNumber(engine::BurnOptions& options, NSDictionary* properties) {
    id number = [properties objectForKey:DRMediaCatalogNumberKey];
    if (number == nil)
        return {};
    if (![number isKindOfClass:[NSData class]] || [number length] != engine::mediaCatalogNumberCharacters) {
        return refusal(ErrorCode::BadLayout,
                       @"The media catalog number must be data of 13 bytes, each a digit.");
    }
    const std::string digits(static_cast<const char*>([number bytes]), [number length]);
    // Zeros, as bytes or as digits, are the number of a disc that has none.
    const bool isNone = digits.find_first_not_of('0') == std::string::npos ||
                        digits.find_first_not_of('\0') == std::string::npos;
    options.mediaCatalogNumber = isNone ? std::string() : digits;
    return {};
}

Result<void> readCDText(engine::BurnOptions& options, NSDictionary* properties) {
    id text = [properties objectForKey:DRCDTextKey];
    if (text == nil)
        return {};
    NSArray* blocks = [text isKindOfClass:[DRCDTextBlock class]] ? [NSArray arrayWithObject:text]
                      : [text isKindOfClass:[NSArray class]]     ? static_cast<NSArray*>(text)
                                                                 : nil;
    for (id block : Elements<id>(blocks)) {
        if (![block isKindOfClass:[DRCDTextBlock class]])
            blocks = nil;
    }
    if (blocks == nil) {
        return refusal(ErrorCode::CantWriteCDText,
                       @"The burn's CD-Text must be a DRCDTextBlock, or an array of them.");
    }
    NSData* packs = [blocks count] == 0 ? [NSData data] : [DRCDTextBlock packsOfCDTextBlocks:blocks];
    if (packs == nil) {
        return refusal(ErrorCode::CantWriteCDText,
                       @"The burn's CD-Text can't be written: a disc has room for "
                       @"eight blocks, and for the texts of 99 tracks.");
    }
    const auto* bytes = static_cast<const uint8_t*>([packs bytes]);
    options.cdText.assign(bytes, bytes + [packs length]);
    return {};
}

Result<void> readLayerBreak(engine::BurnOptions& options, NSDictionary* properties) {
    id zone = [properties objectForKey:DRBurnDoubleLayerL0DataZoneBlocksKey];
    if (zone == nil)
        return {};
    if (![zone isKindOfClass:[NSNumber class]]) {
        return refusal(ErrorCode::DoubleLayerL0DataZoneParameter,
                       @"The size of the first layer must be a number of blocks, or a part below 1.");
    }
    options.doubleLayerL0DataZone = [zone doubleValue];
    return {};
}

Result<void> readStrategies(engine::BurnOptions& options, NSDictionary* properties) {
    id wanted = [properties objectForKey:DRBurnStrategyKey];
    if (wanted == nil)
        return {};
    const std::pair<NSString*, Strategy> known[] = {
        {DRBurnStrategyCDTAO, Strategy::CDTrackAtOnce}, {DRBurnStrategyCDSAO, Strategy::CDSessionAtOnce},
        {DRBurnStrategyCDRaw, Strategy::CDRaw},         {DRBurnStrategyDVDDAO, Strategy::DVDAtOnce},
        {DRBurnStrategyBDDAO, Strategy::BDAtOnce},
    };
    NSArray* texts = [wanted isKindOfClass:[NSArray class]] ? static_cast<NSArray*>(wanted)
                                                            : [NSArray arrayWithObject:wanted];
    for (id text : Elements<id>(texts)) {
        for (const auto& [name, strategy] : known) {
            if ([name isEqual:text])
                options.strategies.push_back(strategy);
        }
    }
    options.strategyIsRequired = burnFlag(properties, DRBurnStrategyIsRequiredKey, false);
    // A wish that nobody knows is left aside; who insists on it is told.
    if (options.strategyIsRequired && options.strategies.empty()) {
        return refusal(ErrorCode::StrategyNotAvailable,
                       [NSString stringWithFormat:@"The burn insists on the strategy \"%@\"; use one of the "
                                                  @"DRBurnStrategy constants, or let it be a wish.",
                                                  wanted]);
    }
    return {};
}

} // namespace

bool burnFlag(NSDictionary* properties, NSString* key, bool otherwise) {
    id value = [properties objectForKey:key];
    return [value respondsToSelector:@selector(boolValue)] ? [value boolValue] : otherwise;
}

float requestedSpeed(NSDictionary* properties) {
    id value = [properties objectForKey:DRBurnRequestedSpeedKey];
    return [value respondsToSelector:@selector(floatValue)] ? [value floatValue] : DRDeviceBurnSpeedMax;
}

Result<void> readBurnActions(BurnPlan& plan, NSDictionary* properties) {
    const auto whenFailed =
        ejects(properties, DRBurnFailureActionKey, DRBurnFailureActionEject, DRBurnFailureActionNone);
    // Nobody knows what was meant, so nothing is done.
    plan.ejectWhenFailed = whenFailed.ok() && *whenFailed;
    const auto whenDone = ejects(properties, DRBurnCompletionActionKey, DRBurnCompletionActionEject,
                                 DRBurnCompletionActionMount);
    if (!whenDone.ok())
        return whenDone.error();
    plan.ejectWhenDone = *whenDone;
    if (!whenFailed.ok())
        return whenFailed.error();
    return {};
}

Result<void> readBurnProperties(BurnPlan& plan, NSDictionary* properties) {
    engine::BurnOptions& options = plan.options;
    for (const auto read : {readCatalogNumber, readCDText, readLayerBreak, readStrategies}) {
        if (const auto done = read(options, properties); !done.ok())
            return done;
    }
    options.verify = burnFlag(properties, DRBurnVerifyDiscKey, true);
    options.overwrite = burnFlag(properties, DRBurnOverwriteDiscKey, false);
    options.appendable = burnFlag(properties, DRBurnAppendableKey, false);
    options.testing = burnFlag(properties, DRBurnTestingKey, false);
    options.underrunProtection = burnFlag(properties, DRBurnUnderrunProtectionKey, true);
    const float speed = requestedSpeed(properties);
    options.requestedSpeed = speed > 0 ? static_cast<double>(speed) : engine::maximumSpeed;
    return {};
}

} // namespace discrecording
