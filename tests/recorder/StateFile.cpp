// The recorder's state as a text file.
#include "Disc.hpp"

#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>

namespace recorder {
namespace {

using Json = nlohmann::json;

std::string hex(const Data& bytes) {
    std::string text;
    for (const uint8_t byte : bytes) {
        char pair[3];
        std::snprintf(pair, sizeof pair, "%02x", byte);
        text += pair;
    }
    return text;
}

Data fromHex(const std::string& text) {
    Data bytes;
    for (size_t at = 0; at + 1 < text.size(); at += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoi(text.substr(at, 2), nullptr, 16)));
    return bytes;
}

constexpr const char* modeNames[] = {"audio", "mode1", "mode2", "form1", "form2"};

Json written(const Track& track) {
    return {{"number", track.number},     {"session", track.session},
            {"start", track.start},       {"written", track.written},
            {"size", track.size},         {"mode", modeNames[static_cast<size_t>(track.mode)]},
            {"control", track.control},   {"closed", track.closed},
            {"reserved", track.reserved}, {"pregap", track.pregap},
            {"isrc", track.isrc}};
}

Track readTrack(const Json& json) {
    Track track;
    track.number = json.at("number");
    track.session = json.at("session");
    track.start = json.at("start");
    track.written = json.at("written");
    track.size = json.at("size");
    for (size_t index = 0; index < std::size(modeNames); ++index)
        if (json.at("mode") == modeNames[index]) track.mode = static_cast<SectorMode>(index);
    track.control = json.at("control");
    track.closed = json.at("closed");
    track.reserved = json.at("reserved");
    track.pregap = json.at("pregap");
    track.isrc = json.at("isrc");
    return track;
}

Faults readFaults(const Json& json) {
    Faults faults;
    faults.readErrors = json.value("readErrors", faults.readErrors);
    faults.notWritten = json.value("notWritten", faults.notWritten);
    faults.writeErrors = json.value("writeErrors", faults.writeErrors);
    faults.powerCalibration = json.value("powerCalibration", false);
    faults.goneAfterWrites = json.value("goneAfterWrites", int64_t{-1});
    faults.busyEveryWrites = json.value("busyEveryWrites", int64_t{0});
    faults.flipOnWrite = json.value("flipOnWrite", int64_t{-1});
    faults.slowWrites = json.value("slowWrites", int64_t{0});
    faults.stuckTray = json.value("stuckTray", false);
    faults.busyFor = json.value("busyFor", faults.busyFor);
    faults.goneWhileBusy = json.value("goneWhileBusy", false);
    faults.writeSense = json.value("writeSense", faults.writeSense);
    faults.claimsIncremental = json.value("claimsIncremental", false);
    return faults;
}

Json written(const Faults& faults) {
    return {{"readErrors", faults.readErrors},
            {"notWritten", faults.notWritten},
            {"writeErrors", faults.writeErrors},
            {"powerCalibration", faults.powerCalibration},
            {"goneAfterWrites", faults.goneAfterWrites},
            {"busyEveryWrites", faults.busyEveryWrites},
            {"flipOnWrite", faults.flipOnWrite},
            {"slowWrites", faults.slowWrites},
            {"stuckTray", faults.stuckTray},
            {"busyFor", faults.busyFor},
            {"goneWhileBusy", faults.goneWhileBusy},
            {"writeSense", faults.writeSense},
            {"claimsIncremental", faults.claimsIncremental}};
}

} // namespace

State loadState(const std::string& folder) {
    State state;
    Json json = Json::parse(std::ifstream(folder + "/recorder.json"));
    state.vendor = json.value("vendor", state.vendor);
    state.product = json.value("product", state.product);
    state.revision = json.value("revision", state.revision);
    state.serial = json.value("serial", state.serial);
    state.trayOpen = json.value("trayOpen", false);
    state.locked = json.value("locked", false);
    state.gone = json.value("gone", false);
    state.attention = json.value("attention", false);
    state.canWrite = json.value("canWrite", true);
    state.forbidden = json.value("forbidden", false);
    state.attachment = json.value("attachment", 0);
    state.canTestWrite = json.value("canTestWrite", true);
    state.canWriteCDRW = json.value("canWriteCDRW", true);
    state.loadingMechanism = json.value("loadingMechanism", 1);
    state.canEject = json.value("canEject", true);
    state.mountedAt = json.value("mountedAt", "");
    state.medium = kindNamed(json.value("medium", ""));
    state.capacity = json.value("capacity", state.medium ? state.facts().capacity : 0);
    state.formatted = json.value("formatted", false);
    state.finalised = json.value("finalised", false);
    state.onlyAtOnce = json.value("onlyAtOnce", false);
    state.closedSessions = json.value("closedSessions", 0);
    for (const Json& track : json.value("tracks", Json::array()))
        state.tracks.push_back(readTrack(track));
    state.catalogue = json.value("catalogue", "");
    state.text = fromHex(json.value("text", ""));
    state.writeParameters = fromHex(json.value("writeParameters", ""));
    state.cueSheet = fromHex(json.value("cueSheet", ""));
    state.cuePosition = json.value("cuePosition", int64_t{0});
    state.writeSpeed = json.value("writeSpeed", 0u);
    state.busyPolls = json.value("busyPolls", int64_t{0});
    state.busyTotal = json.value("busyTotal", int64_t{0});
    state.writes = json.value("writes", int64_t{0});
    state.faults = readFaults(json.value("faults", Json::object()));
    return state;
}

void saveState(const std::string& folder, const State& state) {
    Json json = {{"vendor", state.vendor},
                 {"product", state.product},
                 {"revision", state.revision},
                 {"serial", state.serial},
                 {"trayOpen", state.trayOpen},
                 {"locked", state.locked},
                 {"gone", state.gone},
                 {"attention", state.attention},
                 {"canWrite", state.canWrite},
                 {"forbidden", state.forbidden},
                 {"attachment", state.attachment},
                 {"canTestWrite", state.canTestWrite},
                 {"canWriteCDRW", state.canWriteCDRW},
                 {"loadingMechanism", state.loadingMechanism},
                 {"canEject", state.canEject},
                 {"mountedAt", state.mountedAt},
                 {"medium", state.medium ? state.facts().name : ""},
                 {"capacity", state.capacity},
                 {"formatted", state.formatted},
                 {"finalised", state.finalised},
                 {"onlyAtOnce", state.onlyAtOnce},
                 {"closedSessions", state.closedSessions},
                 {"tracks", Json::array()},
                 {"catalogue", state.catalogue},
                 {"text", hex(state.text)},
                 {"writeParameters", hex(state.writeParameters)},
                 {"cueSheet", hex(state.cueSheet)},
                 {"cuePosition", state.cuePosition},
                 {"writeSpeed", state.writeSpeed},
                 {"busyPolls", state.busyPolls},
                 {"busyTotal", state.busyTotal},
                 {"writes", state.writes},
                 {"faults", written(state.faults)}};
    for (const Track& track : state.tracks)
        json["tracks"].push_back(written(track));
    const std::string name = folder + "/recorder.json";
    {
        std::ofstream file(name + ".new", std::ios::binary);
        file << json.dump(1, ' ', false, Json::error_handler_t::replace) << '\n';
    }
    std::rename((name + ".new").c_str(), name.c_str());
}

} // namespace recorder
