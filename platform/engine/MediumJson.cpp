// medium.json as text: what is written is read, what is damaged is said.
#include "CueSheet.hpp"
#include "Failure.hpp"
#include "Files.hpp"
#include "Utf8.hpp"
#include "VirtualMedium.hpp"

#include <array>
#include <charconv>
#include <cinttypes>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace engine {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::pair<MediumState, const char*> stateNames[] = {
    {MediumState::Blank, "blank"},
    {MediumState::Appendable, "appendable"},
    {MediumState::Complete, "complete"},
    {MediumState::Incomplete, "incomplete"},
};

[[noreturn]] void damaged(const std::string& what) {
    fail(ErrorCode::MediaInvalid,
         "The medium can't be used, because its description medium.json is damaged: " + what + ".", what);
}

const Json& member(const Json& object, const char* name, Json::value_t type) {
    const auto found = object.find(name);
    if (found == object.end()) damaged(std::string("\"") + name + "\" is missing");
    const bool number =
        type == Json::value_t::number_unsigned && found->is_number_integer() && found->get<int64_t>() >= 0;
    if (found->type() != type && !number) damaged(std::string("\"") + name + "\" is of the wrong type");
    return *found;
}

template <typename Number>
Number numberIn(const Json& object, const char* name) {
    return member(object, name, Json::value_t::number_unsigned).get<Number>();
}

std::string textIn(const Json& object, const char* name) {
    return object.contains(name) ? member(object, name, Json::value_t::string).get<std::string>()
                                 : std::string();
}

bool isWhole(const Json& object) {
    return !object.contains("complete") || member(object, "complete", Json::value_t::boolean).get<bool>();
}

// No file of a medium lies in another folder.
std::string fileIn(const Json& object, const char* name, const char* complaint) {
    std::string file = textIn(object, name);
    if (file.find('/') != std::string::npos) damaged(complaint);
    return file;
}

constexpr std::pair<bool TrackInfo::*, const char*> flagNames[] = {
    {&TrackInfo::preEmphasis, "pre-emphasis"},
    {&TrackInfo::fourChannel, "four channels"},
    {&TrackInfo::copyPermitted, "copy permitted"},
    {&TrackInfo::isCopy, "copy"},
    {&TrackInfo::isCDI, "CD-I"},
};

constexpr size_t sumDigits = 16;

std::string textOfSum(uint64_t sum) {
    std::array<char, sumDigits + 1> text{};
    std::snprintf(text.data(), text.size(), "%016" PRIx64, sum);
    return text.data();
}

std::optional<uint64_t> sumIn(const Json& object) {
    const std::string text = textIn(object, "xxh3");
    if (text.empty()) return std::nullopt;
    uint64_t sum = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), sum, 16);
    if (text.size() != sumDigits || problem != std::errc() || end != text.data() + text.size())
        damaged("a track's sum is no number of 16 digits");
    return sum;
}

TrackInfo trackFrom(const Json& object, uint32_t number, const std::string& image) {
    if (!object.is_object()) damaged("a track is no object");
    const auto form =
        blockFormNamed(member(object, "mode", Json::value_t::string).get_ref<const std::string&>());
    if (!form) damaged("a track has an unknown mode");
    TrackInfo track;
    track.number = number;
    track.form = *form;
    track.startBlock = numberIn<uint64_t>(object, "startBlock");
    track.blocks = numberIn<uint64_t>(object, "blocks");
    track.volumeName = textIn(object, "volumeName");
    if (object.contains("preGapBlocks")) track.preGapBlocks = numberIn<uint64_t>(object, "preGapBlocks");
    track.isrc = textIn(object, "isrc");
    if (object.contains("indexPoints"))
        for (const Json& point : member(object, "indexPoints", Json::value_t::array)) {
            if (!point.is_number_unsigned()) damaged("an index point is no number");
            track.indexPoints.push_back(point.get<uint64_t>());
        }
    if (object.contains("flags"))
        for (const Json& flag : member(object, "flags", Json::value_t::array))
            for (const auto& [which, name] : flagNames)
                if (flag == name) track.*which = true;
    track.isComplete = isWhole(object);
    track.sum = sumIn(object);
    track.file = fileIn(object, "file", "a track's file lies in another folder");
    if (track.file.empty()) {
        track.file = image;
        track.fileOffset = track.startBlock * blockSize;
    } else {
        track.fileOffset = object.contains("fileOffset") ? numberIn<uint64_t>(object, "fileOffset") : 0;
    }
    if (const std::string name = textIn(object, "subchannel"); !name.empty()) {
        const auto subchannel = subchannelFormNamed(name);
        if (!subchannel) damaged("a track's subchannel data are of an unknown form");
        track.subchannel = *subchannel;
        track.subchannelFile =
            fileIn(object, "subchannelFile", "a track's subchannel data lie in another folder");
        if (track.subchannelFile.empty() != (*subchannel == SubchannelForm::None))
            damaged("a track's subchannel data are in no file");
    }
    return track;
}

