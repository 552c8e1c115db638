// ProducedTrackTest.cpp: tracks of a program through the whole platform: their speed, what their events are asked, and
// what is wrong with them.
#include "plugin/objc/Ownership.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/PluginTest.hpp"
#include "tests/plugin/ProducedBurn.hpp"

#include <atomic>
#include <cstring>

namespace {

using namespace test;
using host::Arguments, host::Value;

class ProducedTrack : public LoadedTest {
  protected:
    void SetUp() override {
        companion::offerRegistry();
        LoadedTest::SetUp();
        insertBlank(drives.scratch / "drives", "CD-RW");
    }

    Ref trackOf(host::Body produce, const BlockNumbers& numbers, int blocks) {
        static int number = 0;
        const std::string name = "Produced" + std::to_string(++number);
        return producedTrack(name.c_str(), {handler(produceDataEvent, std::move(produce))}, numbers, blocks);
    }
    void assign(const Ref& track, const char* key, objc::Id value) {
        const objc::Id properties =
            objc::autoreleased(objc::send<"mutableCopy">(objc::send<"properties">(frame::held(track.get()))));
        objc::send<"setObject:forKey:", void>(properties, value, nsString(key));
        objc::send<"setProperties:", void>(frame::held(track.get()), properties);
    }
    double speedForLength(const Ref& track, int32_t bytes) {
        return call<double>("DRTrackQRX", "testProductionSpeedForLength(length as integer) as double",
                            track.get(), bytes);
    }
    static Value fill(Arguments a) {
        std::memset(host::memoryOf(a[0].object()).data(), 1, static_cast<std::size_t>(a[1].toInt64()));
        return static_cast<uint32_t>(a[1].toInt64());
    }

    OwnDrives drives;
};

TEST_F(ProducedTrack, ItsSpeedIsTestedByAskingItsEventsForThatMuch) {
    std::atomic<int64_t> bytes{0};
    const Ref track = trackOf(
        [&](REALobject, Arguments a) -> Value {
            bytes += a[1].toInt64();
            return fill(a);
        },
        audioBlocks, 4500);
    EXPECT_GT(speedForLength(track, 2352 * 10 + 1), 0.0);
    EXPECT_EQ(bytes, 2352 * 11) << "whole blocks";
    bytes = 0;
    EXPECT_GT(call<double>("DRTrackQRX", "testProductionSpeedForInterval(seconds as double) as double",
                           track.get(), 600.0),
              0.0);
    EXPECT_EQ(bytes, 2352 * 4500) << "all of it, when that takes less time";
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(ProducedTrack, ARequestForSubchannelDataReachesTheEvent) {
    std::atomic<int64_t> flags{-1}, blockSize{0};
    std::atomic<bool> isWhole{true};
    const Ref track = trackOf(
        [&](REALobject, Arguments a) -> Value {
            flags = a[4].toInt64();
            blockSize = a[3].toInt64();
            if (a[1].toInt64() % blockSize != 0) isWhole = false;
            return fill(a);
        },
        audioBlocks, 400);
    EXPECT_GT(speedForLength(track, 2352), 0.0);
    EXPECT_EQ(flags, 0);
    EXPECT_EQ(blockSize, 2352);
    assign(track, "DRSubchannelDataFormKey", nsString("DRSubchannelDataFormRaw"));
    EXPECT_GT(speedForLength(track, 2448), 0.0);
    EXPECT_EQ(flags, 2);
    EXPECT_EQ(blockSize, 2448);
    flags = -1;
    EXPECT_EQ(burnAndWait(track), "DRStatusStateDone");
    EXPECT_EQ(flags, 2);
    EXPECT_TRUE(isWhole) << "buffers hold whole blocks of 2448 bytes";
    EXPECT_EQ(std::filesystem::file_size(drives.scratch / "drives/drive-1/medium.sub"), 400u * 96);
}

// Neither the track's length nor its blocks change under a burn that has begun.
TEST_F(ProducedTrack, PropertiesMayBeAssignedWhileItBurns) {
    constexpr int blocks = 3000;
    std::atomic<bool> began{false}, wrongSize{false};
    const Ref track = trackOf(
        [&](REALobject, Arguments a) -> Value {
            began = true;
            if (a[3].toInt64() != 2048) wrongSize = true;
            return fill(a);
        },
        dataBlocks, blocks);
    std::atomic<bool> ended{false};
    std::thread program([&] {
        const Pool pool;
        while (!began && !ended) {
            const Pool ofRound;
            assign(track, "DRMaxBurnSpeedKey", number(1 << 30)); // as good as none
        }
        while (!ended) {
            const Pool ofRound;
            assign(track, "DRBlockSizeKey", number(2352));
            assign(track, "DRTrackLengthKey", number(7));
        }
    });
    const std::string end = burnAndWait(track);
    ended = true;
    program.join();
    EXPECT_EQ(end, "DRStatusStateDone");
    EXPECT_FALSE(wrongSize);
    EXPECT_EQ(std::filesystem::file_size(drives.scratch / "drives/drive-1/medium.iso"), blocks * 2048u);
}

TEST_F(ProducedTrack, WhatIsWrongWithItIsSaidBeforeItsEventsAreAsked) {
    std::atomic<bool> asked{false};
    const Ref track = trackOf(
        [&](REALobject, Arguments a) -> Value {
            asked = true;
            return fill(a);
        },
        audioBlocks, 400);
    const auto refused = [&](const char* key, objc::Id value, const char* sentence) {
        const objc::Id before = objc::send<"properties">(frame::held(track.get()));
        assign(track, key, value);
        const std::string end = burnAndWait(track);
        EXPECT_NE(end.find(sentence), std::string::npos) << end;
        objc::send<"setProperties:", void>(frame::held(track.get()), before);
    };
    refused("DRBlockSizeKey", number(2048), "don't go together");
    refused("DRTrackLengthKey", number(0), "has no length; give it one");
    refused("DRTrackLengthKey", number(400000), "take fewer files or a larger disc");
    for (const unsigned long bytes : {0ul, 11ul, 13ul})
        refused("DRTrackISRCKey",
                objc::sendClass<"NSData", "dataWithBytes:length:">(static_cast<const void*>("DEABC26000011"),
                                                                   bytes),
                "must be data of 12 bytes");
    EXPECT_FALSE(asked);
    const Ref device =
        Ref::adopt(call<REALobject>("DRDeviceQRX", "device(index as UInt32) as DRDeviceQRX", uint32_t{0}));
    EXPECT_TRUE((call<bool>("DRDeviceQRX", "mediaIsBlank as boolean", device.get())));
}

} // namespace
