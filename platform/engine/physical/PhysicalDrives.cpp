// Which physical drives there are.
#include "../Failure.hpp"
#include "DriveUse.hpp"
#include "PhysicalDrive.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <linux/cdrom.h>
#include <map>
#include <string_view>
#include <sys/ioctl.h>
#include <sys/stat.h>

namespace engine {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int mostDrives = 32;
constexpr auto patience = std::chrono::seconds(2);

struct Refusal {
    Clock::time_point when;
    std::optional<Error> use; ///< else it is of no use
    bool isRecorder = false;  ///< it can write; asked of one that is in use, or that nobody may open, only
};

struct Attached {
    std::mutex mutex;
    std::map<std::string, std::shared_ptr<PhysicalDrive>> drives;
    std::vector<std::shared_ptr<PhysicalDrive>> leaving; ///< gone, but the library still has them
    std::map<std::string, Refusal> refused;              ///< not asked again at once
};

// Never destroyed: jobs may still use drives while the process exits.
Attached& attached() {
    static auto* instance = new Attached;
    return *instance;
}

bool isWanted() {
    const char* said = std::getenv("DISC_PHYSICAL");
    if (said != nullptr && *said != '\0') return std::string_view(said) != "0";
    // Whoever says where his drives are means those only.
    const char* folder = std::getenv("DISC_DRIVES");
    return folder == nullptr || *folder == '\0';
}

// The library takes no second drive at an address, and whoever had the first may keep its object for long.
void leave(Attached& all, const std::string& path) {
    const auto known = all.drives.find(path);
    if (known == all.drives.end()) return;
    all.leaving.push_back(known->second);
    all.drives.erase(known);
}

bool isLeaving(const Attached& all, const std::string& path) {
    return std::any_of(all.leaving.begin(), all.leaving.end(),
                       [&](const auto& drive) { return drive->path() == path; });
}

std::string pathOf(int number) { return "/dev/sr" + std::to_string(number); }

// The kernel has asked the drive when it was attached, and tells whoever opens it, also while somebody has it.
bool isRecorder(const std::string& path) {
    const Descriptor node(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    // One that nobody may open is meant to be used: a recorder, unless it is known for none.
    if (!node) return isWriterInTable(path).value_or(true);
    const int can = ::ioctl(node.get(), CDROM_GET_CAPABILITY, 0);
    return can >= 0 && (can & (CDC_CD_R | CDC_CD_RW | CDC_DVD_R | CDC_DVD_RAM)) != 0;
}

Refusal refusalOf(const std::string& path, const std::optional<Error>& problem = {}) {
    Refusal refusal{Clock::now(), {}, false};
    if (auto forbidden = forbiddenError(path))
        refusal.use = std::move(forbidden);
    else if (isInUse(path))
        refusal.use = inUseError(path, path);
    else if (problem && meansInUse(problem->code))
        refusal.use = problem;
    refusal.isRecorder = refusal.use && isRecorder(path);
    return refusal;
}

bool isThere(const std::string& path) {
    struct stat found {};
    return ::stat(path.c_str(), &found) == 0 && S_ISBLK(found.st_mode);
}

} // namespace

std::vector<DriveInUse> physicalDrivesInUse() {
    std::vector<DriveInUse> found;
    if (!isWanted()) return found;
    Attached& all = attached();
    const std::lock_guard lock(all.mutex);
    for (const auto& [path, refusal] : all.refused)
        if (refusal.use) found.push_back({path, *refusal.use});
    return found;
}

bool isRecorderInUse() {
    if (!isWanted()) return false;
    Attached& all = attached();
    const std::lock_guard lock(all.mutex);
    return std::any_of(all.refused.begin(), all.refused.end(),
                       [](const auto& each) { return each.second.isRecorder; });
}

std::vector<std::shared_ptr<PhysicalDrive>> physicalDrives() {
    std::vector<std::shared_ptr<PhysicalDrive>> found;
    if (!isWanted()) return found;
    Attached& all = attached();
    const std::lock_guard lock(all.mutex);
    std::erase_if(all.leaving, [](const auto& drive) { return drive->forget(); });
    for (int number = 0; number < mostDrives; ++number) {
        const std::string path = pathOf(number);
        if (!isThere(path)) {
            leave(all, path);
            all.refused.erase(path);
            continue;
        }
        auto known = all.drives.find(path);
        if (known != all.drives.end() && !known->second->isValid()) {
            leave(all, path);
            std::erase_if(all.leaving, [](const auto& drive) { return drive->forget(); });
            known = all.drives.end();
        }
        if (known == all.drives.end()) {
            // Deliberate: no patience with a refusal of ours. The library lets go in a moment, and what has been plugged in
            // again is found at the next look.
            if (isLeaving(all, path)) {
                all.refused[path] = {{}, inUseError(path, path), isRecorder(path)};
                continue;
            }
            const auto refused = all.refused.find(path);
            if (refused != all.refused.end() && Clock::now() - refused->second.when < patience) continue;
            if (const Refusal refusal = refusalOf(path); refusal.use) {
                all.refused[path] = refusal;
                continue;
            }
            const auto opened = guarded([&] { return PhysicalDrive::open(path); });
            if (!opened) {
                all.refused[path] = refusalOf(path, opened.error()); // in use by now, perhaps
                continue;
            }
            all.refused.erase(path);
            known = all.drives.emplace(path, *opened).first;
        }
        found.push_back(known->second);
    }
    return found;
}

} // namespace engine
