// ObjectTest.cpp: layout, references, constructors and destructors of objects.
#include "tests/host/Support.hpp"

namespace {

using namespace test;

class Objects : public NothingLeft {
  protected:
    void SetUp() override { testPlugin(); }
};

TEST_F(Objects, ConstructorsRunBaseFirstAndDestructorsSubclassFirst) {
    const auto before = askClass("TestBase", "destructions").toInt32();
    {
        const Value shape = make("TestShape", {5});
        EXPECT_EQ(ask(shape, "constructions").toInt32(), 2);
        EXPECT_EQ(ask(shape, "number").toInt32(), 5);
    }
    EXPECT_EQ(askClass("TestBase", "destructions").toInt32(), before + 1);
    EXPECT_EQ(askClass("TestBase", "destroyedInOrder").toInt32(), 1);
}

TEST_F(Objects, InstanceDataFollowTheHeader) {
    const Value base = make("TestBase", {77});
    EXPECT_EQ(*static_cast<int32_t*>(instanceData(base.object())), 77);
    EXPECT_EQ(static_cast<void*>(base.object()->header + 4), instanceData(base.object()));
}

TEST_F(Objects, AreDestroyedWithTheirLastReferenceAndCountedByName) {
    Services services;
    REALobject object = services.PluginNewInstance("TestBase");
    EXPECT_EQ(harness::references(object), 1u);
    services.REALLockObject(object);
    EXPECT_EQ(harness::references(object), 2u);
    EXPECT_EQ(harness::liveInstances().at("TestBase"), 1u);
    services.REALUnlockObject(object);
    EXPECT_EQ(harness::references(object), 1u);
    services.REALUnlockObject(object);
    EXPECT_FALSE(harness::liveInstances().contains("TestBase"));
}

TEST_F(Objects, ACycleStaysAliveAndIsNamed) {
    Value a = make("TestBase", {1}), b = make("TestBase", {2});
    assign(a, "friend", {}, b);
    assign(b, "friend", {}, a);
    const REALobject kept = a.object();
    a = Value();
    b = Value();
    EXPECT_EQ(harness::liveInstances()["TestBase"], 2u);
    assign(Value::borrow(kept), "friend", {}, Value());
    EXPECT_EQ(harness::liveInstances()["TestBase"], 0u);
}

TEST_F(Objects, FieldsOfProgramsComeAfterThePluginsData) {
    ClassSpec spec;
    spec.name = "FieldShape";
    spec.superName = "TestShape";
    spec.members = {stored("Label As String", "none"), stored("Sizes As Integer()")};
    defineClass(std::move(spec));
    keeps(1);
    ClassSpec sub;
    sub.name = "FieldShapeChild";
    sub.superName = "FieldShape";
    sub.members = {stored("Extra As Double", 1.5)};
    defineClass(std::move(sub));
    const Value shape = make("FieldShapeChild", {9});
    assign(shape, "label", {}, "mine");
    EXPECT_EQ(ask(shape, "Label").toText(), "mine");
    EXPECT_EQ(ask(shape, "Extra").toDouble(), 1.5);
    EXPECT_EQ(ask(shape, "number").toInt32(), 9);
    arrayAppend(ask(shape, "Sizes").object(), 4);
    EXPECT_EQ(ask(shape, "Sizes", {0}).toInt32(), 4);
    const Value other = make("FieldShapeChild", {9});
    EXPECT_EQ(upperBound(ask(other, "Sizes").object()), -1);
}

TEST_F(Objects, AProgramsDestructorRunsFirstAndMayUseTheObject) {
    static int seen;
    seen = 0;
    ClassSpec spec;
    spec.name = "LastWords";
    spec.superName = "TestBase";
    spec.destructor = [](REALobject self) {
        const Value me = Value::borrow(self); // holding and dropping the dying object does no harm
        seen = ask(me, "number").toInt32();
    };
    defineClass(std::move(spec));
    make("LastWords", {31});
    EXPECT_EQ(seen, 31);
}

TEST_F(Objects, WhatADestructorRaisesIsHeardAtTheNextStatement) {
    ClassSpec spec;
    spec.name = "BadEnd";
    spec.destructor = [](REALobject) { raise("IOException", "too late"); };
    defineClass(std::move(spec));
    make("BadEnd");
    EXPECT_EQ(raisedBy(throwStrayException), "IOException: too late");
    EXPECT_EQ(raisedBy(throwStrayException), "");
}

TEST_F(Objects, AnInitializerThatRaisesLeavesNothingBehind) {
    ClassSpec spec;
    spec.name = "BadStart";
    spec.superName = "TestBase";
    spec.initializer = [](REALobject) { raise("RuntimeException", "no"); };
    defineClass(std::move(spec));
    EXPECT_EQ(raisedBy([] { make("BadStart"); }), "RuntimeException: no");
}

} // namespace
