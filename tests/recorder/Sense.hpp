// What a command is refused with: sense key, additional sense code and qualifier (SPC-3, 4.5.6; MMC-5, annex F).
#pragma once

#include <cstdint>

namespace recorder {

struct Sense {
    uint8_t key = 0, code = 0, qualifier = 0;
    int32_t block = -1;    ///< of a medium error: goes into the information field
    int32_t progress = -1; ///< 0 to 65535, of a long operation: goes into the key-specific field
};

/// Thrown by a command's function; the initiator gets CHECK CONDITION.
struct Refusal {
    Sense sense;
};

namespace senses {
inline constexpr Sense becomingReady{0x2, 0x04, 0x01};
inline constexpr Sense formatInProgress{0x2, 0x04, 0x04};
inline constexpr Sense operationInProgress{0x2, 0x04, 0x07};
inline constexpr Sense longWriteInProgress{0x2, 0x04, 0x08};
inline constexpr Sense incompatibleMedium{0x2, 0x30, 0x00};
inline constexpr Sense noMediumTrayClosed{0x2, 0x3A, 0x01};
inline constexpr Sense noMediumTrayOpen{0x2, 0x3A, 0x02};
inline constexpr Sense writeError{0x3, 0x0C, 0x00};
inline constexpr Sense unrecoveredReadError{0x3, 0x11, 0x00};
inline constexpr Sense powerCalibrationError{0x3, 0x73, 0x03};
inline constexpr Sense hardwareFailure{0x4, 0x44, 0x00};
inline constexpr Sense loadOrEjectFailed{0x4, 0x53, 0x00};
inline constexpr Sense parameterListLength{0x5, 0x1A, 0x00};
inline constexpr Sense invalidCommand{0x5, 0x20, 0x00};
inline constexpr Sense blockOutOfRange{0x5, 0x21, 0x00};
inline constexpr Sense invalidAddressForWrite{0x5, 0x21, 0x02};
inline constexpr Sense invalidFieldInCommand{0x5, 0x24, 0x00};
inline constexpr Sense invalidFieldInParameters{0x5, 0x26, 0x00};
inline constexpr Sense commandSequenceError{0x5, 0x2C, 0x00};
inline constexpr Sense cannotFormatMedium{0x5, 0x30, 0x06};
inline constexpr Sense cannotWriteMedium{0x5, 0x30, 0x05};
inline constexpr Sense removalPrevented{0x5, 0x53, 0x02};
inline constexpr Sense endOfUserArea{0x5, 0x63, 0x00};
inline constexpr Sense illegalModeForTrack{0x5, 0x64, 0x00};
inline constexpr Sense sessionFixationIncomplete{0x5, 0x72, 0x03};
inline constexpr Sense noMoreTracks{0x5, 0x72, 0x05};
inline constexpr Sense mediumChanged{0x6, 0x28, 0x00};
inline constexpr Sense writeProtected{0x7, 0x27, 0x00};
inline constexpr Sense blankCheck{0x8, 0x00, 0x00};
} // namespace senses

[[noreturn]] inline void refuse(const Sense& sense) { throw Refusal{sense}; }

inline void require(bool condition, const Sense& sense) {
    if (!condition) refuse(sense);
}

} // namespace recorder
