// burn-bench: burns a folder with the engine on a new virtual drive, and says how long each state took.
//
//     burn-bench FOLDER DRIVE [verify] [abort-after MS]
//
// DRIVE is made (it must not exist) with a blank DVD+RW, and stays. Exit status 0 for a burn that is done.
#include "BurnJob.hpp"
#include "VirtualDrive.hpp"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/resource.h>
#include <thread>

using Clock = std::chrono::steady_clock;

static double milliseconds(Clock::duration time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: burn-bench FOLDER DRIVE [verify] [abort-after MS]\n");
        return 2;
    }
    engine::BurnOptions options;
    options.verify = false;
    long abortAfter = -1;
    for (int index = 3; index < argc; ++index) {
        if (std::strcmp(argv[index], "verify") == 0) options.verify = true;
        if (std::strcmp(argv[index], "abort-after") == 0 && index + 1 < argc)
            abortAfter = std::atol(argv[index + 1]);
    }
    const auto made = engine::makeVirtualDrive(argv[2], {});
    if (!made) {
        std::fprintf(stderr, "%s (%s)\n", made.error().message.c_str(), made.error().info.c_str());
        return 1;
    }
    engine::BurnJob job(engine::VirtualDrive::open(argv[2]));
    auto state = engine::BurnState::None;
    auto began = Clock::now();
    job.setObserver([&](const engine::BurnStatus& status) {
        if (status.state == state) return;
        const auto now = Clock::now();
        if (milliseconds(now - began) >= 1)
            std::printf("%-12s %8.1f ms\n", std::string(nameOf(state)).c_str(), milliseconds(now - began));
        state = status.state;
        began = now;
    });
    const auto start = Clock::now();
    engine::DataTrack track;
    track.root = engine::Content::real(argv[1], "BENCH");
    if (const auto started = job.start(engine::Layout::ofData(std::move(track)), options); !started) return 1;
    if (abortAfter >= 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(abortAfter));
        const auto asked = Clock::now();
        const auto before = job.status().state;
        job.abort();
        job.wait();
        std::printf("abort in %s: idle after %.1f ms\n", std::string(nameOf(before)).c_str(),
                    milliseconds(Clock::now() - asked));
    }
    const engine::BurnStatus last = job.wait();
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%-12s %8.1f ms, peak %ld KiB\n", std::string(nameOf(last.state)).c_str(),
                milliseconds(Clock::now() - start), usage.ru_maxrss);
    if (last.error) std::printf("%s (%s)\n", last.error->message.c_str(), last.error->info.c_str());
    return last.state == engine::BurnState::Done ? 0 : 1;
}
