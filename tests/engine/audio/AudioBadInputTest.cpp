// Files that are no sound, or not all of it: refused with a sentence before a disc is touched.
#include "Scratch.hpp"
#include "audio/AudioReader.hpp"
#include "audio/AudioTrack.hpp"

#include <sys/stat.h>

namespace {

using namespace engine;

class AudioBadInput : public Scratch {
  protected:
    // The sentence that a file is refused with, its path without the folder.
    std::string refusal(const std::string& name) {
        const auto track = trackForAudioFile((base / name).string());
        if (track.ok()) return "taken, with " + std::to_string(track->blocks) + " blocks";
        EXPECT_EQ(track.error().code, ErrorCode::AudioFileNotSupported);
        std::string message = track.error().message;
        if (const size_t at = message.find(base.string()); at != std::string::npos)
            message.erase(at, base.string().size() + 1);
        return message;
    }
    void cut(const std::string& name, const std::string& to, double part) {
        const std::string bytes = bytesOf(base / name);
        write(to, bytes.substr(0, static_cast<size_t>(static_cast<double>(bytes.size()) * part)));
    }
};

TEST_F(AudioBadInput, WhatIsNoSoundIsRefused) {
    write("empty.wav", "");
    write("text.wav", "This is a text, and not sound at all.\n");
    write("noise.flac", noise(100000));
    fs::create_directory(base / "folder.wav");
    ASSERT_EQ(::mkfifo((base / "pipe.wav").c_str(), 0600), 0);
    EXPECT_EQ(refusal("empty.wav"), "The file \"empty.wav\" is empty.");
    EXPECT_EQ(refusal("text.wav"),
              "The file \"text.wav\" is no sound that can be read; use WAV, AIFF, FLAC, Ogg or MP3.");
    EXPECT_EQ(refusal("noise.flac"),
              "The file \"noise.flac\" is no sound that can be read; use WAV, AIFF, FLAC, Ogg or MP3.");
    EXPECT_EQ(refusal("none.wav"), "The file \"none.wav\" can't be opened: No such file or directory.");
    EXPECT_EQ(refusal("folder.wav"), "The file \"folder.wav\" is no file, so it can't be read as sound.");
    EXPECT_EQ(refusal("pipe.wav"), "The file \"pipe.wav\" is no file, so it can't be read as sound.");
}

TEST_F(AudioBadInput, SoundOfNoLengthIsRefused) {
    run("sox -r 44100 -n -c 2 -b 16 no.wav trim 0 0; sox -r 44100 -n -c 2 -b 16 no.aiff trim 0 0; sox -n -r "
        "44100 -c 2 "
        "-b 16 no.flac trim 0 0; sox -r 192000 -n -c 2 -b 16 one.wav trim 0 1s");
    for (const char* name : {"no.wav", "no.aiff", "no.flac"})
        EXPECT_EQ(refusal(name), "The file \"" + std::string(name) + "\" holds no sound.");
    EXPECT_EQ(refusal("one.wav"), "The file \"one.wav\" holds less sound than one sample of a CD.");
}

TEST_F(AudioBadInput, RatesAndChannelsOutsideOfReasonAreRefused) {
    run("sox -r 44100 -n -c 2 -b 16 a.wav trim 0 0.5; sox -r 44100 -n -c 9 -b 16 nine.wav trim 0 0.5; sox -r "
        "500 -n "
        "-c 1 -b 16 slow.wav trim 0 0.5");
    std::string bytes = bytesOf(base / "a.wav");
    bytes.replace(24, 4, "\xff\xff\xff\x7f"); // the rate in a WAV header
    write("fast.wav", bytes);
    EXPECT_EQ(refusal("fast.wav"),
              "The file \"fast.wav\" says that it has 2147483647 samples a second, which is no sound.");
    EXPECT_EQ(refusal("slow.wav"),
              "The file \"slow.wav\" says that it has 500 samples a second, which is no sound.");
    EXPECT_EQ(refusal("nine.wav"),
              "The file \"nine.wav\" has 9 channels and doesn't say which they are; mix them to two.");
}

// What was cut off in a download: a FLAC file knows how long it should be.
TEST_F(AudioBadInput, AFlacFileThatBreaksOffIsRefused) {
    run("sox -R -r 44100 -n -c 2 -b 16 a.flac synth 5 pinknoise");
    for (const double part : {0.1, 0.5, 0.9}) {
        cut("a.flac", "cut.flac", part);
        EXPECT_TRUE(
            refusal("cut.flac").starts_with("The file \"cut.flac\" is damaged: its sound breaks off after "))
            << refusal("cut.flac");
    }
    EXPECT_EQ(refusal("a.flac"), "taken, with 375 blocks");
}

// A WAV file is as long as what is left of it, and MP3 and Ogg are made to be cut anywhere.
TEST_F(AudioBadInput, WhatIsLeftOfOtherFilesIsTaken) {
    run("sox -R -r 44100 -n -c 2 -b 16 a.wav synth 10 pinknoise; sox a.wav a.ogg; lame --quiet -V 3 a.wav "
        "a.mp3; "
        "lame --quiet -V 3 -t a.wav t.mp3");
    for (const char* name : {"a.wav", "a.ogg", "a.mp3", "t.mp3"}) {
        cut(name, std::string("cut-") + name, 0.5);
        const auto reader = AudioReader::open((base / (std::string("cut-") + name)).string());
        ASSERT_TRUE(reader.ok()) << name << ' ' << reader.error().message << reader.error().info;
        EXPECT_NEAR(double((*reader)->samples()) / 44100, 5, 0.7) << name;
        std::vector<std::byte> all(static_cast<size_t>((*reader)->samples() * bytesPerSample + 100));
        EXPECT_EQ((*reader)->read(all), all.size() - 100) << name;
    }
}

// Whatever is wrong with a file: an error, or as much sound as was said; nothing else.
TEST_F(AudioBadInput, DamagedFilesDoNoHarm) {
    run("sox -R -r 48000 -n -c 2 -b 16 a.wav synth 0.4 pinknoise; sox a.wav -b 24 a.aiff; sox a.wav a.flac; "
        "sox a.wav "
        "a.ogg; lame --quiet a.wav a.mp3; sox a.wav a.caf; sox a.wav a.au; sox a.wav a.w64; ffmpeg -v error "
        "-i a.wav "
        "-c:a libopus a.opus");
    int taken = 0, refused = 0;
    uint64_t seed = 1;
    const auto tryOne = [&](const std::string& name) {
        const auto reader = AudioReader::open((base / name).string());
        if (!reader) {
            ++refused;
            EXPECT_FALSE(reader.error().message.empty());
            return;
        }
        ++taken;
        std::vector<std::byte> piece(40000);
        uint64_t got = 0;
        try {
            while (const size_t some = (*reader)->read(piece)) {
                got += some;
                if (got > 100'000'000) break;
            }
            EXPECT_EQ(std::min(got, (*reader)->samples() * bytesPerSample), got);
        } catch (const std::exception& problem) {
            EXPECT_NE(std::string(problem.what()), "");
        }
    };
    for (const char* kind : {"wav", "aiff", "flac", "ogg", "mp3", "caf", "au", "w64", "opus"}) {
        const std::string name = std::string("a.") + kind, broken = std::string("broken.") + kind;
        const std::string bytes = bytesOf(base / name);
        ASSERT_FALSE(bytes.empty()) << name;
        for (int part = 1; part < 20; ++part) {
            cut(name, broken, part < 10 ? part / 500.0 : part / 20.0);
            tryOne(broken);
        }
        for (int round = 0; round < 60; ++round) {
            std::string other = bytes;
            for (int times = 0; times < 1 + round % 8; ++times) {
                seed = seed * 6364136223846793005u + 1442695040888963407u;
                // Half of them in the header.
                const size_t range = round % 2 == 0 ? std::min<size_t>(200, other.size()) : other.size();
                other[static_cast<size_t>((seed >> 33) % range)] = static_cast<char>(seed >> 56);
            }
            write(broken, other);
            tryOne(broken);
        }
    }
    EXPECT_GT(taken, 50);
    EXPECT_GT(refused, 50);
}

} // namespace
