// What every drive has in common.
#include "Drive.hpp"
#include "InUse.hpp"

#include <algorithm>

namespace engine {

bool DriveCapabilities::canWrite(MediumKind kind) const noexcept {
    return std::find(writes.begin(), writes.end(), kind) != writes.end();
}

bool DriveCapabilities::canWriteAny(MediumClass mediumClass) const noexcept {
    return std::any_of(writes.begin(), writes.end(),
                       [&](MediumKind kind) { return factsOf(kind).mediumClass == mediumClass; });
}

bool DriveCapabilities::canTestWrite(MediumClass mediumClass) const noexcept {
    switch (mediumClass) {
    case MediumClass::CD:
        return canTestWriteCD;
    case MediumClass::DVD:
        return canTestWriteDVD;
    case MediumClass::BD:
        return canTestWriteBD;
    }
    return false;
}

uint32_t MediumInfo::trackCount() const noexcept {
    size_t count = 0;
    for (const SessionInfo& session : sessions)
        count += session.tracks.size();
    return static_cast<uint32_t>(count);
}

std::string Drive::displayName() const {
    const DriveIdentity& who = identity();
    if (who.vendor.empty() || who.product.empty()) return who.vendor + who.product;
    return who.vendor + ' ' + who.product;
}

std::optional<MediumInfo> Drive::mediumInfo() const {
    auto medium = readMedium();
    return medium ? *std::move(medium) : std::nullopt;
}

bool Drive::hasMedium() const {
    const auto medium = readMedium();
    return medium ? medium->has_value() : meansInUse(medium.error().code);
}

Result<void> Drive::erase(EraseType, const EraseProgress&) {
    return Error{
        ErrorCode::FunctionNotSupported, "The drive \"" + displayName() + "\" can't erase discs.", {}};
}

} // namespace engine
