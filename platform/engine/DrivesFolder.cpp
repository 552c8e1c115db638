// Where the virtual drives are.
#include "DrivesFolder.hpp"
#include "Failure.hpp"

#include <cstdlib>
#include <filesystem>

namespace engine {
namespace {

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

} // namespace

std::string virtualDrivesFolder() {
    std::string folder = environment("DISC_DRIVES");
    if (folder.empty()) {
        std::string data = environment("XDG_DATA_HOME");
        if (data.empty() || data.front() != '/') {
            const std::string home = environment("HOME");
            if (home.empty())
                fail(ErrorCode::DeviceAccess, "Where are the drives? Neither DISC_DRIVES nor HOME is set; "
                                              "set DISC_DRIVES to a folder.");
            data = home + "/.local/share";
        }
        folder = data + "/disc-drives";
    }
    return std::filesystem::absolute(folder).lexically_normal().string();
}

} // namespace engine
