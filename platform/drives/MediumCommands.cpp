// disc-drives insert, eject, export, blank-medium, open, close
#include "Asked.hpp"
#include "Commands.hpp"
#include "Console.hpp"
#include "Describe.hpp"
#include "MediumFiles.hpp"
#include "MediumNames.hpp"
#include "Utf8.hpp"

#include <filesystem>

namespace drives {
namespace {

namespace fs = std::filesystem;
using engine::ErrorCode;
using engine::fail;
using engine::inQuotes;

std::string kindOf(const engine::MediumRecord& record) {
    return std::string(engine::factsOf(record.kind).name);
}

// Ends with what there is now: a sentence for people, the drive for programs.
int finish(const Common& common, const std::string& name, const std::string& sentence) {
    if (common.json) {
        printJson(jsonOf(driveNamed(name)));
    } else {
        print(sentence + '\n');
    }
    return 0;
}

Found usableDrive(const std::string& name) {
    Found found = driveNamed(name);
    if (!found.drive) throw engine::Failure(found.problem);
    return found;
}

// A link that leads nowhere is there, too.
bool isThere(const fs::path& path) {
    std::error_code ignored;
    return fs::exists(fs::symlink_status(path, ignored));
}

// Asks before a copy of the drive's medium takes the place of a person's files, and answers which may go. The caller has
// the drive for himself.
std::set<std::string> requireConsentToReplace(const Common& common, const engine::VirtualDrive& drive,
                                              const std::string& folder) {
    engine::recoverMedium(drive.folder());
    const auto record = engine::loadMedium(drive.folder());
    if (!record) return {};
    std::vector<std::string> names = dataFilesOf(*record);
    names.insert(names.begin(), engine::names::medium);
    if (common.force) return {names.begin(), names.end()};
    std::string there;
    std::set<std::string> replaceable;
    for (const std::string& name : names) {
        if (!isThere(fs::path(folder) / name)) continue;
        there += (there.empty() ? "" : ", ") + engine::printable(name);
        replaceable.insert(name);
    }
    if (!there.empty())
        requireConsent(false, inQuotes(folder) + " has files of these names: " + there + '.',
                       "Overwrite them");
    return replaceable;
}

} // namespace

int openTray(const Common& common, const std::string& name) {
    const Found found = usableDrive(name);
    take(found.drive->openTray());
    return finish(common, name, "The tray of " + inQuotes(found.name) + " is open.");
}

int closeTray(const Common& common, const std::string& name) {
    const Found found = usableDrive(name);
    take(found.drive->closeTray());
    return finish(common, name, "The tray of " + inQuotes(found.name) + " is closed.");
}

int ejectMedium(const Common& common, const Ejecting& ejecting) {
    const Found found = usableDrive(ejecting.name);
    const bool comesOut = ejecting.discard || !ejecting.takeTo.empty();
    if (!comesOut) {
        take(found.drive->eject());
        const PresentMedium medium = mediumIn(*found.drive);
        return finish(
            common, ejecting.name,
            "The tray of " + inQuotes(found.name) + " is open" +
                (medium.info || medium.problem ? ", with the medium on it." : "; there is no medium."));
    }
    const auto drive = virtualDriveNamed(ejecting.name, "lose its medium to a folder");
    if (!ejecting.takeTo.empty()) requirePlaceOutsideDrives(ejecting.takeTo);
    const PresentMedium medium = mediumIn(*drive);
    if (!medium.info && !medium.problem)
        fail(ErrorCode::MediaNotPresent, "There is no disc in " + inQuotes(found.name) + '.');
    std::optional<Asked> asked;
    if (ejecting.discard) asked.emplace(common, found, "Throw it away");
    const Exclusive mine(*drive);
    if (asked) asked->requireUnchanged();
    if (!ejecting.takeTo.empty()) {
        const auto replaceable = requireConsentToReplace(common, *drive, ejecting.takeTo);
        copyOut(*drive, ejecting.takeTo, replaceable, common.json);
    }
    take(drive->eject());
    takeOutOf(*drive);
    return finish(common, ejecting.name,
                  ejecting.discard
                      ? "The medium in " + inQuotes(found.name) + " is gone; the tray is open."
                      : "The medium lies in " + engine::inQuotes(ejecting.takeTo) + "; the tray is open.");
}

int insertMedium(const Common& common, const Inserting& inserting) {
    const auto drive = virtualDriveNamed(inserting.name, "be given a medium");
    const Found found = driveNamed(inserting.name);
    const std::string& name = found.name;
    const Asked asked(common, found, "Replace it");
    const Exclusive mine(*drive);
    asked.requireUnchanged();
    const Staging staging(drive->path());
    const MediumFiles medium = stageMedium(inserting.medium, inserting.kind, staging, common.json);
    checkInterruption();
    putInto(*drive, medium);
    take(drive->closeTray());
    return finish(common, inserting.name,
                  "A " + kindOf(medium.record) + " (" + nameOf(medium.record.state) + ") is in " +
                      inQuotes(name) + '.');
}

int makeBlankMedium(const Common& common, const NewMedium& medium) {
    const engine::MediumKind kind = kindNamed(medium.kind);
    requireWritable(kind);
    const auto record = engine::MediumRecord::blank(kind, capacityFor(kind, medium.capacity));
    requirePlaceOutsideDrives(fs::absolute(medium.file).parent_path().string());
    std::error_code ignored;
    if (fs::is_directory(medium.file, ignored))
        fail(ErrorCode::FileLocationConflict, inQuotes(medium.file) + " is a folder; give a file's name.");
    const bool mayReplace = common.force || isThere(medium.file);
    if (mayReplace)
        requireConsent(common.force, "There is a file " + inQuotes(medium.file) + " already.",
                       "Overwrite it");
    writeBlankMedium(record, medium.file, mayReplace);
    if (common.json) {
        printJson(Json{{"file", fs::absolute(medium.file).string()}, {"medium", jsonOf(record.info(""))}});
    } else {
        print("A blank " + kindOf(record) + " is in " + inQuotes(medium.file) + ".\n");
    }
    return 0;
}

int exportMedium(const Common& common, const std::string& name, const std::string& folder) {
    const auto drive = virtualDriveNamed(name, "give its medium to a folder");
    requirePlaceOutsideDrives(folder);
    std::error_code ignored;
    if (fs::exists(folder, ignored) && !fs::is_directory(folder, ignored))
        fail(ErrorCode::FileLocationConflict, inQuotes(folder) + " is no folder.");
    const Exclusive mine(*drive);
    const auto replaceable = requireConsentToReplace(common, *drive, folder);
    if (replaceable.empty() && fs::is_directory(folder, ignored) && !fs::is_empty(folder, ignored))
        requireConsent(common.force, "The folder " + inQuotes(folder) + " is not empty.",
                       "Write the medium's files into it");
    copyOut(*drive, folder, replaceable, common.json);
    const auto record = engine::loadMedium(drive->folder());
    Json files = Json::array({engine::names::medium});
    std::string sentence = "The " + kindOf(*record) + " lies in " + inQuotes(folder) + " as medium.json";
    for (const std::string& file : dataFilesOf(*record)) {
        files.push_back(file);
        sentence += ", " + engine::printable(file);
    }
    sentence += '.';
    if (record->state == engine::MediumState::Incomplete)
        sentence += " It is incomplete: a burn was cut off or failed, and what is on it can't be trusted.";
    if (common.json) {
        printJson(Json{{"folder", fs::absolute(folder).string()},
                       {"files", std::move(files)},
                       {"state", nameOf(record->state)}});
    } else {
        print(sentence + '\n');
    }
    return 0;
}

} // namespace drives
