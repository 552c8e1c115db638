// ExceptionTest.cpp: platform exceptions become objects that programs catch.
#include "tests/companion/CompanionTest.hpp"

#include "host/runtime/Array.hpp"

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

TEST_F(UserInfo, ThatContainsItselfComesToAnEnd) {
    const Id cycle = objc::sendClass<"NSMutableDictionary", "dictionary">();
    objc::send<"setObject:forKey:", void>(cycle, cycle, nsString("self"));
    Value level = ask(converted(platformException("r", cycle)), "UserInfo");
    int depth = 0;
    while (level.isObject() && depth < 1000) {
        level = host::dictionaryGet(level.object(), "self");
        ++depth;
    }
    EXPECT_GT(depth, 10);
    EXPECT_LT(depth, 100);
    EXPECT_TRUE(level.isNil());
    objc::send<"removeAllObjects", void>(cycle);
}

} // namespace
