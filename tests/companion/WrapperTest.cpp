// WrapperTest.cpp: errors, index sets, attributed strings and character sets as programs see them.
#include "tests/companion/CompanionTest.hpp"

#include <dlfcn.h>

namespace {

using namespace test;

using Wrappers = WithCompanion;

// The platform's own key.
Id sentenceKey() { return *static_cast<Id*>(dlsym(RTLD_DEFAULT, "NSLocalizedDescriptionKey")); }

Id newError() {
    const Id info = objc::sendClass<"NSDictionary", "dictionaryWithObject:forKey:">(
        nsString("The disc is full."), sentenceKey());
    return objc::sendClass<"NSError", "errorWithDomain:code:userInfo:">(nsString("TestDomain"), -42l, info);
}

TEST_F(Wrappers, AnErrorHasDomainCodeAndSentence) {
    const Value error = holding("NSErrorQRX", newError());
    EXPECT_EQ(ask(error, "domain").toText(), "TestDomain");
    EXPECT_EQ(ask(error, "code").toInt64(), -42);
    EXPECT_EQ(ask(error, "localizedDescription").toText(), "The disc is full.");
    EXPECT_EQ(host::dictionaryGet(ask(error, "userInfo").object(), text(sentenceKey())).toText(),
              "The disc is full.");
    EXPECT_NE(ask(error, "description").toText(), "");
}

TEST_F(Wrappers, AnEmptyOneAnswersEmpty) {
    const Value error = Value::adopt(host::newObject(host::requireClass("NSErrorQRX")));
    EXPECT_EQ(ask(error, "domain").toText(), "");
    EXPECT_EQ(ask(error, "code").toInt64(), 0);
    EXPECT_TRUE(ask(error, "userInfo").isNil());
    EXPECT_EQ(ask(error, "description").toText(), "");
    const Value characters = Value::adopt(host::newObject(host::requireClass("NSCharacterSetQRX")));
    EXPECT_FALSE(ask(characters, "containsAll", {"a"}).toBoolean());
}

TEST_F(Wrappers, EachReleasesItsPlatformObjectOnce) {
    for (const char* className : {"NSErrorQRX", "NSIndexSetQRX", "NSAttributedStringQRX", "NSCharacterSetQRX",
                                  "NSExceptionQRX", "NSWindowQRX", "NSPanelQRX"}) {
        const Id object = objc::sendClass<"NSMutableArray", "array">();
        const auto before = retains(object);
        {
            const Value wrapper = holding(className, object);
            EXPECT_EQ(retains(object), before + 1) << className;
        }
        EXPECT_EQ(retains(object), before) << className;
    }
}

TEST_F(Wrappers, AnIndexSetCountsItsIndexes) {
    const Value set = make("NSIndexSetQRX", {3, 4});
    EXPECT_EQ(ask(set, "count").toInt32(), 4);
    EXPECT_EQ(ask(set, "firstIndex").toInt32(), 3);
    EXPECT_EQ(ask(set, "lastIndex").toInt32(), 6);
    EXPECT_TRUE(ask(set, "containsIndex", {6}).toBoolean());
    EXPECT_FALSE(ask(set, "containsIndex", {7}).toBoolean());
}

TEST_F(Wrappers, WhatThePlatformRefusesIsRaised) {
    // A range whose end lies beyond the largest index.
    const auto largest = static_cast<unsigned long>(-1);
    const std::string raised = raisedBy([&] { make("NSIndexSetQRX", {Value(largest), Value(largest)}); });
    EXPECT_TRUE(raised.starts_with("NSExceptionQRX: ")) << raised;
}

TEST_F(Wrappers, TextAndCharacterSetsAreMadeFromText) {
    EXPECT_EQ(ask(make("NSAttributedStringQRX", {"Grüße"}), "text").toText(), "Grüße");
    EXPECT_EQ(ask(make("NSAttributedStringQRX", {""}), "text").toText(), "");
    const Value vowels = make("NSCharacterSetQRX", {"aeiouä"});
    EXPECT_TRUE(ask(vowels, "containsAll", {"iä"}).toBoolean());
    EXPECT_FALSE(ask(vowels, "containsAll", {"aX"}).toBoolean());
    EXPECT_FALSE(ask(vowels, "containsAll", {""}).toBoolean());
}

TEST_F(Wrappers, AreConstructedOnce) {
    const std::string sentence =
        "UnsupportedOperationException: Constructor called too often. Object is already initialized.";
    const Value set = make("NSIndexSetQRX", {3, 4});
    EXPECT_EQ(raisedBy([&] { ask(set, "Constructor", {1, 1}); }), sentence);
    EXPECT_EQ(ask(set, "count").toInt32(), 4);
    EXPECT_EQ(raisedBy([] { ask(make("NSAttributedStringQRX", {"a"}), "Constructor", {"b"}); }), sentence);
    EXPECT_EQ(raisedBy([] { ask(make("NSCharacterSetQRX", {"a"}), "Constructor", {"b"}); }), sentence);
}

TEST_F(Wrappers, OnAHostWithoutTheNamedExceptionARuntimeExceptionIsRaised) {
    const Value set = make("NSIndexSetQRX", {3, 4});
    harness::hideClass("UnsupportedOperationException");
    EXPECT_EQ(raisedBy([&] {
                  ask(set, "Constructor", {1, 1});
              }),
              "RuntimeException: Constructor called too often. Object is already initialized.");
    EXPECT_EQ(ask(set, "count").toInt32(), 4);
}

} // namespace
