// DRFolderQRX.cpp: a folder of a data disc, real (a folder on disk) or virtual (made of added children).
//
// Data, constructor and destructor are those of DRFSObjectQRX.
#include "plugin/bridge/Files.hpp"
#include "plugin/bridge/Member.hpp"
#include "plugin/frame/ClassTables.hpp"
#include "plugin/frame/Classes.hpp"
#include "plugin/frame/HostServices.hpp"

namespace {

using namespace bridge;

// ---- constructors ----------------------------------------------------------------------------------------
// As in DRFileQRX a second call overwrites the slot, and nothing is entered in the registry. Unlike there, a nil
// name or path does not reach the platform; the difference is deliberate and kept.

void DumyConstructor(REALobject) {}

template <objc::FixedString message>
void initWith(REALobject self, objc::Id text) {
    if (text) frame::slot(self) = objc::send<message>(objc::alloc<"DRFolder">(), text);
}

void initWithName(REALobject self, REALstring name) {
    guarded([=] { initWith<"initWithName:">(self, NewNSString(name)); });
}

void initWithPath2(REALobject self, REALfolderItem path) {
    guarded([=] { initWith<"initWithPath:">(self, NewNSStringPath(path)); });
}

// ---- children --------------------------------------------------------------------------------------------

int32_t count(REALobject self) { return ask<Number<uint32_t, int32_t>, "count">(self); }
void makeVirtual(REALobject self) { tell<"makeVirtual">(self); }

// A nil child is forwarded as nil: the platform decides.
void addChild(REALobject self, REALobject child) { tell<"addChild:", FSObject>(self, child); }
void removeChild(REALobject self, REALobject child) { tell<"removeChild:", FSObject>(self, child); }

// The array is made outside of the guard: it is answered, filled as far as it goes, whatever the platform raises.
REALarray children(REALobject self) {
    const REALarray made = REALCreateArrayObject(-1);
    guarded([=] {
        if (const objc::Id folder = frame::held(self))
            FillDRFSObjectArray(made, objc::send<"children">(folder));
    });
    return made;
}

// ---- factories -------------------------------------------------------------------------------------------

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
    method<"count as integer", count>(),
    method<"Constructor", DumyConstructor>(),
    method<"Constructor(name as string)", initWithName>(),
    method<"Constructor(path as folderitem)", initWithPath2>(),
    method<"makeVirtual", makeVirtual>(),
    method<"addChild(child as DRFSObjectQRX)", addChild>(),
    method<"removeChild(child as DRFSObjectQRX)", removeChild>(),
    method<"children as DRFSObjectQRX()", children>(),
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
