// What a drive's profiles stand for (MMC-5, 5.3.1), and what may be asked of the medium with the present one.
#include "PhysicalTarget.hpp"

#include <libburn/libburn.h>

namespace engine {

std::optional<MediumKind> kindOfProfile(int profile) noexcept {
    switch (profile) {
    case 0x08:
        return MediumKind::CDROM;
    case 0x09:
        return MediumKind::CDR;
    case 0x0A:
        return MediumKind::CDRW;
    case 0x10:
        return MediumKind::DVDROM;
    case 0x11:
        return MediumKind::DVDR;
    case 0x12:
        return MediumKind::DVDRAM;
    case 0x13:
    case 0x14:
        return MediumKind::DVDRW;
    case 0x15:
    case 0x16:
        return MediumKind::DVDRDualLayer;
    case 0x1A:
        return MediumKind::DVDPlusRW;
    case 0x1B:
        return MediumKind::DVDPlusR;
    case 0x2B:
        return MediumKind::DVDPlusRDoubleLayer;
    case 0x40:
        return MediumKind::BDROM;
    case 0x41:
    case 0x42:
        return MediumKind::BDR;
    case 0x43:
        return MediumKind::BDRE;
    default:
        return std::nullopt;
    }
}

bool takesBlocksInAnyOrder(burn_drive* drive) {
    int profile = 0;
    char name[80];
    burn_disc_get_profile(drive, &profile, name);
    return profile == 0x12 || profile == 0x13 || profile == 0x1A || profile == 0x43;
}

bool isSequentialDVDMinus(burn_drive* drive) {
    int profile = 0;
    char name[80];
    burn_disc_get_profile(drive, &profile, name);
    return profile == 0x11 || profile == 0x14 || profile == 0x15;
}

bool takesIncrements(burn_drive* drive) {
    burn_multi_caps* caps = nullptr;
    const bool takes = burn_disc_get_multi_caps(drive, BURN_WRITE_TAO, &caps, 0) > 0;
    if (caps != nullptr) burn_disc_free_multi_caps(&caps);
    return takes;
}

} // namespace engine
