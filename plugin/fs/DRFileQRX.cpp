// DRFileQRX.cpp: a file of a data disc.
//
// Data, constructor and destructor are those of DRFSObjectQRX.
#include "plugin/bridge/Files.hpp"
#include "plugin/bridge/Member.hpp"
#include "plugin/frame/ClassTables.hpp"
#include "plugin/frame/Classes.hpp"

namespace {

using namespace bridge;

// A nil path is forwarded: the platform decides. The form with a folder item, below, answers nil for it.
REALobject fileWithPath(REALstring path) { return make<File, "DRFile", "fileWithPath:", String>(path); }

REALobject fileWithPath2(REALfolderItem path) {
    CocoaInit();
    return guarded([=] {
        const objc::Id text = NewNSStringPath(path);
        return text ? NewDRFileQRX(objc::sendClass<"DRFile", "fileWithPath:">(text)) : nullptr;
    });
}

using frame::sharedMethod;

REALmethodDefinition sharedMethods[] = {
    sharedMethod<"fileWithPath(path as string) as DRFileQRX", fileWithPath>(),
    sharedMethod<"fileWithPath(path as folderitem) as DRFileQRX", fileWithPath2>(),
};

} // namespace

REALclassDefinition DRFileQRXClass =
    frame::makeClass({.name = "DRFileQRX", .superName = "DRFSObjectQRX", .sharedMethods = sharedMethods});
