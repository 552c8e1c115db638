// What a virtual drive is: its drive.json, and how a new drive is made.
#include "DriveDescription.hpp"
#include "Failure.hpp"
#include "Files.hpp"
#include "VirtualDrive.hpp"
#include "VirtualMedium.hpp"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace engine {
namespace {

constexpr std::pair<bool DriveCapabilities::*, const char*> abilities[] = {
    {&DriveCapabilities::canTestWriteCD, "test-write-cd"},
    {&DriveCapabilities::canTestWriteDVD, "test-write-dvd"},
    {&DriveCapabilities::canTestWriteBD, "test-write-bd"},
    {&DriveCapabilities::canUnderrunProtectCD, "underrun-protect-cd"},
    {&DriveCapabilities::canUnderrunProtectDVD, "underrun-protect-dvd"},
    {&DriveCapabilities::writesCDText, "cd-text"},
    {&DriveCapabilities::writesIndexPoints, "index-points"},
    {&DriveCapabilities::writesISRC, "isrc"},
    {&DriveCapabilities::writesTrackAtOnce, "track-at-once"},
    {&DriveCapabilities::writesSessionAtOnce, "session-at-once"},
    {&DriveCapabilities::writesDVDAtOnce, "dvd-at-once"},
    {&DriveCapabilities::writesBDAtOnce, "bd-at-once"},
    {&DriveCapabilities::choosesPreGap, "pre-gaps"},
    {&DriveCapabilities::writesCDI, "cd-i"},
    {&DriveCapabilities::writesSubchannel, "subchannel"},
};

} // namespace

DriveDescription readDescription(int folder, const std::string& path) {
    const auto bytes = readSmallFile(folder, names::drive);
    if (!bytes) fail(ErrorCode::DeviceInvalid, "There is no drive in " + inQuotes(path) + ".", path);
    DriveDescription json = DriveDescription::parse(*bytes, nullptr, false);
    if (json.is_discarded() || !json.is_object())
        fail(ErrorCode::DeviceInvalid,
             "The drive in " + inQuotes(path) + " can't be used: its drive.json is damaged.", path);
    // A drive without a format is one that somebody wrote by hand.
    if (const auto format = json.find("format"); format != json.end() && *format != 1)
        fail(ErrorCode::DeviceInvalid,
             "The drive in " + inQuotes(path) + " can't be used: its drive.json is of a later version.",
             path);
    return json;
}

std::string textIn(const DriveDescription& json, const char* name) {
    const auto found = json.find(name);
    return found != json.end() && found->is_string() ? found->get<std::string>() : std::string();
}

void setCapabilities(DriveCapabilities& can, const DriveDescription& description) {
    const auto lacks = description.find("lacks");
    for (const auto& [which, name] : abilities)
        can.*which = lacks == description.end() || !lacks->is_array() ||
                     std::find(lacks->begin(), lacks->end(), name) == lacks->end();
    can.writeBufferBytes = 8u << 20;
}

Result<void> makeVirtualDrive(const std::string& folder, const VirtualDriveSetup& setup) {
    return guarded([&] {
        const std::filesystem::path target = std::filesystem::absolute(folder).lexically_normal();
        makeFolders(target.parent_path().string());
        std::string temporary =
            (target.parent_path() / (std::string(newDrivePrefix) + std::to_string(::getpid()) + "-XXXXXX"))
                .string();
        const auto failed = [&] {
            const int number = errno;
            std::error_code ignored;
            std::filesystem::remove_all(temporary, ignored);
            fail(ErrorCode::DeviceAccess, "The drive " + inQuotes(folder) + " can't be made.",
                 systemText(number));
        };
        if (::mkdtemp(temporary.data()) == nullptr || ::chmod(temporary.c_str(), 0755) != 0) failed();
        const Descriptor made(::open(temporary.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!made) failed();
        DriveDescription json = {{"format", 1},
                                 {"vendor", setup.vendor},
                                 {"product", setup.product},
                                 {"firmwareRevision", setup.firmwareRevision},
                                 {"tray", "closed"}};
        if (!setup.lacks.empty()) json["lacks"] = setup.lacks;
        replaceSmallFile(made.get(), names::drive,
                         json.dump(2, ' ', false, DriveDescription::error_handler_t::replace) + '\n');
        if (setup.medium) saveMedium(made.get(), MediumRecord::blank(*setup.medium, setup.capacityBlocks));
        // Fails when another process was faster, or when the folder exists and isn't empty.
        if (::rename(temporary.c_str(), folder.c_str()) != 0) failed();
    });
}

} // namespace engine
