// WrappersTest.cpp: platform objects as host objects, with an instance registry and without one.
#include "plugin/bridge/Wrappers.hpp"
#include "plugin/bridge/Registry.hpp"
#include "plugin/bridge/Startup.hpp"
#include "plugin/objc/ClassBuilder.hpp"
#include "plugin/objc/Ownership.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/HostClasses.hpp"
#include "tests/plugin/PluginTest.hpp"

namespace {

using namespace test;
using objc::Adopted;
using objc::Id;

unsigned long retains(Id object) { return objc::send<"retainCount", unsigned long>(object); }

Id newMSF(unsigned int frames) { return objc::send<"initWithFrames:">(objc::alloc<"DRMSF">(), frames); }

Id newFolder() { return objc::send<"initWithName:">(objc::alloc<"DRFolder">(), nsString("folder")); }

class WithRegistry : public PluginTest {
  protected:
    void SetUp() override {
        companion::offerRegistry();
        load();
        CocoaInit();
    }
};

using WithoutRegistry = LoadedTest;

TEST_F(WithRegistry, TheSamePlatformObjectComesBackAsTheSameHostObjectWithOneMoreReference) {
    const Adopted msf(newMSF(75));
    const Ref first = Ref::adopt(NewDRMSFQRX(msf.get()));
    EXPECT_EQ(harness::references(first.get()), 1u);
    const Ref second = Ref::adopt(NewDRMSFQRX(msf.get()));
    EXPECT_EQ(first.get(), second.get());
    EXPECT_EQ(harness::references(first.get()), 2u);
    EXPECT_EQ(retains(msf.get()), 2u) << "the wrapper retains once, the registry never";
}

TEST_F(WithRegistry, AfterTheLastReferenceANewHostObjectIsMade) {
    const Adopted msf(newMSF(75));
    {
        const Ref first = Ref::adopt(NewDRMSFQRX(msf.get()));
        EXPECT_EQ(FindInstance(msf.get()), first.get());
    }
    EXPECT_EQ(FindInstance(msf.get()), nullptr);
    EXPECT_EQ(retains(msf.get()), 1u);
    const Ref again = Ref::adopt(NewDRMSFQRX(msf.get()));
    EXPECT_EQ(FindInstance(msf.get()), again.get());
}

TEST_F(WithRegistry, EqualPlatformObjectsAreToldApartByIdentity) {
    const Adopted one(newMSF(75)), other(newMSF(75));
    const Ref first = Ref::adopt(NewDRMSFQRX(one.get())), second = Ref::adopt(NewDRMSFQRX(other.get()));
    EXPECT_NE(first.get(), second.get());
}

TEST_F(WithRegistry, RegisteringReplacesAnEarlierEntryAndRemovingAnUnknownOneIsHarmless) {
    const Adopted msf(newMSF(1));
    const Ref one = make("DRMSFQRX"), two = make("DRMSFQRX");
    RegisterInstance(one.get(), msf.get());
    RegisterInstance(two.get(), msf.get());
    EXPECT_EQ(FindInstance(msf.get()), two.get());
    EXPECT_EQ(harness::references(two.get()), 1u) << "a look-up adds no reference";
    UnregisterInstance(nullptr);
    UnregisterInstance(nsString("unknown"));
    RegisterInstance(one.get(), nullptr);
    EXPECT_EQ(FindInstance(nullptr), nullptr);
    UnregisterInstance(msf.get());
    EXPECT_EQ(FindInstance(msf.get()), nullptr);
}

TEST_F(WithRegistry, NilGivesNoWrapper) {
    for (auto* wrap : {NewDRDeviceQRX, NewDREraseQRX, NewDRMSFQRX, NewDRTrackQRX, NewDRBurnQRX, NewDRFileQRX,
                       NewDRFolderQRX, NewDRFSObjectQRX, NewNSObjectQRX})
        EXPECT_EQ(wrap(nullptr), nullptr);
}

TEST_F(WithRegistry, AClassThatTheHostCannotMakeGivesNullAndKeepsNothing) {
    const Adopted msf(newMSF(75));
    harness::failCreation("DRMSFQRX");
    EXPECT_EQ(NewDRMSFQRX(msf.get()), nullptr);
    EXPECT_EQ(retains(msf.get()), 1u);
    EXPECT_EQ(FindInstance(msf.get()), nullptr);
}

TEST_F(WithRegistry, AFileSystemObjectBecomesAFileAFolderOrAPlainOne) {
    const Adopted folder(newFolder());
    const Adopted file(objc::send<"initWithPath:">(objc::alloc<"DRFile">(), nsString("/etc/hostname")));
    const Ref folderObject = Ref::adopt(NewDRFSObjectQRX(folder.get()));
    const Ref fileObject = Ref::adopt(NewDRFSObjectQRX(file.get()));
    EXPECT_TRUE(host::isA(folderObject.get(), "DRFolderQRX"));
    EXPECT_TRUE(host::isA(fileObject.get(), "DRFileQRX"));
    const Ref again = Ref::adopt(NewDRFSObjectQRX(folder.get()));
    EXPECT_EQ(again.get(), folderObject.get());
}

TEST_F(WithRegistry, APlainFileSystemObjectDeliberatelyComesBackAsADifferentObjectEachTime) {
    const Adopted plain(objc::sendClass<"NSObject", "new">());
    const Ref first = Ref::adopt(NewDRFSObjectQRX(plain.get())),
              second = Ref::adopt(NewDRFSObjectQRX(plain.get()));
    EXPECT_TRUE(host::isA(first.get(), "DRFSObjectQRX"));
    EXPECT_NE(first.get(), second.get());
    EXPECT_EQ(retains(plain.get()), 3u);
    EXPECT_EQ(FindInstance(plain.get()), nullptr);
}

TEST_F(WithoutRegistry, TheSamePlatformObjectComesBackAsTwoHostObjectsThatDoNotDisturbEachOther) {
    const Adopted msf(newMSF(75));
    const Ref second = Ref::adopt(NewDRMSFQRX(msf.get()));
    {
        const Ref first = Ref::adopt(NewDRMSFQRX(msf.get()));
        EXPECT_NE(first.get(), second.get());
        EXPECT_EQ(retains(msf.get()), 3u);
    }
    EXPECT_EQ(retains(msf.get()), 2u);
    EXPECT_EQ((call<int32_t>("DRMSFQRX", "sectors as integer", second.get())), 75);
}

// ---- arrays ------------------------------------------------------------------------------------------

Id arrayOf(std::initializer_list<Id> elements) {
    const Id array = objc::sendClass<"NSMutableArray", "array">();
    for (const Id element : elements)
        objc::send<"addObject:", void>(array, element);
    return array;
}

Ref elementAt(REALarray array, int32_t index) { return Ref::adopt(REALGetArrayObject(array, index)); }

TEST_F(WithRegistry, AnArrayHoldsTheOnlyReferenceOfANewWrapper) {
    const Adopted one(newFolder()), two(newFolder());
    const Ref known = Ref::adopt(NewDRFolderQRX(two.get()));
    const Ref array = Ref::adopt(reinterpret_cast<REALobject>(REALCreateArrayObject(-1)));
    const auto handle = reinterpret_cast<REALarray>(array.get());
    FillDRFSObjectArray(handle, arrayOf({one.get(), two.get()}));
    ASSERT_EQ(REALGetArrayUBound(handle), 1);
    EXPECT_EQ(harness::references(elementAt(handle, 0).get()), 2u) << "the array's and this look's";
    EXPECT_EQ(elementAt(handle, 1).get(), known.get());
    EXPECT_EQ(harness::references(known.get()), 2u);
}

TEST_F(WithRegistry, AWrapperThatCannotBeMadeLeavesANullSlot) {
    // Any object stands for a drive here: only its identity counts.
    const Adopted a(objc::sendClass<"NSObject", "new">()), b(objc::sendClass<"NSObject", "new">()),
        c(objc::sendClass<"NSObject", "new">());
    const Ref array = Ref::adopt(reinterpret_cast<REALobject>(REALCreateArrayObject(-1)));
    const auto handle = reinterpret_cast<REALarray>(array.get());
    harness::failCreation("DRDeviceQRX", 2);
    FillDRDeviceArray(handle, arrayOf({a.get(), b.get(), c.get()}));
    ASSERT_EQ(REALGetArrayUBound(handle), 2);
    EXPECT_EQ(frame::held(elementAt(handle, 0).get()), a.get());
    EXPECT_EQ(elementAt(handle, 1).get(), nullptr);
    EXPECT_EQ(frame::held(elementAt(handle, 2).get()), c.get());
}

TEST_F(WithRegistry, AFileSystemObjectWithoutAWrapperLeavesANullSlotToo) {
    const Adopted one(newFolder()), two(newFolder());
    const Ref array = Ref::adopt(reinterpret_cast<REALobject>(REALCreateArrayObject(-1)));
    const auto handle = reinterpret_cast<REALarray>(array.get());
    harness::failCreation("DRFolderQRX");
    FillDRFSObjectArray(handle, arrayOf({one.get(), two.get()}));
    ASSERT_EQ(REALGetArrayUBound(handle), 1);
    EXPECT_EQ(elementAt(handle, 0).get(), nullptr);
    EXPECT_EQ(frame::held(elementAt(handle, 1).get()), two.get());
}

TEST_F(WithRegistry, NoPlatformArrayFillsNothing) {
    const Ref array = Ref::adopt(reinterpret_cast<REALobject>(REALCreateArrayObject(-1)));
    FillDRDeviceArray(reinterpret_cast<REALarray>(array.get()), nullptr);
    EXPECT_EQ(REALGetArrayUBound(reinterpret_cast<REALarray>(array.get())), -1);
}

// ---- by the name of the class ------------------------------------------------------------------------

TEST_F(WithRegistry, AnObjectOfASubclassBecomesTheHostClassOfItsNearestNamedAncestor) {
    objc::ClassBuilder("NSObject", "TestImage").finish();
    objc::ClassBuilder("TestImage", "TestScaledImage").finish();
    registerHolderClass("TestImageQRX");
    const Adopted image(objc::sendClass<"TestScaledImage", "new">());
    const Ref first = Ref::adopt(NewNSObjectQRX(image.get())),
              second = Ref::adopt(NewNSObjectQRX(image.get()));
    EXPECT_TRUE(host::isA(first.get(), "TestImageQRX"));
    EXPECT_EQ(frame::held(first.get()), image.get());
    EXPECT_NE(first.get(), second.get()) << "deliberately not registered";
    EXPECT_EQ(retains(image.get()), 3u);
    EXPECT_EQ(FindInstance(image.get()), nullptr);
}

TEST_F(WithRegistry, AnObjectWhoseChainNamesNoHostClassGivesNull) {
    const Adopted object(objc::sendClass<"NSObject", "new">());
    EXPECT_EQ(NewNSObjectQRX(object.get()), nullptr);
    EXPECT_EQ(retains(object.get()), 1u);
}

TEST_F(WithRegistry, ClassNamesOfTwoHundredCharactersAreSkippedAndShorterOnesAreNot) {
    static const std::string longName = "Test" + std::string(196, 'L'),
                             shortName = "Test" + std::string(195, 'S');
    ASSERT_EQ(longName.size(), 200u);
    static const std::string longHost = longName + "QRX", shortHost = shortName + "QRX";
    objc::ClassBuilder("NSObject", shortName.c_str()).finish();
    objc::ClassBuilder(shortName.c_str(), longName.c_str()).finish();
    registerHolderClass(longHost.c_str());
    registerHolderClass(shortHost.c_str());
    const Id cls = reinterpret_cast<Id>(objc::objc_getClass(longName.c_str()));
    const Adopted object(objc::send<"new">(cls));
    const Ref wrapped = Ref::adopt(NewNSObjectQRX(object.get()));
    EXPECT_TRUE(host::isA(wrapped.get(), shortHost));
}

TEST_F(WithRegistry, DestroyingAnEmptyWrapperDoesNothing) {
    const Adopted msf(newMSF(75));
    const Ref other = Ref::adopt(NewDRMSFQRX(msf.get()));
    {
        const Ref empty = make("DRMSFQRX");
        EXPECT_EQ(frame::slot(empty.get()), nullptr);
    }
    EXPECT_EQ(FindInstance(msf.get()), other.get());
    EXPECT_EQ(retains(msf.get()), 2u);
    EXPECT_EQ(raised(), std::nullopt);
}

} // namespace
