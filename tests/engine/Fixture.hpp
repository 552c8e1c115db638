// What the engine's tests share: a folder that goes away, a drive in it, source files, and burns that are
// waited for.
#pragma once

#include "BurnJob.hpp"
#include "VirtualDrive.hpp"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <unistd.h>

namespace fs = std::filesystem;

// KB/s: 2 MB a second, so that a burn of some MB can be met under way.
inline constexpr double slowly = 2000;

class EngineTest : public ::testing::Test {
  protected:
    EngineTest() {
        std::string pattern = (fs::temp_directory_path() / "engine-test-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) std::abort();
        base = pattern;
        source = base / "source";
        fs::create_directories(source);
        ::setenv("DISC_DRIVES", (base / "drives").c_str(), 1);
    }
    ~EngineTest() override {
        std::error_code ignored;
        fs::remove_all(base, ignored);
    }

    std::shared_ptr<engine::VirtualDrive> makeDrive(engine::MediumKind kind = engine::MediumKind::DVDPlusRW,
                                                    uint64_t blocks = 0) {
        engine::VirtualDriveSetup setup;
        setup.medium = kind;
        setup.capacityBlocks = blocks;
        EXPECT_TRUE(engine::makeVirtualDrive(drivePath().string(), setup).ok());
        return openDrive();
    }
    std::shared_ptr<engine::VirtualDrive> openDrive() {
        return engine::VirtualDrive::open(drivePath().string());
    }
    fs::path drivePath() const { return base / "drives" / "drive-1"; }
    fs::path image() const { return drivePath() / "medium.iso"; }
    fs::path growingImage() const { return drivePath() / "medium.new.iso"; }

    fs::path write(const std::string& name, const std::string& bytes) {
        fs::create_directories((source / name).parent_path());
        std::ofstream(source / name, std::ios::binary) << bytes;
        return source / name;
    }
    static std::string bytesOf(const fs::path& path) {
        std::ostringstream bytes;
        bytes << std::ifstream(path, std::ios::binary).rdbuf();
        return bytes.str();
    }
    // Bytes that don't repeat, so that a block in a wrong place shows.
    static std::string noise(size_t count, uint64_t seed = 1) {
        std::string bytes(count, '\0');
        for (char& byte : bytes) {
            seed = seed * 6364136223846793005u + 1442695040888963407u;
            byte = static_cast<char>(seed >> 56);
        }
        return bytes;
    }

    engine::Layout layout(const std::string& name = "TEST") const {
        return layoutOf(engine::Content::real(source.string(), name));
    }
    static engine::Layout layoutOf(engine::Content root) {
        engine::DataTrack track;
        track.root = std::move(root);
        return engine::Layout::ofData(std::move(track));
    }
    static engine::BurnStatus burn(engine::DriveRef drive, engine::Layout what,
                                   engine::BurnOptions options = {}) {
        engine::BurnJob job(std::move(drive));
        EXPECT_TRUE(job.start(std::move(what), options).ok());
        return job.wait();
    }
    // Files of the drive's folder, as one text.
    std::string driveFiles() const {
        std::string text;
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(drivePath()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        for (const auto& name : names)
            text += name + ' ';
        return text;
    }

    fs::path base, source;
};

#define EXPECT_DONE(status)                                                                                  \
    do {                                                                                                     \
        const engine::BurnStatus& had = (status);                                                            \
        EXPECT_EQ(nameOf(had.state), "Done")                                                                 \
            << (had.error ? had.error->message + " (" + had.error->info + ")" : "");                         \
    } while (false)

#define EXPECT_FAILED(status, expectedCode, expectedMessage)                                                 \
    do {                                                                                                     \
        const engine::BurnStatus had = (status);                                                             \
        EXPECT_EQ(nameOf(had.state), "Failed");                                                              \
        if (!had.error) {                                                                                    \
            ADD_FAILURE() << "no error";                                                                     \
            break;                                                                                           \
        }                                                                                                    \
        EXPECT_EQ(had.error->code, engine::ErrorCode::expectedCode) << had.error->message;                   \
        EXPECT_EQ(had.error->message, expectedMessage);                                                      \
    } while (false)
