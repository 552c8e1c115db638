// ProgressEventsTest.cpp: what progress panels tell their delegates, what the events get, and which job they get it for.
#include "host/runtime/Exceptions.hpp"
#include "tests/plugin/ProgressPanel.hpp"

namespace {

using namespace test;

using ProgressEvents = ProgressTest;
INSTANTIATE_TEST_SUITE_P(, ProgressEvents, bothKinds());

// ---- what a delegate answers for -----------------------------------------------------------------------

TEST_P(ProgressEvents, ADelegateIsAPlatformObjectOfAClassOfItsOwn) {
    const Ref panel = progress({});
    const auto cls = objc::send<"class", objc::Class>(delegate());
    EXPECT_STREQ(objc::class_getName(cls), kind().delegateClass);
    EXPECT_STREQ(objc::class_getName(objc::class_getSuperclass(cls)), "NSObject");
}

TEST_P(ProgressEvents, ADelegateAnswersOnlyForWhatTheProgramImplements) {
    for (int own = WillBegin; own <= JobDidFinish; ++own) {
        const Ref panel = listening(own);
        for (int i = WillBegin; i <= JobDidFinish; ++i)
            EXPECT_EQ(responds(delegate(), kind().callbacks[i]), i == own)
                << kind().callbacks[i] << " of " << kind().events[own];
    }
    const Ref none = progress({});
    for (const char* callback : kind().callbacks)
        EXPECT_FALSE(responds(delegate(), callback)) << callback;
}

TEST_P(ProgressEvents, ForEverythingElseADelegateAnswersAsAnyPlatformObject) {
    const Ref panel = progress({});
    EXPECT_TRUE(responds(delegate(), "copyWithZone:"));
    EXPECT_TRUE(responds(delegate(), "description"));
    EXPECT_FALSE(responds(delegate(), "noSuchSelector:"));
}

TEST_P(ProgressEvents, ADelegateIsNeverDuplicated) {
    const Ref panel = progress({});
    const Id ours = delegate();
    EXPECT_EQ((objc::send<"copyWithZone:">(ours, static_cast<void*>(nullptr))), ours);
    EXPECT_EQ(retains(ours), 2u);
    objc::release(ours);
}

TEST_P(ProgressEvents, WithoutTheEventNothingHappensAndTheEndIsAnsweredNo) {
    int heard = 0;
    const Ref panel = listening(DidFinish, [&](REALobject, Arguments) { return ++heard, Value(); });
    tellWillBegin();
    EXPECT_FALSE(askJobDidFinish(nullptr));
    EXPECT_EQ(heard, 0);
}

TEST_P(ProgressEvents, WithoutAHostObjectADelegateDeniesNothingAndTakesTheDefaults) {
    int heard = 0;
    std::vector<host::MemberSpec> all;
    for (int i = WillBegin; i <= JobDidFinish; ++i)
        all.push_back(on(kind().events[i], [&heard, i](REALobject, Arguments) {
            return ++heard, i == JobDidFinish ? Value(true) : Value();
        }));
    const Ref panel = progress(std::move(all));
    const REALobject kept = std::exchange(hostOfDelegate(), nullptr);
    for (const char* callback : kind().callbacks)
        EXPECT_TRUE(responds(delegate(), callback)) << callback;
    tellWillBegin();
    tellDidFinish();
    EXPECT_FALSE(askJobDidFinish(nullptr));
    EXPECT_EQ(heard, 0);
    hostOfDelegate() = kept;
    EXPECT_TRUE(askJobDidFinish(nullptr)) << "the host object decides again";
}

// ---- the events ----------------------------------------------------------------------------------------

TEST_P(ProgressEvents, BeginAndEndAreHeardOnceEachTime) {
    std::string heard;
    const Ref panel = progress(
        {on(kind().events[WillBegin], [&](REALobject, Arguments) { return heard += "begin ", Value(); }),
         on(kind().events[DidFinish], [&](REALobject, Arguments) { return heard += "end ", Value(); })});
    for (int i = 0; i < 2; ++i)
        tellWillBegin(), tellDidFinish();
    EXPECT_EQ(heard, "begin end begin end ");
}

TEST_P(ProgressEvents, WhoShowsTheResultIsTheEventsAnswer) {
    bool answer = true;
    const Ref panel = listening(JobDidFinish, [&](REALobject, Arguments) { return Value(answer); });
    EXPECT_TRUE(askJobDidFinish(nullptr));
    answer = false;
    EXPECT_FALSE(askJobDidFinish(nullptr));
}

TEST_P(ProgressEvents, TheEndGetsTheVeryObjectThatWasBegunWhateverThePlatformPasses) {
    REALobject seen = nullptr;
    const Ref panel = listening(JobDidFinish, [&](REALobject, Arguments arguments) {
        return seen = objectOf(arguments[0]), Value(true);
    });
    const Ref begun = aJob(), other = aJob();
    begin(panel, begun.get());
    EXPECT_TRUE(askJobDidFinish(frame::held(other.get())));
    EXPECT_EQ(seen, begun.get());
    EXPECT_EQ(harness::references(begun.get()), 2u) << "the program's and the delegate's";
    EXPECT_EQ(harness::references(other.get()), 1u);
}

TEST_P(ProgressEvents, TheEndGetsTheVeryObjectAlsoWhereNoRegistryKeepsIdentities) {
    REALobject seen = nullptr;
    const Ref panel = listening(JobDidFinish, [&](REALobject, Arguments arguments) {
        return seen = objectOf(arguments[0]), Value(true);
    });
    const Ref begun = aJob();
    begin(panel, begun.get());
    instances = nullptr;
    EXPECT_TRUE(askJobDidFinish(frame::held(begun.get())));
    EXPECT_EQ(seen, begun.get());
}

TEST_P(ProgressEvents, BeforeAnythingWasBegunTheEndGetsNil) {
    const Ref something = aJob();
    REALobject seen = something.get();
    const Ref panel = listening(JobDidFinish, [&](REALobject, Arguments arguments) {
        return seen = objectOf(arguments[0]), Value(true);
    });
    EXPECT_TRUE(askJobDidFinish(frame::held(aJob().get())));
    EXPECT_EQ(seen, nullptr);
}

// ---- what is remembered --------------------------------------------------------------------------------

TEST_P(ProgressEvents, AnyOfTheThreeEventsMakesTheDelegateRememberWhatWasBegun) {
    for (int event = WillBegin; event <= JobDidFinish; ++event) {
        const Ref panel = listening(event), begun = aJob();
        begin(panel, begun.get());
        EXPECT_EQ(job(), begun.get()) << kind().events[event];
    }
}

TEST_P(ProgressEvents, WithoutEventsBeginningLeavesTheDelegateAlone) {
    const Ref panel = progress({}), begun = aJob();
    begin(panel, begun.get());
    EXPECT_EQ(timesTold("begin"), 1) << "it begins all the same";
    EXPECT_EQ(job(), nullptr);
    EXPECT_EQ(harness::references(begun.get()), 1u);
    EXPECT_FALSE(askJobDidFinish(frame::held(begun.get())));
}

TEST_P(ProgressEvents, TheNextThatIsBegunTakesThePlaceOfTheOneBefore) {
    const Ref panel = listening(WillBegin), one = aJob(), next = aJob();
    begin(panel, one.get());
    begin(panel, next.get());
    EXPECT_EQ(job(), next.get());
    EXPECT_EQ(harness::references(one.get()), 1u);
    EXPECT_EQ(harness::references(next.get()), 2u);
    begin(panel, next.get());
    EXPECT_EQ(harness::references(next.get()), 2u) << "the same again";
}

TEST_P(ProgressEvents, TheObjectIsRememberedBeforeThePanelIsTold) {
    const Ref panel = listening(WillBegin), begun = aJob();
    fake::raising = kind().panelMessage;
    begin(panel, begun.get());
    EXPECT_EQ(raised(), panelIsBroken);
    EXPECT_EQ(job(), begun.get());
}

TEST_P(ProgressEvents, ADelegateThatIsNotThePlugInsRemembersNothingAndThePanelBegins) {
    const Ref panel = listening(WillBegin), begun = aJob();
    const Id ours = delegate();
    objc::send<"setDelegate:", void>(fake::shared, objc::sendClass<"NSArray", "array">());
    begin(panel, begun.get());
    EXPECT_EQ(timesTold("begin"), 1);
    EXPECT_EQ(harness::references(begun.get()), 1u);
    objc::send<"setDelegate:", void>(fake::shared, ours);
}

// ---- what is held --------------------------------------------------------------------------------------

TEST_P(ProgressEvents, TheHostObjectIsHeldDuringEveryEvent) {
    for (int event = WillBegin; event <= JobDidFinish; ++event) {
        std::size_t during = 0;
        const Ref panel = listening(event, [&](REALobject self, Arguments) {
            return during = harness::references(self), nothingOf(event);
        });
        const auto before = harness::references(panel.get());
        tell(event);
        EXPECT_EQ(during, before + 2) << "one of the plug-in's, one of the host's own call";
        EXPECT_EQ(harness::references(panel.get()), before) << kind().events[event];
    }
}

TEST_P(ProgressEvents, AnEventMayEndThePanelThatTells) {
    for (int event = WillBegin; event <= JobDidFinish; ++event) {
        const Ref panel = listening(event, [&](REALobject self, Arguments) {
            harness::definition(kind().className)->destructor(self);
            return nothingOf(event);
        });
        const Ref begun = aJob();
        begin(panel, begun.get());
        tell(event);
        EXPECT_EQ(frame::held(panel.get()), nullptr) << kind().events[event];
        EXPECT_EQ(harness::references(panel.get()), 1u) << kind().events[event];
        EXPECT_EQ(harness::references(begun.get()), 1u) << kind().events[event];
    }
}

TEST_P(ProgressEvents, TheEndOfOneMayBeginTheNext) {
    const Ref next = aJob();
    REALobject seen = nullptr;
    const Ref panel = listening(JobDidFinish, [&](REALobject self, Arguments arguments) {
        seen = objectOf(arguments[0]);
        begin(Ref::borrow(self), next.get());
        return Value(true);
    });
    const Ref begun = aJob();
    begin(panel, begun.get());
    EXPECT_TRUE(askJobDidFinish(nullptr));
    EXPECT_EQ(seen, begun.get());
    EXPECT_EQ(job(), next.get());
    EXPECT_EQ(harness::references(begun.get()), 1u);
    EXPECT_TRUE(askJobDidFinish(nullptr));
    EXPECT_EQ(seen, next.get());
}

TEST_P(ProgressEvents, AHostThatKnowsNoEventsGetsAnUnaskedDelegate) {
    harness::withdraw("GetEventInstance");
    const Ref panel = listening(JobDidFinish), begun = aJob();
    ASSERT_NE(delegate(), nullptr);
    begin(panel, begun.get());
    EXPECT_EQ(job(), nullptr);
    EXPECT_FALSE(responds(delegate(), kind().callbacks[JobDidFinish]));
    EXPECT_FALSE(askJobDidFinish(nullptr));
}

TEST_P(ProgressEvents, AnEventThatRaisesAnswersNoAndLeavesNothingBehind) {
    for (int event = WillBegin; event <= JobDidFinish; ++event) {
        const Ref panel =
            listening(event, [](REALobject, Arguments) -> Value { host::raise("IOException", "no"); });
        const auto before = harness::references(panel.get());
        EXPECT_FALSE(tell(event));
        EXPECT_EQ(raised(), (Raised{"IOException", "no"})) << kind().events[event];
        EXPECT_EQ(harness::references(panel.get()), before) << kind().events[event];
    }
}

} // namespace
