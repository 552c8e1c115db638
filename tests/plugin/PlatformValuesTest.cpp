// PlatformValuesTest.cpp: host variants and objects as platform values.
#include "plugin/bridge/Variants.hpp"
#include "plugin/objc/Guard.hpp"
#include "tests/plugin/HostClasses.hpp"
#include "tests/plugin/PlatformObjects.hpp"

#include "host/runtime/Array.hpp"
#include "host/runtime/Date.hpp"
#include "host/runtime/FolderItem.hpp"
#include "host/runtime/MemoryBlock.hpp"

#include <cstring>

namespace {

using namespace test;
using objc::Id;
using objc::send;
using objc::sendClass;

using ToPlatform = LoadedTest;

Id toPlatform(const Value& value) { return GetVariantAsNSObject(variant(value).get()); }

std::string typeOf(Id number) { return send<"objCType", const char*>(number); }

TEST_F(ToPlatform, NilIsNil) {
    EXPECT_EQ(GetVariantAsNSObject(nullptr), nullptr);
    EXPECT_EQ(GetObjectAsNSObject(nullptr), nullptr);
}

TEST_F(ToPlatform, NumbersKeepTheirValueAndBooleansAreBooleans) {
    EXPECT_EQ((send<"longValue", long>(toPlatform(-7))), -7);
    EXPECT_EQ((send<"longLongValue", long long>(toPlatform(int64_t{-5'000'000'000}))), -5'000'000'000);
    EXPECT_EQ(typeOf(toPlatform(0.5f)), "f");
    EXPECT_EQ((send<"floatValue", float>(toPlatform(0.5f))), 0.5f);
    EXPECT_EQ(typeOf(toPlatform(0.1)), "d");
    EXPECT_EQ((send<"doubleValue", double>(toPlatform(0.1))), 0.1);
    const std::string booleanType = typeOf(sendClass<"NSNumber", "numberWithBool:">(objc::Boolean{1}));
    for (const bool expected : {true, false}) {
        EXPECT_EQ(typeOf(toPlatform(expected)), booleanType);
        EXPECT_EQ((send<"boolValue", objc::Boolean>(toPlatform(expected))), expected);
    }
}

TEST_F(ToPlatform, TextNeverConvertsToNil) {
    EXPECT_EQ(text(toPlatform("Größe")), "Größe");
    const Id empty = toPlatform("");
    ASSERT_TRUE(objc::isKindOf<"NSString">(empty));
    EXPECT_EQ(text(empty), "");
}

TEST_F(ToPlatform, TextThatNoPlatformStringCanHoldIsTheEmptyOne) {
    harness::withdraw("REALGetStringCFString");
    const Ref unreadable =
        variant(String::adopt(host::newString(std::string_view("\xFF\xFE\xFF"), kREALEncodingUTF8)));
    const Id string = GetVariantAsNSObject(unreadable.get());
    ASSERT_TRUE(objc::isKindOf<"NSString">(string));
    EXPECT_EQ((send<"length", unsigned long>(string)), 0u);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(ToPlatform, ADateIsACalendarDateAndItsReferenceIsDropped) {
    const Ref date = host::newDate(1'700'000'000);
    const Id converted = GetVariantAsNSObject(date.get());
    EXPECT_EQ((send<"timeIntervalSince1970", double>(converted)), 1'700'000'000.0);
    EXPECT_EQ(harness::references(date.get()), 1u);
}

using ToPlatformWithout = PluginTest;

TEST_F(ToPlatformWithout, TheDatesPropertyADateIsNil) {
    harness::withdraw("REALGetPropValueObject");
    load();
    EXPECT_EQ(GetVariantAsNSObject(host::newDate().get()), nullptr);
}

// ---- codes -------------------------------------------------------------------------------------------

// A host whose variants tell the type that a test wants, whatever they are.
int32_t toldType = 0, toldInteger = 0;

class ToldTypes : public PluginTest {
  protected:
    // Without the host's own function the type is read from the object's property.
    void SetUp() override {
        harness::withdraw("REALLoadGlobalMethod");
        harness::withdraw("VariantToInt32");
        load();
        static REALmethodDefinition methods[] = {
            {reinterpret_cast<REALproc>(+[](REALobject) { return toldType; }),
             reinterpret_cast<REALproc>(+[](REALobject, int32_t) {}), "Type as integer", kREALMemberFlags},
            {reinterpret_cast<REALproc>(+[](REALobject) { return toldInteger; }),
             reinterpret_cast<REALproc>(+[](REALobject, int32_t) {}), "Int32Value as integer",
             kREALMemberFlags},
        };
        registerHostClass("TestTyped", 0, nullptr, methods, std::size(methods));
    }
};

TEST_F(ToldTypes, EveryCodeThatIsNotListedIsNil) {
    offerBoxes();
    const Ref typed = make("TestTyped");
    for (const int code : {0, 1, 6, 10, 12, 13, 14, 15, 17, 36, -1, 0x1000, 0x1001, 0x1006, 0x100A, 0x1010}) {
        toldType = code;
        EXPECT_EQ(GetVariantAsNSObject(typed.get()), nullptr) << code;
    }
    toldType = 9;
    EXPECT_TRUE(objc::isKindOf<"QRXREALobjectWrapper">(GetVariantAsNSObject(typed.get())));
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(ToldTypes, Code16IsAnInteger) {
    toldType = 16;
    toldInteger = -70'000;
    const Id number = GetVariantAsNSObject(make("TestTyped").get());
    ASSERT_TRUE(objc::isKindOf<"NSNumber">(number));
    EXPECT_EQ((send<"longValue", long>(number)), -70'000);
}

TEST_F(ToldTypes, OnlyTheLowByteOfTheIntegerMakesABoolean) {
    toldType = 11;
    toldInteger = 256;
    EXPECT_EQ((send<"boolValue", objc::Boolean>(GetVariantAsNSObject(make("TestTyped").get()))), 0);
    toldInteger = 257;
    EXPECT_EQ((send<"boolValue", objc::Boolean>(GetVariantAsNSObject(make("TestTyped").get()))), 1);
}

// ---- arrays ------------------------------------------------------------------------------------------

Ref arrayOf(const char* type, std::initializer_list<Value> elements) {
    Ref array = host::newArray(host::typeNamed(type));
    for (const Value& element : elements)
        host::arrayAppend(array.get(), element);
    return array;
}

Id elementAt(Id array, unsigned long index) { return send<"objectAtIndex:">(array, index); }
unsigned long countOf(Id array) { return send<"count", unsigned long>(array); }

TEST_F(ToPlatform, ArraysOfEveryCodeKeepOrderAndValues) {
    const Id integers = GetVariantAsNSObject(arrayOf("Int32", {1, -2, 3}).get());
    ASSERT_EQ(countOf(integers), 3u);
    EXPECT_EQ((send<"longValue", long>(elementAt(integers, 1))), -2);
    const Id longs = GetVariantAsNSObject(arrayOf("Int64", {int64_t{1}, int64_t{-5'000'000'000}}).get());
    ASSERT_EQ(countOf(longs), 2u);
    EXPECT_EQ((send<"longLongValue", long long>(elementAt(longs, 1))), -5'000'000'000);
    const Id singles = GetVariantAsNSObject(arrayOf("Single", {0.5f, 1.5f}).get());
    EXPECT_EQ(typeOf(elementAt(singles, 1)), "f");
    EXPECT_EQ((send<"floatValue", float>(elementAt(singles, 1))), 1.5f);
    const Id doubles = GetVariantAsNSObject(arrayOf("Double", {0.1, 1e300}).get());
    EXPECT_EQ(typeOf(elementAt(doubles, 1)), "d");
    EXPECT_EQ((send<"doubleValue", double>(elementAt(doubles, 1))), 1e300);
    const Id booleans = GetVariantAsNSObject(arrayOf("Boolean", {true, false, true}).get());
    ASSERT_EQ(countOf(booleans), 3u);
    EXPECT_EQ(typeOf(elementAt(booleans, 0)),
              typeOf(sendClass<"NSNumber", "numberWithBool:">(objc::Boolean{1})));
    EXPECT_EQ((send<"boolValue", objc::Boolean>(elementAt(booleans, 1))), 0);
    EXPECT_EQ((send<"boolValue", objc::Boolean>(elementAt(booleans, 2))), 1);
    const Id strings = GetVariantAsNSObject(arrayOf("String", {"one", "zwei"}).get());
    EXPECT_EQ(text(elementAt(strings, 1)), "zwei");
    const Ref date = host::newDate(1'700'000'000);
    const Id dates = GetVariantAsNSObject(arrayOf("Date", {Value(date)}).get());
    EXPECT_EQ((send<"timeIntervalSince1970", double>(elementAt(dates, 0))), 1'700'000'000.0);
    EXPECT_EQ(harness::references(date.get()), 1u);
    const Id mixed =
        GetVariantAsNSObject(arrayOf("Variant", {1, "text", Value(arrayOf("Int32", {7}))}).get());
    ASSERT_EQ(countOf(mixed), 3u);
    EXPECT_EQ((send<"longValue", long>(elementAt(mixed, 0))), 1);
    EXPECT_EQ(text(elementAt(mixed, 1)), "text");
    EXPECT_EQ((send<"longValue", long>(elementAt(elementAt(mixed, 2), 0))), 7);
}

TEST_F(ToPlatform, AnEmptyArrayIsAnEmptyMutableArray) {
    for (const char* type : {"Int32", "Int64", "Single", "Double", "Date", "String", "Variant", "Boolean"}) {
        const Id array = GetVariantAsNSObject(arrayOf(type, {}).get());
        EXPECT_TRUE(objc::isKindOf<"NSMutableArray">(array)) << type;
        EXPECT_EQ(countOf(array), 0u) << type;
    }
}

TEST_F(ToPlatform, AnElementThatConvertsToNilIsThePlatformsToRefuse) {
    const Ref element = make("DRDeviceQRX");
    const Ref array = arrayOf("Variant", {Value(element)});
    EXPECT_NE(objc::caughtIn([&] { GetVariantAsNSObject(array.get()); }), nullptr);
    EXPECT_EQ(harness::references(element.get()), 2u) << "the array's and the test's";
}

TEST_F(ToPlatform, ATextThatIsMissingInAnArrayIsRefusedAndAnEmptyOneIsNot) {
    EXPECT_EQ(text(elementAt(GetVariantAsNSObject(arrayOf("String", {""}).get()), 0)), "");
    const Ref missing = host::newArray(host::typeNamed("String"), 0); // one element that was never set
    EXPECT_NE(objc::caughtIn([&] { GetVariantAsNSObject(missing.get()); }), nullptr);
}

TEST_F(ToPlatform, AnArrayThatContainsItselfIsRefused) {
    const Ref array = arrayOf("Variant", {1});
    host::arrayAppend(array.get(), Value(array));
    EXPECT_NE(objc::caughtIn([&] { GetVariantAsNSObject(array.get()); }), nullptr);
    host::arrayResize(array.get(), -1);
    EXPECT_EQ(countOf(GetVariantAsNSObject(array.get())), 0u) << "nothing is remembered of it";
}

// ---- objects -----------------------------------------------------------------------------------------

TEST_F(ToPlatform, AMemoryBlockIsDataAndAnEmptyOneDeliberatelyNil) {
    const Ref block = host::newMemoryBlock(3);
    std::memcpy(REALMemoryBlockGetPtr(block.get()), "a\0b", 3);
    const Id data = GetVariantAsNSObject(block.get());
    ASSERT_TRUE(objc::isKindOf<"NSData">(data));
    EXPECT_EQ((send<"length", unsigned long>(data)), 3u);
    EXPECT_EQ(std::memcmp(send<"bytes", const void*>(data), "a\0b", 3), 0);
    std::memset(REALMemoryBlockGetPtr(block.get()), 'x', 3);
    EXPECT_EQ(std::memcmp(send<"bytes", const void*>(data), "a\0b", 3), 0) << "a copy";
    EXPECT_EQ(GetVariantAsNSObject(host::newMemoryBlock(0).get()), nullptr);
    EXPECT_EQ(NewNSData(nullptr), nullptr);
}

TEST_F(ToPlatform, AFolderItemIsAFileURL) {
    const Id url = GetVariantAsNSObject(host::newFolderItem("/etc/passwd").get());
    ASSERT_TRUE(objc::isKindOf<"NSURL">(url));
    EXPECT_EQ(text(send<"path">(url)), "/etc/passwd");
}

TEST_F(ToPlatform, ADictionaryIsADictionary) {
    EXPECT_TRUE(objc::isKindOf<"NSDictionary">(GetVariantAsNSObject(make("Dictionary").get())));
}

class Holders : public LoadedTest, public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(OfCompanions, Holders,
                         testing::Values("QuartzFilterQRX", "NSImageQRX", "NSImageRepQRX", "NSFontQRX",
                                         "NSResponderQRX", "NSAttributedStringQRX", "NSIndexSetQRX",
                                         "NSColorQRX", "NSToolbarItemQRX", "NSToolbarQRX", "NSURLRequestQRX",
                                         "NSCharacterSetQRX", "NSParagraphStyleQRX", "NSTextContainerQRX",
                                         "WebUIDelegateQRX", "WebResourceLoadDelegateQRX",
                                         "WebFrameLoadDelegateQRX", "WebDownloadDelegateQRX", "DRBurnQRX",
                                         "PDFAnnotationQRX", "PDFActionQRX", "WebPolicyDelegateQRX"));

TEST_P(Holders, GoOverAsThePlatformObjectThatTheyHold) {
    offerBoxes();
    const std::string name = GetParam();
    if (name != "DRBurnQRX") registerHolderClass(GetParam());
    const objc::Adopted object(sendClass<"NSObject", "new">());
    const Ref holder = make(GetParam());
    EXPECT_EQ(GetVariantAsNSObject(holder.get()), nullptr) << "an empty one is nil, not boxed";
    frame::slot(holder.get()) = objc::retained(object.get());
    EXPECT_EQ(GetVariantAsNSObject(holder.get()), object.get());
    EXPECT_EQ((send<"retainCount", unsigned long>(object.get())), 2u) << "not retained on the way";
}

TEST_F(ToPlatform, DeliberatelyOtherWrappersAreBoxedAndComeBackAsTheyWere) {
    for (const char* name : {"DRDeviceQRX", "DRTrackQRX", "DRMSFQRX", "DREraseQRX", "DRFolderQRX"})
        EXPECT_EQ(GetVariantAsNSObject(make(name).get()), nullptr) << name;
    offerBoxes();
    for (const char* name : {"DRDeviceQRX", "DRTrackQRX", "DRMSFQRX", "DREraseQRX", "DRFolderQRX"}) {
        const Ref object = make(name);
        const Id box = GetVariantAsNSObject(object.get());
        EXPECT_TRUE(objc::isKindOf<"QRXREALobjectWrapper">(box)) << name;
        EXPECT_EQ(Ref::adopt(NewVariantFromNSObject(box)).get(), object.get()) << name;
    }
}

REALobject argument = nullptr;

template <char mark>
Id makeTime(Id, objc::Sel, REALobject object) {
    asked = mark;
    argument = object;
    return nsString("time");
}

TEST_F(ToPlatform, TimesAreMadeByTheCompanionThatOwnsThem) {
    addClassMethod<"valueWithQTTimeQRX:", makeTime<'0'>>("NSValue");
    addClassMethod<"valueWithQTTimeRangeQRX:", makeTime<'1'>>("NSValue");
    addClassMethod<"valueWithCMTimeMappingQRX:", makeTime<'2'>>("NSValue");
    addClassMethod<"valueWithCMTimeRangeQRX:", makeTime<'3'>>("NSValue");
    addClassMethod<"valueWithCMTimeQRX:", makeTime<'4'>>("NSValue");
    int index = 0;
    for (const char* name :
         {"QTKitTimeQRX", "QTKitTimeRangeQRX", "CMTimeMappingQRX", "CMTimeRangeQRX", "CMTimeQRX"}) {
        registerHostClass(name, 16);
        const Ref time = make(name);
        EXPECT_EQ(text(GetVariantAsNSObject(time.get())), "time");
        EXPECT_EQ(argument, time.get());
        EXPECT_EQ(asked, std::to_string(index++)) << name;
    }
}

} // namespace
