// Reads a cue sheet.
#include "CueSheet.hpp"
#include "Sense.hpp"

namespace recorder {
namespace {

// MMC-5, table 526: main data forms, and how many bytes of a block come from the initiator.
Part formOf(uint8_t form) {
    Part part;
    switch (form >> 4) {
    case 0:
        part.mode = SectorMode::Audio;
        break;
    case 1:
        part.mode = SectorMode::Mode1;
        break;
    case 2:
        part.mode = SectorMode::Form1;
        break;
    case 3:
        part.mode = SectorMode::Mode2;
        break;
    default:
        refuse(senses::invalidFieldInParameters);
    }
    switch (form) {
    case 0x00:
    case 0x11:
    case 0x13:
    case 0x21:
    case 0x23:
    case 0x31:
        part.hostBytes = 2352;
        break;
    case 0x10:
    case 0x12:
        part.hostBytes = 2048;
        break;
    case 0x20:
    case 0x22:
    case 0x30:
        part.hostBytes = 2336;
        break;
    case 0x01:
    case 0x14:
    case 0x24:
    case 0x34:
        break;
    default:
        refuse(senses::invalidFieldInParameters);
    }
    return part;
}

constexpr uint8_t leadOut = 0xAA;

} // namespace

CueSheet readCueSheet(View bytes) {
    require(bytes.size() >= 24 && bytes.size() % 8 == 0, senses::invalidFieldInParameters);
    CueSheet sheet;
    bool ended = false;
    for (size_t at = 0; at < bytes.size(); at += 8) {
        const View entry = bytes.subspan(at, 8);
        const uint8_t kind = entry[0] & 0x0F, number = entry[1];
        require(!ended, senses::invalidFieldInParameters);
        if (kind == 2) {
            for (size_t index = 1; index < 8 && sheet.catalogue.size() < 13; ++index)
                sheet.catalogue += static_cast<char>(entry[index]);
            continue;
        }
        if (kind == 3) {
            if (sheet.codes.empty() || sheet.codes.back().first != number)
                sheet.codes.emplace_back(number, "");
            sheet.codes.back().second.append(entry.begin() + 2, entry.end());
            continue;
        }
        require(kind == 1, senses::invalidFieldInParameters);
        if (number == 0) { // lead-in
            require(entry[3] == 0x41 || entry[3] == 0x01 || entry[3] == 0x14 || entry[3] == 0x00 ||
                        entry[3] == 0x10,
                    senses::invalidFieldInParameters);
            if (entry[3] == 0x41) {
                Part text;
                text.from = leadInStart;
                text.hostBytes = 96;
                text.isText = true;
                sheet.parts.push_back(text);
            }
            continue;
        }
        const int64_t address = blockOfTime(entry, 5);
        if (!sheet.parts.empty()) {
            require(address > sheet.parts.back().from, senses::invalidFieldInParameters);
            sheet.parts.back().until = address;
        }
        if (number == leadOut) {
            ended = true;
            continue;
        }
        Part part = formOf(entry[3]);
        part.from = address;
        part.number = number;
        part.index = entry[2];
        part.control = entry[0] >> 4;
        require(((part.control & 4) != 0) == (part.mode != SectorMode::Audio),
                senses::invalidFieldInParameters);
        sheet.parts.push_back(part);
    }
    require(ended && !sheet.parts.empty() && !sheet.parts.back().isText && sheet.firstTrack().index == 0,
            senses::invalidFieldInParameters);
    return sheet;
}

const Part& CueSheet::firstTrack() const noexcept { return parts[hasText() ? 1 : 0]; }

const Part* CueSheet::partAt(int64_t block) const noexcept {
    for (const Part& part : parts)
        if (block >= part.from && block < part.until) return &part;
    return nullptr;
}

} // namespace recorder
