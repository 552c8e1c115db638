// Recorders with media in them, burns that are waited for, and programs that read discs back.
#pragma once

#include "BurnJob.hpp"
#include "EraseJob.hpp"

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <sys/file.h>
#include <unistd.h>

namespace fs = std::filesystem;
using Json = nlohmann::json;

class PhysicalTest : public ::testing::Test {
  protected:
    PhysicalTest() {
        const std::string both = std::getenv("DISC_RECORDER");
        first = both.substr(0, both.find(':'));
        second = both.substr(both.find(':') + 1);
        source = first.parent_path() / "source";
        fs::remove_all(source);
        fs::create_directories(source);
        setGone(second);
    }

    /// The recorder does nothing meanwhile: what it had read before would be written over what a test says.
    class Turn {
      public:
        explicit Turn(const fs::path& folder)
            : lock_(::open((folder / "lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
            EXPECT_EQ(::flock(lock_, LOCK_EX), 0);
        }
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;
        ~Turn() { ::close(lock_); }

      private:
        int lock_;
    };
    /// In one step: whoever looks at the recorder meanwhile finds the state before or after.
    static void write(const fs::path& folder, const Json& state) {
        std::ofstream(folder / "recorder.json.test") << state.dump();
        fs::rename(folder / "recorder.json.test", folder / "recorder.json");
    }
    static void setGone(const fs::path& folder) {
        const Turn turn(folder);
        write(folder, {{"gone", true}});
    }
    /// A new medium in a drive.
    void insert(const std::string& kind, Json more = Json::object(), const fs::path& folder = {}) {
        const fs::path& where = folder.empty() ? first : folder;
        const Turn turn(where);
        std::ofstream(where / "data").flush(); // emptied: this process may have it open
        more["medium"] = kind;
        write(where, more);
    }
    Json state() const { return Json::parse(std::ifstream(first / "recorder.json")); }
    void change(const std::string& key, const Json& value) {
        const Turn turn(first);
        Json now = state();
        now[key] = value;
        write(first, now);
    }

    static engine::DriveRef drive() {
        const auto all = engine::drives();
        if (!all || all->empty()) {
            ADD_FAILURE() << "no drive";
            return nullptr;
        }
        return all->front();
    }
    static engine::MediumInfo medium() {
        const auto info = drive()->readMedium();
        if (!info) ADD_FAILURE() << info.error().message << " (" << info.error().info << ")";
        return info && *info ? **info : engine::MediumInfo{};
    }

    fs::path file(const std::string& name, const std::string& bytes) {
        fs::create_directories((source / name).parent_path());
        std::ofstream(source / name, std::ios::binary) << bytes;
        return source / name;
    }
    static std::string noise(size_t count, uint64_t seed = 1) {
        std::string bytes(count, '\0');
        for (char& byte : bytes) {
            seed = seed * 6364136223846793005u + 1442695040888963407u;
            byte = static_cast<char>(seed >> 56);
        }
        return bytes;
    }
    engine::Layout layout(const std::string& name = "DISC") const {
        engine::DataTrack track;
        track.root = engine::Content::real(source.string(), name);
        return engine::Layout::ofData(std::move(track));
    }
    static engine::BurnStatus burn(engine::Layout what, engine::BurnOptions options = {}) {
        engine::BurnJob job(drive());
        EXPECT_TRUE(job.start(std::move(what), options).ok());
        const engine::BurnStatus status = job.wait();
        waitUntilFree();
        return status;
    }
    /// A drive is busy until the library has let go of it, which may be after the burn.
    static void waitUntilFree() {
        for (int attempt = 0; attempt < 1000 && drive() != nullptr && drive()->isBusy(); ++attempt)
            ::usleep(10000);
    }

    /// What another program says; it sees the same drive.
    std::string run(const std::string& command) const {
        const std::string out = (first.parent_path() / "said").string();
        const int status = std::system(("cd '" + first.parent_path().string() + "' && ASAN_OPTIONS= && " +
                                        command + " >" + out + " 2>&1")
                                           .c_str());
        std::ostringstream text;
        text << std::ifstream(out).rdbuf();
        EXPECT_EQ(status, 0) << command << "\n" << text.str();
        return text.str();
    }
    /// A file of the disc's tree, extracted by a program that is not ours.
    std::string extracted(const std::string& name) const {
        const fs::path copy = first.parent_path() / "copy";
        fs::remove(copy);
        run("xorriso -osirrox on -indev /dev/sr0 -extract '/" + name + "' copy");
        std::ostringstream bytes;
        bytes << std::ifstream(copy, std::ios::binary).rdbuf();
        return bytes.str();
    }

    fs::path first, second, source;
};

#define EXPECT_DONE(status)                                                                                  \
    do {                                                                                                     \
        const engine::BurnStatus had = (status);                                                             \
        EXPECT_EQ(nameOf(had.state), "Done")                                                                 \
            << (had.error ? had.error->message + " (" + had.error->info + ")" : "");                         \
    } while (false)
