// Starts the tests in a process that sees the recorder, and clears its folder away afterwards.
#include "BurnJob.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

int runWithRecorder(char** arguments) {
    std::string folder = (std::filesystem::temp_directory_path() / "physical-test-XXXXXX").string();
    if (::mkdtemp(folder.data()) == nullptr) return 1;
    std::filesystem::create_directories(folder + "/sr0");
    std::filesystem::create_directories(folder + "/sr1");
    std::filesystem::create_directories(folder + "/drives");
    ::setenv("DISC_RECORDER", (folder + "/sr0:" + folder + "/sr1").c_str(), 1);
    ::setenv("DISC_DRIVES", (folder + "/drives").c_str(), 1);
    ::setenv("DISC_PHYSICAL", "1", 1);
    ::setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
    ::setenv("LD_PRELOAD", RECORDER, 1);
    // The library comes before the sanitizer's runtime, which it has no part in.
    ::setenv("ASAN_OPTIONS", "verify_asan_link_order=0", 1);
    const pid_t child = ::fork();
    if (child == 0) {
        ::execv("/proc/self/exe", arguments);
        ::_exit(127);
    }
    int status = 1;
    ::waitpid(child, &status, 0);
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

// A burn in a process of its own: for tests that kill it.
int burnFolder(const std::string& folder, const std::string& how) {
    const auto all = engine::drives();
    if (!all || all->empty()) return 2;
    engine::DataTrack track;
    track.root = engine::Content::real(folder, "NEW");
    engine::BurnOptions options;
    options.overwrite = how != "appended";
    options.appendable = how != "closed";
    engine::BurnJob job(all->front());
    if (!job.start(engine::Layout::ofData(std::move(track)), options).ok()) return 3;
    return job.wait().error ? 4 : 0;
}

// Asks for ever whether the drive is busy, in a process of its own.
int ask() {
    auto all = engine::drives();
    for (; all && all->empty(); all = engine::drives())
        ::usleep(10000); // another one is looking at it
    if (!all) return 2;
    const std::string recorders = std::getenv("DISC_RECORDER");
    const auto said = std::filesystem::path(recorders.substr(0, recorders.find(':'))).parent_path() /
                      ("asked-" + std::to_string(::getpid()));
    for (;;) {
        (void)all->front()->isBusy();
        std::ofstream(said).flush();
        ::usleep(5000); // others have their turn
    }
}

} // namespace

int main(int count, char** arguments) {
    const bool isList = count > 1 && std::string(arguments[1]).starts_with("--gtest_list_tests");
    if (std::getenv("DISC_RECORDER") == nullptr && !isList) return runWithRecorder(arguments);
    if (count > 3 && std::string(arguments[1]) == "--burn") return burnFolder(arguments[2], arguments[3]);
    if (count > 2 && std::string(arguments[1]) == "--ask") return ask();
    ::testing::InitGoogleTest(&count, arguments);
    return RUN_ALL_TESTS();
}
