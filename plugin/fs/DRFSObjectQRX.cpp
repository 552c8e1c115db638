// DRFSObjectQRX.cpp: a file or folder of a data disc; the base of DRFileQRX and DRFolderQRX.
#include "plugin/bridge/Member.hpp"
#include "plugin/bridge/StringConstants.hpp"
#include "plugin/frame/Classes.hpp"
#include "plugin/fs/FSObjectStrings.hpp"

FSOBJECT_STRINGS(STRING_CONSTANT_GETTER)

namespace {

using namespace bridge;

REALobject parent(REALobject self) { return ask<Folder, "parent">(self); }
REALstring sourcePath(REALobject self) { return ask<String, "sourcePath">(self); }
REALstring baseName(REALobject self) { return ask<String, "baseName">(self); }
void setBaseName(REALobject self, REALstring value) { tell<"setBaseName:", String>(self, value); }
REALboolean isVirtual(REALobject self) { return ask<Boolean, "isVirtual">(self); }

void DRFSObjectConstructor(REALobject self) { constructWrapper(self); }
void DRFSObjectDestructor(REALobject self) { destroyWrapper(self); }

using frame::method, frame::property;

REALmethodDefinition methods[] = {
    frame::placeholderConstructor(),
    method<"parent as DRFolderQRX", parent>(),
    method<"sourcePath as string", sourcePath>(),
    property<"baseName as string", baseName, setBaseName>(),
    method<"isVirtual as boolean", isVirtual>(),
};

REALmethodDefinition sharedMethods[] = {FSOBJECT_STRINGS(STRING_CONSTANT_ROW)};

} // namespace

REALclassDefinition DRFSObjectQRXClass = frame::makeClass({.name = "DRFSObjectQRX",
                                                           .dataSize = frame::platformObjectSize,
                                                           .constructor = DRFSObjectConstructor,
                                                           .destructor = DRFSObjectDestructor,
                                                           .methods = methods,
                                                           .sharedMethods = sharedMethods});
