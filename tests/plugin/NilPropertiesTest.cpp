// NilPropertiesTest.cpp: the five property accessors where there are no properties, and where there is no object.
#include "plugin/bridge/Properties.hpp"
#include "tests/plugin/HostClasses.hpp"
#include "tests/plugin/PlatformObjects.hpp"

namespace {

using namespace test;
using objc::Id;

int timesSet;
Id lastSet;

Id noProperties(Id, objc::Sel) { return nullptr; }
void setProperties(Id, objc::Sel, Id properties) {
    ++timesSet;
    lastSet = properties;
}

Id key;

class NilProperties : public LoadedTest, public testing::WithParamInterface<const char*> {
  protected:
    void SetUp() override {
        LoadedTest::SetUp();
        objc::ClassBuilder("NSObject", "WithoutProperties")
            .method<"properties", noProperties>()
            .method<"setProperties:", setProperties>()
            .finish();
        object = make(GetParam());
        frame::slot(object.get()) = objc::sendClass<"WithoutProperties", "new">();
        key = nsString("TestKey");
        timesSet = 0;
        lastSet = key; // anything but nil
    }

    Ref object;
};

INSTANTIATE_TEST_SUITE_P(OfBoth, NilProperties, testing::Values("DRBurnQRX", "DRTrackQRX"),
                         [](const auto& name) { return std::string(name.param); });

TEST_P(NilProperties, ReadEmptyAndRaiseNothing) {
    EXPECT_EQ(bridge::getIntegerProperty(object.get(), &key), 0);
    EXPECT_EQ(bridge::getDoubleProperty(object.get(), &key), 0.0);
    EXPECT_EQ(bridge::getStringProperty(object.get(), &key), nullptr);
    EXPECT_EQ(bridge::getDataProperty(object.get(), &key), nullptr);
    EXPECT_EQ(raised(), std::nullopt);
    EXPECT_EQ(timesSet, 0);
}

// The copy of nil is nil, and so is what is handed back: no dictionary is made here, not even for a nil value.
TEST_P(NilProperties, TakeNothingAndRaiseNothing) {
    bridge::setProperty(object.get(), &key, nsString("value"));
    bridge::setBooleanProperty(object.get(), &key, REALboolean{1});
    bridge::setIntegerProperty(object.get(), &key, 1);
    bridge::setDoubleProperty(object.get(), &key, 1);
    bridge::setStringProperty(object.get(), &key, String("text").get());
    bridge::setDataProperty(object.get(), &key, nullptr);
    bridge::setProperty(object.get(), &key, nullptr);
    EXPECT_EQ(timesSet, 7);
    EXPECT_EQ(lastSet, nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(LoadedTest, PropertiesOfANullHostObjectReadEmptyAndTakeNothing) {
    key = nsString("TestKey");
    EXPECT_EQ(bridge::getIntegerProperty(nullptr, &key), 0);
    EXPECT_EQ(bridge::getDoubleProperty(nullptr, &key), 0.0);
    EXPECT_EQ(bridge::getStringProperty(nullptr, &key), nullptr);
    EXPECT_EQ(bridge::getDataProperty(nullptr, &key), nullptr);
    bridge::setProperty(nullptr, &key, nsString("value"));
    bridge::setProperty(nullptr, &key, nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

} // namespace
