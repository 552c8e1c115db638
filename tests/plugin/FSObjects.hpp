// FSObjects.hpp: files and folders of a disc, made and asked through their declared members.
#pragma once

#include "plugin/objc/ClassBuilder.hpp"
#include "plugin/objc/Ownership.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/Drives.hpp"
#include "tests/plugin/PluginTest.hpp"

namespace test {

class FSObjectTest : public LoadedTest {
  protected:
    void SetUp() override {
        companion::offerRegistry();
        LoadedTest::SetUp();
    }

    Ref virtualFolder(const std::string& name) {
        return Ref::adopt(call<REALobject>(
            "DRFolderQRX", "virtualFolderWithName(name as string) as DRFolderQRX", String(name).get()));
    }
    Ref virtualFile(const std::string& name) {
        return Ref::adopt(call<REALobject>(
            "DRFileQRX", "virtualFileWithName(name as string, data as memoryblock) as DRFileQRX",
            String(name).get(), REALmemoryBlock{nullptr}));
    }
    void addChild(const Ref& folder, const Ref& child) {
        call<void>("DRFolderQRX", "addChild(child as DRFSObjectQRX)", folder.get(), child.get());
    }
    std::string text(const Ref& object, const char* declaration) {
        return textOf(call<REALstring>("DRFSObjectQRX", declaration, object.get()));
    }
    std::string specificName(const Ref& object, const std::string& filesystem) {
        return textOf(call<REALstring>("DRFSObjectQRX",
                                       "specificNameForFilesystem(filesystem as string) as string",
                                       object.get(), String(filesystem).get()));
    }
    std::string mangledName(const Ref& object, const std::string& filesystem) {
        return textOf(call<REALstring>("DRFSObjectQRX",
                                       "mangledNameForFilesystem(filesystem as string) as string",
                                       object.get(), String(filesystem).get()));
    }
    void setSpecificName(const Ref& object, const std::string& filesystem, const std::string& name) {
        harness::setterOf<void(REALobject, REALstring, REALstring)>(
            "DRFSObjectQRX", "specificNameForFilesystem(filesystem as string) as string")(
            object.get(), String(filesystem).get(), String(name).get());
    }
};

// A platform object that notes the texts of one message.
class Recorder {
  public:
    objc::Id object() {
        static const objc::Class cls = objc::ClassBuilder("NSObject", "TestRecorder")
                                           .method<"setSpecificName:forFilesystem:", note>()
                                           .finish();
        return objc::autoreleased(objc::send<"init">(objc::send<"alloc">(reinterpret_cast<objc::Id>(cls))));
    }
    static std::string first() { return noted[0]; }
    static std::string second() { return noted[1]; }

  private:
    static void note(objc::Id, objc::Sel, objc::Id one, objc::Id two) {
        noted[0] = objc::send<"UTF8String", const char*>(one);
        noted[1] = objc::send<"UTF8String", const char*>(two);
    }
    inline static std::string noted[2];
};

} // namespace test
