// Sound files as a CD's samples: exact where nothing is to be converted, close where something is, and always as
// long as was said.
#include "audio/AudioReader.hpp"
#include "Scratch.hpp"

#include <cmath>
#include <cstring>
#include <functional>
#include <numbers>
#include <vector>

namespace {

using namespace engine;
using Samples = std::vector<int16_t>; // two of each

class AudioReaderTest : public Scratch {
  protected:
    std::unique_ptr<AudioReader> open(const std::string& name) {
        auto reader = AudioReader::open((base / name).string());
        EXPECT_TRUE(reader.ok()) << (reader.ok() ? "" : reader.error().message + ' ' + reader.error().info);
        return reader.ok() ? std::move(*reader) : nullptr;
    }
    // All of a file, in pieces of as many samples; its length is what was said.
    Samples read(const std::string& name, size_t piece = 5000) {
        const auto reader = open(name);
        if (!reader) return {};
        std::string bytes;
        std::vector<std::byte> buffer(piece * bytesPerSample);
        for (size_t got; (got = reader->read(buffer)) > 0;)
            bytes.append(reinterpret_cast<const char*>(buffer.data()), got);
        EXPECT_EQ(bytes.size(), reader->samples() * bytesPerSample);
        return samplesOf(bytes);
    }
    static Samples samplesOf(const std::string& bytes) {
        Samples samples(bytes.size() / sizeof(int16_t));
        std::memcpy(samples.data(), bytes.data(), bytes.size());
        return samples;
    }
    Samples soxReads(const std::string& name, const std::string& options = "") {
        run("sox -D " + name + " -t raw -e signed -b 16 -L -c 2 -r 44100 right.raw " + options);
        return samplesOf(bytesOf(base / "right.raw"));
    }
    // A tone with noise in it, of so many seconds.
    void make(const std::string& name, const std::string& options, const std::string& length = "1.2345") {
        run("sox -R " + options + " -n " + options + ' ' + name + " synth " + length + " sine 440 synth " +
            length + " sine mix 3000-200 synth " + length + " pinknoise mix gain -3");
    }
    std::string refusal(const std::string& name) {
        const auto reader = AudioReader::open((base / name).string());
        EXPECT_FALSE(reader.ok());
        if (reader.ok()) return "";
        EXPECT_EQ(reader.error().code, ErrorCode::AudioFileNotSupported);
        std::string message = reader.error().message;
        if (const size_t at = message.find(base.string()); at != std::string::npos)
            message.erase(at, base.string().size() + 1);
        return message;
    }
};

// How far apart, as a part of how loud: 0.001 is 60 dB down.
double distance(const Samples& a, const Samples& b) {
    double apart = 0, loud = 1;
    for (size_t at = 0; at < std::min(a.size(), b.size()); ++at) {
        apart += std::pow(a[at] - b[at], 2);
        loud += std::pow(b[at], 2);
    }
    return std::sqrt(apart / loud);
}

// How strong a frequency is in the left channel, 1 for a full-scale sine.
double strength(const Samples& samples, double frequency) {
    double real = 0, imaginary = 0;
    const size_t count = samples.size() / 2;
    for (size_t at = 0; at < count; ++at) {
        const double turn = 2 * std::numbers::pi * frequency * static_cast<double>(at) / 44100;
        const double window = 1 - std::cos(2 * std::numbers::pi * static_cast<double>(at) / double(count));
        real += window * samples[2 * at] * std::cos(turn);
        imaginary += window * samples[2 * at] * std::sin(turn);
    }
    return std::hypot(real, imaginary) * 2 / static_cast<double>(count) / 32768;
}

// ---- what a CD holds already ----------------------------------------------------------------------------

TEST_F(AudioReaderTest, SixteenBitsInStereoAreTakenBitByBit) {
    make("a.wav", "-r 44100 -b 16 -c 2");
    const Samples right = soxReads("a.wav");
    ASSERT_EQ(right.size(), 2 * 54441u); // 1.2345 s
    run("sox a.wav a.aiff && sox a.wav a.au && sox a.wav a.caf && flac -s a.wav -o a.flac && sox a.wav -t "
        "wavpcm "
        "a.w64; sox a.wav -t w64 a.w64 && sox a.wav -B a2.aiff");
    for (const char* name : {"a.wav", "a.aiff", "a.au", "a.caf", "a.flac", "a.w64", "a2.aiff"})
        EXPECT_EQ(read(name), right) << name;
}

TEST_F(AudioReaderTest, OneChannelGoesToBothSidesBitByBit) {
    make("mono.wav", "-r 44100 -b 16 -c 1");
    EXPECT_EQ(read("mono.wav"), soxReads("mono.wav"));
    make("mono8.wav", "-r 44100 -b 8 -c 1");
    EXPECT_EQ(read("mono8.wav"), soxReads("mono8.wav"));
}

TEST_F(AudioReaderTest, ItMakesNoDifferenceHowMuchIsAskedForAtOnce) {
    make("a.wav", "-r 48000 -b 24 -c 2");
    const Samples whole = read("a.wav", 1000000);
    for (const size_t piece : {size_t{1}, size_t{588}, size_t{4095}, size_t{4097}})
        EXPECT_EQ(read("a.wav", piece), whole) << piece;
}

TEST_F(AudioReaderTest, AnAnswerHoldsWholeSamples) {
    make("a.wav", "-r 44100 -b 16 -c 2");
    const auto reader = open("a.wav");
    std::vector<std::byte> odd(4 * 10 + 3);
    EXPECT_EQ(reader->read(odd), 40u);
    EXPECT_EQ(reader->read(std::span(odd).first(3)), 0u);
    EXPECT_EQ(reader->read(std::span(odd).subspan(1, 40)), 40u); // not where shorts may lie
}

TEST_F(AudioReaderTest, SeekingGoesToTheSampleOfEveryFormat) {
    make("a.wav", "-r 44100 -b 16 -c 2");
    make("b.wav", "-r 48000 -b 24 -c 6");
    run("flac -s a.wav -o a.flac && sox a.wav a.ogg && lame --quiet a.wav a.mp3");
    for (const char* name : {"a.wav", "a.flac", "a.ogg", "a.mp3", "b.wav"}) {
        const Samples whole = read(name);
        const auto reader = open(name);
        Samples part(2 * 3000);
        for (const uint64_t at : {20000u, 11u, 0u, 40000u}) {
            for (int twice = 0; twice < 2; ++twice) {
                reader->seek(at);
                ASSERT_EQ(reader->read(std::as_writable_bytes(std::span(part))), 3000 * bytesPerSample);
                // Where noise is added, it is that of the place that was sought.
                const Samples there(whole.begin() + static_cast<long>(2 * at),
                                    whole.begin() + static_cast<long>(2 * at + part.size()));
                EXPECT_LT(distance(part, there), 0.001) << name << ' ' << at;
                Samples again(part.size());
                reader->seek(at);
                reader->read(std::as_writable_bytes(std::span(again)));
                EXPECT_EQ(again, part) << name << ' ' << at;
            }
        }
        reader->seek(reader->samples() + 5);
        EXPECT_EQ(reader->read(std::as_writable_bytes(std::span(part))), 0u);
    }
}

// ---- what is rounded ------------------------------------------------------------------------------------

TEST_F(AudioReaderTest, MoreBitsAreRoundedWithALittleNoise) {
    make("a.wav", "-r 44100 -b 24 -c 2");
    run("sox a.wav -e floating-point -b 32 f.wav");
    const Samples right = soxReads("a.wav");
    for (const char* name : {"a.wav", "f.wav"}) {
        const Samples mine = read(name);
        ASSERT_EQ(mine.size(), right.size());
        long furthest = 0;
        for (size_t at = 0; at < mine.size(); ++at)
            furthest = std::max(furthest, std::labs(mine[at] - right[at]));
        EXPECT_GE(furthest, 1) << "no dither";
        EXPECT_LE(furthest, 2) << name;
    }
}

// Rounded plainly, a tone below half a step is gone; with dither it is there, in noise.
TEST_F(AudioReaderTest, AToneOfLessThanAStepIsStillThere) {
    run("sox -R -r 44100 -n -b 24 -c 2 faint.wav synth 3 sine 1000 vol 0.00001");
    const double heard = strength(read("faint.wav"), 1000);
    EXPECT_NEAR(heard, 0.00001, 0.000003);
}

TEST_F(AudioReaderTest, SilenceStaysSilence) {
    run("sox -R -r 48000 -n -b 24 -c 2 silence.wav trim 0 1");
    const Samples silence = read("silence.wav");
    EXPECT_EQ(silence, Samples(2 * 44100));
}

TEST_F(AudioReaderTest, WhatIsTooLoudIsCutAndNotTurnedOver) {
    std::string bytes;
    for (const float value : {2.0F, -2.0F, 1.0F, -1.0F, 0.0F, std::nanf("")})
        bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    write("f.raw", bytes);
    run("sox -t raw -e floating-point -b 32 -r 44100 -c 1 f.raw x.wav 2>/dev/null; "
        "ffmpeg -v error -f f32le -ar 44100 -ac 1 -i f.raw -c:a pcm_f32le f.wav");
    const Samples samples = read("f.wav");
    ASSERT_EQ(samples.size(), 12u);
    EXPECT_EQ(samples[0], 32767);
    EXPECT_EQ(samples[2], -32768);
    EXPECT_GE(samples[4], 32766);
    EXPECT_LE(samples[6], -32766);
    EXPECT_EQ(samples[8], 0);
    EXPECT_EQ(samples[10], 0);
}

// ---- what is resampled ----------------------------------------------------------------------------------

struct Rate {
    uint32_t rate;
    uint64_t in, out;
};

TEST_F(AudioReaderTest, AnyRateBecomesACDsRateAndItsLengthIsKnownBefore) {
    for (const Rate& row : {Rate{48000, 48000, 44100}, Rate{48000, 1, 1}, Rate{48000, 12345, 11342},
                            Rate{96000, 100001, 45938}, Rate{22050, 777, 1554}, Rate{8000, 8001, 44106},
                            Rate{192000, 3, 1}, Rate{32000, 50000, 68906}, Rate{44056, 44056, 44100}}) {
        const std::string name = std::to_string(row.rate) + '-' + std::to_string(row.in) + ".wav";
        run("sox -R -r " + std::to_string(row.rate) + " -n -b 16 -c 2 " + name + " synth " +
            std::to_string(row.in) + "s sine 300 gain -3");
        const Samples samples = read(name);
        EXPECT_EQ(samples.size(), 2 * row.out) << name;
        if (row.in > 1000) {
            EXPECT_NEAR(strength(samples, 300), 0.707, 0.01) << name;
        }
    }
}

TEST_F(AudioReaderTest, ResamplingIsAsCloseAsSoxs) {
    for (const char* rate : {"48000", "96000", "32000", "22050"}) {
        make("a.wav", "-r " + std::string(rate) + " -b 24 -c 2");
        const Samples mine = read("a.wav"), right = soxReads("a.wav", "rate -v");
        ASSERT_EQ(mine.size(), right.size()) << rate;
        // The two differ in how steep they are at the top, where pink noise has a little.
        EXPECT_LT(distance(mine, right), 0.01) << rate;
    }
}

// What a rate of 44.1 kHz can't hold must be gone, not folded back.
TEST_F(AudioReaderTest, WhatIsTooHighIsGone) {
    run("sox -R -r 96000 -n -b 24 -c 2 high.wav synth 1 sine 30000 gain -1");
    const Samples samples = read("high.wav");
    long loudest = 0;
    for (size_t at = 2 * 4000; at < samples.size() - 2 * 4000; ++at)
        loudest = std::max(loudest, std::labs(samples[at]));
    EXPECT_LE(loudest, 2);
}

// ---- more than two channels -----------------------------------------------------------------------------

TEST_F(AudioReaderTest, FiveChannelsAndOneAreMixedAsTheyStandInTheRoom) {
    // Each channel with a tone of its own: left, right, centre, effects, back left, back right.
    run("for f in 400 600 800 50 1000 1200; do sox -R -r 44100 -n -b 24 -c 1 $f.wav synth 1 sine $f gain -1; "
        "done; "
        "sox -M 400.wav 600.wav 800.wav 50.wav 1000.wav 1200.wav six.wav; flac -s six.wav -o six.flac");
    for (const char* name : {"six.wav", "six.flac"}) {
        const Samples samples = read(name);
        Samples right(samples.begin() + 1, samples.end());
        right.push_back(0);
        const double scale = std::pow(10, -1 / 20.0) / (1 + 2 * 0.7071);
        EXPECT_NEAR(strength(samples, 400), scale, 0.01);
        EXPECT_NEAR(strength(samples, 600), 0, 0.001);
        EXPECT_NEAR(strength(samples, 800), scale * 0.7071, 0.01);
        EXPECT_NEAR(strength(samples, 50), 0, 0.001);
        EXPECT_NEAR(strength(samples, 1000), scale * 0.7071, 0.01);
        EXPECT_NEAR(strength(right, 400), 0, 0.001);
        EXPECT_NEAR(strength(right, 600), scale, 0.01);
        EXPECT_NEAR(strength(right, 800), scale * 0.7071, 0.01);
        EXPECT_NEAR(strength(right, 1200), scale * 0.7071, 0.01);
    }
}

TEST_F(AudioReaderTest, EveryUsualNumberOfChannelsCanBeMixed) {
    for (int channels = 1; channels <= 8; ++channels) {
        const std::string name = std::to_string(channels) + ".wav";
        run("sox -R -r 44100 -n -b 16 -c " + std::to_string(channels) + ' ' + name +
            " synth 0.5 sine 500 gain -1");
        const Samples samples = read(name);
        EXPECT_EQ(samples.size(), 2 * 22050u);
        EXPECT_GT(strength(samples, 500), 0.5) << name; // all channels have it
        EXPECT_LE(strength(samples, 500), 0.9) << name;
    }
}

// ---- compressed ------------------------------------------------------------------------------------------

TEST_F(AudioReaderTest, CompressedSoundIsWhatAnotherDecoderHears) {
    make("a.wav", "-r 44100 -b 16 -c 2", "3");
    run("sox a.wav a.ogg && lame --quiet -V 2 a.wav v.mp3 && lame --quiet -b 192 a.wav c.mp3 && lame --quiet "
        "-t -V 4 "
        "a.wav untagged.mp3 && ffmpeg -v error -i a.wav -c:a libopus a.opus && ffmpeg -v error -i a.wav -c:a "
        "mp2 "
        "a.mp2");
    // libavcodec's Opus is of another make, so rounding differs along the way.
    for (const auto& [name, limit] : {std::pair{"a.ogg", 0.001},
                                      {"v.mp3", 0.001},
                                      {"c.mp3", 0.001},
                                      {"untagged.mp3", 0.001},
                                      {"a.opus", 0.01},
                                      {"a.mp2", 0.001}}) {
        const Samples mine = read(name);
        run("ffmpeg -v error -y -i " + std::string(name) +
            " -f s16le -ar 44100 -ac 2 -c:a pcm_s16le theirs.raw");
        const Samples theirs = samplesOf(bytesOf(base / "theirs.raw"));
        EXPECT_EQ(mine.size(), theirs.size()) << name;
        EXPECT_LT(distance(mine, theirs), limit) << name;
    }
}

} // namespace
