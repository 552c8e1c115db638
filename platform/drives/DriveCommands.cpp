// disc-drives create, disc-drives delete
#include "Asked.hpp"
#include "Commands.hpp"
#include "Console.hpp"
#include "Describe.hpp"
#include "DrivesFolder.hpp"
#include "LeftBehind.hpp"
#include "MediumNames.hpp"
#include "Utf8.hpp"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <strings.h>
#include <unistd.h>

namespace drives {
namespace {

namespace fs = std::filesystem;
using engine::ErrorCode;
using engine::fail;
using engine::inQuotes;

// A folder's name that is no trap for people: visible, and nothing but a name.
void checkDriveName(const std::string& name) {
    if (name.empty() || name.front() == '.' || name.size() > 100 || name == "none" ||
        name.find('/') != std::string::npos || name != engine::printable(name))
        fail(ErrorCode::BadLayout,
             inQuotes(name) + " can't be a drive's name: take up to 100 characters, no '/', no '.' in "
                              "front, and not \"none\".");
}

} // namespace

int createDrive(const Common& common, const NewDrive& drive) {
    checkDriveName(drive.name);
    clearDrivesFolder();
    const fs::path folder = fs::path(engine::virtualDrivesFolder()) / drive.name;
    if (std::error_code ignored; fs::exists(folder, ignored))
        fail(ErrorCode::DeviceAccess,
             "There is a drive " + inQuotes(drive.name) +
                 " already; take another name, or delete it with \"disc-drives delete\".",
             folder.string());
    engine::VirtualDriveSetup setup;
    setup.vendor = drive.vendor;
    setup.product = drive.product.empty() ? drive.name : drive.product;
    setup.firmwareRevision = drive.firmware;
    setup.medium.reset();
    if (::strcasecmp(drive.kind.c_str(), "none") != 0) {
        setup.medium = kindNamed(drive.kind);
        setup.capacityBlocks = capacityFor(*setup.medium, drive.capacity);
        requireWritable(*setup.medium);
    } else if (!drive.capacity.empty()) {
        fail(ErrorCode::BadLayout, "A drive without a medium has no capacity; leave out --capacity.");
    }
    take(engine::makeVirtualDrive(folder.string(), setup));
    const Found made = driveNamed(folder.string());
    if (common.json) {
        printJson(jsonOf(made));
    } else {
        print("Made the drive " + inQuotes(drive.name) + " in " + engine::printable(folder.string()) +
              (setup.medium
                   ? ", with a blank " + std::string(engine::factsOf(*setup.medium).name) + " in it.\n"
                   : ", with no medium in it.\n"));
    }
    return 0;
}

int deleteDrive(const Common& common, const std::string& name) {
    clearDrivesFolder();
    const Found found = driveNamed(name);
    requireVirtual(found, "be deleted");
    const fs::path folder = found.drive ? fs::path(found.drive->identity().id)
                                        : fs::path(engine::virtualDrivesFolder()) / found.name;
    std::optional<Exclusive> mine;
    if (found.drive) {
        const Asked asked(common, found, "Delete drive and medium");
        mine.emplace(*found.drive);
        asked.requireUnchanged();
    } else {
        requireConsent(common.force, "What is on the medium in " + inQuotes(found.name) + " can't be told.",
                       "Delete drive and medium");
    }
    // Out of sight in one step; what is cut off while the files go is no drive any more.
    const fs::path away =
        folder.parent_path() / (std::string(deletedPrefix) + std::to_string(::getpid()) + '-' + found.name);
    if (::rename(folder.c_str(), away.c_str()) != 0)
        fail(ErrorCode::DeviceAccess, "The drive " + inQuotes(found.name) + " can't be deleted.",
             engine::systemText(errno));
    std::error_code problem;
    fs::remove_all(away, problem);
    if (problem)
        fail(ErrorCode::DeviceAccess,
             "The drive is gone, but its files in " + inQuotes(away.string()) + " can't be deleted.",
             problem.message());
    if (common.json) {
        printJson(Json{{"deleted", found.name}});
    } else {
        print("Deleted the drive " + inQuotes(found.name) + ".\n");
    }
    return 0;
}

} // namespace drives
