// FilesTest.cpp: folder items, URLs and paths, each by every route.
#include "plugin/bridge/Files.hpp"
#include "plugin/bridge/FolderItems.hpp"
#include "plugin/objc/Ownership.hpp"
#include "tests/plugin/Drives.hpp"
#include "tests/plugin/PluginTest.hpp"

#include "host/runtime/FolderItem.hpp"

#include <dlfcn.h>

extern "C" int32_t FSPathMakeRef(const uint8_t* path, FSRef* ref, unsigned char* isDirectory);

// Stands before the platform's own, and passes everything on. A platform may give the root of a volume a parent
// that is there; this one does when a test wants it.
static const char* parentOfRoots = nullptr;

extern "C" int16_t FSGetCatalogInfo(const FSRef* ref, uint32_t whichInfo, FSCatalogInfo* info,
                                    HFSUniStr255* name, FSSpec* spec, FSRef* parent) {
    static const auto platform =
        reinterpret_cast<decltype(&FSGetCatalogInfo)>(dlsym(RTLD_NEXT, "FSGetCatalogInfo"));
    const int16_t result = platform(ref, whichInfo, info, name, spec, parent);
    if (parentOfRoots && result == 0 && parent && (whichInfo & kFSCatInfoNodeID) && info->nodeID == fsRtDirID)
        FSPathMakeRef(reinterpret_cast<const uint8_t*>(parentOfRoots), parent, nullptr);
    return result;
}

namespace {

using namespace test;
using objc::Id;
using objc::send;
using objc::sendClass;

class Files : public LoadedTest {
  protected:
    void SetUp() override {
        LoadedTest::SetUp();
        writeFile(scratch / "there.txt", "there");
    }

    Ref item(const std::string& path) { return host::newFolderItem(path); }
    std::string pathOfURL(const Ref& folderItem) {
        const Id url = NewNSURLfile(folderItem.get());
        return url ? text(send<"path">(url)) : "no URL";
    }
    // The path of the folder item that a URL converts to.
    std::string itemPath(Id url) {
        const Ref made = Ref::adopt(NSURLRBFile(url));
        return made ? host::pathOf(made.get()) : "no item";
    }
    Id fileURL(const std::string& path) {
        return sendClass<"NSURL", "fileURLWithPath:">(nsString(path.c_str()));
    }

