// ProducerBenchmark.cpp: a track whose event fills its buffer with one call, through plug-in and engine to a virtual
// drive, against a loop that fills the same buffers with the same call and writes them to the same disk.
//
//     producer-benchmark [MIB [ROUNDS]]
//
// Both sides reserve the file's space, write past the page cache where the file system can, and are done when file and
// folder are synced. Rounds go by turns; the shortest of each counts.
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/ProducedBurn.hpp"
#include "tests/plugin/WriteLog.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

extern "C" void REALPluginMain(REALresolver resolver);

namespace {

using host::Arguments, host::Value;

// Of both sides; also what the engine asks for at once.
constexpr std::size_t bufferBytes = 1u << 20;
std::byte pattern[bufferBytes];

// The one call.
void fillBuffer(std::byte* buffer, std::size_t bytes) { std::memcpy(buffer, pattern, bytes); }

Value produce(REALobject, Arguments arguments) {
    std::byte* const buffer = host::memoryOf(arguments[0].object()).data();
    const auto bytes = static_cast<std::size_t>(arguments[1].toInt64());
    test::noteEventBuffer(buffer, bytes);
    fillBuffer(buffer, bytes);
    return static_cast<uint32_t>(bytes);
}

[[noreturn]] void stop(const char* what) {
    std::perror(what);
    std::exit(1);
}

// No thread, no event, no medium: fill, write, and sync at the end.
void bareLoop(const std::filesystem::path& folder, std::size_t bytes, bool direct) {
    struct Free {
        void operator()(std::byte* memory) const { std::free(memory); }
    };
    const std::unique_ptr<std::byte, Free> buffer(
        static_cast<std::byte*>(std::aligned_alloc(4096, bufferBytes)));
    const int file = ::open((folder / "bare.iso").c_str(),
                            O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC | (direct ? O_DIRECT : 0), 0666);
    const int parent = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file < 0 || parent < 0) stop("bare loop: open");
    if (::fallocate(file, 0, 0, static_cast<off_t>(bytes)) != 0 && errno != EOPNOTSUPP) stop("fallocate");
    for (std::size_t done = 0; done < bytes;) {
        const std::size_t some = std::min(bytes - done, bufferBytes);
        fillBuffer(buffer.get(), some);
        if (::pwrite(file, buffer.get(), some, static_cast<off_t>(done)) != static_cast<ssize_t>(some))
            stop("bare loop: write");
        done += some;
    }
    if (::fsync(file) != 0 || ::fsync(parent) != 0) stop("bare loop: sync");
    ::close(parent);
    ::close(file);
}

bool canWriteDirectly(const std::filesystem::path& folder) {
    const int file = ::open((folder / "try").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_DIRECT, 0666);
    if (file >= 0) ::close(file);
    return file >= 0;
}

template <class Code>
double secondsOf(const Code& code) {
    const auto start = std::chrono::steady_clock::now();
    code();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

int main(int count, char** words) {
    const std::size_t megabytes = count > 1 ? std::strtoul(words[1], nullptr, 10) : 1024;
    const int rounds = count > 2 ? std::atoi(words[2]) : 7;
    const std::size_t bytes = megabytes << 20;
    for (std::size_t at = 0; at < bufferBytes; ++at)
        pattern[at] = static_cast<std::byte>(at * 131 >> 3);
    const test::Pool pool;
    const test::OwnDrives drives;
    test::insertBlank(drives.scratch / "drives", "DVD+RW");
    test::companion::offerRegistry();
    REALPluginMain(host::resolver());
    const std::filesystem::path folder = drives.scratch.path();
    const bool direct = canWriteDirectly(folder);

    double burn = 1e300, bare = 1e300;
    for (int round = 0; round < rounds; ++round) {
        // What the round before wrote goes, outside of the time.
        std::filesystem::remove(folder / "bare.iso");
        ::sync();
        bare = std::min(bare, secondsOf([&] { bareLoop(folder, bytes, direct); }));
        const test::Pool ofRound;
        const host::Ref track =
            test::producedTrack("Benchmark", {test::handler(test::produceDataEvent, produce)},
                                test::dataBlocks, static_cast<int>(bytes / 2048));
        test::forgetWrites();
        ::sync();
        std::string end;
        burn = std::min(burn, secondsOf([&] { end = test::burnAndWait(track); }));
        if (end != "DRStatusStateDone") {
            std::fprintf(stderr, "producer-benchmark: %s\n", end.c_str());
            return 1;
        }
        const test::Written written = test::written();
        if (written.fromEvents != bytes || written.fromElsewhere != 0) {
            std::fprintf(stderr,
                         "producer-benchmark: of %zu bytes %llu were written from an event's buffer\n", bytes,
                         static_cast<unsigned long long>(written.fromEvents));
            return 1;
        }
    }
    const double speed = static_cast<double>(megabytes) / burn,
                 bareSpeed = static_cast<double>(megabytes) / bare;
    std::printf(
        "event to medium %8.1f MiB/s\nbare loop       %8.1f MiB/s%s\nratio           %8.2f (aim 0.90)%s\n"
        "bytes copied between event and medium: 0 of %zu\n",
        speed, bareSpeed, direct ? "" : " (through the page cache)", speed / bareSpeed,
        speed / bareSpeed >= 0.9 ? "" : "  MISSED", bytes);
}
