// ClassTest.cpp: the registry, inheritance, programs' classes, overloads.
#include "tests/host/Support.hpp"

namespace {

using namespace test;

class Classes : public NothingLeft {
  protected:
    void SetUp() override { testPlugin(); }
};

TEST_F(Classes, AreFoundInAnyCase) {
    EXPECT_EQ(findClass("TESTBASE"), findClass("TestBase"));
    EXPECT_NE(findClass("testbase"), nullptr);
    EXPECT_EQ(findClass("NoSuchClass"), nullptr);
    EXPECT_EQ(raisedBy([] { requireClass("NoSuchClass"); }),
              "UnsupportedOperationException: there is no class NoSuchClass");
}

TEST_F(Classes, ASuperclassMayComeAfterItsSubclass) {
    const Class& shape = requireClass("TestShape");
    EXPECT_EQ(shape.super(), findClass("TestBase"));
    EXPECT_TRUE(shape.isA(requireClass("TestBase")));
    EXPECT_FALSE(requireClass("TestBase").isA(shape));
}

TEST_F(Classes, AMissingSuperclassIsToldWhenTheClassIsUsed) {
    const std::string message =
        "UnsupportedOperationException: class TestOrphan can't be used: its superclass "
        "TestMissing is not loaded";
    EXPECT_EQ(raisedBy([] { make("TestOrphan"); }), message);
    EXPECT_EQ(raisedBy([] { make("TestChildOfOrphan"); }), message);
    EXPECT_EQ(Services().PluginNewInstance("TestOrphan"), nullptr);
}

TEST_F(Classes, ASuperclassThatComesLaterMakesItsSubclassesUsable) {
    static REALclassDefinition early{}, late{};
    early.name = "Early";
    early.superName = "Late";
    late.name = "Late";
    registerClass(&early);
    EXPECT_NE(raisedBy([] { make("Early"); }), "");
    registerClass(&late);
    EXPECT_TRUE(isA(make("Early").object(), "Late"));
}

TEST_F(Classes, AClassThatIsItsOwnSuperclassIsRefused) {
    static REALclassDefinition one{}, two{};
    one.name = "CircleOne", one.superName = "CircleTwo";
    two.name = "CircleTwo", two.superName = "CircleOne";
    registerClass(&one);
    registerClass(&two);
    EXPECT_NE(raisedBy([] { make("CircleOne"); }), "");
    EXPECT_NE(raisedBy([] { make("CircleTwo"); }), "");
}

TEST_F(Classes, WhatIsWrongInARecordIsLeftOutAndTold) {
    const auto& problems = testPlugin().problems;
    ASSERT_EQ(problems.size(), 4u);
    EXPECT_EQ(problems[0], "class TestBase: \"broken(a as\" is left out: a type is expected at the end");
    EXPECT_EQ(problems[1], "class TestBase: \"\" is left out: the declaration is missing");
    EXPECT_EQ(problems[2],
              "class TestBase: \"kBad = what\" is left out: a number, a text in quotation marks, true or "
              "false is expected before \"what\"");
    EXPECT_EQ(problems[3], "class TestHidden is left out: there is a class of that name already");
}

TEST_F(Classes, ConstantsAreReadOfTheClassAndOfObjects) {
    EXPECT_EQ(askClass("TestBase", "kSize").toInt32(), 2352);
    EXPECT_EQ(askClass("TestShape", "kMask").toInt32(), 255);
    EXPECT_EQ(askClass("TestBase", "kName").toText(), "disc");
    EXPECT_EQ(ask(make("TestShape", {1}), "KSIZE").toInt32(), 2352);
}

TEST_F(Classes, OverloadsAreChosenByTheBestFit) {
    const Value shape = make("TestShape", {1});
    const Value base = make("TestBase", {1});
    const auto picked = [&](const Value& on, std::vector<Value> arguments) {
        return ask(on, "pick", arguments).toText();
    };
    EXPECT_EQ(picked(base, {1}), "integer");
    EXPECT_EQ(picked(base, {int8_t{1}}), "integer");
    EXPECT_EQ(picked(base, {int64_t{1}}), "int64");
    EXPECT_EQ(picked(base, {uint32_t{1}}), "integer");
    EXPECT_EQ(picked(base, {1.5}), "double");
    EXPECT_EQ(picked(base, {1.5f}), "double");
    EXPECT_EQ(picked(base, {"x"}), "string");
    EXPECT_EQ(picked(base, {make("FolderItem", {"/"})}), "folderitem");
    EXPECT_EQ(picked(base, {base}), "TestBase");
    EXPECT_EQ(picked(base, {shape}), "TestShape");
    EXPECT_EQ(picked(base, {newArray(typeNamed("TestShape"))}), "TestShape()");
    EXPECT_EQ(picked(base, {1, "x"}), "two");
    EXPECT_EQ(picked(base, {Value()}), "folderitem")
        << "nil fits every reference: the first one declared is taken";
}

TEST_F(Classes, ArgumentsThatFitNoOverloadAreToldWithWhatWould) {
    const Value base = make("TestBase", {1});
    EXPECT_EQ(raisedBy([&] { ask(base, "echoString", {1}); }),
              "TypeMismatchException: TestBase.echoString takes (v As String), not (Int32)");
    EXPECT_EQ(raisedBy([&] { ask(base, "fireNotify", {1}); }),
              "TypeMismatchException: TestBase.fireNotify takes no arguments, not (Int32)");
    EXPECT_EQ(raisedBy([&] {
                  make("TestBase", {true, 1});
              }),
              "TypeMismatchException: TestBase.Constructor takes (number As Int32) or (s As String), not "
              "(Boolean, Int32)");
    EXPECT_EQ(raisedBy([&] { ask(base, "nothingLikeIt"); }),
              "UnsupportedOperationException: TestBase has no member nothingLikeIt");
    EXPECT_EQ(raisedBy([&] { ask(Value(), "number"); }),
              "NilObjectException: number can't be used: the object is nil");
    EXPECT_EQ(raisedBy([&] { assign(base, "constructions", {}, 1); }),
              "UnsupportedOperationException: TestBase.constructions can't be assigned to");
    EXPECT_EQ(raisedBy([&] { askClass("TestBase", "number"); }),
              "UnsupportedOperationException: TestBase.number needs an object: it is no shared member");
    EXPECT_EQ(raisedBy([&] { assign(base, "number", {}, "x"); }),
              "TypeMismatchException: TestBase.number takes Int32, not (String)");
}

TEST_F(Classes, AConstructorNotForProgramsIsRefusedButPluginsMayMakeTheObject) {
    EXPECT_EQ(raisedBy([] { make("TestHidden"); }),
              "UnsupportedOperationException: TestHidden objects are not made with "
              "New: ask the members that answer one");
    Services services;
    REALobject made = services.PluginNewInstance("TestHidden");
    ASSERT_NE(made, nullptr);
    services.REALUnlockObject(made);
    ClassSpec spec;
    spec.name = "OwnHidden";
    spec.superName = "TestHidden";
    defineClass(std::move(spec));
    EXPECT_FALSE(make("OwnHidden").isNil()) << "a program's subclass is its own";
}

TEST_F(Classes, ProgramsOverrideMethodsAndCallTheSuperclasses) {
    ClassSpec spec;
    spec.name = "Loud";
    spec.superName = "TestBase";
    spec.members = {def("Constructor(a As Integer, b As Integer)",
                        [](REALobject self, Arguments a) -> Value {
                            std::vector<Value> sum{a[0].toInt32() + a[1].toInt32()};
                            return invokeFrom(requireClass("TestBase"), Value::borrow(self), "Constructor",
                                              sum);
                        }),
                    def("echoInteger(v As Integer) As Integer", [](REALobject self, Arguments a) -> Value {
                        std::vector<Value> more{a[0].toInt32() + 1};
                        return invokeFrom(requireClass("TestBase"), Value::borrow(self), "echoInteger", more);
                    })};
    defineClass(std::move(spec));
    const Value loud = make("Loud", {2, 3});
    EXPECT_EQ(ask(loud, "number").toInt32(), 5);
    EXPECT_EQ(ask(loud, "echoInteger", {10}).toInt32(), 11);
    EXPECT_EQ(raisedBy([] { make("Loud", {1}); }),
              "TypeMismatchException: Loud.Constructor takes (a As Int32, b As Int32), not (Int32)");
}

TEST_F(Classes, BadDefinitionsOfProgramsAreRefused) {
    const auto define = [](const char* name, const char* superName, std::vector<MemberSpec> members) {
        return raisedBy([&] { defineClass({name, superName, std::move(members), {}, {}}); });
    };
    const std::string start = "UnsupportedOperationException: class ";
    EXPECT_EQ(define("testbase", "", {}),
              start + "testbase can't be defined: there is a class of that name already");
    EXPECT_EQ(define("A", "Nowhere", {}), start + "A can't be defined: its superclass Nowhere is not there");
    EXPECT_EQ(define("A", "TestBase", {on("unheard", {[](REALobject, Arguments) { return Value(); }})}),
              start + "A can't be defined: no superclass has an event unheard");
    EXPECT_EQ(define("A", "TestBase",
                     {on("isReady(a As Integer)", {[](REALobject, Arguments) { return Value(); }})}),
              start + "A can't be defined: the event is declared as isReady as boolean");
    EXPECT_EQ(define("A", "TestOrphan", {}),
              start +
                  "A can't be defined: class TestOrphan needs the class TestMissing, which is not loaded");
}

TEST_F(Classes, ForgottenProgramClassesGiveTheirNamesFree) {
    defineClass({"Brief", "", {}, {}, {}});
    make("Brief");
    forgetProgramClasses();
    EXPECT_EQ(findClass("Brief"), nullptr);
    EXPECT_NE(findClass("TestBase"), nullptr);
    defineClass({"Brief", "TestBase", {}, {}, {}});
    EXPECT_TRUE(requireClass("Brief").isA(requireClass("TestBase")));
}

TEST_F(Classes, SharedStoredPropertiesAreOneForAllObjects) {
    auto counter = stored("Total As Integer");
    counter.shared = true;
    defineClass({"Counter", "", {counter}, {}, {}});
    Class& counting = requireClass("Counter");
    assignShared(counting, "Total", {}, 5);
    EXPECT_EQ(invokeShared(counting, "total", {}).toInt32(), 5);
    EXPECT_EQ(ask(make("Counter"), "Total").toInt32(), 5);
}

TEST_F(Classes, ExceptionsHaveAMessageAndProgramsInheritThem) {
    defineClass({"MyTrouble", "IOException", {}, {}, {}});
    const Value trouble = make("MyTrouble");
    assign(trouble, "Message", {}, "out of discs");
    EXPECT_EQ(raisedBy([&] { throw Exception(trouble); }), "MyTrouble: out of discs");
    EXPECT_TRUE(isA(trouble.object(), "RuntimeException"));
    const Value constructed = make("MyTrouble", {"from New", 7});
    EXPECT_EQ(raisedBy([&] { throw Exception(constructed); }), "MyTrouble: from New");
    EXPECT_EQ(ask(constructed, "ErrorNumber").toInt32(), 7);
    for (const char* name : {"NilObjectException", "UnsupportedOperationException", "OutOfMemoryException",
                             "OutOfBoundsException", "TypeMismatchException", "IllegalCastException",
                             "IOException", "KeyNotFoundException", "InvalidArgumentException"})
        EXPECT_TRUE(requireClass(name).isA(requireClass("RuntimeException"))) << name;
    EXPECT_EQ(raisedBy([] { raise("NoSuchException", "m"); }), "RuntimeException: m");
}

} // namespace
