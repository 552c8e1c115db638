// TrackArgumentsTest.cpp: what the track class hands to the platform, when it asks it nothing, and what a constructed
// track keeps.
#include "host/runtime/FolderItem.hpp"
#include "plugin/bridge/Registry.hpp"
#include "plugin/bridge/Startup.hpp"
#include "plugin/bridge/Wrappers.hpp"
#include "plugin/objc/ClassBuilder.hpp"
#include "plugin/objc/Ownership.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/Drives.hpp"
#include "tests/plugin/PluginTest.hpp"
#include "tests/plugin/Replaced.hpp"

namespace {

using namespace test;
using objc::Id;
using objc::Sel;

constexpr const char* className = "DRTrackQRX";
constexpr const char* ofFolder = "trackForRootFolder(folder as DRFolderQRX) as DRTrackQRX";
constexpr const char* ofFolderItem = "trackForRootFolder(folder as folderitem) as DRTrackQRX";
constexpr const char* ofPath = "trackForAudioFile(path as string) as DRTrackQRX";
constexpr const char* ofFile = "trackForAudioFile(path as folderitem) as DRTrackQRX";
constexpr const char* factories[] = {ofFolder, ofFolderItem, ofPath, ofFile};

int calls = 0;
Id given = nullptr;

Id answersNothing(Id, Sel, Id value) {
    ++calls;
    given = value;
    return nullptr;
}
Id refuses(Id, Sel, Id) {
    raiseTestException();
    return nullptr;
}
void takes(Id, Sel, Id value) {
    ++calls;
    given = value;
}
Id fourHundredBlocks(Id, Sel) { return objc::sendClass<"DRMSF", "msfWithFrames:">(uint32_t{400}); }

class TrackArguments : public LoadedTest {
  protected:
    void SetUp() override {
        companion::offerRegistry();
        LoadedTest::SetUp();
        writeFile(drives.scratch / "content/read me.txt", "burned by a test\n");
    }

    Ref folder() {
        return Ref::adopt(call<REALobject>("DRFolderQRX", "folderWithPath(path as string) as DRFolderQRX",
                                           String((drives.scratch / "content").string()).get()));
    }
    Ref track() { return Ref::adopt(call<REALobject>(className, ofFolder, folder().get())); }
    Ref constructed() {
        Ref track = make(className);
        call<void>(className, "Constructor", track.get());
        return track;
    }
    // Each factory, with nothing to make a track of.
    REALobject madeOfNothing(const char* declaration) {
        return declaration == ofPath ? call<REALobject>(className, declaration, REALstring{nullptr})
                                     : call<REALobject>(className, declaration, REALobject{nullptr});
    }

