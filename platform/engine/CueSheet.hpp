// The cue sheet beside a medium that is not only data: how other programs find its tracks.
#pragma once

#include "VirtualMedium.hpp"

#include <string>

namespace engine {

/// The text of the sheet. `packs` is the disc's CD-Text; titles and performers of its first block are repeated
/// in words, because most readers know only those.
std::string cueSheetOf(const MediumRecord& record, std::span<const uint8_t> packs);

/// Writes the sheet of a record that has one, when it isn't there as it should be. Throws MediaWriteFailure.
void updateCueSheet(int folder, const MediumRecord& record);

} // namespace engine
