// RoundTripTest.cpp: values of every kind, nested at random, through a burn's properties and back, with the companion's
// geometry, wrappers and boxes among them.
#include "tests/companion/CompanionTest.hpp"
#include "tests/plugin/RoundTrips.hpp"

namespace {

using namespace test;

using RoundTrips = WithBoth;

TEST_F(RoundTrips, WithTheCompanionGeometryWrappersAndBoxesComeBackToo) {
    const Value drive = askClass("DRDeviceQRX", "device", {0}), burn = make("DRBurnQRX", {drive});
    const Value kept[] = {drive,
                          make("DRMSFQRX", {75}),
                          make("RuntimeException", {"text"}),
                          make("DRBurnQRX", {drive}),
                          make("NSIndexSetQRX", {2, 3}),
                          make("NSAttributedStringQRX", {"text"}),
                          make("NSCharacterSetQRX", {"abc"})};
    Trips trips(20260202);
    trips.more.push_back([&](std::mt19937& random) { return Trips::same(kept[random() % std::size(kept)]); });
    trips.more.push_back([](std::mt19937& random) {
        const auto number = [&] { return static_cast<int>(random() % 1000); };
        switch (random() % 4) {
        case 0:
            return Trips::same(make("NSRangeQRX", {number(), number()}));
        case 1:
            return Trips::same(make("NSRectQRX", {number(), number(), number() / 4.0, number()}));
        case 2:
            return Trips::same(make("NSSizeQRX", {number() / 2.0, number()}));
        default:
            return Trips::same(make("NSPointQRX", {-number(), number()}));
        }
    });
    for (int round = 0; round < 400; ++round) {
        const Pool inner;
        const Trip trip = trips.any(4);
        const Ref properties = host::newDictionary();
        host::dictionarySet(properties.get(), "TestKey", trip.sent);
        set(burn, "properties", Value(properties));
        const Value back = host::dictionaryGet(ask(burn, "properties").object(), "TestKey");
        ASSERT_TRUE(areSame(trip.back, back))
            << "round " << round << ": " << trip.sent.typeName() << " " << trip.sent.toText()
            << " came back as " << back.typeName() << " " << back.toText();
    }
}

} // namespace
