// decode-bench: a sound file as a burn reads it, into a file of samples.
//
//     decode-bench SOUND OUT
//
// Makes the track, makes it once more as the start of a burn does, prepares it and asks it for all its blocks, a burn's
// buffer at a time. Exit status 0 when every block came.
#include "Drive.hpp"
#include "MediumKind.hpp"
#include "Pipeline.hpp"
#include "audio/AudioTrack.hpp"

#include <cstdio>
#include <exception>
#include <memory>
#include <vector>

static int decode(const char* sound, const char* out) {
    // The first is the program's, which learns the length; the burn makes one of its own.
    auto track = engine::trackForAudioFile(sound);
    if (track) track = engine::trackForAudioFile(sound);
    if (!track) {
        std::fprintf(stderr, "%s (%s)\n", track.error().message.c_str(), track.error().info.c_str());
        return 1;
    }
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(out, "wb"), std::fclose);
    if (!file) {
        std::perror(out);
        return 1;
    }
    uint64_t blocks = track->blocks;
    if (!track->producer->prepare(blocks, engine::MediumInfo{})) return 1;
    constexpr size_t blockBytes = engine::bytesPerBlock(engine::BlockForm::Audio);
    std::vector<std::byte> buffer(engine::pieceBytes / blockBytes * blockBytes);
    for (uint64_t block = 0; block < blocks;) {
        engine::ProduceFlags flags;
        const size_t wanted =
            std::min<uint64_t>(buffer.size(), (blocks - block) * blockBytes) / blockBytes * blockBytes;
        const size_t count = track->producer->produce(block, std::span(buffer).first(wanted), flags);
        if (count == 0 || std::fwrite(buffer.data(), 1, count, file.get()) != count) {
            std::fprintf(stderr, "block %llu of %llu does not come\n", static_cast<unsigned long long>(block),
                         static_cast<unsigned long long>(blocks));
            return 1;
        }
        block += count / blockBytes;
    }
    track->producer->cleanupAfterBurn();
    return 0;
}

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: decode-bench SOUND OUT\n");
        return 2;
    }
    try {
        return decode(argv[1], argv[2]);
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "%s\n", problem.what());
        return 1;
    }
}
