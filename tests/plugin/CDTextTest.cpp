// CDTextTest.cpp: CD-Text blocks, through the members that DRCDTextBlockQRX declares and the dictionaries that
// blocks come from.
#include "plugin/bridge/Variants.hpp"
#include "plugin/bridge/Wrappers.hpp"
#include "plugin/objc/Ownership.hpp"
#include "tests/plugin/Drives.hpp"
#include "tests/plugin/PluginTest.hpp"

#include "host/runtime/Array.hpp"
#include "host/runtime/Dictionary.hpp"
#include "host/runtime/Value.hpp"

#include <chrono>
#include <thread>

namespace {

using namespace test;
using host::Value;
using objc::Id;
using objc::send;
using objc::sendClass;

constexpr const char* className = "DRCDTextBlockQRX";

// A block of the platform, with a title for the disc.
Id newBlock(const char* language, unsigned long encoding) {
    const Id block =
        sendClass<"DRCDTextBlock", "cdTextBlockWithLanguage:encoding:">(nsString(language), encoding);
    send<"setObject:forKey:ofTrack:", void>(block, nsString("A title"), nsString("DRCDTextTitleKey"), 0ul);
    return block;
}

Id dictionaryWith(Id value) {
    return sendClass<"NSDictionary", "dictionaryWithObject:forKey:">(value, nsString("DRCDTextKey"));
}

class CDText : public LoadedTest {
  protected:
    std::string language(REALobject block) {
        return textOf(call<REALstring>(className, "language as string", block));
    }
    int32_t encoding(REALobject block) { return call<int32_t>(className, "encoding as integer", block); }

