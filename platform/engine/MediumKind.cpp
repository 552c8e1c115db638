// The table of medium kinds.
#include "MediumKind.hpp"

#include <algorithm>
#include <cmath>
#include <strings.h>

namespace engine {
namespace {

template <size_t Count>
consteval auto speedsOf(const int (&factors)[Count], double single) {
    struct Speeds {
        double values[Count];
    } speeds{};
    for (size_t index = 0; index < Count; ++index)
        speeds.values[index] = factors[index] * single;
    return speeds;
}

constexpr auto cdr = speedsOf({4, 8, 16, 24, 32, 40, 48, 52}, singleSpeedCD);
constexpr auto cdrw = speedsOf({4, 8, 10, 16, 24}, singleSpeedCD);
constexpr auto dvdr = speedsOf({2, 4, 8, 12, 16}, singleSpeedDVD);
constexpr auto dvdrw = speedsOf({1, 2, 4, 6}, singleSpeedDVD);
constexpr auto dvdram = speedsOf({2, 3, 5}, singleSpeedDVD);
constexpr auto dvdDouble = speedsOf({2, 4, 8}, singleSpeedDVD);
constexpr auto dvdPlusRW = speedsOf({2, 4, 8}, singleSpeedDVD);
constexpr auto bdr = speedsOf({2, 4, 6, 8, 12, 16}, singleSpeedBD);
constexpr auto bdre = speedsOf({1, 2}, singleSpeedBD);

// Capacities: a CD of 80 minutes less its lead-out; DVD and BD media in their default format.
constexpr MediumFacts table[] = {
    {MediumKind::CDROM, "CD-ROM", MediumClass::CD, 359847, false, false, false, {}},
    {MediumKind::CDR, "CD-R", MediumClass::CD, 359847, true, false, false, cdr.values},
    {MediumKind::CDRW, "CD-RW", MediumClass::CD, 359847, true, true, false, cdrw.values},
    {MediumKind::DVDROM, "DVD-ROM", MediumClass::DVD, 2295104, false, false, false, {}},
    {MediumKind::DVDR, "DVD-R", MediumClass::DVD, 2298496, true, false, false, dvdr.values},
    {MediumKind::DVDRDualLayer, "DVD-R DL", MediumClass::DVD, 4171712, true, false, false, dvdDouble.values},
    {MediumKind::DVDRW, "DVD-RW", MediumClass::DVD, 2297888, true, true, false, dvdrw.values},
    {MediumKind::DVDRAM, "DVD-RAM", MediumClass::DVD, 2236704, true, true, true, dvdram.values},
    {MediumKind::DVDPlusR, "DVD+R", MediumClass::DVD, 2295104, true, false, false, dvdr.values},
    {MediumKind::DVDPlusRDoubleLayer, "DVD+R DL", MediumClass::DVD, 4173824, true, false, false,
     dvdDouble.values},
    {MediumKind::DVDPlusRW, "DVD+RW", MediumClass::DVD, 2295104, true, true, true, dvdPlusRW.values},
    {MediumKind::BDROM, "BD-ROM", MediumClass::BD, 12219392, false, false, false, {}},
    {MediumKind::BDR, "BD-R", MediumClass::BD, 12219392, true, false, false, bdr.values},
    {MediumKind::BDRE, "BD-RE", MediumClass::BD, 12219392, true, true, true, bdre.values},
};

consteval bool rowsStandAtTheirIndex() {
    size_t index = 0;
    for (const MediumFacts& row : table)
        if (static_cast<size_t>(row.kind) != index++) return false;
    return index == static_cast<size_t>(MediumKind::BDRE) + 1;
}
static_assert(rowsStandAtTheirIndex());

} // namespace

std::span<const MediumFacts> allMediumKinds() noexcept { return table; }

const MediumFacts& factsOf(MediumKind kind) noexcept { return table[static_cast<size_t>(kind)]; }

std::optional<MediumKind> mediumKindNamed(std::string_view name) noexcept {
    for (const MediumFacts& row : table)
        if (row.name.size() == name.size() && strncasecmp(row.name.data(), name.data(), name.size()) == 0)
            return row.kind;
    return std::nullopt;
}

std::string_view nameOf(MediumClass mediumClass) noexcept {
    switch (mediumClass) {
    case MediumClass::CD:
        return "CD";
    case MediumClass::DVD:
        return "DVD";
    case MediumClass::BD:
        return "BD";
    }
    return "";
}

double singleSpeedOf(MediumClass mediumClass) noexcept {
    switch (mediumClass) {
    case MediumClass::CD:
        return singleSpeedCD;
    case MediumClass::DVD:
        return singleSpeedDVD;
    case MediumClass::BD:
        return singleSpeedBD;
    }
    return singleSpeedDVD;
}

int xFactorOf(double speed, MediumClass mediumClass) noexcept {
    return static_cast<int>(std::floor(speed / singleSpeedOf(mediumClass) + 0.5));
}

} // namespace engine
