// ExceptionTest.cpp: platform exceptions become objects that programs catch.
#include "tests/companion/CompanionTest.hpp"

#include "host/runtime/Array.hpp"
#include "host/runtime/MemoryBlock.hpp"

#include <dlfcn.h>

namespace {

using namespace test;

using Exceptions = WithCompanion;

Id numberOf(const char* text) {
    return objc::sendClass<"NSDecimalNumber", "decimalNumberWithString:">(nsString(text));
}

Id dictionaryWith(Id value, const char* key) {
    return objc::sendClass<"NSDictionary", "dictionaryWithObject:forKey:">(value, nsString(key));
}

TEST_F(Exceptions, CarryNameReasonAndUserInformation) {
    const Value exception = converted(platformException("for a reason", dictionaryWith(nsString("v"), "k")));
    ASSERT_TRUE(exception.isObject());
    EXPECT_EQ(exception.typeName(), "NSExceptionQRX");
    EXPECT_TRUE(host::isA(exception.object(), "RuntimeException"));
    EXPECT_EQ(ask(exception, "Name").toText(), "TestException");
    EXPECT_EQ(ask(exception, "Reason").toText(), "for a reason");
    EXPECT_EQ(ask(exception, "Message").toText(), "for a reason");
    EXPECT_EQ(host::dictionaryGet(ask(exception, "UserInfo").object(), "k").toText(), "v");
    EXPECT_EQ(harness::references(exception.object()), 1u) << "one reference, the caller's";
}

TEST_F(Exceptions, KeepThePlatformExceptionOnceAndLetItGo) {
    const Id platform = platformException("reason");
    const auto before = retains(platform);
    {
        const Value exception = converted(platform);
        EXPECT_EQ(slot(exception.object()), platform);
        EXPECT_EQ(retains(platform), before + 1);
    }
    EXPECT_EQ(retains(platform), before);
}

TEST_F(Exceptions, WithoutReasonOrUserInformationHaveThePlatformsWordsAndNil) {
    const Id platform = platformException(nullptr);
    const Value exception = converted(platform);
    EXPECT_EQ(ask(exception, "Reason").toText(), text(objc::send<"reason">(platform)));
    EXPECT_EQ(ask(exception, "Message").toText(), text(objc::send<"reason">(platform)));
    EXPECT_TRUE(ask(exception, "UserInfo").isNil());
    EXPECT_TRUE(converted(nullptr).isObject()) << "an exception is due, whatever it is made of";
}

TEST_F(Exceptions, ThatAProgramMakesHaveTheirMessageAndNothingElse) {
    const Value exception = make("NSExceptionQRX", {"made by hand"});
    EXPECT_EQ(ask(exception, "Message").toText(), "made by hand");
    EXPECT_EQ(ask(exception, "Name").toText(), "");
    EXPECT_TRUE(ask(exception, "UserInfo").isNil());
}

TEST_F(Exceptions, OnAHostThatCannotMakeTheClassAreRuntimeExceptions) {
    harness::hideClass("NSExceptionQRX");
    const Value exception = converted(platformException("reason"));
    EXPECT_EQ(exception.typeName(), "RuntimeException");
    EXPECT_EQ(ask(exception, "Message").toText(), "reason");
    harness::hideClass("RuntimeException");
    EXPECT_TRUE(converted(platformException("reason")).isNil());
}

TEST_F(Exceptions, ArePreparedAsOftenAsAnybodyAsks) {
    for (int i = 0; i < 3; ++i)
        objc::send<"PrepareNSExceptionQRX", void>(objc::classNamed<"NSException">());
    EXPECT_TRUE(converted(platformException("reason")).isObject());
}

// Text that is no Unicode text.
TEST_F(Exceptions, WithHalfACharacterInTheReasonAreStillRaised) {
    const uint16_t units[] = {'a', 0xD800, 'b'};
    const auto create = reinterpret_cast<Id (*)(const void*, const uint16_t*, long)>(
        dlsym(RTLD_DEFAULT, "CFStringCreateWithCharacters"));
    const Id reason = objc::send<"autorelease">(create(nullptr, units, 3));
    const Id platform = objc::sendClass<"NSException", "exceptionWithName:reason:userInfo:">(
        nsString("TestException"), reason, Id(nullptr));
    const std::string message = ask(converted(platform), "Message").toText();
    EXPECT_TRUE(message.starts_with("a")) << message;
    EXPECT_TRUE(message.ends_with("b")) << message;
}

// ---- user information --------------------------------------------------------------------------------

class UserInfo : public Exceptions {
  protected:
    static Value ofValue(Id value) {
        const Value info = ask(converted(platformException("r", dictionaryWith(value, "k"))), "UserInfo");
        return host::dictionaryGet(info.object(), "k");
    }
};

TEST_F(UserInfo, HasNumbersOfTheKindThatTheyAre) {
    EXPECT_EQ(ofValue(objc::sendClass<"NSNumber", "numberWithInt:">(-5)).toInt32(), -5);
    EXPECT_EQ(ofValue(objc::sendClass<"NSNumber", "numberWithInt:">(-5)).kind(), host::Kind::Int32);
    EXPECT_EQ(ofValue(objc::sendClass<"NSNumber", "numberWithLongLong:">(1ll << 40)).toInt64(), 1ll << 40);
    EXPECT_EQ(ofValue(objc::sendClass<"NSNumber", "numberWithUnsignedLongLong:">(~0ull)).toUInt64(), ~0ull);
    EXPECT_EQ(ofValue(objc::sendClass<"NSNumber", "numberWithDouble:">(0.5)).toDouble(), 0.5);
    const Value truth = ofValue(objc::sendClass<"NSNumber", "numberWithBool:">(objc::Boolean(1)));
    EXPECT_EQ(truth.kind(), host::Kind::Boolean);
    EXPECT_TRUE(truth.toBoolean());
    EXPECT_EQ(ofValue(numberOf("2.5")).toDouble(), 2.5);
}

TEST_F(UserInfo, HasTextURLsArraysAndDictionariesAtAnyDepth) {
    EXPECT_EQ(ofValue(nsString("Größe")).toText(), "Größe");
    EXPECT_EQ(ofValue(objc::sendClass<"NSURL", "URLWithString:">(nsString("file:///a/b"))).toText(),
              "file:///a/b");
    const Value inner = ofValue(dictionaryWith(dictionaryWith(nsString("deep"), "b"), "a"));
    const Value a = host::dictionaryGet(inner.object(), "a");
    EXPECT_EQ(host::dictionaryGet(a.object(), "b").toText(), "deep");
    const Value list = ofValue(objc::sendClass<"NSArray", "arrayWithObject:">(nsString("one")));
    ASSERT_TRUE(list.isArray());
    EXPECT_EQ(host::upperBound(list.object()), 0);
    EXPECT_EQ(ofValue(objc::sendClass<"NSDictionary", "dictionary">()).typeName(), "Dictionary");
}

TEST_F(UserInfo, HasObjectsByTheNameOfTheirClassAndNilWhereThereIsNone) {
    const Id set = objc::sendClass<"NSMutableIndexSet", "indexSetWithIndex:">(4ul);
    const Value wrapped = ofValue(set);
    EXPECT_EQ(wrapped.typeName(), "NSIndexSetQRX");
    EXPECT_EQ(slot(wrapped.object()), set);
    EXPECT_TRUE(ofValue(objc::sendClass<"NSNull", "null">()).isNil());
    EXPECT_TRUE(ofValue(objc::send<"autorelease">(objc::sendClass<"NSObject", "new">())).isNil());
}

TEST_F(UserInfo, HasTheVeryHostObjectThatWasBoxed) {
    const Value range = make("NSRangeQRX", {1, 2});
    const Value back = ofValue(objc::sendClass<"QRXREALobjectWrapper", "wrap:">(range.object()));
    EXPECT_EQ(back.object(), range.object());
}

TEST_F(UserInfo, HasDatesInLocalTime) {
    objc::sendClass<"NSTimeZone", "setDefaultTimeZone:", void>(
        objc::sendClass<"NSTimeZone", "timeZoneForSecondsFromGMT:">(7200l));
    // 2001-01-31 22:04:05.75 UTC: already February there.
    const Value date = ofValue(objc::sendClass<"NSDate", "dateWithTimeIntervalSinceReferenceDate:">(
        30 * 86400 + 22 * 3600 + 245.75));
    EXPECT_EQ(date.typeName(), "Date");
    EXPECT_EQ(ask(date, "SQLDateTime").toText(), "2001-02-01 00:04:05");
    // On 32 bits the platform itself keeps a date within its own bounds, and that is one that a calendar reaches.
    const Id beyond = objc::sendClass<"NSDate", "dateWithTimeIntervalSinceReferenceDate:">(1e12);
    if constexpr (sizeof(void*) == 8)
        EXPECT_TRUE(ofValue(beyond).isNil());
    else
        EXPECT_EQ(ask(ofValue(beyond), "Year").toInt32(), 4001);
}

TEST_F(UserInfo, HasDataAsMemoryBlocks) {
    const auto data = [](const std::string& bytes) {
        return objc::sendClass<"NSData", "dataWithBytes:length:">(static_cast<const void*>(bytes.data()),
                                                                  bytes.size());
    };
    const std::string bytes("a\0b\xFF", 4);
    const Value block = ofValue(data(bytes));
    ASSERT_TRUE(host::isMemoryBlock(block.object()));
    const auto memory = host::memoryOf(block.object());
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(memory.data()), memory.size()), bytes);
    const Value empty = ofValue(data(""));
    ASSERT_TRUE(host::isMemoryBlock(empty.object()));
    EXPECT_EQ(host::memoryOf(empty.object()).size(), 0u);
    harness::failNewMemoryBlock(true);
    EXPECT_TRUE(ofValue(data(bytes)).isNil());
}

