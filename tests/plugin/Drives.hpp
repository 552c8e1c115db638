// Drives.hpp: a folder of drives of the test's own, and folders to burn.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace test {

// A folder that is gone when the test ends.
class ScratchFolder {
  public:
    ScratchFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "disc-test-XXXXXX").string();
        path_ = mkdtemp(pattern.data());
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
    std::string path() const { return path_.string(); }

  private:
    std::filesystem::path path_;
};

inline void writeFile(const std::filesystem::path& path, const std::string& bytes) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

// The drives that this process sees: one with a blank re-writable medium, or none.
class OwnDrives {
  public:
    explicit OwnDrives(bool any = true) {
        std::filesystem::create_directories(scratch / "drives");
        if (!any) writeFile(scratch / "drives" / "none", "");
        setenv("DISC_DRIVES", (scratch / "drives").c_str(), 1);
    }

    ScratchFolder scratch;
};

} // namespace test