    OwnDrives drives;
};

TEST_F(TrackArguments, OfNothingTheFactoriesMakeNothingAndDoNotAskThePlatform) {
    replaceClassMethod<"trackForRootFolder:", answersNothing>("DRTrack");
    replaceClassMethod<"trackForAudioFile:", answersNothing>("DRTrack");
    replaceClassMethod<"folderWithPath:", answersNothing>("DRFolder");
    for (const char* factory : factories)
        EXPECT_EQ(madeOfNothing(factory), nullptr) << factory;
    const Ref empty = make("DRFolderQRX");
    EXPECT_EQ((call<REALobject>(className, ofFolder, empty.get())), nullptr);
    EXPECT_EQ(calls, 0);
    EXPECT_EQ((call<REALobject>(className, ofPath, String("/no/such/file").get())), nullptr);
    EXPECT_EQ(calls, 1) << "what there is, is asked";
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(TrackArguments, AFactoryThatThePlatformRefusesRaisesAndAnswersNil) {
    const Ref content = folder();
    replaceClassMethod<"trackForRootFolder:", refuses>("DRTrack");
    replaceClassMethod<"trackForAudioFile:", refuses>("DRTrack");
    testing::internal::CaptureStderr();
    EXPECT_EQ((call<REALobject>(className, ofFolder, content.get())), nullptr);
    EXPECT_EQ(raised()->className, "RuntimeException");
    EXPECT_EQ((call<REALobject>(className, ofPath, String("/any").get())), nullptr);
    EXPECT_EQ(raised()->className, "RuntimeException");
    testing::internal::GetCapturedStderr();
}

TEST_F(TrackArguments, EachFactoryRunsStartUpAndTheConstructorDoesNot) {
    CocoaInit();
    for (const char* factory : factories) {
        instances = nullptr;
        const int32_t before = companion::registryAsked;
        madeOfNothing(factory);
        EXPECT_EQ(companion::registryAsked, before + 1) << factory;
    }
    const Ref track = make(className);
    const int32_t before = companion::registryAsked;
    call<void>(className, "Constructor", track.get());
    call<void>(className, "Constructor", track.get());
    EXPECT_EQ(raised()->className, "UnsupportedOperationException");
    EXPECT_EQ(companion::registryAsked, before) << "deliberately: the class constructor has run it";
}

TEST_F(TrackArguments, SoundIsFoundByItsPathAndWhatIsNoneGivesNil) {
    std::string wave(
        "RIFF\x2c\x00\x00\x00WAVEfmt \x10\x00\x00\x00\x01\x00\x02\x00\x44\xac\x00\x00\x10\xb1\x02\x00"
        "\x04\x00\x10\x00"
        "data\x08\x00\x00\x00",
        44);
    wave += std::string(8, '\x01');
    writeFile(drives.scratch / "two.wav", wave);
    const Ref track =
        Ref::adopt(call<REALobject>(className, ofPath, String((drives.scratch / "two.wav").string()).get()));
    ASSERT_TRUE(track);
    EXPECT_EQ(FindInstance(frame::slot(track.get())), track.get());
    const Ref item = host::newFolderItem((drives.scratch / "two.wav").string());
    const Ref ofItem = Ref::adopt(call<REALobject>(className, ofFile, item.get()));
    ASSERT_TRUE(ofItem);
    for (const Ref* each : {&track, &ofItem})
        EXPECT_EQ((call<uint64_t>(className, "estimateLength as UInt64", each->get())), 1u);
    EXPECT_EQ((call<REALobject>(className, ofPath,
                                String((drives.scratch / "content/read me.txt").string()).get())),
              nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

// A length that is stored is not the length that is told.
TEST_F(TrackArguments, TheLengthIsTheTracksAnswerAndAssigningOneOnlyStoresIt) {
    replaceMethod<"length", fourHundredBlocks>("DRTrack");
    const Ref made = track();
    const Ref other =
        Ref::adopt(call<REALobject>("DRMSFQRX", "msfWithFrames(frames as integer) as DRMSFQRX", int32_t{77}));
    harness::setterOf<void(REALobject, REALobject)>(className, "Length as DRMSFQRX")(made.get(), other.get());
    const Ref length = Ref::adopt(call<REALobject>(className, "Length as DRMSFQRX", made.get()));
    EXPECT_EQ((call<int32_t>("DRMSFQRX", "sectors as integer", length.get())), 400);
    const Id properties = objc::send<"properties">(frame::held(made.get()));
    const Id stored = objc::send<"objectForKey:">(properties, nsString("DRTrackLengthKey"));
    EXPECT_EQ((objc::send<"intValue", int>(stored)), 77);
}

TEST_F(TrackArguments, ANilPreGapIsHandedOver) {
    const Ref made = track();
    replaceMethod<"setPreGap:", takes>("DRTrack");
    given = frame::held(made.get());
    harness::setterOf<void(REALobject, REALobject)>(className, "preGap as DRMSFQRX")(made.get(), nullptr);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(given, nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(TrackArguments, AConstructedTrackHasOneReferenceAndTakesItsEntryAlong) {
    Id platform = nullptr;
    {
        const Ref track = constructed();
        platform = frame::slot(track.get());
        ASSERT_NE(platform, nullptr);
        EXPECT_EQ((objc::send<"retainCount", unsigned long>(platform)), 1u);
        EXPECT_EQ(FindInstance(platform), track.get());
    }
    EXPECT_EQ(FindInstance(platform), nullptr) << "the entry went with the host object";
    EXPECT_EQ(raised(), std::nullopt);
}

// Initialising may answer another object, or none.
Id otherTrack = nullptr;
Id answersAnother(Id self, Sel, Id) {
    objc::release(self);
    return otherTrack;
}

TEST_F(TrackArguments, WhatInitialisingAnswersIsTheTrack) {
    const Ref first = constructed();
    otherTrack = objc::retained(frame::slot(first.get()));
    replaceMethod<"initWithProducer:", answersAnother>("DRTrack");
    Ref second = constructed();
    EXPECT_EQ(frame::slot(second.get()), otherTrack);
    EXPECT_EQ(*objc::ivar<REALobject>(otherTrack, "host"), second.get()) << "and asks this object's events";
    otherTrack = nullptr;
    const Ref none = constructed();
    EXPECT_EQ(frame::slot(none.get()), nullptr) << "no track, and a later call may make one";
    EXPECT_EQ(raised(), std::nullopt);
}

} // namespace
