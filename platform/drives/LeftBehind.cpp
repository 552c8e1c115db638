// What processes that died left in the folders of drives.
#include "LeftBehind.hpp"
#include "DrivesFolder.hpp"
#include "Failure.hpp"
#include "VirtualDrive.hpp"

#include <cerrno>
#include <charconv>
#include <csignal>
#include <filesystem>

namespace drives {

namespace fs = std::filesystem;

bool isOfDeadProcess(const std::string& name, std::string_view prefix) {
    if (!name.starts_with(prefix)) return false;
    int process = 0;
    const char* const end = name.data() + name.size();
    const auto read = std::from_chars(name.data() + prefix.size(), end, process);
    if (read.ec != std::errc{} || read.ptr == end || *read.ptr != '-' || process <= 0) return false;
    return ::kill(process, 0) != 0 && errno == ESRCH;
}

void clearDrivesFolder() {
    (void)engine::guarded([] {
        std::error_code ignored;
        std::vector<fs::path> left;
        for (const auto& entry : fs::directory_iterator(engine::virtualDrivesFolder(), ignored)) {
            const std::string name = entry.path().filename().string();
            const auto isLeft = [&](std::string_view prefix) { return isOfDeadProcess(name, prefix); };
            if (isLeft(deletedPrefix) || isLeft(engine::newDrivePrefix)) left.push_back(entry.path());
        }
        for (const fs::path& each : left)
            fs::remove_all(each, ignored);
    });
}

} // namespace drives
