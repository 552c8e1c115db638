// The kinds of medium and their facts, in one table.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace engine {

/// Bytes of user data in a block of a data track.
inline constexpr uint64_t blockSize = 2048;

/// Single speed of each class in KB/s; a KB is 1000 bytes.
inline constexpr double singleSpeedCD = 176.4;
inline constexpr double singleSpeedDVD = 1385.0;
inline constexpr double singleSpeedBD = 4496.0;
/// A requested speed that means "as fast as it goes".
inline constexpr double maximumSpeed = 65535.0;

enum class MediumClass : uint8_t { CD, DVD, BD };

enum class MediumKind : uint8_t {
    CDROM,
    CDR,
    CDRW,
    DVDROM,
    DVDR,
    DVDRDualLayer,
    DVDRW,
    DVDRAM,
    DVDPlusR,
    DVDPlusRDoubleLayer,
    DVDPlusRW,
    BDROM,
    BDR,
    BDRE,
};

/// What holds for every medium of a kind.
struct MediumFacts {
    MediumKind kind;
    std::string_view name; ///< as on the command line, in medium.json and in sentences: "DVD+RW"
    MediumClass mediumClass;
    uint64_t capacityBlocks;        ///< of 2048 bytes; the usual capacity, a medium may state its own
    bool writable;                  ///< can be written at all (once, or again)
    bool erasable;                  ///< can be made blank again
    bool overwritable;              ///< any block may be written again without erasing first
    std::span<const double> speeds; ///< KB/s, ascending; empty for read-only kinds
};

/// The whole table, one row for each kind, in the order of the enumeration.
std::span<const MediumFacts> allMediumKinds() noexcept;

const MediumFacts& factsOf(MediumKind kind) noexcept;

/// By name, letter case ignored ("dvd+rw"); empty for a name that no kind has.
std::optional<MediumKind> mediumKindNamed(std::string_view name) noexcept;

/// "CD", "DVD", "BD".
std::string_view nameOf(MediumClass mediumClass) noexcept;

/// KB/s at 1x.
double singleSpeedOf(MediumClass mediumClass) noexcept;

/// The factor people see: floor(speed / 1x + 0.5). `speed` in KB/s.
int xFactorOf(double speed, MediumClass mediumClass) noexcept;

} // namespace engine
