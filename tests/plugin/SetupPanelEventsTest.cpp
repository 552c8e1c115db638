// SetupPanelEventsTest.cpp: what the events of a setup panel get, and what the panel makes of their answers.
#include "tests/plugin/SetupPanel.hpp"

namespace {

using namespace test;

TEST_F(SetupPanelEvents, WhetherADeviceCouldBeATargetIsTheEventsAnswer) {
    bool answer = false;
    REALobject seen = nullptr;
    const Ref panel = deciding(couldBe, [&](REALobject, Arguments arguments) {
        return seen = objectOf(arguments[0]), Value(answer);
    });
    const Ref known = Ref::adopt(NewDRDeviceQRX(first));
    EXPECT_FALSE(askCouldBe(first));
    EXPECT_EQ(seen, known.get());
    answer = true;
    EXPECT_TRUE(askCouldBe(first));
    EXPECT_TRUE(askCouldBe(nullptr));
    EXPECT_EQ(seen, nullptr);
}

TEST_F(SetupPanelEvents, SelectionChangesTellTheDeviceAndNilWhereThereIsNone) {
    std::vector<REALobject> seen;
    const Ref panel = deciding(changed, [&](REALobject, Arguments arguments) {
        return seen.push_back(objectOf(arguments[0])), Value();
    });
    const Ref known = Ref::adopt(NewDRDeviceQRX(first));
    tellSelected(first);
    tellChanged(notification(objc::sendClass<"NSDictionary", "dictionary">()));
    tellChanged(notification(nullptr));
    tellChanged(nullptr);
    EXPECT_EQ(seen, (std::vector<REALobject>{known.get(), nullptr, nullptr, nullptr}));
}

TEST_F(SetupPanelEvents, WhoHandlesReservationsIsTheEventsAnswer) {
    bool answer = true;
    const Ref panel = deciding(reservations, [&](REALobject, Arguments) { return Value(answer); });
    EXPECT_TRUE(askReservations());
    answer = false;
    EXPECT_FALSE(askReservations());
}

TEST_F(SetupPanelEvents, ThePromptGoesInAndAnUnchangedOneIsWrittenBackAllTheSame) {
    std::string got;
    const Ref panel = deciding(suitable, [&](REALobject, Arguments arguments) {
        return got = arguments[1].toString().utf8(), Value(true);
    });
    const Id before = nsString("legen Sie ein Medium ein, größer als 650 MB");
    Id prompt = before;
    EXPECT_TRUE(askSuitable(first, &prompt));
    EXPECT_EQ(got, text(before));
    EXPECT_EQ(text(prompt), text(before));
    EXPECT_NE(prompt, before) << "a text of its own";
}

TEST_F(SetupPanelEvents, AChangedPromptIsWrittenBackWhateverTheAnswer) {
    bool answer = false;
    const Ref panel = deciding(suitable, [&](REALobject, Arguments arguments) {
        return arguments[1] = Value(String(answer ? "fine" : "too small")), Value(answer);
    });
    Id prompt = nsString("old");
    EXPECT_FALSE(askSuitable(first, &prompt));
    EXPECT_EQ(text(prompt), "too small");
    answer = true;
    EXPECT_TRUE(askSuitable(first, &prompt));
    EXPECT_EQ(text(prompt), "fine");
}

TEST_F(SetupPanelEvents, AnEmptyPromptIsWrittenBackAsNil) {
    const Ref panel = deciding(suitable, [&](REALobject, Arguments arguments) {
        return arguments[1] = Value(String("")), Value(false);
    });
    Id prompt = nsString("old");
    askSuitable(first, &prompt);
    EXPECT_EQ(prompt, nullptr);
}

TEST_F(SetupPanelEvents, NoPromptGoesInAsTheEmptyTextAndNowhereToWriteIsNoFault) {
    std::string got = "unset";
    const Ref panel = deciding(suitable, [&](REALobject, Arguments arguments) {
        return got = arguments[1].toString().utf8(), arguments[1] = Value(String("new")), Value(true);
    });
    Id prompt = nullptr;
    EXPECT_TRUE(askSuitable(first, &prompt));
    EXPECT_EQ(got, "");
    EXPECT_EQ(text(prompt), "new");
    EXPECT_TRUE(askSuitable(first, nullptr));
    EXPECT_EQ(got, "");
}

TEST_F(SetupPanelEvents, ThePromptsOfTheHostAreReleased) {
    const Ref panel = deciding(suitable, [&](REALobject, Arguments arguments) {
        return arguments[1] = Value(String("a new prompt")), Value(true);
    });
    const auto before = harness::liveStrings();
    Id prompt = nsString("an old prompt");
    askSuitable(first, &prompt);
    EXPECT_EQ(harness::liveStrings(), before);
}

TEST_F(SetupPanelEvents, TheBestDeviceIsWhatTheEventAnswers) {
    std::size_t choice = 0;
    const Ref panel = deciding(best, [&](REALobject, Arguments arguments) { return arguments[choice]; });
    EXPECT_EQ(askBest(first, second), first);
    choice = 1;
    EXPECT_EQ(askBest(first, second), second);
    EXPECT_EQ(askBest(nullptr, second), second) << "either may be nil";
    EXPECT_EQ(askBest(first, nullptr), nullptr);
}

TEST_F(SetupPanelEvents, NoBestDeviceIsNilForThePanel) {
    const Ref panel = deciding(best, [](REALobject, Arguments) { return Value(); });
    EXPECT_EQ(askBest(first, second), nullptr);
}

TEST_F(SetupPanelEvents, ABestDeviceWithoutAPlatformDeviceIsNilForThePanel) {
    const Ref empty = make("DRDeviceQRX");
    const Ref panel = deciding(best, [&](REALobject, Arguments) { return Value::borrow(empty.get()); });
    EXPECT_EQ(askBest(first, second), nullptr);
    EXPECT_EQ(harness::references(empty.get()), 1u) << "what the event answered was let go";
}

TEST_F(SetupPanelEvents, TheBestDeviceOutlivesItsWrapperUntilThePoolIsDrained) {
    const Ref panel = deciding(best, [](REALobject, Arguments arguments) { return arguments[0]; });
    const auto before = retains(first);
    {
        const Pool inner;
        EXPECT_EQ(askBest(first, second), first);
        EXPECT_EQ(retains(first), before + 1) << "the pool's";
    }
    EXPECT_EQ(retains(first), before);
}

} // namespace
