// FileRegistryTest.cpp: constructors and factories of files and folders: who is entered in the registry, and what a second
// constructor call leaves behind.
#include "host/runtime/FolderItem.hpp"
#include "host/runtime/MemoryBlock.hpp"
#include "plugin/bridge/Registry.hpp"
#include "tests/plugin/FSObjects.hpp"

#include <functional>
#include <utility>
#include <vector>

namespace {

using namespace test;

class FileRegistry : public FSObjectTest {
  protected:
    struct Constructor {
        const char* className;
        const char* declaration;
        std::function<void(const Ref&)> construct;
    };
    // All that take arguments.
    std::vector<Constructor> constructors() {
        const auto row = [this](const char* className, const char* declaration, auto... arguments) {
            return Constructor{className, declaration, [=, this](const Ref& object) {
                                   call<void>(className, declaration, object.get(), arguments...);
                               }};
        };
        return {row("DRFileQRX", "Constructor(name as string, data as memoryblock)", name.get(), block.get()),
                row("DRFileQRX", "Constructor(name as string)", name.get()),
                row("DRFileQRX", "Constructor(path as folderitem)", realFile.get()),
                row("DRFolderQRX", "Constructor(name as string)", name.get()),
                row("DRFolderQRX", "Constructor(path as folderitem)", realFolder.get())};
    }
    template <typename... Arguments>
    void expectFound(const char* className, const char* declaration, Arguments... arguments) {
        const Ref made = Ref::adopt(call<REALobject>(className, declaration, arguments...));
        ASSERT_NE(made.get(), nullptr) << declaration;
        ASSERT_NE(frame::slot(made.get()), nullptr) << declaration;
        EXPECT_EQ(FindInstance(frame::slot(made.get())), made.get()) << declaration;
    }

    ScratchFolder scratch;
    const String name{"name"}, path{"/etc/passwd"}, folderPath{scratch.path()};
    const Ref block = host::newMemoryBlock(4), realFile = host::newFolderItem("/etc/passwd"),
              realFolder = host::newFolderItem(scratch.path());
};

// Deliberate: what was there before keeps its reference, and nobody is told.
TEST_F(FileRegistry, ASecondConstructorCallOverwritesWithoutReleasingOrComplaining) {
    for (const auto& [className, declaration, construct] : constructors()) {
        SCOPED_TRACE(std::string(className) + ' ' + declaration);
        const Ref object = make(className);
        construct(object);
        const objc::Id first = frame::slot(object.get());
        ASSERT_NE(first, nullptr);
        EXPECT_EQ((objc::send<"retainCount", unsigned long>(first)), 1u);
        objc::retained(first); // a release too many shows, and does no harm
        construct(object);
        EXPECT_EQ(raised(), std::nullopt);
        EXPECT_NE(frame::slot(object.get()), nullptr);
        EXPECT_NE(frame::slot(object.get()), first);
        EXPECT_EQ((objc::send<"retainCount", unsigned long>(first)), 2u);
        if (HasFailure()) continue; // whose references are left is not known
        objc::release(first);
        objc::release(first);
        // One whose bytes come from events holds the object, so it is let go here.
        objc::release(std::exchange(frame::slot(object.get()), nullptr));
    }
}

TEST_F(FileRegistry, WhatAConstructorMakesIsNotEntered) {
    for (const auto& [className, declaration, construct] : constructors()) {
        const Ref object = make(className);
        construct(object);
        ASSERT_NE(frame::slot(object.get()), nullptr) << declaration;
        EXPECT_EQ(FindInstance(frame::slot(object.get())), nullptr) << className << ' ' << declaration;
        objc::release(std::exchange(frame::slot(object.get()), nullptr));
    }
}

TEST_F(FileRegistry, WhatAFactoryMakesIsEntered) {
    expectFound("DRFileQRX", "fileWithPath(path as string) as DRFileQRX", path.get());
    expectFound("DRFileQRX", "fileWithPath(path as folderitem) as DRFileQRX", realFile.get());
    expectFound("DRFileQRX", "virtualFileWithName(name as string, data as memoryblock) as DRFileQRX",
                name.get(), block.get());
    expectFound("DRFolderQRX", "folderWithPath(path as string) as DRFolderQRX", folderPath.get());
    expectFound("DRFolderQRX", "folderWithPath(path as folderitem) as DRFolderQRX", realFolder.get());
    expectFound("DRFolderQRX", "virtualFolderWithName(name as string) as DRFolderQRX", name.get());
    const Ref original = virtualFile("original");
    const String filesystem("DRHFSPlus"), type("DRLinkTypeSymbolicLink");
    for (const char* declaration :
         {"hardLinkPointingTo(original as DRFileQRX, filesystem as string) as DRFileQRX",
          "symLinkPointingTo(original as DRFSObjectQRX, filesystem as string) as DRFileQRX",
          "finderAliasPointingTo(original as DRFSObjectQRX, filesystem as string) as DRFileQRX"})
        expectFound("DRFileQRX", declaration, original.get(), filesystem.get());
    expectFound("DRFileQRX",
                "linkWithLinkType(linkType as string, original as DRFSObjectQRX, filesystem as string) as "
                "DRFileQRX",
                type.get(), original.get(), filesystem.get());
    EXPECT_EQ(raised(), std::nullopt);
}

} // namespace
