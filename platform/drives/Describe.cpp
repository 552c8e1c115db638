// Drives and media in words, and as JSON.
#include "Describe.hpp"
#include "Sizes.hpp"

#include <cstdio>

namespace drives {

PresentMedium mediumIn(const engine::Drive& drive) {
    PresentMedium present;
    auto read = drive.readMedium();
    if (!read) {
        present.problem = read.error();
    } else {
        present.info = *std::move(read);
    }
    // The platform sees no medium on an open tray; a person does.
    const auto* folder = dynamic_cast<const engine::VirtualDrive*>(&drive);
    if (!present.info && !present.problem && folder != nullptr && drive.isTrayOpen()) {
        const auto record = engine::guarded([&] { return engine::loadMedium(folder->folder()); });
        if (!record) present.problem = record.error();
        if (record && *record) present.info = (*record)->info(folder->path());
    }
    return present;
}

std::string nameOf(engine::MediumState state) {
    switch (state) {
    case engine::MediumState::Blank:
        return "blank";
    case engine::MediumState::Appendable:
        return "appendable";
    case engine::MediumState::Complete:
        return "complete";
    case engine::MediumState::Incomplete:
        return "incomplete";
    }
    return "";
}

std::string nameOf(const engine::TrackInfo& track) { return std::string(engine::nameOf(track.form)); }

std::string whatItHolds(const engine::MediumInfo& medium, const std::string& drive) {
    const std::string which =
        "The " + std::string(engine::factsOf(medium.kind).name) + " in " + engine::inQuotes(drive);
    // Of a session that nobody closed the disc doesn't tell how much it holds.
    if (medium.blocksUsed == 0) return which + " is not blank.";
    return which + " holds " + sizeText(medium.blocksUsed * engine::blockSize) + '.';
}

Json jsonOf(const engine::Error& error) {
    return {{"code", static_cast<int32_t>(error.code)}, {"message", error.message}, {"info", error.info}};
}

Json jsonOf(const engine::MediumInfo& medium) {
    Json sessions = Json::array();
    for (const engine::SessionInfo& session : medium.sessions) {
        Json tracks = Json::array();
        for (const engine::TrackInfo& track : session.tracks)
            tracks.push_back({{"number", track.number},
                              {"mode", nameOf(track)},
                              {"startBlock", track.startBlock},
                              {"blocks", track.blocks},
                              {"preGapBlocks", track.preGapBlocks},
                              {"volumeName", track.volumeName},
                              {"isrc", track.isrc},
                              {"indexPoints", track.indexPoints},
                              {"subchannel", engine::nameOf(track.subchannel)},
                              {"complete", track.isComplete}});
        sessions.push_back(
            {{"number", session.number}, {"complete", session.isClosed}, {"tracks", std::move(tracks)}});
    }
    const engine::MediumFacts& facts = engine::factsOf(medium.kind);
    return {{"kind", facts.name},
            {"class", engine::nameOf(facts.mediumClass)},
            {"state", nameOf(medium.state)},
            {"capacityBlocks", medium.capacityBlocks},
            {"usedBlocks", medium.blocksUsed},
            {"freeBlocks", medium.blocksFree},
            {"overwritableBlocks", medium.blocksOverwritable},
            {"appendable", medium.appendable},
            {"overwritable", medium.overwritable},
            {"erasable", medium.erasable},
            {"speeds", medium.speeds},
            {"path", medium.path},
            {"mediaCatalogNumber", medium.mediaCatalogNumber},
            {"hasCDText", medium.hasCDText},
            {"sessions", std::move(sessions)}};
}

Json jsonOf(const Found& found) {
    if (!found.drive) return {{"name", found.name}, {"usable", false}, {"problem", jsonOf(found.problem)}};
    const engine::DriveIdentity& who = found.drive->identity();
    const PresentMedium medium = mediumIn(*found.drive);
    Json json = {{"name", found.name},
                 {"usable", true},
                 {"id", who.id},
                 {"displayName", found.drive->displayName()},
                 {"vendor", who.vendor},
                 {"product", who.product},
                 {"firmwareRevision", who.firmwareRevision},
                 {"virtual", who.isVirtual},
                 {"trayOpen", found.drive->isTrayOpen()},
                 {"busy", found.drive->isBusy()},
                 {"medium", nullptr}};
    if (medium.info) json["medium"] = jsonOf(*medium.info);
    if (medium.problem) json["problem"] = jsonOf(*medium.problem);
    return json;
}

void printJson(const Json& json) { print(json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n'); }

void print(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
        engine::fail(engine::ErrorCode::Internal, "The output can't be written.");
}

} // namespace drives
