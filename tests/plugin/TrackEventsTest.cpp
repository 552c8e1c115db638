// TrackEventsTest.cpp: tracks whose data a program produces: what the burn engine asks, and what the events get.
#include "plugin/bridge/Registry.hpp"
#include "plugin/bridge/Wrappers.hpp"
#include "plugin/objc/Ownership.hpp"
#include "tests/plugin/ProgramsTracks.hpp"

#include <cstring>

extern "C" objc::Sel sel_registerTypedName(const char* name, const char* types);

namespace {

using namespace test;

class TrackEvents : public ProgramsTracks {};

TEST_F(TrackEvents, TheConstructorMakesAPlatformTrackThatIsItsOwnProducerAndComesBackAsTheHostObject) {
    const Ref track = trackWith({});
    ASSERT_NE(platform(track), nullptr);
    EXPECT_TRUE(objc::isKindOf<"DRTrack">(platform(track)));
    EXPECT_STREQ(objc::class_getName(objc::send<"class", objc::Class>(platform(track))), "MyDRTrack");
    EXPECT_EQ(FindInstance(platform(track)), track.get());
    EXPECT_EQ(Ref::adopt(NewDRTrackQRX(platform(track))).get(), track.get());
}

TEST_F(TrackEvents, ASecondConstructorCallRaisesAndLeavesTheFirstProducerInPlace) {
    const Ref track = trackWith({});
    const objc::Id first = platform(track);
    construct(track);
    EXPECT_EQ(raised(), (Raised{"UnsupportedOperationException",
                                "Constructor called too often. Object is already initialized."}));
    EXPECT_EQ(platform(track), first);
}

TEST_F(TrackEvents, ATrackThatAFactoryMadeCanNotBeConstructedAgain) {
    const Ref folder = Ref::adopt(call<REALobject>(
        "DRFolderQRX", "folderWithPath(path as string) as DRFolderQRX", String(drives.scratch.path()).get()));
    const Ref track = Ref::adopt(call<REALobject>(
        "DRTrackQRX", "trackForRootFolder(folder as DRFolderQRX) as DRTrackQRX", folder.get()));
    construct(track);
    EXPECT_EQ(raised(), (Raised{"UnsupportedOperationException",
                                "Constructor called too often. Object is already initialized."}));
}

TEST_F(TrackEvents, OnlyImplementedCallbacksAreAnsweredFor) {
    const Ref track = trackWith({on(produceData, [](REALobject, Arguments) -> Value { return 0u; })});
    for (const char* callback : callbacks)
        EXPECT_EQ(responds(platform(track), callback),
                  std::string_view(callback).starts_with("produceDataForTrack"))
            << callback;
    EXPECT_TRUE(responds(platform(track), "setProperties:")) << "what DRTrack has is DRTrack's to answer";
    EXPECT_FALSE(responds(platform(track), "noSuchMessage"));
}

TEST_F(TrackEvents, ASelectorMayStateTypesAndIsTheSameAllTheSame) {
    const Ref track = trackWith({});
    const objc::Sel typed = sel_registerTypedName("prepareTrackForVerification:", "C@:@");
    ASSERT_NE(typed, objc::sel_registerName("prepareTrackForVerification:"))
        << "another one, of the same name";
    EXPECT_EQ((objc::send<"respondsToSelector:", objc::Boolean>(platform(track), typed)), 0);
}

TEST_F(TrackEvents, EveryImplementedCallbackIsAnsweredFor) {
    const auto zero = [](REALobject, Arguments) -> Value { return 0u; };
    const auto no = [](REALobject, Arguments) -> Value { return false; };
    const Ref track = trackWith({on(estimate, zero), on(prepare, no), on(cleanup, no),
                                 on(producePreGap, zero), on(produceData, zero), on(prepareVerification, no),
                                 on(verifyPreGap, no), on(verifyData, no), on(cleanupVerification, no)});
    for (const char* callback : callbacks)
        EXPECT_TRUE(responds(platform(track), callback)) << callback;
}

TEST_F(TrackEvents, WhatAnEventWritesLandsInTheEnginesBuffer) {
    uint32_t length = 0, blockSize = 0;
    uint64_t address = 0;
    void* seen = nullptr;
    const Ref track = trackWith({on(produceData, [&](REALobject, Arguments a) -> Value {
        seen = host::memoryOf(a[0].object()).data();
        EXPECT_FALSE(host::hasKnownSize(a[0].object()));
        length = static_cast<uint32_t>(a[1].toInt64());
        address = a[2].toUInt64();
        blockSize = static_cast<uint32_t>(a[3].toInt64());
        std::memset(seen, 'x', 4096);
        return 4096u;
    })});
    std::string buffer(8192, '.');
    uint32_t flags = 0;
    const auto blocks = harness::liveInstances()["MemoryBlock"];
    EXPECT_EQ(produceOf(platform(track), buffer.data(), 8192, uint64_t{1} << 40, 2048, &flags), 4096u);
    EXPECT_EQ(seen, buffer.data());
    EXPECT_EQ(length, 8192u);
    EXPECT_EQ(address, uint64_t{1} << 40);
    EXPECT_EQ(blockSize, 2048u);
    EXPECT_EQ(buffer, std::string(4096, 'x') + std::string(4096, '.'));
    EXPECT_EQ(harness::liveInstances()["MemoryBlock"], blocks) << "the block is released after the call";
}

TEST_F(TrackEvents, FlagsCrossInBothDirectionsAndUntouchedOnesComeBackAsTheyWere) {
    uint32_t seen = 0;
    const Ref setting = trackWith({on(produceData, [&](REALobject, Arguments a) -> Value {
        seen = static_cast<uint32_t>(a[4].toInt64());
        a[4] = seen | 1u;
        return 1u;
    })});
    const Ref idle = trackWith({on(produceData, [](REALobject, Arguments) -> Value { return 1u; })});
    char buffer[16] = {};
    uint32_t flags = 2;
    produceOf(platform(setting), buffer, sizeof buffer, 0, 16, &flags);
    EXPECT_EQ(seen, 2u);
    EXPECT_EQ(flags, 3u);
    flags = 0x80000002;
    produceOf(platform(idle), buffer, sizeof buffer, 0, 16, &flags);
    EXPECT_EQ(flags, 0x80000002);
}

TEST_F(TrackEvents, PreGapsAreProducedAndDataIsVerifiedByTheirOwnEvents) {
    const auto note = [](uint32_t bit, bool boolean) {
        return [=](REALobject, Arguments a) -> Value {
            a[4] = a[4].toInt64() | bit;
            return boolean ? Value(a[1].toInt64() == 32) : Value(bit);
        };
    };
    const Ref track = trackWith(
        {on(producePreGap, note(4, false)), on(verifyPreGap, note(8, true)), on(verifyData, note(16, true))});
    char buffer[32] = {};
    uint32_t flags = 0;
    EXPECT_EQ(produce<"producePreGapForTrack:intoBuffer:length:atAddress:blockSize:ioFlags:">(
                  platform(track), buffer, 32, 0, 32, &flags),
              4u);
    EXPECT_TRUE(verify<"verifyPreGapForTrack:inBuffer:length:atAddress:blockSize:ioFlags:">(
        platform(track), buffer, 32, 0, 32, &flags));
    EXPECT_TRUE(verify<"verifyDataForTrack:inBuffer:length:atAddress:blockSize:ioFlags:">(
        platform(track), buffer, 32, 0, 32, &flags));
    EXPECT_FALSE(verify<"verifyDataForTrack:inBuffer:length:atAddress:blockSize:ioFlags:">(
        platform(track), buffer, 16, 0, 16, &flags));
    EXPECT_EQ(flags, 28u);
}

TEST_F(TrackEvents, EventsWithoutABufferAnswerUnchanged) {
    int cleaned = 0;
    const Ref track =
        trackWith({on(estimate, [](REALobject, Arguments) -> Value { return uint64_t{0xFEDCBA9876543210}; }),
                   on(cleanup,
                      [&](REALobject, Arguments) -> Value {
                          ++cleaned;
                          return Value();
                      }),
                   on(prepareVerification, [](REALobject, Arguments) -> Value { return true; }),
                   on(cleanupVerification, [](REALobject, Arguments) -> Value { return true; })});
    const objc::Id id = platform(track);
    EXPECT_EQ((objc::send<"estimateLengthOfTrack:", uint64_t>(id, id)), 0xFEDCBA9876543210);
    objc::send<"cleanupTrackAfterBurn:", void>(id, id);
    EXPECT_EQ(cleaned, 1);
    EXPECT_EQ((objc::send<"prepareTrackForVerification:", objc::Boolean>(id, id)), 1);
    EXPECT_EQ((objc::send<"cleanupTrackAfterVerification:", objc::Boolean>(id, id)), 1);
}

TEST_F(TrackEvents, PreparingHandsOverTheBurnsOwnHostObjectAndKeepsNoReference) {
    REALobject seen = nullptr;
    const Ref track = trackWith({on(prepare, [&](REALobject, Arguments a) -> Value {
        seen = a[0].object();
        return true;
    })});
    const Ref device =
        Ref::adopt(call<REALobject>("DRDeviceQRX", "device(index as UInt32) as DRDeviceQRX", uint32_t{0}));
    const Ref burn = make("DRBurnQRX");
    call<void>("DRBurnQRX", "Constructor(device as DRDeviceQRX)", burn.get(), device.get());
    const auto before = host::referencesOf(burn.get());
    const auto prepareFor = [&](objc::Id platformBurn) {
        return objc::send<"prepareTrack:forBurn:toMedia:", objc::Boolean>(platform(track), platform(track),
                                                                          platformBurn, objc::Id());
    };
    EXPECT_EQ(prepareFor(frame::held(burn.get())), 1);
    EXPECT_EQ(seen, burn.get());
    EXPECT_EQ(host::referencesOf(burn.get()), before);
    EXPECT_EQ(prepareFor(nullptr), 1) << "without a burn the event gets nil";
    EXPECT_EQ(seen, nullptr);
}

TEST_F(TrackEvents, WithoutAnEventTheDefaultsAreAnswered) {
    const Ref track = trackWith({});
    const objc::Id id = platform(track);
    char buffer[16] = "unchanged";
    uint32_t flags = 2;
    EXPECT_EQ((objc::send<"estimateLengthOfTrack:", uint64_t>(id, id)), 0u);
    EXPECT_EQ((objc::send<"prepareTrack:forBurn:toMedia:", objc::Boolean>(id, id, objc::Id(), objc::Id())),
              0);
    objc::send<"cleanupTrackAfterBurn:", void>(id, id);
    EXPECT_EQ(produceOf(id, buffer, 16, 0, 16, &flags), 0u);
    EXPECT_EQ(produce<"producePreGapForTrack:intoBuffer:length:atAddress:blockSize:ioFlags:">(id, buffer, 16,
                                                                                              0, 16, &flags),
              0u);
    EXPECT_EQ((objc::send<"prepareTrackForVerification:", objc::Boolean>(id, id)), 0);
    EXPECT_FALSE(verify<"verifyPreGapForTrack:inBuffer:length:atAddress:blockSize:ioFlags:">(id, buffer, 16,
                                                                                             0, 16, &flags));
    EXPECT_FALSE(verify<"verifyDataForTrack:inBuffer:length:atAddress:blockSize:ioFlags:">(id, buffer, 16, 0,
                                                                                           16, &flags));
    EXPECT_EQ((objc::send<"cleanupTrackAfterVerification:", objc::Boolean>(id, id)), 0);
    EXPECT_STREQ(buffer, "unchanged");
    EXPECT_EQ(flags, 2u);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(TrackEvents, WithoutAHostObjectTheDefaultsAreAnsweredAndEveryCallbackIsDenied) {
    const Ref track = trackWith({on(estimate, [](REALobject, Arguments) -> Value { return 7u; })});
    // Its class makes one for no host object.
    const objc::Id made = objc::send<"initWithInstance:">(
        objc::send<"alloc">(objc::send<"class">(platform(track))), REALobject());
    const objc::Adopted<> orphan(made);
    EXPECT_EQ((objc::send<"estimateLengthOfTrack:", uint64_t>(made, made)), 0u);
    EXPECT_EQ((objc::send<"prepareTrackForVerification:", objc::Boolean>(made, made)), 0);
    for (const char* callback : callbacks)
        EXPECT_FALSE(responds(made, callback)) << callback;
}

TEST_F(TrackEvents, TheObjectIsHeldWhileItsEventRuns) {
    uintptr_t inside = 0;
    Ref track = trackWith({on(produceData, [&](REALobject self, Arguments) -> Value {
        inside = host::referencesOf(self);
        return 1u;
    })});
    const auto before = host::referencesOf(track.get());
    char buffer[16];
    uint32_t flags = 0;
    produceOf(platform(track), buffer, 16, 0, 16, &flags);
    EXPECT_GT(inside, before);
    EXPECT_EQ(host::referencesOf(track.get()), before);
}

TEST_F(TrackEvents, ACopyIsTheSameTrackWithOneMoreReference) {
    const Ref track = trackWith({});
    const auto count = [&] { return objc::send<"retainCount", std::size_t>(platform(track)); };
    const auto before = count();
    EXPECT_EQ(objc::send<"copy">(platform(track)), platform(track));
    EXPECT_EQ(count(), before + 1);
    objc::release(platform(track));
}

TEST_F(TrackEvents, TheTrackTakesNoReferenceOnItsHostObjectAndDeliberatelyDropsOneAtItsEnd) {
    Ref track = trackWith({});
    EXPECT_EQ(host::referencesOf(track.get()), 1u) << "making it took none";
    const Ref bystander = Ref::borrow(track.get());
    const objc::Id made = objc::send<"initWithInstance:">(
        objc::send<"alloc">(objc::send<"class">(platform(track))), track.get());
    const Ref spare = Ref::borrow(track.get());
    EXPECT_EQ(host::referencesOf(track.get()), 3u);
    objc::release(made);
    EXPECT_EQ(host::referencesOf(track.get()), 2u) << "its end dropped one";
    REALLockObject(track.get()); // gives it back
}

TEST_F(TrackEvents, AnUnconstructedTrackAnswersEmpty) {
    const Ref track = make("DRTrackQRX");
    EXPECT_EQ(call<uint64_t>("DRTrackQRX", "estimateLength as UInt64", track.get()), 0u);
    EXPECT_EQ(call<double>("DRTrackQRX", "testProductionSpeedForInterval(seconds as double) as double",
                           track.get(), 1.0),
              0.0);
    EXPECT_EQ(call<double>("DRTrackQRX", "testProductionSpeedForLength(length as integer) as double",
                           track.get(), int32_t{2048}),
              0.0);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(TrackEvents, TheEstimateOfAProducedTrackIsItsEvents) {
    const Ref track =
        trackWith({on(estimate, [](REALobject, Arguments) -> Value { return uint64_t{4500}; })});
    EXPECT_EQ(call<uint64_t>("DRTrackQRX", "estimateLength as UInt64", track.get()), 4500u);
}

TEST_F(TrackEvents, ATrackOfAFileThatIsNoneIsNil) {
    EXPECT_EQ(call<REALobject>("DRTrackQRX", "trackForAudioFile(path as string) as DRTrackQRX", REALstring()),
              nullptr);
    EXPECT_EQ(call<REALobject>("DRTrackQRX", "trackForAudioFile(path as folderitem) as DRTrackQRX",
                               REALfolderItem()),
              nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

} // namespace
