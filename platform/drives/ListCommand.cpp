// disc-drives list, disc-drives show
#include "Commands.hpp"
#include "Describe.hpp"
#include "InUse.hpp"
#include "LeftBehind.hpp"
#include "Sizes.hpp"
#include "Table.hpp"
#include "Utf8.hpp"

#include <cmath>

namespace drives {
namespace {

std::string sizeOfBlocks(uint64_t blocks) { return sizeText(blocks * engine::blockSize); }

std::string stateText(const engine::Drive& drive, const PresentMedium& medium) {
    if (drive.isTrayOpen()) return "tray open";
    if (drive.isBusy()) return "in use";
    if (medium.problem) return "unreadable";
    return medium.info ? nameOf(medium.info->state) : "no medium";
}

std::vector<std::string> rowOf(const Found& found) {
    const bool isInUse = engine::meansInUse(found.problem.code);
    if (!found.drive) return {found.name, "", "", isInUse ? "in use" : "unusable", "", ""};
    const PresentMedium medium = mediumIn(*found.drive);
    std::vector<std::string> row = {found.name, found.drive->displayName(), "",
                                    stateText(*found.drive, medium)};
    if (medium.info) {
        row[2] = engine::factsOf(medium.info->kind).name;
        row.push_back(sizeOfBlocks(medium.info->blocksUsed));
        row.push_back(sizeOfBlocks(medium.info->blocksFree));
    }
    return row;
}

std::string speedsText(const engine::MediumInfo& medium) {
    std::string text;
    for (const double speed : medium.speeds)
        text += (text.empty() ? "" : ", ") +
                std::to_string(engine::xFactorOf(speed, engine::factsOf(medium.kind).mediumClass)) + 'x';
    return text.empty() ? "read only" : text;
}

void addFact(std::string& text, const std::string& name, const std::string& value) {
    if (value.empty()) return;
    text += "  " + name + std::string(name.size() < 12 ? 12 - name.size() : 0, ' ') +
            engine::printable(value) + '\n';
}

std::string possibilities(const engine::MediumInfo& medium) {
    std::string text;
    const auto add = [&](bool is, const char* what) {
        if (is) text += (text.empty() ? "can be " : ", ") + std::string(what);
    };
    add(medium.appendable, medium.blank ? "written" : "appended to");
    add(medium.overwritable && !medium.blank, "overwritten");
    add(medium.erasable, "erased");
    return text.empty() ? "can only be read" : text;
}

std::string modeText(const engine::TrackInfo& track) {
    return nameOf(track) + (track.subchannel == engine::SubchannelForm::None ? "" : ", subchannel");
}

void describeMedium(std::string& text, const engine::MediumInfo& medium) {
    addFact(text, "Medium",
            std::string(engine::factsOf(medium.kind).name) + ", " + nameOf(medium.state) + ", " +
                possibilities(medium));
    addFact(text, "Room",
            sizeOfBlocks(medium.blocksUsed) + " used, " + sizeOfBlocks(medium.blocksFree) + " free, " +
                sizeOfBlocks(medium.capacityBlocks) + " in all");
    addFact(text, "Speeds", speedsText(medium));
    addFact(text, "File", medium.path);
    if (medium.state == engine::MediumState::Incomplete)
        addFact(text, "", "A burn was cut off or failed: what is on this medium can't be trusted.");
    if (medium.sessions.empty()) return;
    Table table({{"Session", Table::Align::Right},
                 {"Track", Table::Align::Right},
                 {"Mode"},
                 {"First block", Table::Align::Right},
                 {"Blocks", Table::Align::Right},
                 {"Size", Table::Align::Right},
                 {"Volume"}});
    for (const engine::SessionInfo& session : medium.sessions)
        for (const engine::TrackInfo& track : session.tracks)
            table.add({std::to_string(session.number), std::to_string(track.number), modeText(track),
                       std::to_string(track.startBlock), std::to_string(track.blocks),
                       sizeText(track.blocks * engine::bytesPerBlock(track.form)), track.volumeName});
    text += '\n' + table.text();
}

std::string description(const Found& found) {
    std::string text = engine::printable(found.name) + '\n';
    if (!found.drive) {
        addFact(text, "Unusable", found.problem.message);
        return text;
    }
    const engine::DriveIdentity& who = found.drive->identity();
    addFact(text, "Drive",
            found.drive->displayName() + (who.firmwareRevision.empty() ? "" : ", revision ") +
                who.firmwareRevision);
    addFact(text, who.isVirtual ? "Folder" : "Device", who.id);
    addFact(text, "Tray", found.drive->isTrayOpen() ? "open" : "closed");
    if (found.drive->isBusy()) addFact(text, "In use", "a program writes, or keeps the drive for itself");
    const PresentMedium medium = mediumIn(*found.drive);
    if (medium.problem) addFact(text, "Medium", medium.problem->message);
    if (medium.info) describeMedium(text, *medium.info);
    if (!medium.info && !medium.problem) addFact(text, "Medium", "none");
    return text;
}

void printAll(const std::vector<Found>& all) {
    Json list = Json::array();
    for (const Found& each : all)
        list.push_back(jsonOf(each));
    printJson(Json{{"drives", std::move(list)}});
}

} // namespace

int listDrives(const Common& common) {
    clearDrivesFolder();
    const std::vector<Found> all = allDrives();
    if (common.json) {
        printAll(all);
        return 0;
    }
    if (all.empty()) {
        print("There is no drive; make one with \"disc-drives create NAME\".\n");
        return 0;
    }
    Table table({{"Name"},
                 {"Drive"},
                 {"Medium"},
                 {"State"},
                 {"Used", Table::Align::Right},
                 {"Free", Table::Align::Right}});
    for (const Found& each : all)
        table.add(rowOf(each));
    std::string text = table.text();
    for (const Found& each : all)
        if (!each.drive) text += '\n' + engine::printable(each.problem.message);
    if (text.back() != '\n') text += '\n';
    print(text);
    return 0;
}

int showDrives(const Common& common, const std::string& name) {
    const std::vector<Found> all = name.empty() ? allDrives() : std::vector{driveNamed(name)};
    if (common.json) {
        printAll(all);
        return 0;
    }
    if (all.empty()) print("There is no drive; make one with \"disc-drives create NAME\".\n");
    for (size_t index = 0; index < all.size(); ++index)
        print((index > 0 ? "\n" : "") + description(all[index]));
    return 0;
}

} // namespace drives
