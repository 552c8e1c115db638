// ForeignCallTest.cpp: plug-in functions called with every type, by value and by reference.
#include "tests/host/Support.hpp"

#include "host/runtime/Date.hpp"
#include "host/runtime/Dictionary.hpp"
#include "host/runtime/FolderItem.hpp"
#include "host/runtime/MemoryBlock.hpp"

#include <cstdint>
#include <limits>

namespace {

using namespace test;

class ForeignCalls : public NothingLeft {
  protected:
    void SetUp() override {
        testPlugin();
        base = make("TestBase", {1});
    }
    Value echo(const char* name, const Value& value) { return ask(base, name, {value}); }
    Value base;
};

template <class T>
void expectEcho(const Value& base, const char* name, Kind kind) {
    for (const T number : {std::numeric_limits<T>::min(), std::numeric_limits<T>::max(), T(1), T(0)}) {
        const Value back = ask(base, name, {Value(number)});
        EXPECT_EQ(back.kind(), kind) << name;
        if constexpr (std::is_floating_point_v<T>)
            EXPECT_EQ(back.toDouble(), static_cast<double>(number)) << name;
        else
            EXPECT_EQ(back.toInt64(), static_cast<int64_t>(number)) << name;
    }
}

TEST_F(ForeignCalls, NumbersOfEverySizeComeBackAsTheyWent) {
    expectEcho<int8_t>(base, "echoInt8", Kind::Int8);
    expectEcho<int16_t>(base, "echoInt16", Kind::Int16);
    expectEcho<int32_t>(base, "echoInt32", Kind::Int32);
    expectEcho<int64_t>(base, "echoInt64", Kind::Int64);
    expectEcho<uint8_t>(base, "echoUInt8", Kind::UInt8);
    expectEcho<uint16_t>(base, "echoUInt16", Kind::UInt16);
    expectEcho<uint32_t>(base, "echoUInt32", Kind::UInt32);
    expectEcho<uint64_t>(base, "echoUInt64", Kind::UInt64);
    expectEcho<int32_t>(base, "echoInteger", Kind::Int32);
    expectEcho<float>(base, "echoSingle", Kind::Single);
    expectEcho<double>(base, "echoDouble", Kind::Double);
    EXPECT_EQ(echo("echoBoolean", true).kind(), Kind::Boolean);
    EXPECT_TRUE(echo("echoBoolean", true).toBoolean());
    EXPECT_FALSE(echo("echoBoolean", false).toBoolean());
}

TEST_F(ForeignCalls, TenArgumentsOfMixedTypesArriveInTheirPlaces) {
    std::vector<Value> arguments{
        -1, 200, -300, 60000, -70000, 3000000000u, int64_t{-5000000000}, uint64_t{6000000000}, 0.5f, 0.25};
    EXPECT_EQ(ask(base, "sumOfAll", arguments).toDouble(),
              -1 + 200 - 300 + 60000 - 70000 + 3000000000.0 - 5000000000.0 + 6000000000.0 + 0.5 + 0.25);
}

TEST_F(ForeignCalls, ReferencesComeBackWithTheirOwnReference) {
    const Value date = newDate(), block = newMemoryBlock(4), item = newFolderItem("/tmp"),
                dictionary = newDictionary();
    const std::pair<const char*, const Value*> cases[] = {{"echoDate", &date},
                                                          {"echoMemoryBlock", &block},
                                                          {"echoFolderItem", &item},
                                                          {"echoDictionary", &dictionary},
                                                          {"echoBase", &base}};
    for (const auto& [name, value] : cases) {
        const auto before = harness::references(value->object());
        {
            const Value back = echo(name, *value);
            EXPECT_EQ(back.object(), value->object()) << name;
            EXPECT_EQ(harness::references(value->object()), before + 1) << name;
        }
        EXPECT_EQ(harness::references(value->object()), before) << name;
        EXPECT_TRUE(echo(name, Value()).isNil()) << name;
    }
    const Value text("Grüße");
    EXPECT_EQ(echo("echoString", text).string(), text.string());
    EXPECT_EQ(harness::references(text.string()), 1u);
    EXPECT_EQ(echo("echoString", "").toText(), "");
}

TEST_F(ForeignCalls, VariantsKeepTheirKind) {
    for (const Value& value : {Value(1), Value(int64_t{1} << 40), Value(1.5f), Value(2.5), Value(true),
                               Value("x"), Value(uint64_t{1} << 63), Value(base), Value()}) {
        const Value back = echo("echoVariant", value);
        EXPECT_EQ(back.kind(), value.kind());
        EXPECT_TRUE(equalValues(back, value)) << value.toText();
    }
}

TEST_F(ForeignCalls, ArraysAreReadAndMadeByPlugins) {
    const Ref numbers = newArray(typeNamed("Integer"), 2);
    for (int i = 0; i <= 2; ++i)
        arraySet(numbers.get(), i, i + 10);
    EXPECT_EQ(ask(base, "sumIntegers", {numbers}).toInt32(), 33);
    const Ref texts = newArray(typeNamed("String"));
    arrayAppend(texts.get(), "first");
    EXPECT_EQ(ask(base, "firstText", {texts}).toText(), "first");
    EXPECT_EQ(ask(base, "echoTexts", {texts}).object(), texts.get());
    const Value shapes = ask(base, "makeShapes", {3});
    EXPECT_EQ(shapes.typeName(), "TestShape()");
    EXPECT_EQ(ask(arrayGet(shapes.object(), 2), "number").toInt32(), 2);
    EXPECT_EQ(ask(base, "countShapes", {shapes}).toInt32(), 3);
    EXPECT_EQ(harness::references(arrayGet(shapes.object(), 0).object()), 2u)
        << "the array's, and the one asked with";
}

TEST_F(ForeignCalls, ByRefArgumentsAreChangedWhateverTheirType) {
    std::vector<Value> arguments{int8_t{127}, uint16_t{1}, -1, uint64_t{0xFFFFFFFF}, 0.5f, 0.25, false};
    invoke(base, "bumpAll", arguments);
    EXPECT_EQ(arguments[0].toInt32(), -128);
    EXPECT_EQ(arguments[1].toInt32(), 2);
    EXPECT_EQ(arguments[2].toInt32(), 0);
    EXPECT_EQ(arguments[3].toUInt64(), uint64_t{0x100000000});
    EXPECT_EQ(arguments[4].toDouble(), 1.5);
    EXPECT_EQ(arguments[5].toDouble(), 1.25);
    EXPECT_TRUE(arguments[6].toBoolean());
    EXPECT_EQ(arguments[0].kind(), Kind::Int8);
}

TEST_F(ForeignCalls, ByRefReferencesChangeHandsWithoutLoss) {
    std::vector<Value> texts{"one", "two"};
    invoke(base, "swapTexts", texts);
    EXPECT_EQ(texts[0].toText(), "two");
    EXPECT_EQ(texts[1].toText(), "one");
    EXPECT_EQ(harness::references(texts[0].string()), 1u);
    std::vector<Value> text{"before"};
    invoke(base, "replaceText", text);
    EXPECT_EQ(text[0].toText(), "replaced");
    std::vector<Value> made{Value()};
    invoke(base, "makeFriend", made);
    EXPECT_EQ(made[0].typeName(), "TestShape");
    EXPECT_EQ(harness::references(made[0].object()), 1u);
}

TEST_F(ForeignCalls, PropertiesAreReadAndAssignedWithParametersToo) {
    assign(base, "number", {}, 12);
    EXPECT_EQ(ask(base, "NUMBER").toInt32(), 12);
    assign(base, "text", {}, "kept");
    EXPECT_EQ(ask(base, "text").toText(), "kept");
    EXPECT_EQ(ask(base, "named", {"key"}).toText(), "key");
    std::vector<Value> key{"key"};
    assign(base, "named", key, "the value");
    EXPECT_EQ(ask(base, "text").toText(), "the value") << "parameters come first, the value last";
    EXPECT_EQ(ask(base, "number").toInt32(), 99);
}

TEST_F(ForeignCalls, SharedMembersGetNoObject) {
    EXPECT_EQ(askClass("TestBase", "answer").toInt32(), 42);
    EXPECT_EQ(askClass("TestShape", "join", {"a", 2}).toText(), "a");
    EXPECT_EQ(ask(base, "answer").toInt32(), 42);
}

TEST_F(ForeignCalls, WhatAFunctionRaisesIsThrownWhenItHasReturned) {
    EXPECT_EQ(raisedBy([&] {
                  ask(base, "raiseIt", {"NilObjectException", "device is nil"});
              }),
              "NilObjectException: device is nil");
    EXPECT_EQ(raisedBy([&] { ask(base, "raiseIt", {"NoSuchClass", "still"}); }), "RuntimeException: still");
    EXPECT_FALSE(hasPendingException());
    EXPECT_EQ(ask(base, "echoInteger", {3}).toInt32(), 3) << "the next call is not disturbed";
}

TEST_F(ForeignCalls, TheHarnessCallsMembersByTheirDeclaration) {
    auto* echoInt32 =
        harness::member<int32_t(REALobject, int32_t)>("TestBase", "ECHOINT32( v As Int32 )as int32");
    ASSERT_NE(echoInt32, nullptr);
    EXPECT_EQ(echoInt32(base.object(), 5), 5);
    auto* setNumber = harness::setterOf<void(REALobject, int32_t)>("TestShape", "number as integer");
    ASSERT_NE(setNumber, nullptr);
    setNumber(base.object(), 8);
    EXPECT_EQ(ask(base, "number").toInt32(), 8);
    EXPECT_EQ(harness::function("TestBase", "echoInt32(other as Int32) as Int32"), nullptr);
    auto* raiseIt = harness::member<int32_t(REALobject, REALstring, REALstring)>(
        "TestBase", "raiseIt(className as string, message as string) as integer");
    EXPECT_EQ(raiseIt(base.object(), String("IOException").get(), String("m").get()), 7);
    EXPECT_EQ(harness::takeException(), (harness::Raised{"IOException", "m"}));
    EXPECT_EQ(harness::takeException(), std::nullopt);
}

} // namespace
