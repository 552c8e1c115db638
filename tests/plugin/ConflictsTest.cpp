// ConflictsTest.cpp: values that more than one step of a decision list would take go by the first of them.
#include "plugin/bridge/Dictionaries.hpp"
#include "plugin/bridge/Geometry.hpp"
#include "plugin/bridge/Nesting.hpp"
#include "plugin/bridge/Variants.hpp"
#include "plugin/bridge/Wrappers.hpp"
#include "tests/plugin/HostClasses.hpp"
#include "tests/plugin/PlatformObjects.hpp"

#include "host/runtime/Array.hpp"
#include "host/runtime/Dictionary.hpp"

namespace {

using namespace test;
using objc::Id;
using objc::send;
using objc::sendClass;

using Conflicts = LoadedTest;

// A host class with a superclass, and members by their declarations alone.
void registerChild(const char* name, const char* super, const char* method = nullptr) {
    static std::deque<REALclassDefinition> records;
    static std::deque<REALmethodDefinition> rows;
    REALclassDefinition& record = records.emplace_back();
    record.version = kREALPluginVersion;
    record.name = name;
    record.superName = super;
    record.dataSize = super ? 0 : 16;
    record.flags = kREALClassFlags;
    if (method) {
        rows.push_back(
            {reinterpret_cast<REALproc>(+[](REALobject, int32_t) {}), nullptr, method, kREALMemberFlags});
        record.methods = &rows.back();
        record.methodCount = 1;
    }
    REALRegisterClass(&record);
}

Ref holding(const char* name, Id object) {
    Ref made = Ref::adopt(REALnewInstance(name));
    frame::slot(made.get()) = object;
    return made;
}

// ---- to the platform -----------------------------------------------------------------------------------

TEST_F(Conflicts, WhatLooksLikeAMemoryBlockIsOneBeforeItIsAHolder) {
    registerChild("NSImageQRX", nullptr, "Constructor(bytes as Integer)");
    const objc::Adopted object(sendClass<"NSObject", "new">());
    EXPECT_EQ(GetObjectAsNSObject(holding("NSImageQRX", object.get()).get()), nullptr) << "without any bytes";
}

TEST_F(Conflicts, WhatLooksLikeAFolderItemIsOneBeforeItIsAHolder) {
    registerChild("NSFontQRX", nullptr, "TrueItem(Index as integer) as Folderitem");
    const objc::Adopted object(sendClass<"NSObject", "new">());
    EXPECT_EQ(GetObjectAsNSObject(holding("NSFontQRX", object.get()).get()), nullptr) << "of no file";
}

TEST_F(Conflicts, AHolderIsOneBeforeItIsAStructureOrATime) {
    const objc::Adopted object(sendClass<"NSObject", "new">());
    registerChild("NSColorQRX", nullptr);
    registerChild("NSSizeQRX", "NSColorQRX");
    registerChild("CMTimeQRX", "NSColorQRX");
    registerChild("WebPolicyDelegateQRX", "NSColorQRX");
    for (const char* name : {"NSSizeQRX", "CMTimeQRX", "WebPolicyDelegateQRX"})
        EXPECT_EQ(GetObjectAsNSObject(holding(name, object.get()).get()), object.get()) << name;
}

TEST_F(Conflicts, ASizeIsOneBeforeItIsARectangle) {
    registerChild("NSRectQRX", nullptr);
    registerChild("NSSizeQRX", "NSRectQRX");
    const Ref both = Ref::adopt(REALnewInstance("NSSizeQRX"));
    const Id value = GetObjectAsNSObject(both.get());
    const Id size = sendClass<"NSValue", "valueWithSize:">(NSSize{});
    EXPECT_TRUE((send<"isEqual:", objc::Boolean>(value, size)));
}

// ---- to the host ---------------------------------------------------------------------------------------

const void* oddType(Id, objc::Sel) { return "{odd=i}"; }
Id refuseToUnwrap(Id, objc::Sel) {
    ADD_FAILURE() << "it was taken for a box";
    return nullptr;
}

TEST_F(Conflicts, ABoxThatIsAValueTooIsTheValue) {
    objc::ClassBuilder("NSValue", "QRXREALobjectWrapper")
        .method<"objCType", oddType>()
        .method<"unwrap", refuseToUnwrap>()
        .finish();
    const Id box = objc::autoreleased(send<"init">(objc::alloc<"QRXREALobjectWrapper">()));
    EXPECT_EQ(NewVariantFromNSObject(box), nullptr);
}

TEST_F(Conflicts, AnObjectThatHasAHostClassIsABoxBeforeThat) {
    offerBoxes();
    registerHolderClass("QRXREALobjectWrapperQRX");
    const Ref boxed = make("Dictionary");
    const Id box = sendClass<"QRXREALobjectWrapper", "wrap:">(boxed.get());
    const Ref back = Ref::adopt(NewVariantFromNSObject(box));
    EXPECT_EQ(back.get(), boxed.get());
}

TEST_F(Conflicts, ANumberIsOneBeforeItIsAValueAndHasNoHostClass) {
    registerHolderClass("NSNumberQRX");
    registerHolderClass("NSStringQRX");
    EXPECT_EQ(
        valueOf(Ref::adopt(NewVariantFromNSObject(sendClass<"NSNumber", "numberWithDouble:">(0.5)))).kind(),
        Kind::Double);
    EXPECT_TRUE(valueOf(Ref::adopt(NewVariantFromNSObject(nsString("text")))).isString());
}

// ---- how deep ------------------------------------------------------------------------------------------

TEST_F(Conflicts, PlatformDictionariesDeeperThanTheBoundEndInNil) {
    constexpr int levels = Nesting::deepest + 200;
    Id dictionary = sendClass<"NSDictionary", "dictionary">();
    for (int i = 1; i < levels; ++i)
        dictionary = sendClass<"NSDictionary", "dictionaryWithObject:forKey:">(dictionary, nsString("inner"));
    Value converted = Ref::adopt(NSDictionaryRB(dictionary));
    int depth = 0;
    for (; converted.isObject(); ++depth) {
        ASSERT_EQ(host::dictionaryCount(converted.object()), 1u) << depth;
        converted = Value(host::dictionaryGet(converted.object(), "inner"));
    }
    EXPECT_EQ(depth, Nesting::deepest);
}

TEST_F(Conflicts, PlatformArraysDeeperThanTheBoundEndInNil) {
    Id array = sendClass<"NSArray", "array">();
    for (int i = 1; i < Nesting::deepest + 200; ++i)
        array = sendClass<"NSArray", "arrayWithObject:">(array);
    Ref converted = Ref::adopt(NewVariantFromNSObject(array));
    int depth = 0;
    while (converted) {
        ASSERT_EQ(REALGetArrayUBound(handleOf(converted)), 0) << depth;
        converted = Ref::adopt(REALGetArrayObject(handleOf(converted), 0));
        ++depth;
    }
    EXPECT_EQ(depth, Nesting::deepest);
}

} // namespace
