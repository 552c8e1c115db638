// Which drive a person means.
#include "Lookup.hpp"
#include "DrivesFolder.hpp"
#include "Utf8.hpp"
#include "physical/PhysicalDrive.hpp"

#include <algorithm>
#include <filesystem>

namespace drives {
namespace {

namespace fs = std::filesystem;

std::string nameOf(const engine::Drive& drive) {
    return drive.identity().isVirtual ? fs::path(drive.identity().id).filename().string()
                                      : drive.identity().id;
}

// Programs don't see them: a drive is asked who it is when it is free.
void addInUse(std::vector<Found>& found) {
    for (engine::DriveInUse& each : engine::physicalDrivesInUse())
        found.push_back({std::move(each.path), nullptr, std::move(each.problem), false});
}

void addBroken(std::vector<Found>& found) {
    const size_t good = found.size();
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(engine::virtualDrivesFolder(), ignored)) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with('.') || !fs::exists(entry.path() / engine::names::drive, ignored)) continue;
        if (std::any_of(found.begin(), found.end(), [&](const Found& each) { return each.name == name; }))
            continue;
        const auto opened = engine::guarded([&] { return engine::VirtualDrive::open(entry.path()); });
        if (!opened) found.push_back({name, nullptr, opened.error()});
    }
    std::sort(found.begin() + static_cast<std::ptrdiff_t>(good), found.end(),
              [](const Found& one, const Found& other) { return one.name < other.name; });
}

} // namespace

std::vector<Found> allDrives() {
    std::vector<Found> found;
    for (engine::DriveRef& drive : take(engine::drives())) {
        std::string name = nameOf(*drive);
        const bool isVirtual = drive->identity().isVirtual;
        found.push_back({std::move(name), std::move(drive), {}, isVirtual});
    }
    addInUse(found);
    addBroken(found);
    return found;
}

Found driveNamed(const std::string& name) {
    const std::vector<Found> all = allDrives();
    for (const Found& each : all)
        if (each.name == name || (each.drive && each.drive->identity().id == name)) return each;
    const auto isShownAs = [&](const Found& each) { return each.drive && each.drive->displayName() == name; };
    if (std::count_if(all.begin(), all.end(), isShownAs) == 1)
        return *std::find_if(all.begin(), all.end(), isShownAs);
    std::string names;
    for (const Found& each : all)
        names += (names.empty() ? "" : ", ") + each.name;
    engine::fail(engine::ErrorCode::DeviceInvalid,
                 "There is no drive " + engine::inQuotes(name) +
                     (names.empty() ? "; make one with \"disc-drives create\"."
                                    : "; there are: " + engine::printable(names) + '.'));
}

std::shared_ptr<engine::VirtualDrive> virtualDriveNamed(const std::string& name, const std::string& deed) {
    const Found found = driveNamed(name);
    requireVirtual(found, deed);
    if (!found.drive) throw engine::Failure(found.problem);
    return std::dynamic_pointer_cast<engine::VirtualDrive>(found.drive);
}

void requireVirtual(const Found& found, const std::string& deed) {
    if (!found.isVirtual)
        engine::fail(engine::ErrorCode::FunctionNotSupported,
                     "The drive " + engine::inQuotes(found.drive ? found.drive->displayName() : found.name) +
                         " is no virtual one: it can't " + deed + '.');
}

void requirePlaceOutsideDrives(const std::string& path) {
    std::error_code ignored;
    const fs::path folder = engine::virtualDrivesFolder();
    const fs::path place = fs::weakly_canonical(fs::absolute(path), ignored);
    bool belongs = fs::exists(place / engine::names::drive, ignored);
    // By what the folders are, not by their names: a link leads to the same place.
    for (fs::path each = place; !belongs; each = each.parent_path()) {
        belongs = fs::equivalent(each, folder, ignored);
        if (each == each.parent_path()) break;
    }
    if (belongs)
        engine::fail(
            engine::ErrorCode::FileLocationConflict,
            engine::inQuotes(path) +
                " belongs to the drives; choose a folder elsewhere, or give the medium to a drive with "
                "\"disc-drives insert\".");
}

Exclusive::Exclusive(engine::Drive& drive) : drive_(drive) { take(drive.acquireExclusiveAccess()); }

void take(const engine::Result<void>& result) {
    if (!result) throw engine::Failure(result.error());
}

} // namespace drives
