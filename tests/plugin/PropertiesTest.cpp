// PropertiesTest.cpp: the typed properties of burns and tracks, and their dictionaries as a whole.
#include "plugin/bridge/Properties.hpp"
#include "tests/plugin/Drives.hpp"
#include "tests/plugin/HostClasses.hpp"
#include "tests/plugin/PlatformObjects.hpp"

#include "host/runtime/Array.hpp"
#include "host/runtime/Dictionary.hpp"
#include "host/runtime/MemoryBlock.hpp"

#include <cstring>

namespace {

using namespace test;
using objc::Id;
using objc::send;

class Properties : public LoadedTest {
  protected:
    void SetUp() override {
        LoadedTest::SetUp();
        writeFile(drives.scratch / "content/file", "content");
        burn = Ref::adopt(call<REALobject>("DRBurnQRX", "burnForDevice(device as DRDeviceQRX) as DRBurnQRX",
                                           device().get()));
        track = newTrack();
    }

    Ref device() {
        return Ref::adopt(
            call<REALobject>("DRDeviceQRX", "device(index as UInt32) as DRDeviceQRX", uint32_t{0}));
    }
    Ref newTrack() {
        const Ref folder =
            Ref::adopt(call<REALobject>("DRFolderQRX", "folderWithPath(path as string) as DRFolderQRX",
                                        String((drives.scratch / "content").string()).get()));
        return Ref::adopt(call<REALobject>(
            "DRTrackQRX", "trackForRootFolder(folder as DRFolderQRX) as DRTrackQRX", folder.get()));
    }

    template <class T>
    T get(const Ref& object, const char* declaration) {
        return call<T>(classOf(object), declaration, object.get());
    }
    template <class T>
    void set(const Ref& object, const char* declaration, T value) {
        auto* setter = harness::setterOf<void(REALobject, T)>(classOf(object), declaration);
        ASSERT_NE(setter, nullptr) << declaration;
        setter(object.get(), value);
    }
    const char* classOf(const Ref& object) {
        return host::isA(object.get(), "DRBurnQRX") ? "DRBurnQRX" : "DRTrackQRX";
    }

    // The whole dictionary as the program sees it, and one of its values.
    Ref all(const Ref& object) { return Ref::adopt(get<REALobject>(object, "properties as dictionary")); }
    Value stored(const Ref& object, const char* key) {
        const Ref properties = all(object);
        return host::dictionaryHas(properties.get(), key) ? host::dictionaryGet(properties.get(), key)
                                                          : Value();
    }
    void store(const Ref& object, const char* key, const Value& value) {
        const Ref properties = all(object);
        host::dictionarySet(properties.get(), key, value);
        set<REALobject>(object, "properties as dictionary", properties.get());
    }

    Ref blockOf(const std::string& bytes) {
        Ref block = host::newMemoryBlock(static_cast<int64_t>(bytes.size()));
        std::memcpy(REALMemoryBlockGetPtr(block.get()), bytes.data(), bytes.size());
        return block;
    }
    std::string bytesOf(REALmemoryBlock block) {
        const Ref owned = Ref::adopt(block);
        if (!owned) return "nil";
        return {static_cast<char*>(REALMemoryBlockGetPtr(block)),
                static_cast<std::size_t>(REALMemoryBlockGetSize(block))};
    }
    // What the platform refused, with its log kept out of the test's.
    template <class Work>
    std::optional<Raised> refusal(Work work) {
        testing::internal::CaptureStderr();
        work();
        testing::internal::GetCapturedStderr();
        return raised();
    }