// Data that only says how long it is and where.
Id dataOf(unsigned long length, const void* bytes) {
    static unsigned long saidLength;
    static const void* saidBytes;
    saidLength = length;
    saidBytes = bytes;
    static const objc::Class made = [] {
        const objc::Class data = objc::objc_allocateClassPair(objc::objc_getClass("NSData"), "SaidData", 0);
        const auto add = [=](const char* selector, auto* function, const char* types) {
            objc::class_addMethod(data, objc::sel_registerName(selector),
                                  reinterpret_cast<objc::Imp>(function), types);
        };
        add(
            "length", +[](Id, objc::Sel) { return saidLength; }, sizeof(long) == 8 ? "Q@:" : "I@:");
        add(
            "bytes", +[](Id, objc::Sel) { return saidBytes; }, "r^v@:");
        add(
            "dealloc", +[](Id, objc::Sel) {}, "v@:"); // the one object stays
        objc::objc_registerClassPair(data);
        return data;
    }();
    static const Id only = objc::send<"alloc">(reinterpret_cast<Id>(made));
    return only;
}

TEST_F(UserInfo, DataWithoutBytesIsNilUnlessItIsEmpty) {
    EXPECT_TRUE(ofValue(dataOf(4, nullptr)).isNil());
    const Value empty = ofValue(dataOf(0, nullptr));
    ASSERT_TRUE(host::isMemoryBlock(empty.object()));
    EXPECT_EQ(host::memoryOf(empty.object()).size(), 0u);
}

