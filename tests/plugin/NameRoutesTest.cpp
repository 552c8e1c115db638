// NameRoutesTest.cpp: the rarer routes between folder items and URLs: no leaf name, names that can't be normalised, and
// volumes that went away.
#include "plugin/bridge/Files.hpp"
#include "plugin/bridge/FolderItems.hpp"
#include "plugin/bridge/Variants.hpp"
#include "plugin/objc/Ownership.hpp"
#include "tests/plugin/Drives.hpp"
#include "tests/plugin/OwnResolver.hpp"
#include "tests/plugin/PluginTest.hpp"

#include "host/runtime/Exceptions.hpp"
#include "host/runtime/FolderItem.hpp"
#include "host/runtime/Variant.hpp"

#include <dlfcn.h>

extern "C" int32_t FSPathMakeRef(const uint8_t* path, FSRef* ref, unsigned char* isDirectory);

// Stands before the platform's own; there is no memory for a copy when a test says so.
static bool refusesCopies = false;

extern "C" CFMutableStringRef CFStringCreateMutableCopy(const void* allocator, CFIndex most,
                                                        CFStringRef string) {
    static const auto platform =
        reinterpret_cast<decltype(&CFStringCreateMutableCopy)>(dlsym(RTLD_NEXT, "CFStringCreateMutableCopy"));
    return refusesCopies ? nullptr : platform(allocator, most, string);
}

namespace {

using namespace test;
using objc::Id;
using objc::send;
using objc::sendClass;

std::string folder; // that the test's host names as the parent of every item
uint16_t leafLength;
int specificationsAsked;

// Knows no item itself, but its parent, and a leaf name of a given length.
uint8_t onlyTheParent(REALfolderItem, FSRef* ref, HFSUniStr255* leafName) {
    if (!leafName) return 0;
    leafName->length = leafLength;
    for (std::size_t i = 0; i < std::size(leafName->unicode); ++i)
        leafName->unicode[i] = u'n';
    return FSPathMakeRef(reinterpret_cast<const uint8_t*>(folder.c_str()), ref, nullptr) == 0;
}

uint8_t notedSpecification(REALfolderItem item, FSSpec* spec) {
    ++specificationsAsked;
    return hostsOwn<frame::entry::REALFSSpecFromFolderItem>("REALFSSpecFromFolderItem")(item, spec);
}

class NameRoutes : public PluginTest {
  protected:
    void SetUp() override {
        folder = scratch.path();
        writeFile(scratch / "there.txt", "there");
        OwnServices::put("REALFSSpecFromFolderItem", notedSpecification);
    }
    void loadOwn() { REALPluginMain(OwnServices::resolve); }
    std::string pathOf(const std::string& item) {
        const Id url = NewNSURLfile(host::newFolderItem(item).get());
        return url ? text(send<"path">(url)) : "no URL";
    }

    ScratchFolder scratch;
};

TEST_F(NameRoutes, ALeafNameOfNoLengthGoesOnToTheFileSpecification) {
    OwnServices::put("REALFSRefFromFolderItem", onlyTheParent);
    loadOwn();
    leafLength = 0;
    EXPECT_EQ(pathOf(scratch / "there.txt"), scratch / "there.txt");
    EXPECT_EQ(specificationsAsked, 1);
    EXPECT_EQ(pathOf("/no such folder/file"), "no URL");
    EXPECT_EQ(specificationsAsked, 2);
}

TEST_F(NameRoutes, AnyOtherLeafNameIsInThatFolderAndNeverLongerThanThereAreUnits) {
    OwnServices::put("REALFSRefFromFolderItem", onlyTheParent);
    loadOwn();
    leafLength = 1;
    EXPECT_EQ(pathOf(scratch / "there.txt"), scratch / "n");
    leafLength = 65535;
    EXPECT_EQ(pathOf(scratch / "there.txt"), scratch / std::string(255, 'n'));
    EXPECT_EQ(specificationsAsked, 0);
}

TEST_F(NameRoutes, ANameThatCannotBeCopiedIsTakenAsItIs) {
    load();
    const std::string composed = scratch / "d\u00e9j\u00e0.txt",
                      decomposed = scratch / "de\u0301ja\u0300.txt";
    const Id url = sendClass<"NSURL", "fileURLWithPath:">(nsString(composed.c_str()));
    const auto back = [&] { return host::pathOf(Ref::adopt(NSURLRBFile(url)).get()); };
    EXPECT_EQ(pathOf(composed), decomposed);
    EXPECT_EQ(back(), decomposed);
    refusesCopies = true;
    EXPECT_EQ(pathOf(composed), composed);
    EXPECT_EQ(back(), composed);
}

// A volume that is gone takes everything on it along: the references that were made before name nothing.
TEST_F(NameRoutes, AnItemWhoseVolumeWentAwayIsNilEverywhere) {
    load();
    writeFile(scratch / "volume" / "folder" / "file", "");
    const Ref item = host::newFolderItem((scratch / "volume/folder/file").string());
    const Ref unmade = host::newFolderItem((scratch / "volume/folder/new").string());
    const objc::Adopted url(MakeCFURLfromFolderItem(item.get()));
    FSRef reference{};
    ASSERT_TRUE(REALFSRefFromFolderItem(item.get(), &reference, nullptr));
    std::filesystem::remove_all(scratch / "volume");
    for (const Ref& lost : {item, unmade}) {
        EXPECT_EQ(NewNSURLfile(lost.get()), nullptr);
        EXPECT_EQ(NewNSStringPath(lost.get()), nullptr);
        EXPECT_EQ(GetVariantAsNSObject(lost.get()), nullptr);
    }
    EXPECT_EQ(CFURL2RBFile(url.get()), nullptr);
    EXPECT_EQ(REALFolderItemFromFSRef(&reference), nullptr);
    // As a value the URL still has its text.
    const host::Value value =
        host::unboxVariant(Ref::adopt(NewVariantFromNSObject(asObject(url.get()))).get());
    EXPECT_TRUE(value.isString());
    EXPECT_TRUE(value.toText().ends_with("/volume/folder/file"));
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(NameRoutes, ANameWithAZeroByteReachesNoOtherFile) {
    load();
    writeFile(scratch / "a", "");
    const std::string path = (scratch / "").string() + std::string("a\0b", 3);
    std::string refusal;
    try {
        host::newFolderItem(path);
    } catch (const host::Exception& refused) {
        refusal = refused.what();
    }
    EXPECT_EQ(refusal, "InvalidArgumentException: a path can't contain a zero character");
    EXPECT_EQ(raised(), std::nullopt);
}

} // namespace
