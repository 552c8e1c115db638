// SetupPanelDelegateTest.cpp: what a setup panel's delegate answers for, and what it holds while an event runs.
#include "host/runtime/Exceptions.hpp"
#include "tests/plugin/SetupPanel.hpp"

namespace {

using namespace test;

using SetupPanelDelegate = SetupPanelEvents;

// ---- what a delegate answers for -----------------------------------------------------------------------

TEST_F(SetupPanelDelegate, ADelegateIsAPlatformObjectOfAClassOfItsOwn) {
    const Ref panel = deciding(couldBe, [](REALobject, Arguments) { return Value(true); });
    const auto cls = objc::send<"class", objc::Class>(delegate());
    EXPECT_STREQ(objc::class_getName(cls), "MyDRSetupPanelDelegateMethods");
    EXPECT_STREQ(objc::class_getName(objc::class_getSuperclass(cls)), "NSObject");
}

TEST_F(SetupPanelDelegate, ADelegateAnswersOnlyForWhatTheProgramImplements) {
    for (std::size_t own = 0; own < std::size(events); ++own) {
        const Ref panel =
            deciding(events[own], [=](REALobject, Arguments) { return nothingOf(events[own]); });
        for (std::size_t i = 0; i < std::size(callbacks); ++i)
            EXPECT_EQ(responds(delegate(), callbacks[i]), i == own) << callbacks[i] << " of " << events[own];
    }
}

TEST_F(SetupPanelDelegate, ForEverythingElseADelegateAnswersAsAnyPlatformObject) {
    const Ref panel = deciding(couldBe, [](REALobject, Arguments) { return Value(true); });
    EXPECT_TRUE(responds(delegate(), "copyWithZone:"));
    EXPECT_TRUE(responds(delegate(), "description"));
    EXPECT_FALSE(responds(delegate(), "noSuchSelector:"));
}

TEST_F(SetupPanelDelegate, TheDefaultsHoldWhereTheProgramHasNoEvent) {
    const Ref panel = deciding(changed, [](REALobject, Arguments) { return Value(); });
    Id prompt = first;
    EXPECT_TRUE(askCouldBe(first));
    EXPECT_FALSE(askReservations());
    EXPECT_TRUE(askSuitable(first, &prompt));
    EXPECT_EQ(prompt, first) << "not touched";
    EXPECT_EQ(askBest(first, second), first);
    const Ref other = deciding(couldBe, [](REALobject, Arguments) { return Value(false); });
    tellSelected(first); // nobody hears it
    EXPECT_EQ(wrappers(), 0u) << "and no wrapper was made for nobody";
}

TEST_F(SetupPanelDelegate, ADelegateWithoutAHostObjectDeniesNothingAndTakesTheDefaults) {
    const Ref panel = panelWith("DRBurnSetupPanelQRX",
                                {on(couldBe, [](REALobject, Arguments) { return Value(false); }),
                                 on(reservations, [](REALobject, Arguments) { return Value(true); })});
    const REALobject kept = std::exchange(hostOfDelegate(), nullptr);
    for (const char* callback : callbacks)
        EXPECT_TRUE(responds(delegate(), callback)) << callback;
    EXPECT_FALSE(responds(delegate(), "noSuchSelector:"));
    Id prompt = first;
    EXPECT_TRUE(askCouldBe(first));
    tellSelected(first);
    EXPECT_FALSE(askReservations());
    EXPECT_TRUE(askSuitable(first, &prompt));
    EXPECT_EQ(prompt, first);
    EXPECT_EQ(askBest(second, first), second);
    hostOfDelegate() = kept;
    EXPECT_FALSE(askCouldBe(first)) << "the host object decides again";
}

TEST_F(SetupPanelDelegate, ADelegateIsNeverDuplicated) {
    const Ref panel = deciding(couldBe, [](REALobject, Arguments) { return Value(true); });
    const Id ours = delegate();
    EXPECT_EQ((objc::send<"copyWithZone:">(ours, static_cast<void*>(nullptr))), ours);
    EXPECT_EQ(retains(ours), 2u);
    objc::release(ours);
}

// ---- what is held, and for how long --------------------------------------------------------------------

TEST_F(SetupPanelDelegate, TheWrappersOfACallAreReleasedAfterIt) {
    for (const std::string_view event : {couldBe, changed, suitable, best}) {
        std::size_t during = 0;
        const Ref panel = deciding(event, [&](REALobject, Arguments arguments) {
            during = wrappers();
            return event == best ? arguments[1] : nothingOf(event);
        });
        askEverything();
        EXPECT_EQ(during, event == best ? 2u : 1u) << event;
        EXPECT_EQ(wrappers(), 0u) << event;
        EXPECT_EQ(FindInstance(first), nullptr) << event;
        EXPECT_EQ(FindInstance(second), nullptr) << event;
    }
}

TEST_F(SetupPanelDelegate, ADeviceThatAProgramKeepsStaysTheSameHostObject) {
    std::vector<Ref> kept;
    const Ref panel = deciding(couldBe, [&](REALobject, Arguments arguments) {
        return kept.push_back(Ref::borrow(arguments[0].object())), Value(true);
    });
    askCouldBe(first);
    askCouldBe(first);
    ASSERT_EQ(kept.size(), 2u);
    EXPECT_EQ(kept[0].get(), kept[1].get());
    EXPECT_EQ(harness::references(kept[0].get()), 2u) << "only the program's";
}

TEST_F(SetupPanelDelegate, TheHostObjectIsHeldDuringEveryEvent) {
    for (const std::string_view event : events) {
        std::size_t during = 0;
        const Ref panel = deciding(event, [&](REALobject self, Arguments) {
            return during = harness::references(self), nothingOf(event);
        });
        const auto before = harness::references(panel.get());
        askEverything();
        EXPECT_EQ(during, before + 2) << "one of the plug-in's, one of the host's own call: " << event;
        EXPECT_EQ(harness::references(panel.get()), before) << event;
    }
}

TEST_F(SetupPanelDelegate, AnEventMayEndThePanelThatAsks) {
    for (const std::string_view event : events) {
        std::size_t calls = 0;
        const Ref panel = deciding(event, [&](REALobject self, Arguments) {
            harness::definition(setupBase)->destructor(self);
            return ++calls, nothingOf(event);
        });
        Id prompt = nsString("old");
        if (event == couldBe) askCouldBe(first);
        if (event == changed) tellSelected(first);
        if (event == reservations) askReservations();
        if (event == suitable) askSuitable(first, &prompt);
        if (event == best) askBest(first, second);
        EXPECT_EQ(calls, 1u) << event;
        EXPECT_EQ(delegate(), nullptr) << event;
        EXPECT_EQ(harness::references(panel.get()), 1u) << event;
        EXPECT_EQ(wrappers(), 0u) << event;
    }
}

TEST_F(SetupPanelDelegate, AnEventThatRaisesAnswersEmptyAndLeavesNothingBehind) {
    for (const std::string_view event : events) {
        const Ref panel =
            deciding(event, [](REALobject, Arguments) -> Value { host::raise("IOException", "undecided"); });
        const auto before = harness::references(panel.get());
        const auto strings = harness::liveStrings();
        Id prompt = nsString("old");
        EXPECT_EQ(askCouldBe(first), event != couldBe) << event;
        tellSelected(first);
        EXPECT_FALSE(askReservations()) << event;
        EXPECT_EQ(askSuitable(first, &prompt), event != suitable) << event;
        EXPECT_EQ(askBest(first, second), event == best ? nullptr : first) << event;
        EXPECT_EQ(raised(), (Raised{"IOException", "undecided"})) << event;
        EXPECT_EQ(text(prompt), "old") << event;
        EXPECT_EQ(harness::references(panel.get()), before) << event;
        EXPECT_EQ(wrappers(), 0u) << event;
        EXPECT_LE(harness::liveStrings(), strings) << event;
    }
}

} // namespace
