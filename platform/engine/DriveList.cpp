// Which drives there are.
#include "DrivesFolder.hpp"
#include "Failure.hpp"
#include "Files.hpp"
#include "VirtualDrive.hpp"
#include "physical/PhysicalDrive.hpp"

#include <algorithm>
#include <filesystem>
#include <map>
#include <mutex>
#include <unistd.h>

namespace engine {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> drivePaths(const fs::path& folder) {
    std::vector<std::string> paths;
    std::error_code problem;
    for (const auto& entry : fs::directory_iterator(folder, problem)) {
        std::error_code ignored;
        const std::string name = entry.path().filename().string();
        if (!name.starts_with('.') && fs::exists(entry.path() / names::drive, ignored))
            paths.push_back(entry.path().string());
    }
    if (problem)
        fail(ErrorCode::DeviceAccess,
             "The folder " + inQuotes(folder.string()) + " for drives can't be read.", problem.message());
    std::sort(paths.begin(), paths.end());
    return paths;
}

struct Attached {
    std::mutex mutex;
    std::map<std::string, std::shared_ptr<VirtualDrive>> drives;
};

// Never destroyed: jobs may still use drives while the process exits.
Attached& attached() {
    static auto* instance = new Attached;
    return *instance;
}

} // namespace

Result<std::vector<DriveRef>> drives() {
    return guarded([] {
        const fs::path folder = virtualDrivesFolder();
        makeFolders(folder.string());
        std::vector<std::string> paths = drivePaths(folder);
        std::error_code ignored;
        const bool wantsNone = fs::exists(folder / "none", ignored);
        std::vector<DriveRef> found;
        if (!wantsNone)
            for (auto& drive : physicalDrives())
                found.push_back(std::move(drive));
        std::sort(found.begin(), found.end(), [](const DriveRef& one, const DriveRef& other) {
            return one->identity().id < other->identity().id;
        });
        const bool isAnyRecorder = std::any_of(found.begin(), found.end(), [](const DriveRef& each) {
            return !each->capabilities().writes.empty();
        });
        // Deliberate: a recorder that is attached but in use is not replaced. A burn would end in a file, and be called
        // good. A drive for reading is none, and nothing that is meant to be burned is meant for it.
        if (paths.empty() && !isAnyRecorder && !wantsNone && !isRecorderInUse()) {
            const auto made = makeVirtualDrive((folder / "drive-1").string(), {});
            paths = drivePaths(folder); // not empty either when another process was faster
            if (!made && paths.empty()) throw Failure(made.error());
        }
        Attached& all = attached();
        const std::lock_guard lock(all.mutex);
        std::erase_if(all.drives, [](const auto& each) { return !each.second->isValid(); });
        for (const std::string& path : paths) {
            auto known = all.drives.find(path);
            if (known == all.drives.end()) {
                const auto opened = guarded([&] { return VirtualDrive::open(path); });
                if (!opened) continue;
                known = all.drives.emplace(path, *opened).first;
            }
            found.push_back(known->second);
        }
        return found;
    });
}

} // namespace engine
