// FileObjectsTest.cpp: constructors, factories and links of files and folders.
#include "host/runtime/Array.hpp"
#include "host/runtime/FolderItem.hpp"
#include "host/runtime/MemoryBlock.hpp"
#include "tests/plugin/FSObjects.hpp"
#include "tests/plugin/Replaced.hpp"

#include <cstring>

namespace {

using namespace test;

class FileObjects : public FSObjectTest {
  protected:
    Ref block(const std::string& bytes) {
        Ref made = host::newMemoryBlock(static_cast<int64_t>(bytes.size()));
        std::memcpy(host::memoryOf(made.get()).data(), bytes.data(), bytes.size());
        return made;
    }
    void constructWithData(const Ref& file, const std::string& name, const std::string& bytes) {
        call<void>("DRFileQRX", "Constructor(name as string, data as memoryblock)", file.get(),
                   String(name).get(), block(bytes).get());
    }
    Ref children(const Ref& folder) {
        return Ref::adopt(
            host::arrayObject(call<REALarray>("DRFolderQRX", "children as DRFSObjectQRX()", folder.get())));
    }
    int count(const Ref& folder) { return call<int32_t>("DRFolderQRX", "count as integer", folder.get()); }
    Ref link(const char* declaration, const Ref& original, const char* filesystem) {
        return Ref::adopt(call<REALobject>("DRFileQRX", declaration, original.get(),
                                           filesystem ? String(filesystem).get() : REALstring{nullptr}));
    }

    static constexpr const char* hardLink =
        "hardLinkPointingTo(original as DRFileQRX, filesystem as string) as DRFileQRX";
    static constexpr const char* symLink =
        "symLinkPointingTo(original as DRFSObjectQRX, filesystem as string) as DRFileQRX";
    static constexpr const char* finderAlias =
        "finderAliasPointingTo(original as DRFSObjectQRX, filesystem as string) as DRFileQRX";
    static constexpr const char* anyLink =
        "linkWithLinkType(linkType as string, original as DRFSObjectQRX, filesystem as string) as DRFileQRX";

