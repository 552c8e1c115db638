// A sound file as a track: whole blocks, the same again, and what happens when the file is another one meanwhile.
#include "audio/AudioTrack.hpp"
#include "Drive.hpp"
#include "Failure.hpp"
#include "Scratch.hpp"

namespace {

using namespace engine;

class AudioTrack : public Scratch {
  protected:
    ProducedTrack track(const std::string& name) {
        auto track = trackForAudioFile((base / name).string());
        EXPECT_TRUE(track.ok());
        return track.ok() ? *track : ProducedTrack{};
    }
    // As a burn asks: from the start to the end, in buffers of so many bytes.
    static std::string produced(const ProducedTrack& track, size_t bytes) {
        std::string all;
        std::vector<std::byte> buffer(bytes);
        for (uint64_t block = 0; block < track.blocks;) {
            ProduceFlags flags;
            const size_t some =
                static_cast<size_t>(std::min<uint64_t>(bytes, (track.blocks - block) * sectorBytes));
            const size_t got = track.producer->produce(block, std::span(buffer).first(some), flags);
            EXPECT_GT(got, 0u);
            EXPECT_EQ(got % sectorBytes, 0u);
            if (got == 0) break;
            all.append(reinterpret_cast<const char*>(buffer.data()), got);
            block += got / sectorBytes;
        }
        return all;
    }
    const MediumInfo medium{};
};

TEST_F(AudioTrack, IsTheSoundAndThenSilenceToTheEndOfTheBlock) {
    run("sox -R -r 44100 -n -c 2 -b 16 a.wav synth 100000s pinknoise && sox a.wav a.raw");
    const ProducedTrack made = track("a.wav");
    EXPECT_EQ(made.form, BlockForm::Audio);
    EXPECT_EQ(made.blocks, 171u); // 170.07
    uint64_t blocks = made.blocks;
    ASSERT_TRUE(made.producer->prepare(blocks, medium));
    EXPECT_EQ(blocks, 171u);
    EXPECT_FALSE(made.producer->producesPreGap());
    std::string right = bytesOf(base / "a.raw");
    right.resize(171 * sectorBytes);
    EXPECT_EQ(produced(made, 27 * sectorBytes), right);
    made.producer->cleanupAfterBurn();
}

TEST_F(AudioTrack, AFullLastBlockGetsNoSilence) {
    run("sox -R -r 44100 -n -c 2 -b 16 a.wav synth 58800s pinknoise");
    EXPECT_EQ(track("a.wav").blocks, 100u);
}

TEST_F(AudioTrack, GivesTheSameAgainForVerification) {
    run("sox -R -r 48000 -n -c 2 -b 24 a.wav synth 2 pinknoise");
    const ProducedTrack made = track("a.wav");
    for (int burns = 0; burns < 2; ++burns) {
        uint64_t blocks = 0;
        ASSERT_TRUE(made.producer->prepare(blocks, medium));
        const std::string once = produced(made, 32 * sectorBytes);
        ASSERT_TRUE(made.producer->prepareForVerification());
        EXPECT_EQ(produced(made, 7 * sectorBytes + 100), once);
        ASSERT_TRUE(made.producer->cleanupAfterVerification());
        EXPECT_EQ(produced(made, 500 * sectorBytes), once);
        made.producer->cleanupAfterBurn();
    }
}

TEST_F(AudioTrack, AFileThatIsAnotherOneFailsBeforeTheBurn) {
    run("sox -R -r 44100 -n -c 2 -b 16 a.wav synth 2 pinknoise");
    const ProducedTrack made = track("a.wav");
    run("sox -R -r 44100 -n -c 2 -b 16 a.wav synth 1 pinknoise");
    uint64_t blocks = 0;
    try {
        made.producer->prepare(blocks, medium);
        ADD_FAILURE() << "the burn would begin";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.error().code, ErrorCode::FileModifiedDuringBurn);
        EXPECT_EQ(failure.error().message, "The sound file \"" + (base / "a.wav").string() +
                                               "\" has another length than when its track was made.");
    }
    fs::remove(base / "a.wav");
    EXPECT_THROW(made.producer->prepare(blocks, medium), Failure);
    made.producer->cleanupAfterBurn();
}

TEST_F(AudioTrack, AFileThatIsCutDuringTheBurnStopsIt) {
    run("sox -R -r 44100 -n -c 2 -b 16 a.wav synth 60 pinknoise");
    const ProducedTrack made = track("a.wav");
    uint64_t blocks = 0;
    ASSERT_TRUE(made.producer->prepare(blocks, medium));
    fs::resize_file(base / "a.wav", 100000);
    try {
        produced(made, 27 * sectorBytes);
        ADD_FAILURE() << "all was produced";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.error().code, ErrorCode::DataProduction);
        EXPECT_EQ(failure.error().message, "The sound file \"" + (base / "a.wav").string() +
                                               "\" breaks off: it is damaged or was changed.");
    }
}

} // namespace