// A host counts a block's bytes with 31 bits.
TEST_F(UserInfo, DataOf2GiBAndMoreIsNilAndItsBytesAreNotTouched) {
    std::vector<unsigned long> lengths{0x80000000ul, static_cast<unsigned long>(-1)};
    if (sizeof(long) == 8) lengths.push_back(static_cast<unsigned long>(0x100000004ull)); // 4, if it was cut
    for (const unsigned long length : lengths)
        EXPECT_TRUE(ofValue(dataOf(length, reinterpret_cast<const void*>(16))).isNil()) << length;
}

TEST_F(UserInfo, HasGeometryAndNoOtherValues) {
    using Number = std::conditional_t<sizeof(void*) == 8, double, float>;
    struct Range {
        unsigned long location, length;
    };
    struct Pair {
        Number first, second;
    };
    struct Rect {
        Number x, y, width, height;
    };
    const auto expect = [](const Value& value, const std::string& type,
                           std::vector<std::pair<const char*, double>> fields) {
        ASSERT_EQ(value.typeName(), type);
        for (const auto& [name, number] : fields)
            EXPECT_EQ(ask(value, name).toDouble(), number) << type << "." << name;
    };
    expect(ofValue(objc::sendClass<"NSValue", "valueWithRange:">(Range{9, 10})), "NSRangeQRX",
           {{"location", 9}, {"length", 10}});
    expect(ofValue(objc::sendClass<"NSValue", "valueWithRect:">(Rect{1.5, -2, 3, 4})), "NSRectQRX",
           {{"x", 1.5}, {"y", -2}, {"width", 3}, {"height", 4}});
    expect(ofValue(objc::sendClass<"NSValue", "valueWithSize:">(Pair{5, 6.5})), "NSSizeQRX",
           {{"width", 5}, {"height", 6.5}});
    expect(ofValue(objc::sendClass<"NSValue", "valueWithPoint:">(Pair{-7, 8})), "NSPointQRX",
           {{"x", -7}, {"y", 8}});
    EXPECT_TRUE(
        ofValue(objc::sendClass<"NSValue", "valueWithPointer:">(static_cast<const void*>(""))).isNil());
}

// ---- collections that contain each other -------------------------------------------------------------

