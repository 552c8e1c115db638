// TrackFrameTest.cpp: what every callback of a producer's track does with the host around its event, call by call.
#include "plugin/bridge/Registry.hpp"
#include "plugin/bridge/Wrappers.hpp"
#include "tests/plugin/OwnResolver.hpp"
#include "tests/plugin/ProgramsTracks.hpp"
#include "tests/plugin/Replaced.hpp"

#include <algorithm>
#include <array>
#include <functional>
#include <vector>

namespace {

using namespace test;

// Written by services of the test's own, which pass everything on to the host's.
std::vector<std::string> steps;
REALobject watched = nullptr;
std::map<REALobject, std::string> others; // whose references are counted too, by their names
bool isDeaf = false;                      // the host says then that no event is implemented
bool isBlockless = false;                 // and then it makes no block
std::vector<uintptr_t> asked;             // identities of events
REALproc substitute = nullptr;            // implements every event then

void note(const char* step, REALobject object) {
    if (object == watched)
        steps.emplace_back(step);
    else if (const auto other = others.find(object); other != others.end())
        steps.push_back(step + (' ' + other->second));
}

REALproc lookedUp(REALobject object, uintptr_t identity) {
    asked.push_back(identity);
    note("look up", object);
    if (substitute) return substitute;
    return isDeaf ? nullptr : hostsOwn<REALproc(REALobject, uintptr_t)>("GetEventInstance")(object, identity);
}
void locked(REALobject object) {
    note("lock", object);
    hostsOwn<void(REALobject)>("REALLockObject")(object);
}
void unlocked(REALobject object) {
    note("unlock", object);
    hostsOwn<void(REALobject)>("REALUnlockObject")(object);
}
REALmemoryBlock pointed(void* pointer) {
    if (isBlockless) return nullptr;
    const REALmemoryBlock block = hostsOwn<REALmemoryBlock(void*)>("PtrToMemoryBlock")(pointer);
    others[block] = "the block";
    steps.emplace_back("make the block");
    return block;
}
REALobject made(const char* className) {
    const REALobject object = hostsOwn<REALobject(const char*)>("PluginNewInstance")(className);
    if (std::string_view(className) == "DRBurnQRX") {
        others[object] = "the burn";
        steps.emplace_back("make the burn");
    }
    return object;
}

using Steps = std::vector<std::string>;

class TrackFrame : public ProgramsTracks {
  protected:
    void SetUp() override {
        OwnServices::put("GetEventInstance", lookedUp);
        OwnServices::put("REALLockObject", locked);
        OwnServices::put("REALUnlockObject", unlocked);
        OwnServices::put("PtrToMemoryBlock", pointed);
        OwnServices::put("PluginNewInstance", made);
        companion::offerRegistry();
        REALPluginMain(OwnServices::resolve);
    }

    // Handlers of all nine events, each noting that it is called.
    static std::vector<host::MemberSpec> all(std::vector<Value>* buffers = nullptr) {
        const auto answering = [=](Value answer) {
            return [=](REALobject, Arguments a) -> Value {
                steps.emplace_back("event");
                if (buffers && a.size() == 5) buffers->push_back(a[0]);
                return answer;
            };
        };
        return {on(estimate, answering(uint64_t{7})),    on(prepare, answering(true)),
                on(cleanup, answering(Value())),         on(producePreGap, answering(uint32_t{7})),
                on(produceData, answering(uint32_t{7})), on(prepareVerification, answering(true)),
                on(verifyPreGap, answering(true)),       on(verifyData, answering(true)),
                on(cleanupVerification, answering(true))};
    }

    // What a callback does; its answer is true for anything but zero.
    Steps stepsOf(const Ref& track, std::size_t callback, objc::Id burn = nullptr) {
        watched = track.get();
        steps.clear();
        const objc::Id id = platform(track);
        char buffer[16] = {};
        uint32_t flags = 2;
        const std::array<std::function<bool()>, 9> calls = {
            [&] { return objc::send<"estimateLengthOfTrack:", uint64_t>(id, id) == 7; },
            [&] {
                return objc::send<"prepareTrack:forBurn:toMedia:", objc::Boolean>(id, id, burn, objc::Id()) ==
                       1;
            },
            [&] {
                objc::send<"cleanupTrackAfterBurn:", void>(id, id);
                return true;
            },
            [&] {
                return produce<"producePreGapForTrack:intoBuffer:length:atAddress:blockSize:ioFlags:">(
                           id, buffer, 16, 0, 16, &flags) == 7;
            },
            [&] { return produceOf(id, buffer, 16, 0, 16, &flags) == 7; },
            [&] { return objc::send<"prepareTrackForVerification:", objc::Boolean>(id, id) == 1; },
            [&] {
                return verify<"verifyPreGapForTrack:inBuffer:length:atAddress:blockSize:ioFlags:">(
                    id, buffer, 16, 0, 16, &flags);
            },
            [&] {
                return verify<"verifyDataForTrack:inBuffer:length:atAddress:blockSize:ioFlags:">(
                    id, buffer, 16, 0, 16, &flags);
            },
            [&] { return objc::send<"cleanupTrackAfterVerification:", objc::Boolean>(id, id) == 1; }};
        answered = calls[callback]();
        EXPECT_EQ(flags, 2u) << callbacks[callback];
        watched = nullptr;
        return steps;
    }

