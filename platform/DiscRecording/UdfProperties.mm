// UdfProperties: what the root's and the items' properties say of UDF only.
#include "UdfProperties.hpp"

#include "PathStrings.hpp"

#include <cmath>

namespace discrecording {
namespace {

using engine::Error;
using engine::ErrorCode;

id propertyOf(DRFSObject* object, NSString* key) {
    return [object propertyForKey:key inFilesystem:DRUDF mergeWithOtherFilesystems:YES];
}

Error wrong(NSString* key, NSString* wanted) {
    return {ErrorCode::BadLayout,
            pathnames::bytesOf([NSString stringWithFormat:@"The root's %@ is to be %@.", key, wanted]),
            {}};
}

} // namespace

engine::Result<void> readUdfProperties(DRFolder* root, engine::DataTrack& track) {
    if (id version = propertyOf(root, DRUDFWriteVersion); version != nil) {
        if ([version isEqual:DRUDFVersion150])
            track.udfRevision = engine::udf::Revision::V150;
        else if (![version isEqual:DRUDFVersion102])
            return wrong(DRUDFWriteVersion,
                         @"DRUDFVersion102 or DRUDFVersion150, which are those that can be written");
    }
    engine::udf::VolumeIdentity& identity = track.udfIdentity;
    bool hasMaximum = false, hasMaximumLevel = false;
    const auto number = [root](NSString* key, long long from, long long to, auto& place,
                               bool& isGiven) -> engine::Result<void> {
        id value = propertyOf(root, key);
        if (value == nil)
            return {};
        // Compared as a floating number, which has room for all that a program may say.
        const double given = [value doubleValue];
        if (!(given >= static_cast<double>(from) && given <= static_cast<double>(to) &&
              given == std::floor(given)))
            return wrong(key, [NSString stringWithFormat:@"a whole number from %lld to %lld", from, to]);
        place = static_cast<std::remove_reference_t<decltype(place)>>([value longLongValue]);
        isGiven = true;
        return {};
    };
    bool isGiven = false;
    if (auto read =
            number(DRUDFPrimaryVolumeDescriptorNumber, 0, UINT32_MAX, identity.primaryNumber, isGiven);
        !read.ok())
        return read;
    if (auto read = number(DRUDFVolumeSequenceNumber, 1, UINT16_MAX, identity.sequenceNumber, isGiven);
        !read.ok())
        return read;
    if (auto read =
            number(DRUDFMaxVolumeSequenceNumber, 1, UINT16_MAX, identity.maximumSequenceNumber, hasMaximum);
        !read.ok())
        return read;
    if (auto read = number(DRUDFInterchangeLevel, 1, 3, identity.interchangeLevel, isGiven); !read.ok())
        return read;
    if (auto read = number(DRUDFMaxInterchangeLevel, 1, 3, identity.maximumInterchangeLevel, hasMaximumLevel);
        !read.ok())
        return read;
    // A maximum that nobody gave is at least what is there.
    if (!hasMaximum)
        identity.maximumSequenceNumber = identity.sequenceNumber;
    if (!hasMaximumLevel)
        identity.maximumInterchangeLevel =
            std::max(identity.maximumInterchangeLevel, identity.interchangeLevel);
    if (identity.sequenceNumber > identity.maximumSequenceNumber)
        return wrong(DRUDFVolumeSequenceNumber, @"no larger than its DRUDFMaxVolumeSequenceNumber");
    if (identity.interchangeLevel > identity.maximumInterchangeLevel)
        return wrong(DRUDFInterchangeLevel, @"no higher than its DRUDFMaxInterchangeLevel");

    if (NSData* suffix = propertyOf(root, DRUDFApplicationIdentifierSuffix); suffix != nil) {
        if ([suffix length] > 8)
            return wrong(DRUDFApplicationIdentifierSuffix, @"at most 8 bytes");
        identity.applicationSuffix.assign(static_cast<const char*>([suffix bytes]), [suffix length]);
    }
    if (NSString* set = propertyOf(root, DRUDFVolumeSetIdentifier);[set length] > 0) {
        NSString* composed = [set precomposedStringWithCanonicalMapping];
        identity.setName = pathnames::bytesOf([composed length] == 0 ? set : composed);
    }
    if (NSDate* time = propertyOf(root, DRUDFVolumeSetTimestamp); time != nil)
        identity.setTime = static_cast<std::time_t>([time timeIntervalSince1970]);
    if (NSData* use = propertyOf(root, DRUDFVolumeSetImplementationUse); use != nil) {
        if ([use length] != identity.setUse.size())
            return wrong(DRUDFVolumeSetImplementationUse, @"8 bytes");
        [use getBytes:identity.setUse.data() length:identity.setUse.size()];
    }
    return {};
}

void readUdfAttributes(DRFSObject* object, engine::Rare<engine::Attributes>& attributes) {
    if (id realTime = propertyOf(object, DRUDFRealTimeFile); realTime != nil)
        attributes->realTime = [realTime boolValue];
    if (id permissions = propertyOf(object, DRUDFExtendedFilePermissions); permissions != nil)
        attributes->udfPermissions = static_cast<uint8_t>([permissions unsignedIntValue]);
}

} // namespace discrecording
