// The cue sheet of a medium.
#include "CueSheet.hpp"
#include "CDText.hpp"
#include "Files.hpp"
#include "SessionPlaces.hpp"

#include <algorithm>
#include <array>
#include <cstdio>

namespace engine {
namespace {

std::string timeOf(uint64_t blocks) {
    std::array<char, 32> text{};
    std::snprintf(
        text.data(), text.size(), "%02llu:%02llu:%02llu", static_cast<unsigned long long>(blocks / 4500),
        static_cast<unsigned long long>(blocks / 75 % 60), static_cast<unsigned long long>(blocks % 75));
    return text.data();
}

std::string twoDigits(uint64_t number) {
    const std::string text = std::to_string(number);
    return text.size() < 2 ? "0" + text : text;
}

std::string utf8Of(std::u16string_view text) {
    std::string bytes;
    for (const char16_t unit : text) {
        // Characters of a disc's text all lie in the basic plane.
        if (unit < 0x80) {
            bytes += static_cast<char>(unit);
        } else if (unit < 0x800) {
            bytes += static_cast<char>(0xC0 | unit >> 6);
            bytes += static_cast<char>(0x80 | (unit & 0x3F));
        } else {
            bytes += static_cast<char>(0xE0 | unit >> 12);
            bytes += static_cast<char>(0x80 | (unit >> 6 & 0x3F));
            bytes += static_cast<char>(0x80 | (unit & 0x3F));
        }
    }
    return bytes;
}

// The sheet's texts stand between quotes and know no way to write one.
std::string quoted(std::string text) {
    std::replace(text.begin(), text.end(), '"', '\'');
    std::replace_if(
        text.begin(), text.end(), [](char each) { return each == '\n' || each == '\r'; }, ' ');
    return '"' + text + '"';
}

void addTexts(std::string& sheet, const std::vector<CDTextBlock>& blocks, size_t track,
              const std::string& indent) {
    if (blocks.empty()) return;
    constexpr std::pair<CDTextType, const char*> words[] = {{CDTextType::Title, "TITLE"},
                                                            {CDTextType::Performer, "PERFORMER"},
                                                            {CDTextType::Songwriter, "SONGWRITER"}};
    for (const auto& [type, word] : words) {
        const auto texts = blocks.front().texts.find(type);
        if (texts == blocks.front().texts.end() || texts->second.size() <= track) continue;
        const std::string text = utf8Of(cdTextDecoded(texts->second[track], blocks.front().characters));
        if (!text.empty()) sheet += indent + word + ' ' + quoted(text) + '\n';
    }
}

const char* modeOf(const TrackInfo& track, bool isSectors) {
    switch (track.form) {
    case BlockForm::Audio:
        return "AUDIO";
    case BlockForm::Data:
        return isSectors ? "MODE1/2352" : "MODE1/2048";
    case BlockForm::RawMode1:
        return "MODE1/2352";
    default:
        // Deliberate for CD-I, too: the usual readers refuse a sheet with the mode CDI/2352, and the sectors are the
        // same. A remark says what the session is.
        return "MODE2/2352";
    }
}

// What the mode does not say: this engine's reader takes such a remark back, so that a copy's blocks are what the
// original's were.
std::string remarkOf(BlockForm form) {
    if (form == BlockForm::Audio || form == BlockForm::Data || form == BlockForm::Mode2) return {};
    return "    REM BLOCK-FORM " + std::string(nameOf(form)) + '\n';
}

std::string flagsOf(const TrackInfo& track) {
    std::string flags;
    if (track.copyPermitted) flags += " DCP";
    if (track.fourChannel) flags += " 4CH";
    if (track.preEmphasis) flags += " PRE";
    if (track.isCopy) flags += " SCMS";
    return flags;
}

void addTrack(std::string& sheet, const TrackInfo& track, bool isFirst, bool isSectors,
              const std::vector<CDTextBlock>& texts) {
    const uint64_t start = track.fileOffset / (isSectors ? sectorBytes : blockSize);
    // The usual pre-gap of a session's first track is in no file.
    const uint64_t unkept = isFirst ? std::min(unkeptPreGap, track.preGapBlocks) : 0;
    const uint64_t preGap = isSectors ? track.preGapBlocks - unkept : 0;
    sheet += "  TRACK " + twoDigits(track.number) + ' ' + modeOf(track, isSectors) + '\n';
    sheet += remarkOf(track.form);
    addTexts(sheet, texts, track.number, "    ");
    if (const std::string flags = flagsOf(track); !flags.empty()) sheet += "    FLAGS" + flags + '\n';
    if (!track.isrc.empty()) sheet += "    ISRC " + track.isrc + '\n';
    // For who copies the disc by its sheet; other programs read the sectors as if there were nothing beside them.
    if (track.subchannel != SubchannelForm::None)
        sheet += "    REM SUBCHANNEL " +
                 std::string(track.subchannel == SubchannelForm::Raw ? "RAW " : "PACK ") +
                 quoted(track.subchannelFile) + '\n';
    if (preGap > 0) sheet += "    INDEX 00 " + timeOf(start - preGap) + '\n';
    sheet += "    INDEX 01 " + timeOf(start) + '\n';
    for (size_t index = 0; index < track.indexPoints.size(); ++index)
        sheet += "    INDEX " + twoDigits(index + 2) + ' ' + timeOf(start + track.indexPoints[index]) + '\n';
}

} // namespace

std::string cueSheetOf(const MediumRecord& record, std::span<const uint8_t> packs) {
    std::vector<CDTextBlock> texts;
    if (auto read = cdTextFromPacks(packs); !packs.empty() && read) texts = std::move(*read);
    std::string sheet;
    if (!record.mediaCatalogNumber.empty()) sheet += "CATALOG " + record.mediaCatalogNumber + '\n';
    if (!record.cdText.empty()) sheet += "CDTEXTFILE " + quoted(record.cdText) + '\n';
    addTexts(sheet, texts, 0, "");
    std::string file;
    uint64_t end = 0; // of the track before, in its file
    for (const SessionInfo& session : record.sessions) {
        // Else what lies between two sessions in their file would be of the track before.
        if (!session.tracks.empty() && session.tracks.front().file == file)
            sheet += "REM LEAD-OUT " + timeOf(end) + '\n';
        if (record.sessions.size() > 1) sheet += "REM SESSION " + twoDigits(session.number) + '\n';
        if (!session.tracks.empty() && session.tracks.front().isCDI) sheet += "REM SESSION-FORMAT CD-I\n";
        for (const TrackInfo& track : session.tracks) {
            if (track.file != file) sheet += "FILE " + quoted(track.file) + " BINARY\n";
            file = track.file;
            addTrack(sheet, track, &track == &session.tracks.front(), file != names::image, texts);
            end = track.fileOffset / (file != names::image ? sectorBytes : blockSize) + track.blocks;
        }
    }
    return sheet;
}

void updateCueSheet(int folder, const MediumRecord& record) {
    if (!record.isSheet()) return;
    const auto packs = record.cdText.empty() ? std::nullopt : readSmallFile(folder, record.cdText);
    const std::span<const uint8_t> bytes =
        packs ? std::span(reinterpret_cast<const uint8_t*>(packs->data()), packs->size())
              : std::span<const uint8_t>();
    const std::string sheet = cueSheetOf(record, bytes);
    if (readSmallFile(folder, names::sheet) != sheet) replaceSmallFile(folder, names::sheet, sheet);
}

} // namespace engine
