// ContentAttributes: what items' properties say, as the engine takes it.
#include "ContentAttributes.hpp"

#import "DRFSObjectPrivate.h"
#import "DRFile.h"
#import "Filesystems.h"

#include <array>
#include <optional>

namespace discrecording {
namespace {

namespace filesystem = engine::filesystem;

template <typename Value> std::optional<Value> numberFor(NSDictionary* properties, NSString* key) {
    id value = [properties objectForKey:key];
    return value == nil ? std::nullopt : std::optional<Value>(static_cast<Value>([value longLongValue]));
}

std::optional<std::time_t> dateFor(NSDictionary* properties, NSString* key) {
    id value = [properties objectForKey:key];
    return value == nil ? std::nullopt
                        : std::optional<std::time_t>(static_cast<std::time_t>([value timeIntervalSince1970]));
}

std::optional<std::array<uint8_t, 4>> codeFor(NSDictionary* properties, NSString* key) {
    NSData* value = [properties objectForKey:key];
    std::array<uint8_t, 4> code{};
    if ([value length] != code.size())
        return std::nullopt;
    [value getBytes:code.data() length:code.size()];
    return code;
}

// Points and rectangles of that system: numbers of 16 bits in the order of the machine, top and left first.
template <size_t Count>
std::optional<std::array<int16_t, Count>> shortsFor(NSDictionary* properties, NSString* key) {
    NSData* value = [properties objectForKey:key];
    std::array<int16_t, Count> numbers{};
    if ([value length] != sizeof numbers)
        return std::nullopt;
    [value getBytes:numbers.data() length:sizeof numbers];
    return numbers;
}

std::shared_ptr<const engine::MacAttributes> macAttributesOf(DRFSObject* object, NSString* filesystemName) {
    NSDictionary* properties = [object propertiesForFilesystem:filesystemName mergeWithOtherFilesystems:YES];
    if ([properties count] == 0)
        return nullptr;
    engine::MacAttributes mac;
    mac.created = dateFor(properties, DRCreationDate);
    mac.backedUp = dateFor(properties, DRBackupDate);
    mac.type = codeFor(properties, DRMacFileType);
    mac.creator = codeFor(properties, DRMacFileCreator);
    mac.flags = numberFor<uint16_t>(properties, DRMacFinderFlags);
    mac.extendedFlags = numberFor<uint16_t>(properties, DRMacExtendedFinderFlags);
    mac.view = numberFor<uint16_t>(properties, DRMacWindowView);
    mac.textEncoding = numberFor<uint16_t>(properties, DRHFSPlusTextEncodingHint);
    mac.windowBounds = shortsFor<4>(properties, DRMacWindowBounds);
    mac.iconLocation = shortsFor<2>(properties, DRMacIconLocation);
    mac.scrollPosition = shortsFor<2>(properties, DRMacScrollPosition);
    constexpr uint16_t hidesExtension = 0x0010; // of the Finder's flags
    if ([object isKindOfClass:[DRFile class]] &&
        [[properties objectForKey:DRMacFinderHideExtension] boolValue])
        mac.flags = static_cast<uint16_t>(mac.flags.value_or(0) | hidesExtension);
    return std::make_shared<const engine::MacAttributes>(mac);
}

engine::OwnAttributes valuesOf(NSDictionary* properties) {
    engine::OwnAttributes values;
    values.mode = numberFor<uint32_t>(properties, DRPosixFileMode);
    values.owner = numberFor<uint32_t>(properties, DRPosixUID);
    values.group = numberFor<uint32_t>(properties, DRPosixGID);
    values.modified = dateFor(properties, DRContentModificationDate);
    values.accessed = dateFor(properties, DRAccessDate);
    values.changed = dateFor(properties, DRAttributeModificationDate);
    if (id invisible = [properties objectForKey:DRInvisible]; invisible != nil)
        values.invisible = [invisible boolValue];
    return values;
}

// What only single file systems can hold.
void addRareValues(NSDictionary* properties, engine::OwnAttributes& values) {
    values.created = dateFor(properties, DRCreationDate);
    values.backedUp = dateFor(properties, DRBackupDate);
    values.recorded = dateFor(properties, DRRecordingDate);
    values.effective = dateFor(properties, DREffectiveDate);
    values.expires = dateFor(properties, DRExpirationDate);
    values.version = numberFor<uint32_t>(properties, DRISO9660VersionNumber);
}

// Where a file system has other values than all have, or more.
std::shared_ptr<const engine::FilesystemAttributes> ownOf(DRFSObject* object, uint8_t mask,
                                                          const engine::OwnAttributes& inAll) {
    NSString* const names[] = {DRISO9660, DRJoliet, DRUDF, DRHFSPlus}; // in the order of their bits
    engine::FilesystemAttributes own;
    bool isOther = false;
    for (size_t i = 0; i < own.size(); ++i) {
        if ((mask >> i & 1) == 0)
            continue;
        NSDictionary* properties = [object propertiesForFilesystem:names[i] mergeWithOtherFilesystems:YES];
        own[i] = valuesOf(properties);
        if ((filesystem::hfsPlus >> i & 1) == 0) // which has its own place for them
            addRareValues(properties, own[i]);
        isOther = isOther || own[i] != inAll;
    }
    return isOther ? std::make_shared<const engine::FilesystemAttributes>(own) : nullptr;
}

} // namespace

std::shared_ptr<const engine::MacAttributes> isoMacOf(DRFSObject* object) {
    auto mac = macAttributesOf(object, DRISO9660);
    return mac && (mac->type || mac->creator || mac->flags) ? mac : nullptr;
}

engine::Rare<engine::Attributes> attributesOf(DRFSObject* object, uint8_t mask) {
    engine::Rare<engine::Attributes> attributes;
    if (![object hasProperties])
        return attributes;
    const engine::OwnAttributes inAll = valuesOf([object propertiesForFilesystem:DRAllFilesystems
                                                       mergeWithOtherFilesystems:NO]);
    attributes->mode = inAll.mode;
    attributes->owner = inAll.owner;
    attributes->group = inAll.group;
    attributes->modified = inAll.modified;
    attributes->accessed = inAll.accessed;
    attributes->changed = inAll.changed;
    attributes->invisible = inAll.invisible;
    attributes->own = ownOf(object, mask, inAll);
    if ((mask & filesystem::hfsPlus) != 0)
        if (auto mac = macAttributesOf(object, DRHFSPlus))
            attributes->mac = std::move(mac);
    return attributes;
}

void keepSource(const struct stat& source, engine::Rare<engine::Attributes>& attributes) {
    attributes->mode = attributes->mode.value_or(source.st_mode & 07777);
    attributes->owner = attributes->owner.value_or(source.st_uid);
    attributes->group = attributes->group.value_or(source.st_gid);
    attributes->modified = attributes->modified.value_or(source.st_mtime);
    attributes->accessed = attributes->accessed.value_or(source.st_atime);
    attributes->changed = attributes->changed.value_or(source.st_ctime);
}

} // namespace discrecording
