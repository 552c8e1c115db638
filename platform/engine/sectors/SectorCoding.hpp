// Whole sectors of a CD from user data, and back (ECMA-130, 14; Philips-Sony System Description CD-ROM XA).
#pragma once

#include "../BlockForm.hpp"

#include <cstddef>
#include <cstdint>
#include <span>

namespace engine {

/// Makes the sector at `address` (a logical block address; 0 lies two seconds into the disc, negative ones in
/// the first pre-gap) from a block's user data, which has bytesPerBlock(form) bytes: sync, header, subheader,
/// error codes. Audio and raw sectors are copied as they are.
void encodeSector(BlockForm form, int64_t address, std::span<const std::byte> user,
                  std::span<std::byte, sectorBytes> sector) noexcept;

/// A block that nobody produced: zeros, and in a whole sector all that an empty one of its mode has at that address.
void makeEmptyBlock(BlockForm form, int64_t address, std::span<std::byte> block) noexcept;

/// Where the user data of a block begins in its sector.
size_t userDataOffset(BlockForm form) noexcept;

/// Makes zeros of what no medium keeps: of Mixed blocks of form 1 the bytes behind their data, which only fill the room
/// of form 2. So what a producer gives compares with what is read back. Whole blocks; other forms stay as they are.
void clearPadding(BlockForm form, std::span<std::byte> blocks) noexcept;

/// Gives XA blocks their right codes, whatever a producer put there: the medium makes them, so what it gives compares with
/// what is read back. Whole blocks; other forms stay as they are.
void completeCodes(BlockForm form, std::span<std::byte> blocks) noexcept;

/// Whether sync, header (address included) and error detection code are those of a sector of that form;
/// always true for audio.
bool isIntactSector(BlockForm form, int64_t address, std::span<const std::byte, sectorBytes> sector) noexcept;

/// Whether the codes alone are those of a sector of that form, wherever on a disc it lies; true for what has none.
bool hasIntactCodes(BlockForm form, std::span<const std::byte, sectorBytes> sector) noexcept;

} // namespace engine
