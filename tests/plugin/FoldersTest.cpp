// FoldersTest.cpp: files, folders and the tracks made of them, through their declared members.
#include "host/runtime/FolderItem.hpp"
#include "plugin/bridge/Registry.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/Drives.hpp"
#include "tests/plugin/PluginTest.hpp"

namespace {

using namespace test;

class Folders : public LoadedTest {
  protected:
    void SetUp() override {
        companion::offerRegistry();
        LoadedTest::SetUp();
        writeFile(scratch / "folder/inside.txt", "inside");
    }

    Ref virtualFolder(const char* name) {
        return Ref::adopt(call<REALobject>(
            "DRFolderQRX", "virtualFolderWithName(name as string) as DRFolderQRX", String(name).get()));
    }
    Ref realFolder() {
        return Ref::adopt(call<REALobject>("DRFolderQRX", "folderWithPath(path as string) as DRFolderQRX",
                                           String((scratch / "folder").string()).get()));
    }
    std::string stringOf(const Ref& object, const char* declaration) {
        return textOf(call<REALstring>("DRFSObjectQRX", declaration, object.get()));
    }

    ScratchFolder scratch;
};

TEST_F(Folders, ARealOneKnowsItsPathAndName) {
    const Ref folder = realFolder();
    EXPECT_EQ(stringOf(folder, "sourcePath as string"), (scratch / "folder").string());
    EXPECT_EQ(stringOf(folder, "baseName as string"), "folder");
    EXPECT_FALSE((call<bool>("DRFSObjectQRX", "isVirtual as boolean", folder.get())));
}

TEST_F(Folders, AVirtualOneHasTheGivenNameAndNoPath) {
    const Ref folder = virtualFolder("Disc");
    EXPECT_EQ(stringOf(folder, "baseName as string"), "Disc");
    EXPECT_EQ(stringOf(folder, "sourcePath as string"), "");
    EXPECT_TRUE((call<bool>("DRFSObjectQRX", "isVirtual as boolean", folder.get())));
}

TEST_F(Folders, AFileIsMadeFromAPathOrAFolderItem) {
    const std::string path = (scratch / "folder/inside.txt").string();
    const Ref byText = Ref::adopt(
        call<REALobject>("DRFileQRX", "fileWithPath(path as string) as DRFileQRX", String(path).get()));
    EXPECT_EQ(stringOf(byText, "sourcePath as string"), path);
    EXPECT_EQ(stringOf(byText, "baseName as string"), "inside.txt");
    const Ref item = host::newFolderItem(path);
    const Ref byItem = Ref::adopt(
        call<REALobject>("DRFileQRX", "fileWithPath(path as folderitem) as DRFileQRX", item.get()));
    EXPECT_EQ(stringOf(byItem, "sourcePath as string"), path);
    const Ref folderItem = host::newFolderItem((scratch / "folder").string());
    const Ref folder = Ref::adopt(call<REALobject>(
        "DRFolderQRX", "folderWithPath(path as folderitem) as DRFolderQRX", folderItem.get()));
    EXPECT_EQ(stringOf(folder, "sourcePath as string"), (scratch / "folder").string());
    const Ref track = Ref::adopt(call<REALobject>(
        "DRTrackQRX", "trackForRootFolder(folder as folderitem) as DRTrackQRX", folderItem.get()));
    EXPECT_TRUE(host::isA(track.get(), "DRTrackQRX"));
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Folders, ANameCanBeAssigned) {
    const Ref folder = realFolder();
    harness::setterOf<void(REALobject, REALstring)>("DRFSObjectQRX", "baseName as string")(
        folder.get(), String("Größe").get());
    EXPECT_EQ(stringOf(folder, "baseName as string"), "Größe");
}

TEST_F(Folders, NilTextsAndPathsGiveNilWithoutAnException) {
    EXPECT_EQ((call<REALobject>("DRFolderQRX", "folderWithPath(path as string) as DRFolderQRX",
                                REALstring{nullptr})),
              nullptr);
    EXPECT_EQ((call<REALobject>("DRFolderQRX", "folderWithPath(path as folderitem) as DRFolderQRX",
                                REALobject{nullptr})),
              nullptr);
    EXPECT_EQ((call<REALobject>("DRFolderQRX", "virtualFolderWithName(name as string) as DRFolderQRX",
                                REALstring{nullptr})),
              nullptr);
    EXPECT_EQ(
        (call<REALobject>("DRFileQRX", "fileWithPath(path as folderitem) as DRFileQRX", REALobject{nullptr})),
        nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Folders, AChildsParentIsTheFoldersOwnHostObject) {
    const Ref parent = virtualFolder("parent"), child = virtualFolder("child");
    call<void>("DRFolderQRX", "addChild(child as DRFSObjectQRX)", parent.get(), child.get());
    const Ref found = Ref::adopt(call<REALobject>("DRFSObjectQRX", "parent as DRFolderQRX", child.get()));
    EXPECT_EQ(found.get(), parent.get());
    EXPECT_EQ((call<REALobject>("DRFSObjectQRX", "parent as DRFolderQRX", parent.get())), nullptr);
}

TEST_F(Folders, AddingNilIsThePlatformsToDecideAndItIgnoresIt) {
    const Ref parent = virtualFolder("parent");
    call<void>("DRFolderQRX", "addChild(child as DRFSObjectQRX)", parent.get(), REALobject{nullptr});
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Folders, AddingToARealFolderRaisesThePlatformsReason) {
    const Ref parent = realFolder(), child = virtualFolder("child");
    testing::internal::CaptureStderr();
    call<void>("DRFolderQRX", "addChild(child as DRFSObjectQRX)", parent.get(), child.get());
    testing::internal::GetCapturedStderr();
    const auto exception = raised();
    ASSERT_TRUE(exception);
    EXPECT_EQ(exception->className, "RuntimeException");
    EXPECT_NE(exception->message, "");
}

TEST_F(Folders, AnEmptyOneAnswersEmpty) {
    const Ref empty = make("DRFolderQRX");
    EXPECT_EQ(stringOf(empty, "baseName as string"), "");
    EXPECT_EQ((call<REALobject>("DRFSObjectQRX", "parent as DRFolderQRX", empty.get())), nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Folders, ATrackIsMadeOfAFolderAndNilMakesNone) {
    const char* declaration = "trackForRootFolder(folder as DRFolderQRX) as DRTrackQRX";
    const Ref folder = realFolder(), empty = make("DRFolderQRX");
    const Ref track = Ref::adopt(call<REALobject>("DRTrackQRX", declaration, folder.get()));
    EXPECT_TRUE(host::isA(track.get(), "DRTrackQRX"));
    EXPECT_NE(frame::slot(track.get()), nullptr);
    EXPECT_EQ((call<REALobject>("DRTrackQRX", declaration, REALobject{nullptr})), nullptr);
    EXPECT_EQ((call<REALobject>("DRTrackQRX", declaration, empty.get())), nullptr);
    EXPECT_EQ((call<REALobject>("DRTrackQRX", "trackForRootFolder(folder as folderitem) as DRTrackQRX",
                                REALobject{nullptr})),
              nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

} // namespace
