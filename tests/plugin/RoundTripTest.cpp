// RoundTripTest.cpp: values of every kind, nested at random, to the platform and back: equal, or different exactly where
// a conversion loses something.
#include "plugin/bridge/Variants.hpp"
#include "tests/plugin/PlatformObjects.hpp"
#include "tests/plugin/RoundTrips.hpp"

namespace {

using namespace test;

class RoundTrips : public LoadedTest {
  protected:
    void run(Trips& trips) {
        for (int round = 0; round < 400; ++round) {
            const Pool inner;
            const Trip trip = trips.any(4);
            const Ref dictionary = host::newDictionary();
            host::dictionarySet(dictionary.get(), "value", trip.sent);
            const Ref back = Ref::adopt(NSDictionaryRB(NewNSDictionary(dictionary.get())));
            const Value value = host::dictionaryGet(back.get(), "value");
            ASSERT_TRUE(areSame(trip.back, value))
                << "round " << round << ": " << trip.sent.typeName() << " " << trip.sent.toText()
                << " came back as " << value.typeName() << " " << value.toText();
        }
        EXPECT_EQ(raised(), std::nullopt);
    }
};

TEST_F(RoundTrips, WhatGoesOverAndBackIsWhatTheConversionsMakeOfIt) {
    Trips trips(20260131);
    trips.more.push_back([this](std::mt19937&) {
        return Trip{Value(make("DRTrackQRX")), Value(), true}; // nobody boxes it
    });
    run(trips);
}

TEST_F(RoundTrips, WithBoxesOtherObjectsComeBackAsThemselves) {
    offerBoxes();
    const Ref track = make("DRTrackQRX"), error = make("RuntimeException");
    Trips trips(20260201);
    for (const Ref& boxed : {track, error})
        trips.more.push_back([boxed](std::mt19937&) { return Trips::same(Value(boxed)); });
    run(trips);
}

// The comparison itself: a kind for another is a difference.
TEST_F(RoundTrips, NoKindIsTakenForAnother) {
    const Value different[] = {Value(),
                               true,
                               1,
                               int64_t{1},
                               uint32_t{1},
                               uint64_t{1},
                               1.0f,
                               1.0,
                               "1",
                               Value(host::newMemoryBlock(1)),
                               Value(host::newMemoryBlock(2)),
                               Value(host::newDate(1)),
                               Value(host::newDate(2)),
                               Value(host::newFolderItem("/a")),
                               Value(host::newFolderItem("/b")),
                               Value(host::newDictionary()),
                               Value(host::newArray(host::typeNamed("Variant")))};
    for (const Value& one : different)
        for (const Value& other : different)
            EXPECT_EQ(areSame(one, other), &one == &other) << one.typeName() << " " << other.typeName();
}

} // namespace
