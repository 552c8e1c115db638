// ObjcTest.cpp: the Objective-C runtime as the plug-in's C++ sees it.
#include "plugin/objc/ClassBuilder.hpp"
#include "plugin/objc/Guard.hpp"
#include "plugin/objc/Ownership.hpp"
#include "tests/plugin/Pool.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <string>

namespace {

using objc::Id;
using objc::send;
using test::nsString;
using test::Pool;
using test::text;

struct Range {
    unsigned long location, length;
};

struct Rect {
    double x, y, width, height;
};

class Objc : public testing::Test {
    Pool pool;
};

TEST_F(Objc, SendsTypedMessagesWithArgumentsAndResults) {
    const Id number = objc::sendClass<"NSNumber", "numberWithDouble:">(2.5);
    EXPECT_EQ((send<"doubleValue", double>(number)), 2.5);
    EXPECT_EQ((send<"floatValue", float>(number)), 2.5f);
    EXPECT_EQ((send<"intValue", int>(number)), 2);
    const Range range = send<"rangeOfString:", Range>(nsString("burner"), nsString("rn"));
    EXPECT_EQ(range.location, 2u);
    EXPECT_EQ(range.length, 2u);
}

TEST_F(Objc, NilAnswersZeroForObjectsNumbersFloatingResultsAndStructures) {
    EXPECT_EQ(send<"description">(nullptr), nullptr);
    EXPECT_EQ((send<"length", unsigned long>(nullptr)), 0u);
    EXPECT_EQ((send<"longLongValue", long long>(nullptr)), 0);
    EXPECT_EQ((send<"doubleValue", double>(nullptr)), 0.0);
    EXPECT_EQ((send<"floatValue", float>(nullptr)), 0.0f);
    const Rect rect = send<"rectValue", Rect>(nullptr);
    EXPECT_EQ(rect.x + rect.y + rect.width + rect.height, 0.0);
    send<"release", void>(nullptr);
}

TEST_F(Objc, AClassThatIsMissingIsNilAndIsAskedForAgainAtTheNextUse) {
    EXPECT_EQ(objc::classNamed<"TestLateClass">(), nullptr);
    EXPECT_EQ((objc::sendClass<"TestLateClass", "new">()), nullptr);
    objc::ClassBuilder("NSObject", "TestLateClass").finish();
    EXPECT_NE(objc::classNamed<"TestLateClass">(), nullptr);
}

TEST_F(Objc, ReadsNamesAndSuperclasses) {
    const auto cls = send<"class", objc::Class>(objc::sendClass<"NSMutableArray", "array">());
    bool reachedArray = false;
    for (objc::Class c = cls; c; c = objc::class_getSuperclass(c))
        reachedArray |= std::string(objc::class_getName(c)) == "NSMutableArray";
    EXPECT_TRUE(reachedArray);
    EXPECT_TRUE(objc::isKindOf<"NSArray">(objc::sendClass<"NSMutableArray", "array">()));
    EXPECT_FALSE(objc::isKindOf<"NSArray">(nsString("text")));
    EXPECT_FALSE(objc::isKindOf<"NSArray">(nullptr));
    EXPECT_FALSE(objc::isKindOf<"NoSuchClass">(nsString("text")));
}

int addOne(Id, objc::Sel, int value) { return value + 1; }
objc::Class builtClass = nullptr;
unsigned long hashPlusSuper(Id self, objc::Sel) {
    return objc::sendSuper<"hash", unsigned long>(self, builtClass) + 1;
}
double half(Id, objc::Sel, double value) { return value / 2; }

TEST_F(Objc, BuildsAClassWithVariablesMethodsAndMessagesToSuper) {
    builtClass = objc::ClassBuilder("NSObject", "TestBuiltClass")
                     .ivar<void*>("host")
                     .ivar<std::int32_t>("count")
                     .method<"addOneTo:", addOne>()
                     .method<"halfOf:", half>()
                     .method<"hash", hashPlusSuper>()
                     .finish();
    ASSERT_NE(builtClass, nullptr);
    const objc::Adopted object(objc::sendClass<"TestBuiltClass", "new">());
    EXPECT_EQ(*objc::ivar<void*>(object.get(), "host"), nullptr);
    *objc::ivar<std::int32_t>(object.get(), "count") = 7;
    EXPECT_EQ(*objc::ivar<std::int32_t>(object.get(), "count"), 7);
    EXPECT_EQ(objc::ivar<void*>(object.get(), "none"), nullptr);
    EXPECT_EQ((send<"addOneTo:", int>(object.get(), 41)), 42);
    EXPECT_EQ((send<"halfOf:", double>(object.get(), 5.0)), 2.5);
    EXPECT_EQ((send<"hash", unsigned long>(object.get())),
              (objc::sendSuper<"hash", unsigned long>(object.get(), builtClass)) + 1);
    EXPECT_TRUE(objc::respondsTo<"addOneTo:">(object.get()));
    EXPECT_FALSE(objc::respondsTo<"noSuchMessage">(object.get()));
}

TEST_F(Objc, AClassWithoutItsSuperclassIsNone) {
    const auto orphan =
        objc::ClassBuilder("NoSuchSuperclass", "TestOrphan").method<"addOneTo:", addOne>().finish();
    EXPECT_EQ(orphan, nullptr);
    EXPECT_EQ(objc::classNamed<"TestOrphan">(), nullptr);
}

bool answersYes(Id, objc::Sel, Id, unsigned int*, void*) { return true; }

TEST_F(Objc, TypeEncodingsComeFromTheSignature) {
    using Types = objc::MethodTypes<decltype(&answersYes)>;
    EXPECT_STREQ(Types::text.data(), "C@:@^I^v");
    const objc::Class cls =
        objc::ClassBuilder("NSObject", "TestEncoding").method<"ask:count:into:", answersYes>().finish();
    const Id signature = send<"instanceMethodSignatureForSelector:">(reinterpret_cast<Id>(cls),
                                                                     objc::selector<"ask:count:into:">());
    EXPECT_EQ((send<"numberOfArguments", unsigned long>(signature)), 5u);
    EXPECT_STREQ((send<"getArgumentTypeAtIndex:", const char*>(signature, 3ul)), "^I");
}

void raiseRangeException() { send<"objectAtIndex:">(objc::sendClass<"NSArray", "array">(), 3ul); }

// Thrower, C++ in the middle, final catcher.
TEST_F(Objc, APlatformExceptionPassesThroughCppFramesAndRunsTheirDestructors) {
    bool destroyed = false;
    struct Witness {
        bool& flag;
        ~Witness() { flag = true; }
    };
    const Id caught = objc::caughtIn([&] {
        const Witness witness{destroyed};
        raiseRangeException();
        FAIL() << "the platform did not raise";
    });
    EXPECT_TRUE(destroyed);
    EXPECT_EQ(text(send<"name">(caught)), "NSRangeException");
}

TEST_F(Objc, ABodyThatReturnsGivesNothingCaught) {
    int ran = 0;
    EXPECT_EQ(objc::caughtIn([&] { ++ran; }), nullptr);
    EXPECT_EQ(ran, 1);
}

TEST_F(Objc, WhatIsNoNSExceptionFliesOn) {
    EXPECT_THROW(objc::caughtIn([] { throw std::runtime_error("not the platform's"); }), std::runtime_error);
}

// A body that throws a platform object of another kind, as @throw does.
extern "C" [[noreturn]] void objc_exception_throw(Id object);

TEST_F(Objc, APlatformObjectThatIsNoNSExceptionFliesOn) {
    const Id thrown = nsString("not an exception");
    bool cameBack = false;
    // The frame must let it pass; what stops it here is C++, which sees a foreign exception.
    try {
        objc::caughtIn([&] { objc_exception_throw(thrown); });
        cameBack = true;
    } catch (...) {
    }
    EXPECT_FALSE(cameBack);
}

TEST_F(Objc, FramesMayBeNested) {
    const Id outer = objc::caughtIn([] {
        const Id inner = objc::caughtIn([] { raiseRangeException(); });
        EXPECT_NE(inner, nullptr);
        send<"raise", void>(inner);
    });
    EXPECT_EQ(text(send<"name">(outer)), "NSRangeException");
}

TEST_F(Objc, OwnershipIsVisibleInTheVerb) {
    const Id object = objc::sendClass<"NSObject", "new">();
    EXPECT_EQ((send<"retainCount", unsigned long>(object)), 1u);
    EXPECT_EQ(objc::retained(object), object);
    EXPECT_EQ((send<"retainCount", unsigned long>(object)), 2u);
    {
        objc::Adopted<> first(object);
        objc::Adopted<> moved(std::move(first));
        EXPECT_FALSE(first);
        EXPECT_EQ(moved.get(), object);
    }
    EXPECT_EQ((send<"retainCount", unsigned long>(object)), 1u);
    objc::Adopted<> last(object);
    EXPECT_EQ(last.give(), object);
    EXPECT_FALSE(last);
    objc::release(object);
    objc::Adopted<> none(nullptr);
    EXPECT_FALSE(none);
}

} // namespace