    OwnDrives drives;
    Ref burn, track;
};

constexpr REALboolean yes{1}, no{0};

// ---- the dictionary as a whole -----------------------------------------------------------------------

TEST_F(Properties, TheDictionaryAsAWholeIsReplaced) {
    const Ref properties = host::newDictionary();
    host::dictionarySet(properties.get(), "DRBurnTestingKey", true);
    host::dictionarySet(properties.get(), "own key", "own value");
    set<REALobject>(burn, "properties as dictionary", properties.get());
    EXPECT_EQ(stored(burn, "own key").toText(), "own value");
    EXPECT_EQ(get<REALboolean>(burn, "Testing as boolean"), yes);
    set<REALobject>(burn, "properties as dictionary", host::newDictionary().get());
    EXPECT_TRUE(stored(burn, "own key").isNil());
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Properties, AnObjectWithoutAPlatformObjectReadsEmptyAndIgnoresAssignments) {
    for (const char* name : {"DRBurnQRX", "DRTrackQRX"}) {
        const Ref empty = make(name);
        EXPECT_EQ(get<REALobject>(empty, "properties as dictionary"), nullptr);
        set<REALobject>(empty, "properties as dictionary", host::newDictionary().get());
    }
    const Ref emptyTrack = make("DRTrackQRX"), emptyBurn = make("DRBurnQRX");
    set(emptyBurn, "Testing as boolean", yes);
    EXPECT_EQ(get<REALboolean>(emptyBurn, "Testing as boolean"), no);
    set<int32_t>(emptyTrack, "BlockSize as integer", 2048);
    EXPECT_EQ(get<int32_t>(emptyTrack, "BlockSize as integer"), 0);
    set<double>(emptyTrack, "MaxBurnSpeed as double", 1.0);
    EXPECT_EQ(get<double>(emptyTrack, "MaxBurnSpeed as double"), 0.0);
    set<REALobject>(emptyTrack, "TrackISRC as memoryblock", nullptr);
    EXPECT_EQ(get<REALobject>(emptyTrack, "TrackISRC as memoryblock"), nullptr);
    set<REALstring>(emptyBurn, "BurnFailureAction as string", nullptr);
    EXPECT_EQ(get<REALstring>(emptyBurn, "BurnFailureAction as string"), nullptr);
    set<REALobject>(emptyTrack, "Length as DRMSFQRX", nullptr);
    EXPECT_EQ(get<REALobject>(emptyTrack, "Length as DRMSFQRX"), nullptr);
    EXPECT_EQ(get<uint64_t>(emptyTrack, "estimateLength as UInt64"), 0u);
    EXPECT_EQ(raised(), std::nullopt);
}

// ---- each kind of property ---------------------------------------------------------------------------

TEST_F(Properties, UnsetOnesReadEmpty) {
    set<REALobject>(burn, "properties as dictionary", host::newDictionary().get());
    set<REALobject>(track, "properties as dictionary", host::newDictionary().get());
    EXPECT_EQ(get<REALboolean>(burn, "Overwrite as boolean"), no);
    EXPECT_EQ(get<REALboolean>(burn, "UnderrunProtection as boolean"), no);
    EXPECT_EQ(get<REALboolean>(burn, "Testing as boolean"), no);
    EXPECT_EQ(get<double>(burn, "DoubleLayerL0DataZoneBlocks as double"), 0.0);
    EXPECT_EQ(get<REALobject>(burn, "MediaCatalogNumber as memoryblock"), nullptr);
    EXPECT_EQ(textOf(get<REALstring>(burn, "BurnFailureAction as string")), "");
    EXPECT_EQ(get<REALboolean>(track, "PreGapIsRequired as boolean"), no);
    EXPECT_EQ(get<double>(track, "PreGapLength as double"), 0.0);
    EXPECT_EQ(get<double>(track, "MaxBurnSpeed as double"), 0.0);
    EXPECT_EQ(get<REALobject>(track, "TrackISRC as memoryblock"), nullptr);
    EXPECT_EQ(get<REALstring>(track, "VerificationType as string"), nullptr);
    for (const char* declaration :
         {"BlockSize as integer", "TrackMode as integer", "SessionFormat as integer", "DataForm as integer",
          "BlockType as integer"})
        EXPECT_EQ(get<int32_t>(track, declaration), 0) << declaration;
    EXPECT_EQ(raised(), std::nullopt);
}

struct Key {
    const char* declaration;
    const char* key;
};

TEST_F(Properties, BooleansAreStoredAsBooleansUnderTheirKeys) {
    const std::pair<Ref, Key> cases[] = {
        {burn, {"Overwrite as boolean", "DRBurnOverwriteDiscKey"}},
        {burn, {"UnderrunProtection as boolean", "DRBurnUnderrunProtectionKey"}},
        {burn, {"Testing as boolean", "DRBurnTestingKey"}},
        {track, {"PreGapIsRequired as boolean", "DRPreGapIsRequiredKey"}}};
    for (const auto& [object, key] : cases) {
        for (const REALboolean value : {yes, no, yes}) {
            set(object, key.declaration, value);
            EXPECT_EQ(get<REALboolean>(object, key.declaration), value) << key.declaration;
            EXPECT_EQ(stored(object, key.key).kind(), Kind::Boolean) << key.key;
        }
    }
}

TEST_F(Properties, OnlyTheLowByteOfANumberMakesABoolean) {
    store(burn, "DRBurnTestingKey", 256);
    EXPECT_EQ(get<REALboolean>(burn, "Testing as boolean"), no) << "deliberately";
    store(burn, "DRBurnTestingKey", 257);
    EXPECT_EQ(get<REALboolean>(burn, "Testing as boolean"), yes);
}

TEST_F(Properties, IntegersAreStoredUnderTheirKeys) {
    int32_t number = 2048;
    for (const Key& key :
         {Key{"BlockSize as integer", "DRBlockSizeKey"},
          Key{"SessionFormat as integer", "DRSessionFormatKey"}, Key{"DataForm as integer", "DRDataFormKey"},
          Key{"BlockType as integer", "DRBlockTypeKey"}}) {
        set(track, key.declaration, ++number);
        EXPECT_EQ(get<int32_t>(track, key.declaration), number) << key.declaration;
        EXPECT_EQ(stored(track, key.key).toInt32(), number) << key.key;
    }
    set<int32_t>(track, "BlockSize as integer", -1);
    EXPECT_EQ(get<int32_t>(track, "BlockSize as integer"), -1);
}

TEST_F(Properties, TrackModeIsDeliberatelyTheBlockType) {
    store(track, "DRTrackModeKey", 4);
    set<int32_t>(track, "TrackMode as integer", 10);
    EXPECT_EQ(get<int32_t>(track, "BlockType as integer"), 10);
    EXPECT_EQ(get<int32_t>(track, "TrackMode as integer"), 10);
    EXPECT_EQ(stored(track, "DRTrackModeKey").toInt32(), 4);
}

TEST_F(Properties, DoublesAreStoredUnderTheirKeys) {
    const std::pair<Ref, Key> cases[] = {
        {burn, {"DoubleLayerL0DataZoneBlocks as double", "DRBurnDoubleLayerL0DataZoneBlocksKey"}},
        {track, {"PreGapLength as double", "DRPreGapLengthKey"}},
        {track, {"MaxBurnSpeed as double", "DRMaxBurnSpeedKey"}}};
    for (const auto& [object, key] : cases) {
        set(object, key.declaration, 1234.5);
        EXPECT_EQ(get<double>(object, key.declaration), 1234.5) << key.declaration;
        EXPECT_EQ(stored(object, key.key).kind(), Kind::Double) << key.key;
    }
}

TEST_F(Properties, TextsAreStoredUnderTheirKeys) {
    set(track, "VerificationType as string", String("own type").get());
    EXPECT_EQ(textOf(get<REALstring>(track, "VerificationType as string")), "own type");
    EXPECT_EQ(stored(track, "DRVerificationTypeKey").toText(), "own type");
}

TEST_F(Properties, MemoryBlocksAreStoredAsACopyUnderTheirKeys) {
    const std::pair<Ref, Key> cases[] = {
        {burn, {"MediaCatalogNumber as memoryblock", "DRMediaCatalogNumberKey"}},
        {track, {"TrackISRC as memoryblock", "DRTrackISRCKey"}}};
    for (const auto& [object, key] : cases) {
        const Ref block = blockOf("1234567890123");
        set<REALobject>(object, key.declaration, block.get());
        std::memset(REALMemoryBlockGetPtr(block.get()), 'x', 13);
        EXPECT_EQ(bytesOf(get<REALobject>(object, key.declaration)), "1234567890123");
        EXPECT_TRUE(IsMemoryBlock(stored(object, key.key).object())) << key.key;
    }
}

// ---- what the platform refuses -----------------------------------------------------------------------

TEST_F(Properties, ANilMemoryBlockOrTextIsRefusedAndLeavesTheValueInPlace) {
    set<REALobject>(track, "TrackISRC as memoryblock", blockOf("ISRC").get());
    set(track, "VerificationType as string", String("own type").get());
    const Ref emptyBlock = blockOf("");
    for (const REALobject block : {REALobject{nullptr}, emptyBlock.get()}) {
        const auto exception = refusal([&] { set<REALobject>(track, "TrackISRC as memoryblock", block); });
        ASSERT_TRUE(exception);
        EXPECT_EQ(exception->className, "RuntimeException");
        EXPECT_NE(exception->message, "");
    }
    EXPECT_TRUE(refusal([&] { set<REALstring>(track, "VerificationType as string", nullptr); }));
    EXPECT_EQ(bytesOf(get<REALobject>(track, "TrackISRC as memoryblock")), "ISRC");
    EXPECT_EQ(textOf(get<REALstring>(track, "VerificationType as string")), "own type");
}

TEST_F(Properties, AValueOfAnotherKindIsRefusedWhenItIsReadAndReadsEmpty) {
    store(track, "DRBlockSizeKey", Value(host::newArray(host::typeNamed("Variant"))));
    store(track, "DRMaxBurnSpeedKey", Value(host::newArray(host::typeNamed("Variant"))));
    store(track, "DRTrackISRCKey", 7);
    EXPECT_TRUE(refusal([&] { EXPECT_EQ(get<int32_t>(track, "BlockSize as integer"), 0); }));
    EXPECT_TRUE(refusal([&] { EXPECT_EQ(get<double>(track, "MaxBurnSpeed as double"), 0.0); }));
    EXPECT_TRUE(refusal([&] { EXPECT_EQ(get<REALobject>(track, "TrackISRC as memoryblock"), nullptr); }));
}

TEST_F(Properties, WhatIsNoTextIsRefusedWhenItIsReadAsOneAndStays) {
    store(track, "DRVerificationTypeKey", 7);
    EXPECT_TRUE(refusal([&] { EXPECT_EQ(get<REALstring>(track, "VerificationType as string"), nullptr); }));
    EXPECT_EQ(stored(track, "DRVerificationTypeKey").toInt32(), 7);
}

// ---- lengths -----------------------------------------------------------------------------------------

Ref msfOf(unsigned int frames) {
    const objc::Adopted msf(send<"initWithFrames:">(objc::alloc<"DRMSF">(), frames));
    return Ref::adopt(NewDRMSFQRX(msf.get()));
}

TEST_F(Properties, LengthIsAskedOfTheTrackAndStoredUnderItsKey) {
    set<REALobject>(track, "Length as DRMSFQRX", msfOf(4500).get());
    const Ref length = Ref::adopt(get<REALobject>(track, "Length as DRMSFQRX"));
    EXPECT_EQ((call<int32_t>("DRMSFQRX", "sectors as integer", length.get())), 4500);
    EXPECT_EQ(stored(track, "DRTrackLengthKey").toInt32(), 4500) << "in a dictionary it is a number";
    EXPECT_TRUE(refusal([&] { set<REALobject>(track, "Length as DRMSFQRX", nullptr); }));
    EXPECT_FALSE(stored(track, "DRTrackLengthKey").isNil());
}

TEST_F(Properties, ThePreGapIsTheTracksOwnMessage) {
    set<REALobject>(track, "preGap as DRMSFQRX", msfOf(150).get());
    const Ref gap = Ref::adopt(get<REALobject>(track, "preGap as DRMSFQRX"));
    EXPECT_EQ((call<int32_t>("DRMSFQRX", "sectors as integer", gap.get())), 150);
    set<REALobject>(track, "preGap as DRMSFQRX", nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Properties, TheEstimatedLengthIsThePlatforms) {
    const auto blocks = get<uint64_t>(track, "estimateLength as UInt64");
    EXPECT_EQ(blocks, (send<"estimateLength", uint64_t>(frame::held(track.get()))));
    EXPECT_GT(blocks, 16u) << "a file system has at least its descriptors";
}

} // namespace
