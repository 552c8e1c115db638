// What stands in a cue sheet, before anything is made of it.
#pragma once

#include "Layout.hpp"
#include "images/DiscTexts.hpp"
#include "images/Sheet.hpp"

#include <optional>
#include <string>
#include <vector>

namespace engine {

struct CueFile {
    enum class Kind { LittleEndian, BigEndian, Sound };
    std::string path, name; // found, and as written
    Kind kind;
    size_t line;
    uint64_t length; // bytes, of sound samples
};

struct CueMode {
    std::string_view name;
    uint64_t unitBytes; // of a sector in its file
    BlockForm form;
    uint64_t userAt; // in such a sector
    SessionFormat session = SessionFormat::Plain;
};

struct CueIndex {
    size_t file, track;
    size_t number; // 0 to 99
    uint64_t block;
    size_t line;
};

// Where a session ends in the file of its last track.
struct CueLeadOut {
    size_t file, track;
    uint64_t block;
};

struct CueTrack {
    size_t line;
    const CueMode* mode;
    size_t session;
    SessionFormat format = SessionFormat::Plain;
    std::string isrc;
    bool copyPermitted = false, isCopy = false, preEmphasis = false, fourChannel = false;
    uint64_t preGap = 0, postGap = 0; // silence that is in no file
    SubchannelForm subchannel = SubchannelForm::None;
    std::string subchannelPath; // of a file beside that of the sectors; else they stand behind each sector

    bool isSound() const noexcept { return mode->form == BlockForm::Audio; }
    uint64_t blockBytes() const noexcept { return bytesPerBlock(mode->form, subchannel); }
};

struct CueSheetText {
    std::vector<CueFile> files;
    std::vector<CueTrack> tracks;
    std::vector<CueIndex> indexes; // as they stand in the sheet
    std::vector<CueLeadOut> leadOuts;
    std::string catalogNumber;
    std::vector<uint8_t> packs; // of the file that the sheet names
    DiscTexts texts{0x09};      // English
};

/// Throws Failure for words that mean nothing and for things in a wrong place.
CueSheetText parseCueSheet(const Sheet& sheet);

} // namespace engine
