// A cue sheet: what a session written at once will hold, block by block (MMC-5, 6.39).
#pragma once

#include "Disc.hpp"

namespace recorder {

/// Blocks of one kind, from one entry of the sheet to the next.
struct Part {
    int64_t from = 0, until = 0;
    int number = 0, index = 0;
    SectorMode mode = SectorMode::Audio;
    uint8_t control = 0;
    size_t hostBytes = 0; ///< that the initiator sends for each block; 0: the drive makes zeros
    bool isText = false;  ///< lead-in with CD-Text: 96 bytes of sub-channel for each block
};

struct CueSheet {
    std::vector<Part> parts;
    std::string catalogue;
    std::vector<std::pair<int, std::string>> codes; ///< recording codes by track

    bool hasText() const noexcept { return !parts.empty() && parts.front().isText; }
    const Part* partAt(int64_t block) const noexcept;
    const Part& firstTrack() const noexcept; ///< its pregap, that is
    int64_t end() const noexcept { return parts.back().until; }
};

/// Refuses what is no cue sheet, or one of forms that this recorder doesn't write.
CueSheet readCueSheet(View bytes);

/// Where the lead-in of the first session begins, as the groove says.
inline constexpr int64_t leadInStart = -11700;

} // namespace recorder