Id emptyDictionary() { return objc::sendClass<"NSMutableDictionary", "dictionary">(); }
void put(Id dictionary, const std::string& key, Id value) {
    objc::send<"setObject:forKey:", void>(dictionary, value, nsString(key.c_str()));
}

TEST_F(UserInfo, IsNilWhereItContainsItself) {
    const Id cycle = emptyDictionary();
    put(cycle, "a", cycle);
    put(cycle, "b", cycle);
    const Id list = objc::sendClass<"NSMutableArray", "array">();
    objc::send<"addObject:", void>(list, list);
    put(cycle, "list", list);
    put(cycle, "text", nsString("text"));
    const Value info = ask(converted(platformException("r", cycle)), "UserInfo");
    EXPECT_TRUE(host::dictionaryGet(info.object(), "a").isNil());
    EXPECT_TRUE(host::dictionaryGet(info.object(), "b").isNil());
    EXPECT_EQ(host::dictionaryGet(info.object(), "text").toText(), "text");
    const Value array = host::dictionaryGet(info.object(), "list");
    ASSERT_EQ(host::upperBound(array.object()), 0);
    EXPECT_TRUE(host::arrayGet(array.object(), 0).isNil());
    objc::send<"removeAllObjects", void>(cycle);
    objc::send<"removeAllObjects", void>(list);
}

// The same collection beside itself is no cycle.
TEST_F(UserInfo, HasACollectionInEveryPlaceWhereItLies) {
    const Id shared = dictionaryWith(nsString("v"), "k"), outer = emptyDictionary();
    put(outer, "a", shared);
    put(outer, "b", shared);
    const Value both = ofValue(outer);
    for (const char* key : {"a", "b"})
        EXPECT_EQ(host::dictionaryGet(host::dictionaryGet(both.object(), key).object(), "k").toText(), "v");
}

TEST_F(UserInfo, ComesToAnEndWhereTwelveContainEachOther) {
    std::vector<Id> all;
    for (int i = 0; i < 12; ++i)
        all.push_back(emptyDictionary());
    for (const Id one : all)
        for (std::size_t i = 0; i < all.size(); ++i)
            put(one, std::to_string(i), all[i]);
    {
        const Value info = ask(converted(platformException("r", all[0])), "UserInfo");
        EXPECT_EQ(info.typeName(), "Dictionary");
        EXPECT_TRUE(host::dictionaryGet(info.object(), "0").isNil());
        EXPECT_EQ(harness::liveInstances()["Dictionary"], 10000u);
    }
    for (const Id one : all)
        objc::send<"removeAllObjects", void>(one);
}

TEST_F(UserInfo, EndsAtALevel) {
    Id nested = dictionaryWith(nsString("deepest"), "in");
    for (int i = 0; i < 100; ++i)
        nested = dictionaryWith(nested, "in");
    Value level = ask(converted(platformException("r", nested)), "UserInfo");
    int depth = 0;
    for (; level.isObject(); ++depth)
        level = host::dictionaryGet(level.object(), "in");
    EXPECT_TRUE(level.isNil());
    EXPECT_EQ(depth, 33) << "the outermost and 32 in it";
}

// ---- what raises while it is converted ---------------------------------------------------------------

Id refusesToTell(Id, objc::Sel) {
    objc::send<"raise", void>(objc::sendClass<"NSException", "exceptionWithName:reason:userInfo:">(
        nsString("TestException"), nsString("not told"), Id(nullptr)));
    return nullptr;
}

TEST_F(UserInfo, ThatRaisesLeavesNothingBehind) {
    const objc::Class made = objc::objc_allocateClassPair(objc::objc_getClass("NSURL"), "SecretURL", 0);
    objc::class_addMethod(made, objc::sel_registerName("absoluteString"),
                          reinterpret_cast<objc::Imp>(refusesToTell), "@@:");
    objc::objc_registerClassPair(made);
    const Id secret = objc::send<"autorelease">(
        objc::send<"initWithString:">(objc::alloc<"SecretURL">(), nsString("file:///a")));
    const Id list = objc::sendClass<"NSMutableArray", "array">();
    objc::send<"addObject:", void>(list, nsString("before"));
    objc::send<"addObject:", void>(list, secret);
    const Id numbered = objc::sendClass<"NSDictionary", "dictionaryWithObject:forKey:">(
        list, objc::sendClass<"NSNumber", "numberWithInt:">(5));
    const Value exception = converted(platformException("r", dictionaryWith(numbered, "k")));
    const auto before = harness::liveInstances();
    EXPECT_EQ(raisedBy([&] { ask(exception, "UserInfo"); }), "NSExceptionQRX: not told");
    EXPECT_EQ(harness::liveInstances(), before);
}

} // namespace