    // What stands under DRCDTextKey in a host dictionary.
    Value blocksIn(const Ref& dictionary) { return host::dictionaryGet(dictionary.get(), "DRCDTextKey"); }
};

TEST_F(CDText, AnEmptyOneAnswersEmptyAndRaisesNothing) {
    const Ref block = make(className);
    call<void>(className, "Constructor", block.get());
    EXPECT_EQ(frame::slot(block.get()), nullptr) << "a program can't make one";
    EXPECT_EQ(language(block.get()), "");
    EXPECT_EQ(encoding(block.get()), 0);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(CDText, ABlockOutOfAConvertedDictionaryAnswersItsLanguageAndEncoding) {
    struct Row {
        const char* language;
        unsigned long encoding;
    };
    for (const Row row : {Row{"en", 5}, Row{"de", 1}, Row{"ja", 8}, Row{"", 4}}) {
        const Id block = newBlock(row.language, row.encoding);
        const Ref dictionary = Ref::adopt(NSDictionaryRB(dictionaryWith(block)));
        const Value value = blocksIn(dictionary);
        ASSERT_TRUE(host::isA(value.object(), className));
        EXPECT_EQ(frame::held(value.object()), block);
        EXPECT_EQ(language(value.object()), row.language);
        EXPECT_EQ(encoding(value.object()), static_cast<int32_t>(row.encoding));
    }
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(CDText, TheHostObjectKeepsItsBlockAndLetsItGoWithItself) {
    const objc::Adopted block(
        send<"initWithLanguage:encoding:">(objc::alloc<"DRCDTextBlock">(), nsString("en"), 5ul));
    {
        const Ref object = Ref::adopt(NewNSObjectQRX(block.get()));
        EXPECT_EQ((send<"retainCount", unsigned long>(block.get())), 2u);
    }
    EXPECT_EQ((send<"retainCount", unsigned long>(block.get())), 1u);
}

TEST_F(CDText, WhatThePlatformRefusesIsRaisedInTheHost) {
    const objc::Adopted plain(sendClass<"NSObject", "new">());
    const Ref block = make(className);
    frame::slot(block.get()) = send<"retain">(plain.get());
    // An object that knows neither message.
    testing::internal::CaptureStderr();
    EXPECT_EQ((call<REALstring>(className, "language as string", block.get())), nullptr);
    EXPECT_TRUE(raised());
    EXPECT_EQ(encoding(block.get()), 0);
    EXPECT_TRUE(raised());
    testing::internal::GetCapturedStderr();
}

// ---- in the properties of a burn ---------------------------------------------------------------------

class CDTextOfABurn : public CDText {
  protected:
    void SetUp() override {
        CDText::SetUp();
        writeFile(drives.scratch / "content/read me.txt", "burned by a test\n");
        const Ref drive = Ref::adopt(
            call<REALobject>("DRDeviceQRX", "device(index as UInt32) as DRDeviceQRX", uint32_t{0}));
        burn = Ref::adopt(
            call<REALobject>("DRBurnQRX", "burnForDevice(device as DRDeviceQRX) as DRBurnQRX", drive.get()));
    }
    // With the medium left in the drive when the burn fails.
    void setCDText(Id value) {
        const Id properties = send<"mutableCopy">(dictionaryWith(value));
        send<"setObject:forKey:", void>(properties, nsString("DRBurnFailureActionNone"),
                                        nsString("DRBurnFailureActionKey"));
        send<"setProperties:", void>(frame::held(burn.get()), objc::autoreleased(properties));
    }
    Ref dictionary(const char* declaration) {
        return Ref::adopt(call<REALobject>("DRBurnQRX", declaration, burn.get()));
    }

    OwnDrives drives;
    Ref burn;
};

TEST_F(CDTextOfABurn, ABlockComesBack) {
    setCDText(newBlock("fr", 5));
    const Value value = blocksIn(dictionary("properties as dictionary"));
    ASSERT_TRUE(host::isA(value.object(), className));
    EXPECT_EQ(language(value.object()), "fr");
    EXPECT_EQ(encoding(value.object()), 5);
}

TEST_F(CDTextOfABurn, SeveralBlocksComeBackInTheirOrder) {
    const Id blocks = sendClass<"NSMutableArray", "array">();
    for (const char* name : {"fr", "de", "fr"})
        send<"addObject:", void>(blocks, newBlock(name, 5));
    setCDText(blocks);
    const Value value = blocksIn(dictionary("properties as dictionary"));
    ASSERT_TRUE(value.isArray());
    ASSERT_EQ(host::upperBound(value.object()), 2);
    for (int32_t i = 0; i < 3; ++i) {
        const Value block = host::arrayGet(value.object(), i);
        ASSERT_TRUE(host::isA(block.object(), className));
        EXPECT_EQ(language(block.object()), i == 1 ? "de" : "fr");
    }
}

TEST_F(CDTextOfABurn, ABurnThatCannotWriteItSaysSoAndLeavesTheMediumBlank) {
    setCDText(newBlock("en", 5));
    const Ref folder =
        Ref::adopt(call<REALobject>("DRFolderQRX", "folderWithPath(path as string) as DRFolderQRX",
                                    String((drives.scratch / "content").string()).get()));
    const Ref track = Ref::adopt(call<REALobject>(
        "DRTrackQRX", "trackForRootFolder(folder as DRFolderQRX) as DRTrackQRX", folder.get()));
    call<void>("DRBurnQRX", "writeLayout(track as DRTrackQRX)", burn.get(), track.get());
    Ref status;
    for (int i = 0; i < 500; ++i) {
        status = dictionary("status as dictionary");
        if (host::dictionaryGet(status.get(), "DRStatusStateKey").toText() == "DRStatusStateFailed") break;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    ASSERT_TRUE(host::dictionaryHas(status.get(), "DRErrorStatusKey"));
    const Value error = host::dictionaryGet(status.get(), "DRErrorStatusKey");
    EXPECT_EQ(host::dictionaryGet(error.object(), "DRErrorStatusErrorKey").toInt64(),
              static_cast<int32_t>(0x80020201));
    const std::string sentence = host::dictionaryGet(error.object(), "DRErrorStatusErrorStringKey").toText();
    EXPECT_NE(sentence.find("CD-Text, which a DVD+RW can't take"), std::string::npos) << sentence;
    const Ref drive = Ref::adopt(call<REALobject>("DRBurnQRX", "device as DRDeviceQRX", burn.get()));
    EXPECT_TRUE((call<bool>("DRDeviceQRX", "mediaIsBlank as boolean", drive.get())));
    EXPECT_EQ(raised(), std::nullopt);
}

} // namespace
