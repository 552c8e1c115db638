// DRFolderQRX.cpp: a folder of a data disc, real (a folder on disk) or virtual (made of added children).
//
// Data, constructor and destructor are those of DRFSObjectQRX.
#include "plugin/bridge/Files.hpp"
#include "plugin/bridge/Member.hpp"
#include "plugin/frame/ClassTables.hpp"
#include "plugin/frame/Classes.hpp"

namespace {

using namespace bridge;

// A nil child is forwarded as nil: the platform decides.
void addChild(REALobject self, REALobject child) { tell<"addChild:", FSObject>(self, child); }

// The factories answer nil for a nil text or path without asking the platform.
template <objc::FixedString message>
REALobject folderFrom(objc::Id text) {
    return text ? NewDRFolderQRX(objc::sendClass<"DRFolder", message>(text)) : nullptr;
}

REALobject folderWithPath(REALstring path) {
    CocoaInit();
    return guarded([=] { return folderFrom<"folderWithPath:">(NewNSString(path)); });
}

REALobject folderWithPath2(REALfolderItem path) {
    CocoaInit();
    return guarded([=] { return folderFrom<"folderWithPath:">(NewNSStringPath(path)); });
}

REALobject virtualFolderWithName(REALstring name) {
    CocoaInit();
    return guarded([=] { return folderFrom<"virtualFolderWithName:">(NewNSString(name)); });
}

using frame::method, frame::sharedMethod;

REALmethodDefinition methods[] = {
    method<"addChild(child as DRFSObjectQRX)", addChild>(),
};

REALmethodDefinition sharedMethods[] = {
    sharedMethod<"folderWithPath(path as string) as DRFolderQRX", folderWithPath>(),
    sharedMethod<"folderWithPath(path as folderitem) as DRFolderQRX", folderWithPath2>(),
    sharedMethod<"virtualFolderWithName(name as string) as DRFolderQRX", virtualFolderWithName>(),
};

} // namespace

REALclassDefinition DRFolderQRXClass = frame::makeClass({.name = "DRFolderQRX",
                                                         .superName = "DRFSObjectQRX",
                                                         .methods = methods,
                                                         .sharedMethods = sharedMethods});
