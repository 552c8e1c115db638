// The description of the medium in a virtual drive, and its journal.
#include "VirtualMedium.hpp"
#include "Failure.hpp"
#include "Files.hpp"
#include "Utf8.hpp"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

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

TrackInfo trackFrom(const Json& object, uint32_t number) {
    if (!object.is_object()) damaged("a track is no object");
    if (member(object, "mode", Json::value_t::string) != "data") damaged("a track has an unknown mode");
    TrackInfo track;
    track.number = number;
    track.startBlock = member(object, "startBlock", Json::value_t::number_unsigned).get<uint64_t>();
    track.blocks = member(object, "blocks", Json::value_t::number_unsigned).get<uint64_t>();
    if (object.contains("volumeName")) track.volumeName = member(object, "volumeName", Json::value_t::string);
    return track;
}

std::vector<SessionInfo> sessionsFrom(const Json& list) {
    std::vector<SessionInfo> sessions;
    uint32_t trackNumber = 0;
    for (const Json& each : list) {
        if (!each.is_object()) damaged("a session is no object");
        SessionInfo session;
        session.number = static_cast<uint32_t>(sessions.size() + 1);
        for (const Json& track : member(each, "tracks", Json::value_t::array))
            session.tracks.push_back(trackFrom(track, ++trackNumber));
        sessions.push_back(std::move(session));
    }
    return sessions;
}

MediumState stateFrom(const std::string& text) {
    for (const auto& [state, name] : stateNames)
        if (text == name) return state;
    damaged("\"state\" is " + inQuotes(text));
}

} // namespace

MediumRecord MediumRecord::blank(MediumKind kind, uint64_t capacityBlocks) {
    MediumRecord record;
    record.kind = kind;
    record.capacityBlocks = capacityBlocks != 0 ? capacityBlocks : factsOf(kind).capacityBlocks;
    return record;
}

MediumInfo MediumRecord::info(const std::string& folder) const {
    const MediumFacts& facts = factsOf(kind);
    MediumInfo info;
    info.kind = kind;
    info.state = state;
    info.capacityBlocks = capacityBlocks;
    info.blank = state == MediumState::Blank;
    info.appendable = facts.writable && (info.blank || state == MediumState::Appendable);
    info.overwritable = facts.writable && (info.blank || facts.erasable || facts.overwritable);
    info.erasable = facts.erasable;
    info.sessions = sessions;
    for (const SessionInfo& session : sessions)
        for (const TrackInfo& track : session.tracks)
            info.blocksUsed = std::max(info.blocksUsed, track.startBlock + track.blocks);
    info.blocksFree =
        info.appendable && capacityBlocks > info.blocksUsed ? capacityBlocks - info.blocksUsed : 0;
    info.blocksOverwritable = info.overwritable ? capacityBlocks : 0;
    info.speeds.assign(facts.speeds.begin(), facts.speeds.end());
    if (!image.empty()) info.path = folder + '/' + image;
    return info;
}

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
    if (json.contains("image")) record.image = member(json, "image", Json::value_t::string);
    if (record.image.find('/') != std::string::npos) damaged("its image lies in another folder");
    record.sessions = sessionsFrom(member(json, "sessions", Json::value_t::array));
    if (record.state == MediumState::Complete && record.image.empty())
        damaged("it is complete but has no image");
    return record;
}

void saveMedium(int folder, const MediumRecord& record) {
    Json json;
    json["format"] = 1;
    json["kind"] = factsOf(record.kind).name;
    json["capacityBlocks"] = record.capacityBlocks;
    for (const auto& [state, name] : stateNames)
        if (state == record.state) json["state"] = name;
    if (!record.image.empty()) json["image"] = record.image;
    json["sessions"] = Json::array();
    for (const SessionInfo& session : record.sessions) {
        Json tracks = Json::array();
        for (const TrackInfo& track : session.tracks) {
            tracks.push_back({{"mode", "data"}, {"startBlock", track.startBlock}, {"blocks", track.blocks}});
            if (!track.volumeName.empty()) tracks.back()["volumeName"] = track.volumeName;
        }
        json["sessions"].push_back({{"tracks", std::move(tracks)}});
    }
    replaceSmallFile(folder, names::medium, json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n');
}

void commitNewImage(int folder, MediumRecord record) {
    record.image = names::newImage;
    saveMedium(folder, record);
    if (::renameat(folder, names::newImage, folder, names::image) != 0)
        fail(ErrorCode::MediaWriteFailure, "The medium's image can't be put in its place.",
             systemText(errno));
    record.image = names::image;
    saveMedium(folder, record);
}

void recoverMedium(int folder) {
    ::unlinkat(folder, (std::string(names::medium) + ".new").c_str(), 0);
    auto record = loadMedium(folder);
    if (!record || record->image != names::newImage) {
        ::unlinkat(folder, names::newImage, 0);
        // A write-once burn that was cut off before its medium was marked has written nothing.
        if (record && record->image.empty()) ::unlinkat(folder, names::image, 0);
        return;
    }
    if (::renameat(folder, names::newImage, folder, names::image) != 0 && errno != ENOENT)
        fail(ErrorCode::MediaWriteFailure, "The medium's image can't be put in its place.",
             systemText(errno));
    record->image = names::image;
    saveMedium(folder, *record);
}

} // namespace engine