std::vector<SessionInfo> sessionsFrom(const Json& list, const std::string& image) {
    std::vector<SessionInfo> sessions;
    uint32_t trackNumber = 0;
    for (const Json& each : list) {
        if (!each.is_object()) damaged("a session is no object");
        SessionInfo session;
        session.number = static_cast<uint32_t>(sessions.size() + 1);
        session.isClosed = isWhole(each);
        for (const Json& track : member(each, "tracks", Json::value_t::array))
            session.tracks.push_back(trackFrom(track, ++trackNumber, image));
        sessions.push_back(std::move(session));
    }
    return sessions;
}

Json jsonOf(const TrackInfo& track, const std::string& image) {
    Json json = {{"mode", nameOf(track.form)}, {"startBlock", track.startBlock}, {"blocks", track.blocks}};
    if (!track.volumeName.empty()) json["volumeName"] = track.volumeName;
    if (track.preGapBlocks > 0) json["preGapBlocks"] = track.preGapBlocks;
    if (!track.isrc.empty()) json["isrc"] = track.isrc;
    if (!track.indexPoints.empty()) json["indexPoints"] = track.indexPoints;
    for (const auto& [which, name] : flagNames)
        if (track.*which) json["flags"].push_back(name);
    if (track.sum) json["xxh3"] = textOfSum(*track.sum);
    if (!track.isComplete) json["complete"] = false;
    if (!track.file.empty() && track.file != image) {
        json["file"] = track.file;
        json["fileOffset"] = track.fileOffset;
    }
    if (track.subchannel != SubchannelForm::None) {
        json["subchannel"] = nameOf(track.subchannel);
        json["subchannelFile"] = track.subchannelFile;
    }
    return json;
}

MediumState stateFrom(const std::string& text) {
    for (const auto& [state, name] : stateNames)
        if (text == name) return state;
    damaged("\"state\" is " + inQuotes(text));
}

} // namespace

std::optional<MediumRecord> loadMedium(int folder) {
    const auto bytes = readSmallFile(folder, names::medium);
    if (!bytes) return std::nullopt;
    const Json json = Json::parse(*bytes, nullptr, false);
    if (json.is_discarded() || !json.is_object()) damaged("it is not JSON");
    if (member(json, "format", Json::value_t::number_unsigned) != 1)
        damaged("its format is of a later version");
    MediumRecord record;
    const std::string kind = member(json, "kind", Json::value_t::string);
    const auto known = mediumKindNamed(kind);
    if (!known) damaged("no medium is of the kind " + inQuotes(kind));
    record.kind = *known;
    record.capacityBlocks = member(json, "capacityBlocks", Json::value_t::number_unsigned).get<uint64_t>();
    record.state = stateFrom(member(json, "state", Json::value_t::string));
    record.image = fileIn(json, "image", "its image lies in another folder");
    record.cdText = fileIn(json, "cdText", "its CD-Text lies in another folder");
    record.mediaCatalogNumber = textIn(json, "mediaCatalogNumber");
    if (json.contains("doubleLayerL0DataZoneBlocks"))
        record.doubleLayerL0DataZoneBlocks = numberIn<uint64_t>(json, "doubleLayerL0DataZoneBlocks");
    record.sessions = sessionsFrom(member(json, "sessions", Json::value_t::array), record.image);
    if (record.state == MediumState::Complete && record.image.empty())
        damaged("it is complete but has no image");
    return record;
}

namespace {

std::string textOf(const MediumRecord& record) {
    Json json;
    json["format"] = 1;
    json["kind"] = factsOf(record.kind).name;
    json["capacityBlocks"] = record.capacityBlocks;
    for (const auto& [state, name] : stateNames)
        if (state == record.state) json["state"] = name;
    if (!record.image.empty()) json["image"] = record.image;
    if (!record.mediaCatalogNumber.empty()) json["mediaCatalogNumber"] = record.mediaCatalogNumber;
    if (!record.cdText.empty()) json["cdText"] = record.cdText;
    if (record.doubleLayerL0DataZoneBlocks)
        json["doubleLayerL0DataZoneBlocks"] = *record.doubleLayerL0DataZoneBlocks;
    json["sessions"] = Json::array();
    for (const SessionInfo& session : record.sessions) {
        Json tracks = Json::array();
        for (const TrackInfo& track : session.tracks)
            tracks.push_back(jsonOf(track, record.image));
        json["sessions"].push_back({{"tracks", std::move(tracks)}});
        if (!session.isClosed) json["sessions"].back()["complete"] = false;
    }
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

} // namespace

void saveMedium(int folder, const MediumRecord& record) {
    replaceSmallFile(folder, names::medium, textOf(record));
    updateCueSheet(folder, record);
}

bool isSaved(int folder, const MediumRecord& record) {
    const auto bytes = guarded([&] { return readSmallFile(folder, names::medium); });
    return bytes && *bytes == textOf(record);
}

} // namespace engine
