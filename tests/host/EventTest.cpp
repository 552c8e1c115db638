// EventTest.cpp: plug-ins run events that programs implement, on the program's thread and on others.
#include "host/runtime/MemoryBlock.hpp"
#include "host/services/Platform.hpp"
#include "tests/host/Support.hpp"

#include <atomic>
#include <thread>

namespace {

using namespace test;

class Events : public NothingLeft {
  protected:
    void SetUp() override { testPlugin(); }
    static Value object(std::vector<MemberSpec> handlers) {
        static int number = 0;
        const auto name = "Handler" + std::to_string(++number);
        defineClass({name, "TestShape", std::move(handlers), {}, {}});
        return make(name, {1});
    }
};

TEST_F(Events, WithoutAHandlerThereIsNoFunction) {
    std::vector<Value> arguments{uint32_t{1}, uint32_t{0}};
    EXPECT_EQ(invoke(object({}), "fireCompute", arguments).toUInt64(), 0xFFFFFFFFFFu);
    EXPECT_EQ(invoke(make("TestBase", {1}), "fireCompute", arguments).toUInt64(), 0xFFFFFFFFFFu);
}

TEST_F(Events, ArgumentsResultAndByRefCrossBothWays) {
    const Value handler = object({on("Compute(a As UInt32, ByRef f As UInt32, n As String) As UInt64",
                                     [](REALobject self, Arguments a) -> Value {
                                         EXPECT_EQ(a[2].toText(), "note");
                                         EXPECT_TRUE(isA(self, "TestShape"));
                                         a[1] = a[1].toInt32() + 1;
                                         return uint64_t{1} << 40 | static_cast<uint64_t>(a[0].toInt64());
                                     })});
    std::vector<Value> arguments{uint32_t{3000000000}, uint32_t{6}};
    EXPECT_EQ(invoke(handler, "fireCompute", arguments).toUInt64(), uint64_t{1} << 40 | 3000000000u);
    EXPECT_EQ(arguments[1].toInt32(), 7);
}

TEST_F(Events, RealsObjectsAndBooleansCross) {
    const Value chosen = make("TestBase", {4});
    const Value handler =
        object({on("scale(x As Double, y As Single, z As Int8) As Single",
                   [](REALobject, Arguments a) -> Value {
                       return a[0].toDouble() * 100 + a[1].toDouble() * 10 + a[2].toDouble();
                   }),
                on("isReady As Boolean", [](REALobject, Arguments) -> Value { return true; }),
                on("choose(a As TestBase, b As TestBase) As TestBase",
                   [](REALobject, Arguments a) { return a[0].isNil() ? a[1] : a[0]; })});
    EXPECT_EQ(ask(handler, "fireScale").toDouble(), 172.0);
    EXPECT_TRUE(ask(handler, "fireIsReady").toBoolean());
    EXPECT_EQ(ask(handler, "fireChoose", {Value(), chosen}).object(), chosen.object());
    EXPECT_TRUE(ask(handler, "fireChoose", {Value(), Value()}).isNil());
}

TEST_F(Events, ByRefTextsAreReplacedInThePluginsVariable) {
    const Value keeps =
        object({on("rename(ByRef p As String) As Boolean", [](REALobject, Arguments) { return true; })});
    EXPECT_EQ(ask(keeps, "fireRename", {"same"}).toText(), "same");
    const Value changes =
        object({on("rename(ByRef p As String) As Boolean", [](REALobject, Arguments a) -> Value {
            a[0] = a[0].toText() + "!";
            return true;
        })});
    EXPECT_EQ(ask(changes, "fireRename", {"new"}).toText(), "new!");
}

TEST_F(Events, AMemoryBlockPointsAtThePluginsBuffer) {
    const Value fills =
        object({on("fill(b As MemoryBlock, n As UInt32) As Int16", [](REALobject, Arguments a) -> Value {
            std::vector<Value> offset{3};
            assign(a[0], "UInt8Value", offset, 77);
            return -static_cast<int>(a[1].toInt64());
        })});
    EXPECT_EQ(ask(fills, "fireFill").toInt32(), -16 * 1000 + 77);
}

TEST_F(Events, AMemoryBlockThatWasKeptRaisesOnceTheHandlerHasReturned) {
    Value kept;
    const Value fills =
        object({on("fill(b As MemoryBlock, n As UInt32) As Int16", [&](REALobject, Arguments a) -> Value {
            kept = a[0];
            a[0] = Value(); // what becomes of the parameter does not matter
            return 0;
        })});
    ask(fills, "fireFill");
    const std::string ended =
        "NilObjectException: this memory block showed an event's buffer, and the event has "
        "returned; copy what is needed later while it runs";
    EXPECT_EQ(raisedBy([&] { ask(kept, "UInt8Value", {3}); }), ended);
    EXPECT_EQ(raisedBy([&] { ask(kept, "CString", {0}); }), ended);
    EXPECT_EQ(raisedBy([&] { ask(kept, "RightB", {0}); }), ended);
    EXPECT_EQ(ask(kept, "Size").toInt32(), 0);
}

TEST_F(Events, AnEndedObjectIsAskedNothingAndNothingIsHeldOfIt) {
    const Services services;
    int count = 0;
    const auto notify = [&](REALobject, Arguments) -> Value {
        ++count;
        return {};
    };
    Value handler = object({on("notify", notify)});
    const REALobject address = handler.object();
    const auto identity = reinterpret_cast<uintptr_t>(classOf(address).event("notify"));
    const auto event = reinterpret_cast<void (*)(REALobject)>(services.GetEventInstance(address, identity));
    ASSERT_TRUE(event);
    event(address);
    EXPECT_EQ(count, 1);
    handler = Value();
    EXPECT_TRUE(hasEnded(address));
    services.REALLockObject(address);
    services.REALUnlockObject(address);
    services.REALUnlockObject(address); // as one that drops a reference it never took
    EXPECT_EQ(services.GetEventInstance(address, identity), nullptr);
    event(address); // found before the end, called after it
    EXPECT_EQ(count, 1);
}

TEST_F(Events, AnObjectEndsOnceWhoeverDropsTheLastReference) {
    for (int round = 0; round < 200; ++round) {
        Value handler = object({});
        const REALobject object = handler.object();
        retain(object);
        std::thread other([=] { release(object); });
        handler = Value();
        other.join();
    }
}

TEST_F(Events, WhatAHandlerRaisesStopsThereAndIsThrownAfterThePluginsFunction) {
    const Value fails = object(
        {on("isReady As Boolean", [](REALobject, Arguments) -> Value { raise("IOException", "not now"); })});
    EXPECT_EQ(raisedBy([&] { ask(fails, "fireIsReady"); }), "IOException: not now");
    EXPECT_FALSE(hasPendingException());
}

TEST_F(Events, AHandlerWithTheWrongResultRaisesAndAnswersZero) {
    const Value wrong =
        object({on("isReady As Boolean", [](REALobject, Arguments) -> Value { return "yes"; })});
    EXPECT_EQ(raisedBy([&] { ask(wrong, "fireIsReady"); }),
              "TypeMismatchException: the result of isReady must be Boolean, not String");
}

TEST_F(Events, CallsInsideAHandlerDoNotMeetThePluginsOwnException) {
    static bool ran;
    ran = false;
    const Value inner = make("TestBase", {5});
    const Value handler = object({on("notify", [&](REALobject, Arguments) -> Value {
        ran = ask(inner, "number").toInt32() == 5;
        return {};
    })});
    EXPECT_EQ(raisedBy([&] { ask(handler, "raiseThenNotify"); }), "IOException");
    EXPECT_TRUE(ran);
}

TEST_F(Events, AThreadOfThePlatformsWaitsForItsTurnAndRunsTheHandler) {
    static std::atomic<int> notified;
    notified = 0;
    const Value handler = object({on("notify", [](REALobject, Arguments) -> Value {
        EXPECT_TRUE(holdsLock());
        ++notified;
        return {};
    })});
    {
        Locked lock;
        ASSERT_TRUE(ask(handler, "startThread").toBoolean());
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_EQ(notified, 0) << "this thread has the lock";
        runLoop(0.2);
        EXPECT_EQ(notified, 1);
    }
    ask(handler, "joinThread");
}

TEST_F(Events, GivingWayLetsAWaitingThreadRun) {
    static std::atomic<int> notified;
    notified = 0;
    const Value handler = object({on("notify", [](REALobject, Arguments) -> Value {
        ++notified;
        return {};
    })});
    {
        Locked lock;
        ASSERT_TRUE(ask(handler, "startThread").toBoolean());
        for (int i = 0; i < 2000 && notified == 0; ++i) {
            giveWay();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        EXPECT_EQ(notified, 1);
    }
    ask(handler, "joinThread");
}

TEST_F(Events, WhatAHandlerRaisesOnAnotherThreadIsThrownAtTheNextStatement) {
    const Value fails =
        object({on("notify", [](REALobject, Arguments) -> Value { raise("IOException", "elsewhere"); })});
    ASSERT_TRUE(ask(fails, "startThread").toBoolean());
    ask(fails, "joinThread");
    EXPECT_EQ(raisedBy(throwStrayException), "IOException: elsewhere");
}

TEST_F(Events, WhatOneHandlerRaisedDoesNotCutOffAnother) {
    static std::atomic<bool> cutOff;
    cutOff = false;
    const Value handler = object({on("notify", [](REALobject, Arguments) -> Value {
        setStrayException(newException("IOException", "another one's"));
        cutOff = raisedBy(throwStrayException) != "";
        return {};
    })});
    ASSERT_TRUE(ask(handler, "startThread").toBoolean());
    ask(handler, "joinThread");
    EXPECT_FALSE(cutOff);
    EXPECT_EQ(raisedBy(throwStrayException), "IOException: another one's");
}

TEST_F(Events, ProgramsRaiseEventsOfTheirOwn) {
    MemberSpec declared;
    declared.kind = MemberKind::Event;
    declared.declaration = parseDeclaration("Moved(ByRef by As Integer) As Boolean");
    defineClass({"Mover", "", {declared}, {}, {}});
    defineClass({"MoverChild",
                 "Mover",
                 {on("moved(ByRef by As Integer) As Boolean",
                     [](REALobject, Arguments a) -> Value {
                         a[0] = a[0].toInt32() * 2;
                         return true;
                     })},
                 {},
                 {}});
    std::vector<Value> arguments{21};
    bool handled = true;
    EXPECT_FALSE(raiseEvent(make("Mover").object(), "Moved", arguments, &handled).toBoolean());
    EXPECT_FALSE(handled);
    EXPECT_TRUE(raiseEvent(make("MoverChild").object(), "Moved", arguments, &handled).toBoolean());
    EXPECT_TRUE(handled);
    EXPECT_EQ(arguments[0].toInt32(), 42);
}

// A program may end itself inside a handler with what is no host exception.
struct Quit {};
TEST_F(Events, WhatIsNoHostExceptionIsThrownOnAfterThePluginsFunction) {
    const Value quits = object({on("notify", [](REALobject, Arguments) -> Value { throw Quit(); })});
    EXPECT_THROW(ask(quits, "fireNotify"), Quit);
}

} // namespace
