// UncopiedTest.cpp: what an event writes into its buffer is written to the disc from there, without a copy.
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/PluginTest.hpp"
#include "tests/plugin/ProducedBurn.hpp"
#include "tests/plugin/WriteLog.hpp"

#include <cstring>
#include <fstream>
#include <iterator>

namespace {

using namespace test;
using host::Arguments, host::Value;

class Uncopied : public LoadedTest {
  protected:
    void SetUp() override {
        companion::offerRegistry();
        LoadedTest::SetUp();
    }

    // Fills the whole of its buffer with the number of each block, and lets it be known.
    static Value fill(REALobject, Arguments arguments) {
        std::byte* const buffer = host::memoryOf(arguments[0].object()).data();
        const auto length = static_cast<std::size_t>(arguments[1].toInt64());
        const auto blockSize = static_cast<std::size_t>(arguments[3].toInt64());
        uint64_t block = arguments[2].toUInt64();
        noteEventBuffer(buffer, length);
        for (std::size_t at = 0; at < length; at += blockSize, ++block) {
            std::memset(buffer + at, static_cast<int>(block % 251), blockSize);
            std::memcpy(buffer + at, &block, sizeof block);
        }
        return static_cast<uint32_t>(length);
    }

    std::string onDisc(const char* file) {
        std::ifstream stream(drives.scratch / "drives/drive-1" / file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    OwnDrives drives;
};

TEST_F(Uncopied, EveryByteOfADataTrackIsWrittenFromTheEventsBuffer) {
    constexpr int blocks = 1500; // neither of the engine's buffers nor of pages
    insertBlank(drives.scratch / "drives", "DVD+RW");
    const Ref track = producedTrack("DataFromEvents", {handler(produceDataEvent, fill)}, dataBlocks, blocks);
    forgetWrites();
    ASSERT_EQ(burnAndWait(track), "DRStatusStateDone");
    constexpr uint64_t bytes = uint64_t{blocks} * 2048;
    EXPECT_EQ(written().fromEvents, bytes);
    EXPECT_EQ(written().fromElsewhere, 0u) << "a whole number of pages needs no padding";
    const std::string image = onDisc("medium.iso");
    ASSERT_EQ(image.size(), bytes);
    for (uint64_t block = 0; block < blocks; ++block) {
        uint64_t stamp = 0;
        std::memcpy(&stamp, &image[static_cast<size_t>(block) * 2048], sizeof stamp);
        ASSERT_EQ(stamp, block);
    }
}

TEST_F(Uncopied, EveryByteOfAnAudioTrackAndOfItsProducedPreGapIsToo) {
    constexpr int blocks = 700, preGap = 200; // of which the first two seconds are on no medium
    insertBlank(drives.scratch / "drives", "CD-RW");
    const Ref track =
        producedTrack("SoundFromEvents", {handler(produceDataEvent, fill), handler(producePreGapEvent, fill)},
                      audioBlocks, blocks);
    const auto setPreGap =
        harness::setterOf<void(REALobject, double)>("DRTrackQRX", "PreGapLength as double");
    setPreGap(track.get(), preGap);
    forgetWrites();
    ASSERT_EQ(burnAndWait(track), "DRStatusStateDone");
    constexpr uint64_t kept = blocks + preGap - 150;
    EXPECT_EQ(written().fromEvents, kept * 2352);
    EXPECT_EQ(written().fromElsewhere, 0u);
    EXPECT_EQ(onDisc("medium.bin").size(), kept * 2352);
}

} // namespace