    objc::Id newPlatformBurn() {
        const Ref device = Ref::adopt(
            call<REALobject>("DRDeviceQRX", "device(index as UInt32) as DRDeviceQRX", uint32_t{0}));
        return objc::sendClass<"DRBurn", "burnForDevice:">(frame::held(device.get()));
    }

    bool answered = false;
};

bool takesBuffer(std::size_t callback) {
    return callback == 3 || callback == 4 || callback == 6 || callback == 7;
}

TEST_F(TrackFrame, EveryEventIsLookedUpThenTheObjectHeldThenWhatItNeedsMadeAndAllLetGoInTurn) {
    const Ref track = trackWith(all());
    for (std::size_t callback = 0; callback < std::size(callbacks); ++callback) {
        const Steps plain = {"look up", "lock", "event", "unlock"};
        const Steps onBuffer = {"look up", "lock", "make the block", "event", "unlock the block", "unlock"};
        EXPECT_EQ(stepsOf(track, callback), takesBuffer(callback) ? onBuffer : plain) << callbacks[callback];
        EXPECT_TRUE(answered) << callbacks[callback];
    }
}

TEST_F(TrackFrame, ABurnWithoutAWrapperGetsOneForTheEventAndIsLetGoBehindIt) {
    const objc::Id burn = newPlatformBurn();
    objc::Id seen = nullptr;
    const Ref track = trackWith({on(prepare, [&](REALobject, Arguments a) -> Value {
        steps.emplace_back("event");
        seen = frame::held(a[0].object());
        return true;
    })});
    const auto wrappers = harness::liveInstances()["DRBurnQRX"];
    EXPECT_EQ(stepsOf(track, 1, burn),
              (Steps{"look up", "lock", "make the burn", "event", "unlock the burn", "unlock"}));
    EXPECT_TRUE(answered);
    EXPECT_EQ(seen, burn);
    EXPECT_EQ(harness::liveInstances()["DRBurnQRX"], wrappers) << "nothing of it is left";
    EXPECT_EQ(FindInstance(burn), nullptr);
}

TEST_F(TrackFrame, ABurnThatHasAWrapperIsHandedThatOne) {
    const objc::Id burn = newPlatformBurn();
    const Ref wrapper = Ref::adopt(NewDRBurnQRX(burn));
    REALobject seen = nullptr;
    const Ref track = trackWith({on(prepare, [&](REALobject, Arguments a) -> Value {
        steps.emplace_back("event");
        seen = a[0].object();
        return true;
    })});
    EXPECT_EQ(stepsOf(track, 1, burn),
              (Steps{"look up", "lock", "lock the burn", "event", "unlock the burn", "unlock"}));
    EXPECT_EQ(seen, wrapper.get());
}

// Each question is put to the host anew: an event may come and go between two of them.
TEST_F(TrackFrame, NothingThatTheHostAnsweredIsKept) {
    const Ref track = trackWith(all());
    for (std::size_t callback = 0; callback < std::size(callbacks); ++callback) {
        std::vector<uintptr_t> identities;
        for (const bool deaf : {false, true, false, true}) {
            isDeaf = deaf;
            asked.clear();
            EXPECT_EQ(responds(platform(track), callbacks[callback]), !deaf) << callbacks[callback];
            ASSERT_EQ(asked.size(), 1u) << callbacks[callback];
            identities.push_back(asked[0]);
            asked.clear();
            EXPECT_EQ(stepsOf(track, callback).size() > 1, !deaf) << callbacks[callback];
            EXPECT_EQ(answered, callback == 2 || !deaf) << callbacks[callback];
            ASSERT_EQ(asked.size(), 1u) << callbacks[callback];
            identities.push_back(asked[0]);
        }
        EXPECT_EQ(std::count(identities.begin(), identities.end(), identities[0]), 8) << "always its own";
    }
}

REALboolean answersOddly(REALobject) { return REALboolean{0x80}; }
REALboolean preparesOddly(REALobject, REALobject) { return REALboolean{0x80}; }
REALboolean verifiesOddly(REALobject, REALmemoryBlock, uint32_t, uint64_t, uint32_t, uint32_t*) {
    return REALboolean{0x80};
}

TEST_F(TrackFrame, ABooleanIsTheByteThatTheEventAnswers) {
    const Ref track = trackWith({});
    const objc::Id id = platform(track);
    const auto oddly = static_cast<objc::Boolean>(0x80);
    substitute = reinterpret_cast<REALproc>(&answersOddly);
    EXPECT_EQ((objc::send<"prepareTrackForVerification:", objc::Boolean>(id, id)), oddly);
    EXPECT_EQ((objc::send<"cleanupTrackAfterVerification:", objc::Boolean>(id, id)), oddly);
    substitute = reinterpret_cast<REALproc>(&preparesOddly);
    EXPECT_EQ((objc::send<"prepareTrack:forBurn:toMedia:", objc::Boolean>(id, id, objc::Id(), objc::Id())),
              oddly);
    substitute = reinterpret_cast<REALproc>(&verifiesOddly);
    char buffer[16] = {};
    uint32_t flags = 0;
    EXPECT_EQ((objc::send<"verifyPreGapForTrack:inBuffer:length:atAddress:blockSize:ioFlags:", objc::Boolean>(
                  id, id, static_cast<void*>(buffer), uint32_t{16}, uint64_t{0}, uint32_t{16}, &flags)),
              oddly);
    EXPECT_EQ((objc::send<"verifyDataForTrack:inBuffer:length:atAddress:blockSize:ioFlags:", objc::Boolean>(
                  id, id, static_cast<void*>(buffer), uint32_t{16}, uint64_t{0}, uint32_t{16}, &flags)),
              oddly);
    substitute = nullptr;
}

objc::Imp platformsInit = nullptr;
bool wasAnsweredFor = false;

// The platform may ask its producer things while it initialises.
objc::Id askingInit(objc::Id self, objc::Sel selector, objc::Id producer) {
    wasAnsweredFor = responds(producer, "produceDataForTrack:intoBuffer:length:atAddress:blockSize:ioFlags:");
    return reinterpret_cast<objc::Id (*)(objc::Id, objc::Sel, objc::Id)>(platformsInit)(self, selector,
                                                                                        producer);
}

TEST_F(TrackFrame, TheHostObjectIsThereWhileThePlatformsTrackIsInitialised) {
    const Ref first = make("DRTrackQRX"); // brings the platform
    construct(first);
    platformsInit = class_replaceMethod(objc_getClass("DRTrack"), objc::selector<"initWithProducer:">(),
                                        reinterpret_cast<objc::Imp>(&askingInit),
                                        objc::MethodTypes<decltype(&askingInit)>::text.data());
    ASSERT_NE(platformsInit, nullptr);
    const Ref track = trackWith({on(produceData, [](REALobject, Arguments) -> Value { return 0u; })});
    EXPECT_TRUE(wasAnsweredFor);
    const Ref without = trackWith({});
    EXPECT_FALSE(wasAnsweredFor);
}

TEST_F(TrackFrame, AHostThatMakesNoBlocksCallsTheEventWithoutOne) {
    std::vector<Value> buffers;
    const Ref track = trackWith(all(&buffers));
    isBlockless = true;
    for (const std::size_t callback : {3u, 4u, 6u, 7u}) {
        EXPECT_EQ(stepsOf(track, callback), (Steps{"look up", "lock", "event", "unlock"}))
            << callbacks[callback];
        EXPECT_TRUE(answered) << callbacks[callback];
    }
    ASSERT_EQ(buffers.size(), 4u);
    for (const Value& buffer : buffers)
        EXPECT_EQ(buffer.object(), nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

class TrackWithoutBlocks : public ProgramsTracks {
  protected:
    void SetUp() override {
        harness::withdraw("PtrToMemoryBlock");
        ProgramsTracks::SetUp();
    }
};

TEST_F(TrackWithoutBlocks, TheEventIsCalledAllTheSame) {
    bool wasNil = false;
    const Ref track = trackWith({on(produceData, [&](REALobject, Arguments a) -> Value {
        wasNil = a[0].object() == nullptr;
        a[4] = uint32_t{3};
        return uint32_t{16};
    })});
    char buffer[16] = "unchanged";
    uint32_t flags = 2;
    EXPECT_EQ(produceOf(platform(track), buffer, 16, 0, 16, &flags), 16u);
    EXPECT_TRUE(wasNil);
    EXPECT_EQ(flags, 3u);
    EXPECT_STREQ(buffer, "unchanged");
    EXPECT_EQ(raised(), std::nullopt);
}

} // namespace