    ScratchFolder scratch;
};

TEST_F(FileObjects, ConstructorsFillTheSlot) {
    const Ref data = make("DRFileQRX"), real = make("DRFileQRX"), folder = make("DRFolderQRX"),
              realFolder = make("DRFolderQRX");
    constructWithData(data, "data.txt", "bytes");
    EXPECT_EQ(text(data, "baseName as string"), "data.txt");
    EXPECT_TRUE((call<bool>("DRFSObjectQRX", "isVirtual as boolean", data.get())));
    call<void>("DRFileQRX", "Constructor(path as folderitem)", real.get(),
               host::newFolderItem("/etc/passwd").get());
    EXPECT_EQ(text(real, "sourcePath as string"), "/etc/passwd");
    call<void>("DRFolderQRX", "Constructor(name as string)", folder.get(), String("named").get());
    EXPECT_EQ(text(folder, "baseName as string"), "named");
    call<void>("DRFolderQRX", "Constructor(path as folderitem)", realFolder.get(),
               host::newFolderItem(scratch.path()).get());
    EXPECT_EQ(text(realFolder, "sourcePath as string"), scratch.path());
    EXPECT_EQ(raised(), std::nullopt);
}

// The file's constructors forward nil, the folder's don't: deliberate on both sides.
TEST_F(FileObjects, NilReachesThePlatformFromFilesAndNotFromFolders) {
    const Ref data = make("DRFileQRX"), real = make("DRFileQRX"), folder = make("DRFolderQRX"),
              realFolder = make("DRFolderQRX");
    call<void>("DRFileQRX", "Constructor(name as string, data as memoryblock)", data.get(),
               REALstring{nullptr}, REALmemoryBlock{nullptr});
    EXPECT_NE(frame::slot(data.get()), nullptr);
    call<void>("DRFileQRX", "Constructor(path as folderitem)", real.get(), REALfolderItem{nullptr});
    EXPECT_NE(frame::slot(real.get()), nullptr);
    call<void>("DRFolderQRX", "Constructor(name as string)", folder.get(), REALstring{nullptr});
    EXPECT_EQ(frame::slot(folder.get()), nullptr);
    call<void>("DRFolderQRX", "Constructor(path as folderitem)", realFolder.get(), REALfolderItem{nullptr});
    EXPECT_EQ(frame::slot(realFolder.get()), nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(FileObjects, NilReachesThePlatformFromTheFilesFactoriesToo) {
    const Ref produced = make("DRFileQRX");
    call<void>("DRFileQRX", "Constructor(name as string)", produced.get(), REALstring{nullptr});
    ASSERT_NE(frame::slot(produced.get()), nullptr);
    EXPECT_EQ(text(produced, "baseName as string"), "");
    objc::release(std::exchange(frame::slot(produced.get()), nullptr));
    const Ref real = Ref::adopt(
        call<REALobject>("DRFileQRX", "fileWithPath(path as string) as DRFileQRX", REALstring{nullptr}));
    ASSERT_NE(real.get(), nullptr);
    EXPECT_FALSE((call<bool>("DRFSObjectQRX", "isVirtual as boolean", real.get())));
    const Ref made = Ref::adopt(
        call<REALobject>("DRFileQRX", "virtualFileWithName(name as string, data as memoryblock) as DRFileQRX",
                         REALstring{nullptr}, block("bytes").get()));
    ASSERT_NE(made.get(), nullptr);
    EXPECT_EQ(text(made, "baseName as string"), "");
    // With a folder item it is the plug-in that answers nil.
    EXPECT_EQ((call<REALobject>("DRFileQRX", "fileWithPath(path as folderitem) as DRFileQRX",
                                REALfolderItem{nullptr})),
              nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

// What the platform is asked with is noted.
objc::Id given[2];
objc::Id noteOne(objc::Id self, objc::Sel, objc::Id first) {
    given[0] = first;
    objc::release(self);
    return nullptr;
}
objc::Id noteTwo(objc::Id self, objc::Sel selector, objc::Id first, objc::Id second) {
    given[1] = second;
    return noteOne(self, selector, first);
}
objc::Id noteShared(objc::Id, objc::Sel, objc::Id first) {
    given[0] = first;
    return nullptr;
}
objc::Id noteSharedTwo(objc::Id self, objc::Sel selector, objc::Id first, objc::Id second) {
    given[1] = second;
    return noteShared(self, selector, first);
}

// Nil, and not a text or data of nothing that stands for it; and the text of nothing as it is.
TEST_F(FileObjects, NilIsForwardedAsNilAndAnEmptyTextAsThat) {
    replaceMethod<"initWithName:data:", noteTwo>("DRFile");
    replaceMethod<"initWithName:dataProducer:", noteTwo>("DRFile");
    replaceMethod<"initWithPath:", noteOne>("DRFile");
    replaceClassMethod<"fileWithPath:", noteShared>("DRFile");
    replaceClassMethod<"virtualFileWithName:data:", noteSharedTwo>("DRFile");
    const objc::Id nothing = nsString("not asked");
    const auto expectGiven = [&](const char* what, bool isNil, const auto& ask) {
        given[0] = given[1] = nothing;
        ask();
        ASSERT_NE(given[0], nothing) << what;
        EXPECT_EQ(given[0] == nullptr, isNil) << what;
        // A nil receiver answers 0, too.
        EXPECT_EQ((objc::send<"length", unsigned long>(given[0])), 0u) << what;
    };
    for (const bool isNil : {true, false}) {
        const String empty("");
        const REALstring name = isNil ? nullptr : empty.get();
        const Ref file = make("DRFileQRX");
        expectGiven("data", isNil, [&] {
            call<void>("DRFileQRX", "Constructor(name as string, data as memoryblock)", file.get(), name,
                       REALmemoryBlock{nullptr});
        });
        EXPECT_EQ(given[1], nullptr);
        expectGiven("produced", isNil,
                    [&] { call<void>("DRFileQRX", "Constructor(name as string)", file.get(), name); });
        expectGiven("fileWithPath", isNil, [&] {
            call<REALobject>("DRFileQRX", "fileWithPath(path as string) as DRFileQRX", name);
        });
        expectGiven("virtualFileWithName", isNil, [&] {
            call<REALobject>("DRFileQRX",
                             "virtualFileWithName(name as string, data as memoryblock) as DRFileQRX", name,
                             REALmemoryBlock{nullptr});
        });
        EXPECT_EQ(given[1], nullptr);
    }
    given[0] = nothing;
    call<void>("DRFileQRX", "Constructor(path as folderitem)", make("DRFileQRX").get(),
               REALfolderItem{nullptr});
    EXPECT_EQ(given[0], nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

// Initialisers that give up what was allocated, as one does that fails.
objc::Id refuseOne(objc::Id self, objc::Sel, objc::Id) {
    objc::release(self);
    raiseTestException();
    return nullptr;
}
objc::Id refuseTwo(objc::Id self, objc::Sel selector, objc::Id first, objc::Id) {
    return refuseOne(self, selector, first);
}

TEST_F(FileObjects, AConstructorThatFailsLeavesTheSlotAsItWas) {
    const Ref file = make("DRFileQRX"), folder = make("DRFolderQRX");
    constructWithData(file, "before", "bytes");
    call<void>("DRFolderQRX", "Constructor(name as string)", folder.get(), String("before").get());
    const objc::Id heldFile = frame::slot(file.get()), heldFolder = frame::slot(folder.get());
    replaceMethod<"initWithName:data:", refuseTwo>("DRFile");
    replaceMethod<"initWithName:dataProducer:", refuseTwo>("DRFile");
    replaceMethod<"initWithPath:", refuseOne>("DRFile");
    replaceMethod<"initWithName:", refuseOne>("DRFolder");
    replaceMethod<"initWithPath:", refuseOne>("DRFolder");
    const auto item = host::newFolderItem("/etc/passwd");
    testing::internal::CaptureStderr();
    constructWithData(file, "after", "more");
    EXPECT_TRUE(raised());
    call<void>("DRFileQRX", "Constructor(name as string)", file.get(), String("after").get());
    EXPECT_TRUE(raised());
    call<void>("DRFileQRX", "Constructor(path as folderitem)", file.get(), item.get());
    EXPECT_TRUE(raised());
    call<void>("DRFolderQRX", "Constructor(name as string)", folder.get(), String("after").get());
    EXPECT_TRUE(raised());
    call<void>("DRFolderQRX", "Constructor(path as folderitem)", folder.get(), item.get());
    EXPECT_TRUE(raised());
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(frame::slot(file.get()), heldFile);
    EXPECT_EQ(frame::slot(folder.get()), heldFolder);
    EXPECT_EQ(text(file, "baseName as string"), "before");
    EXPECT_EQ(text(folder, "baseName as string"), "before");
}

TEST_F(FileObjects, ConstructedOnesComeBackAsNewObjectsAndFactorysAsThemselves) {
    const Ref folder = virtualFolder("folder"), made = make("DRFileQRX"), fromFactory = virtualFile("b");
    constructWithData(made, "a", "x");
    addChild(folder, made);
    addChild(folder, fromFactory);
    const Ref found = children(folder);
    ASSERT_EQ(host::upperBound(found.get()), 1);
    const auto first = host::arrayGet(found.get(), 0), second = host::arrayGet(found.get(), 1);
    EXPECT_NE(first.object(), made.get());
    EXPECT_TRUE(host::isA(first.object(), "DRFileQRX"));
    EXPECT_EQ(frame::slot(first.object()), frame::slot(made.get()));
    EXPECT_EQ(second.object(), fromFactory.get());
}

// Also one whose bytes come from the events of the very object that it was made with.
TEST_F(FileObjects, AProducedFileComesBackAsANewObject) {
    const Ref folder = virtualFolder("folder"), made = make("DRFileQRX");
    call<void>("DRFileQRX", "Constructor(name as string)", made.get(), String("produced").get());
    addChild(folder, made);
    const Ref found = children(folder);
    ASSERT_EQ(host::upperBound(found.get()), 0);
    const auto child = host::arrayGet(found.get(), 0);
    EXPECT_NE(child.object(), made.get());
    EXPECT_TRUE(host::isA(child.object(), "DRFileQRX"));
    EXPECT_EQ(frame::slot(child.object()), frame::slot(made.get()));
    // The file holds the object that it was made with, so what that holds is let go here.
    objc::release(std::exchange(frame::slot(made.get()), nullptr));
}

TEST_F(FileObjects, AConstructedFolderIsAnotherObjectAsAParent) {
    const Ref folder = make("DRFolderQRX"), child = virtualFile("c");
    call<void>("DRFolderQRX", "Constructor(name as string)", folder.get(), String("f").get());
    addChild(folder, child);
    const Ref parent = Ref::adopt(call<REALobject>("DRFSObjectQRX", "parent as DRFolderQRX", child.get()));
    EXPECT_NE(parent.get(), folder.get());
    EXPECT_EQ(frame::slot(parent.get()), frame::slot(folder.get()));
    const Ref again = Ref::adopt(call<REALobject>("DRFSObjectQRX", "parent as DRFolderQRX", child.get()));
    EXPECT_EQ(again.get(), parent.get());
}

TEST_F(FileObjects, ChildrenOfAnEmptyOneAreAnEmptyArray) {
    const Ref folder = make("DRFolderQRX");
    call<void>("DRFolderQRX", "Constructor", folder.get());
    const Ref found = children(folder);
    ASSERT_NE(found.get(), nullptr);
    EXPECT_EQ(host::upperBound(found.get()), -1);
    EXPECT_EQ(count(folder), 0);
    call<void>("DRFolderQRX", "makeVirtual", folder.get());
    call<void>("DRFolderQRX", "removeChild(child as DRFSObjectQRX)", folder.get(), REALobject{nullptr});
    EXPECT_EQ(raised(), std::nullopt);
}

objc::Id raisingChildren(objc::Id self, objc::Sel) { return objc::send<"noSuchMessageAnywhere">(self); }

TEST_F(FileObjects, ChildrenAreAnArrayAlsoWhenThePlatformRaises) {
    const Ref folder = make("DRFolderQRX");
    const objc::Class cls =
        objc::ClassBuilder("DRFolder", "TestFolder").method<"children", raisingChildren>().finish();
    frame::slot(folder.get()) = objc::send<"init">(objc::send<"alloc">(reinterpret_cast<objc::Id>(cls)));
    testing::internal::CaptureStderr();
    const Ref found = children(folder);
    testing::internal::GetCapturedStderr();
    ASSERT_NE(found.get(), nullptr);
    EXPECT_EQ(host::upperBound(found.get()), -1);
    EXPECT_TRUE(raised());
}

unsigned long three(objc::Id, objc::Sel) { return 3; }
objc::Id secondRaises(objc::Id, objc::Sel, unsigned long index) {
    if (index > 0) raiseTestException();
    return objc::sendClass<"DRFile", "fileWithPath:">(nsString("/first"));
}
objc::Id raisingList(objc::Id, objc::Sel) {
    static const objc::Class cls = objc::ClassBuilder("NSArray", "TestList")
                                       .method<"count", three>()
                                       .method<"objectAtIndex:", secondRaises>()
                                       .finish();
    return objc::autoreleased(objc::send<"init">(objc::send<"alloc">(reinterpret_cast<objc::Id>(cls))));
}

TEST_F(FileObjects, ChildrenArePartlyFilledWhenThePlatformRaisesOnTheWay) {
    const Ref folder = make("DRFolderQRX");
    const objc::Class cls =
        objc::ClassBuilder("DRFolder", "TestFolder").method<"children", raisingList>().finish();
    frame::slot(folder.get()) = objc::send<"init">(objc::send<"alloc">(reinterpret_cast<objc::Id>(cls)));
    testing::internal::CaptureStderr();
    const Ref found = children(folder);
    testing::internal::GetCapturedStderr();
    EXPECT_TRUE(raised());
    ASSERT_EQ(host::upperBound(found.get()), 0);
    const auto first = host::arrayGet(found.get(), 0);
    const Ref child = Ref::borrow(first.object());
    EXPECT_EQ(text(child, "sourcePath as string"), "/first");
}

TEST_F(FileObjects, ChildrenAreAddedCountedAndTakenOut) {
    const Ref folder = virtualFolder("folder"), one = virtualFile("1"), two = virtualFile("2");
    addChild(folder, one);
    addChild(folder, two);
    EXPECT_EQ(count(folder), 2);
    call<void>("DRFolderQRX", "removeChild(child as DRFSObjectQRX)", folder.get(), one.get());
    EXPECT_EQ(count(folder), 1);
    EXPECT_EQ((call<REALobject>("DRFSObjectQRX", "parent as DRFolderQRX", one.get())), nullptr);
}

TEST_F(FileObjects, AFolderInItselfOrInOneInsideOfItIsAHostExceptionAndTheTreeStays) {
    const Ref root = virtualFolder("root"), sub = virtualFolder("sub"), deep = virtualFolder("deep");
    addChild(root, sub);
    addChild(sub, deep);
    const auto parentOf = [this](const Ref& item) {
        return Ref::adopt(call<REALobject>("DRFSObjectQRX", "parent as DRFolderQRX", item.get()));
    };
    for (const auto& [folder, child] :
         {std::pair(&root, &root), {&sub, &sub}, {&sub, &root}, {&deep, &root}, {&deep, &sub}}) {
        testing::internal::CaptureStderr();
        addChild(*folder, *child);
        testing::internal::GetCapturedStderr();
        const auto exception = raised();
        ASSERT_TRUE(exception);
        EXPECT_EQ(exception->message, "The folder \"" + text(*child, "baseName as string") +
                                          "\" can't be put into itself or into a folder inside it.");
        EXPECT_EQ(parentOf(root).get(), nullptr);
        EXPECT_EQ(parentOf(sub).get(), root.get());
        EXPECT_EQ(parentOf(deep).get(), sub.get());
        EXPECT_EQ(count(root), 1);
        EXPECT_EQ(count(sub), 1);
        EXPECT_EQ(count(deep), 0);
    }
    addChild(root, deep);
    EXPECT_EQ(count(root), 2) << "the other way round it moves";
    EXPECT_EQ(count(sub), 0);
    EXPECT_EQ(raised(), std::nullopt);
}

// What the platform is given is noted.
objc::Id added = reinterpret_cast<objc::Id>(1);
void noteAdded(objc::Id, objc::Sel, objc::Id child) { added = child; }

TEST_F(FileObjects, ANilChildIsForwarded) {
    const Ref folder = make("DRFolderQRX");
    const objc::Class cls = objc::ClassBuilder("DRFolder", "TestFolder")
                                .method<"addChild:", noteAdded>()
                                .method<"removeChild:", noteAdded>()
                                .finish();
    frame::slot(folder.get()) = objc::send<"init">(objc::send<"alloc">(reinterpret_cast<objc::Id>(cls)));
    for (const char* declaration :
         {"addChild(child as DRFSObjectQRX)", "removeChild(child as DRFSObjectQRX)"}) {
        added = reinterpret_cast<objc::Id>(1);
        call<void>("DRFolderQRX", declaration, folder.get(), REALobject{nullptr});
        EXPECT_EQ(added, nullptr) << declaration;
    }
}

TEST_F(FileObjects, ARealFolderIsMadeVirtual) {
    writeFile(scratch / "folder/a.txt", "a");
    std::filesystem::create_directories(scratch / "folder/sub");
    const Ref folder =
        Ref::adopt(call<REALobject>("DRFolderQRX", "folderWithPath(path as string) as DRFolderQRX",
                                    String((scratch / "folder").string()).get()));
    EXPECT_EQ(count(folder), 0);
    call<void>("DRFolderQRX", "makeVirtual", folder.get());
    EXPECT_EQ(count(folder), 2);
    const Ref found = children(folder);
    EXPECT_TRUE(host::isA(host::arrayGet(found.get(), 0).object(), "DRFileQRX"));
    EXPECT_TRUE(host::isA(host::arrayGet(found.get(), 1).object(), "DRFolderQRX"));
}

TEST_F(FileObjects, LinksAreMadeForOneFileSystem) {
    const Ref file = virtualFile("file"), folder = virtualFolder("folder");
    const struct {
        const char* declaration;
        const Ref& original;
        const char* filesystem;
        int mask;
    } rows[] = {{hardLink, file, "DRISO9660", 1},
                {hardLink, file, "DRJoliet", 2},
                {symLink, folder, "DRUDF", 4},
                {symLink, file, "DRHFSPlus", 8},
                {finderAlias, folder, "DRHFSPlus", 8}};
    for (const auto& row : rows) {
        const Ref made = link(row.declaration, row.original, row.filesystem);
        ASSERT_TRUE(host::isA(made.get(), "DRFileQRX")) << row.declaration;
        EXPECT_EQ((call<int32_t>("DRFSObjectQRX", "explicitFilesystemMask as integer", made.get())),
                  row.mask);
    }
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(FileObjects, LinksThatCannotBeAreHostExceptions) {
    const Ref file = virtualFile("file"), folder = virtualFolder("folder");
    const struct {
        const char* declaration;
        const Ref& original;
        const char* filesystem;
    } rows[] = {{hardLink, folder, "DRUDF"},
                {symLink, file, "DRJoliet"},
                {finderAlias, file, "DRISO9660"},
                {symLink, file, "DRAllFilesystems"},
                {symLink, file, "what"}};
    for (const auto& row : rows) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(link(row.declaration, row.original, row.filesystem).get(), nullptr) << row.declaration;
        testing::internal::GetCapturedStderr();
        EXPECT_TRUE(raised()) << row.declaration;
    }
}

TEST_F(FileObjects, LinksWithoutAnOriginalOrAFileSystemAreNilWithoutAsking) {
    const Ref file = virtualFile("file"), empty = make("DRFileQRX");
    for (const char* declaration : {hardLink, symLink, finderAlias}) {
        EXPECT_EQ(link(declaration, Ref(), "DRUDF").get(), nullptr);
        EXPECT_EQ(link(declaration, empty, "DRUDF").get(), nullptr);
        EXPECT_EQ(link(declaration, file, nullptr).get(), nullptr);
    }
    const String type("DRLinkTypeHardLink"), filesystem("DRUDF");
    const auto make3 = [&](REALstring t, REALobject o, REALstring f) {
        return Ref::adopt(call<REALobject>("DRFileQRX", anyLink, t, o, f));
    };
    EXPECT_EQ(make3(nullptr, file.get(), filesystem.get()).get(), nullptr);
    EXPECT_EQ(make3(type.get(), nullptr, filesystem.get()).get(), nullptr);
    EXPECT_EQ(make3(type.get(), file.get(), nullptr).get(), nullptr);
    EXPECT_EQ(raised(), std::nullopt);
    Ref made;
    {
        const Pool inner; // what alloc gave is given up with it
        made = make3(type.get(), file.get(), filesystem.get());
    }
    ASSERT_TRUE(host::isA(made.get(), "DRFileQRX"));
    EXPECT_EQ((objc::send<"retainCount", unsigned long>(frame::slot(made.get()))), 1u);
}

} // namespace