    ScratchFolder scratch;
};

TEST_F(Files, NullIsNullEverywhere) {
    EXPECT_EQ(MakeCFURLfromFolderItem(nullptr), nullptr);
    EXPECT_EQ(NewNSURLfile(nullptr), nullptr);
    EXPECT_EQ(NewNSStringPath(nullptr), nullptr);
    EXPECT_EQ(CFURL2RBFile(nullptr), nullptr);
    EXPECT_EQ(NSURLRBFile(nullptr), nullptr);
    EXPECT_EQ(NSURLRB(nullptr), nullptr);
    EXPECT_EQ(REALFolderItemFromFSRef(nullptr), nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

// ---- to the platform ---------------------------------------------------------------------------------

TEST_F(Files, AnExistingItemIsItsURLAndPath) {
    const std::string path = scratch / "there.txt";
    EXPECT_EQ(pathOfURL(item(path)), path);
    EXPECT_EQ(text(NewNSStringPath(item(path).get())), path);
    EXPECT_EQ(text(NewNSStringPath(item(scratch.path()).get())), scratch.path());
}

TEST_F(Files, TheCallerOwnsOnlyTheURLThatIsMade) {
    const objc::Adopted url(MakeCFURLfromFolderItem(item(scratch / "there.txt").get()));
    EXPECT_EQ((send<"retainCount", unsigned long>(asObject(url.get()))), 1u);
}

TEST_F(Files, AnItemThatDoesNotExistYetGoesOverAndBack) {
    const std::string path = scratch / "new.txt";
    const Id url = NewNSURLfile(item(path).get());
    EXPECT_EQ(text(send<"path">(url)), path);
    EXPECT_EQ(itemPath(url), path);
}

TEST_F(Files, ANewNameIsDecomposedOnTheWay) {
    const Ref composed = item(scratch / "d\u00e9j\u00e0.txt");
    const std::string decomposed = scratch / "de\u0301ja\u0300.txt";
    EXPECT_EQ(pathOfURL(composed), decomposed);
    EXPECT_EQ(itemPath(fileURL(scratch / "d\u00e9j\u00e0.txt")), decomposed);
}

TEST_F(Files, AnExistingItemKeepsItsNameAsItIsOnDisk) {
    const std::string path = scratch / "d\u00e9j\u00e0.txt";
    writeFile(path, "");
    EXPECT_EQ(pathOfURL(item(path)), path);
    EXPECT_EQ(itemPath(fileURL(path)), path);
}

TEST_F(Files, NamesThatAreNoTextGoOverAndBack) {
    const std::string path = scratch / "latin \xE9.txt";
    writeFile(path, "");
    EXPECT_EQ(itemPath(NewNSURLfile(item(path).get())), path);
}

TEST_F(Files, AnItemWhoseFolderWentAwayIsNil) {
    std::filesystem::create_directory(scratch / "gone");
    const Ref lost = item(scratch / "gone" / "file");
    std::filesystem::remove(scratch / "gone");
    EXPECT_EQ(NewNSURLfile(lost.get()), nullptr);
    EXPECT_EQ(NewNSStringPath(lost.get()), nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

using FilesWithout = PluginTest;

TEST_F(FilesWithout, ReferencesTheFileSpecificationIsTheLastResort) {
    harness::withdraw("REALFSRefFromFolderItem");
    load();
    const objc::Adopted url(MakeCFURLfromFolderItem(host::newFolderItem("/etc/passwd").get()));
    EXPECT_EQ(text(send<"path">(asObject(url.get()))), "/etc/passwd");
    EXPECT_EQ(MakeCFURLfromFolderItem(host::newFolderItem("/no such folder/file").get()), nullptr);
}

TEST_F(FilesWithout, AnyServiceEverythingIsNil) {
    harness::withdraw("REALFSRefFromFolderItem");
    harness::withdraw("REALFSSpecFromFolderItem");
    harness::withdraw("REALFolderItemFromParentFSRef");
    harness::withdraw("FolderItemFromFSSpec");
    load();
    EXPECT_EQ(MakeCFURLfromFolderItem(host::newFolderItem("/etc/passwd").get()), nullptr);
    EXPECT_EQ(NSURLRBFile(sendClass<"NSURL", "fileURLWithPath:">(nsString("/etc/passwd"))), nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

// ---- to the host -------------------------------------------------------------------------------------

TEST_F(Files, AURLWhoseFolderDoesNotExistIsNull) {
    EXPECT_EQ(NSURLRBFile(fileURL(scratch / "no folder" / "file")), nullptr);
}

TEST_F(Files, AURLThatIsNoFileIsNoFolderItemAndHasItsText) {
    const Id url = sendClass<"NSURL", "URLWithString:">(nsString("http://example.com/a%20b?c"));
    EXPECT_EQ(NSURLRBFile(url), nullptr);
    EXPECT_EQ(textOf(NSURLRB(url)), "http://example.com/a%20b?c");
}

TEST_F(Files, NamesLongerThan255UnitsAreCut) {
    EXPECT_EQ(itemPath(fileURL(scratch / std::string(300, 'a'))), scratch / std::string(255, 'a'));
    EXPECT_EQ(itemPath(fileURL(scratch / std::string(255, 'b'))), scratch / std::string(255, 'b'));
}

TEST_F(Files, NamesAreCutAfterTheyWereDecomposed) {
    std::string composed, decomposed;
    for (int i = 0; i < 200; ++i)
        composed += "\u00e9";
    for (int i = 0; i < 127; ++i)
        decomposed += "e\u0301";
    EXPECT_EQ(itemPath(fileURL(scratch / composed)), scratch / (decomposed + "e")) << "255 of 400 units";
}

TEST_F(Files, AZeroByteEndsANameAsItEndsThePlatformsPath) {
    const std::string url = "file://" + scratch.path() + "/a%00b";
    EXPECT_EQ(itemPath(sendClass<"NSURL", "URLWithString:">(nsString(url.c_str()))), scratch / "a");
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Files, AnExistingItemIsMadeOfItsFolderAndName) {
    harness::withdraw("FolderItemFromFSSpec");
    EXPECT_EQ(itemPath(fileURL(scratch / "there.txt")), scratch / "there.txt");
    EXPECT_EQ(itemPath(fileURL(scratch.path())), scratch.path());
}

TEST_F(Files, TheRootOfAVolumeIsDeliberatelyMadeOfItsFileSpecification) {
    harness::withdraw("REALFolderItemFromParentFSRef");
    EXPECT_EQ(itemPath(fileURL("/")), "/");
    EXPECT_EQ(itemPath(fileURL(scratch / "there.txt")), "no item") << "only roots go that way";
}

TEST_F(Files, TheRootOfAVolumeIsMadeThatWayAlsoWhenItHasAParent) {
    parentOfRoots = "/tmp";
    EXPECT_EQ(itemPath(fileURL("/")), "/");
    harness::withdraw("REALFolderItemFromParentFSRef");
    EXPECT_EQ(itemPath(fileURL("/")), "/");
}

TEST_F(FilesWithout, FileSpecificationsARootIsNull) {
    harness::withdraw("FolderItemFromFSSpec");
    load();
    EXPECT_EQ(NSURLRBFile(sendClass<"NSURL", "fileURLWithPath:">(nsString("/"))), nullptr);
}

TEST_F(Files, AReferenceThatNamesNothingIsNull) {
    const FSRef nothing{};
    EXPECT_EQ(REALFolderItemFromFSRef(&nothing), nullptr);
    FSRef gone{};
    const std::string path = scratch / "there.txt";
    ASSERT_EQ(FSPathMakeRef(reinterpret_cast<const uint8_t*>(path.c_str()), &gone, nullptr), 0);
    std::filesystem::remove(path);
    EXPECT_EQ(REALFolderItemFromFSRef(&gone), nullptr);
}

} // namespace
