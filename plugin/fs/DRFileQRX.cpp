// DRFileQRX.cpp: a file of a data disc: on disk, in memory, produced by events while burning, or a link.
//
// Data, constructor and destructor are those of DRFSObjectQRX.
#include "plugin/bridge/Files.hpp"
#include "plugin/bridge/Member.hpp"
#include "plugin/bridge/StringConstants.hpp"
#include "plugin/frame/Classes.hpp"
#include "plugin/fs/FileEvents.hpp"
#include "plugin/fs/MyDRFile.hpp"
#include "plugin/objc/Ownership.hpp"

#define FILE_STRINGS(X)                                                                                      \
    X(DRLinkTypeHardLink)                                                                                    \
    X(DRLinkTypeSymbolicLink)                                                                                \
    X(DRLinkTypeFinderAlias)

FILE_STRINGS(STRING_CONSTANT_GETTER)

namespace {

using namespace bridge;

// ---- constructors ----------------------------------------------------------------------------------------
// None looks whether the slot is full already: a second call deliberately overwrites it, and the earlier object is
// neither released nor complained about. Nor is anything entered in the registry, so a folder hands such a file
// back as another host object. Nil names, data and paths are forwarded: the platform decides.

void DumyConstructor(REALobject) {}

// A virtual file with a copy of these bytes.
void initWithNameData(REALobject self, REALstring name, REALmemoryBlock data) {
    guarded([=] {
        frame::slot(self) =
            objc::send<"initWithName:data:">(objc::alloc<"DRFile">(), NewNSString(name), NewNSData(data));
    });
}

// A virtual file whose size and bytes come from this object's events.
void initWithNameProducer(REALobject self, REALstring name) {
    guarded([=] {
        const objc::Id text = NewNSString(name);
        const objc::Id file = fs::newProducedFile(self);
        if (file) frame::slot(self) = objc::send<"initWithName:dataProducer:">(file, text, file);
    });
}

// A real file.
void initWithPath2(REALobject self, REALfolderItem path) {
    guarded([=] {
        frame::slot(self) = objc::send<"initWithPath:">(objc::alloc<"DRFile">(), NewNSStringPath(path));
    });
}

// ---- links -----------------------------------------------------------------------------------------------
// All need what they point to, and the file system they are made for.

template <objc::FixedString message>
REALobject linkPointingTo(REALobject original, REALstring filesystem) {
    CocoaInit();
    return guarded([=]() -> REALobject {
        const objc::Id target = frame::held(original);
        const objc::Id name = NewNSString(filesystem);
        if (!target || !name) return nullptr;
        return NewDRFileQRX(objc::sendClass<"DRFile", message>(target, name));
    });
}

REALobject hardLinkPointingTo(REALobject original, REALstring filesystem) {
    return linkPointingTo<"hardLinkPointingTo:inFilesystem:">(original, filesystem);
}
REALobject symLinkPointingTo(REALobject original, REALstring filesystem) {
    return linkPointingTo<"symLinkPointingTo:inFilesystem:">(original, filesystem);
}
REALobject finderAliasPointingTo(REALobject original, REALstring filesystem) {
    return linkPointingTo<"finderAliasPointingTo:inFilesystem:">(original, filesystem);
}

// The one factory of the file and folder classes without platform start-up; that is deliberate and kept: an
// original that has a platform object has seen it.
REALobject initWithLinkType(REALstring linkType, REALobject original, REALstring filesystem) {
    return guarded([=]() -> REALobject {
        const objc::Id type = NewNSString(linkType);
        const objc::Id name = NewNSString(filesystem);
        const objc::Id target = frame::held(original);
        if (!type || !name || !target) return nullptr;
        const objc::Id link = objc::send<"initWithLinkType:pointingTo:inFilesystem:">(objc::alloc<"DRFile">(),
                                                                                      type, target, name);
        const REALobject wrapper = NewDRFileQRX(link);
        objc::autoreleased(link);
        return wrapper;
    });
}

// ---- other factories -------------------------------------------------------------------------------------

// A nil path is forwarded: the platform decides. The form with a folder item, below, answers nil for it.
REALobject fileWithPath(REALstring path) { return make<File, "DRFile", "fileWithPath:", String>(path); }

REALobject fileWithPath2(REALfolderItem path) {
    CocoaInit();
    return guarded([=] {
        const objc::Id text = NewNSStringPath(path);
        return text ? NewDRFileQRX(objc::sendClass<"DRFile", "fileWithPath:">(text)) : nullptr;
    });
}

REALobject virtualFileWithName(REALstring name, REALmemoryBlock data) {
    CocoaInit();
    return guarded([=] {
        return NewDRFileQRX(
            objc::sendClass<"DRFile", "virtualFileWithName:data:">(NewNSString(name), NewNSData(data)));
    });
}

// ---- tables ----------------------------------------------------------------------------------------------

using frame::method, frame::sharedMethod;

REALmethodDefinition methods[] = {
    method<"Constructor", DumyConstructor>(),
    method<"Constructor(name as string, data as memoryblock)", initWithNameData>(),
    method<"Constructor(name as string)", initWithNameProducer>(),
    method<"Constructor(path as folderitem)", initWithPath2>(),
};

// The forks that the events are asked for.
REALconstant constants[] = {
    {"DRFileForkData = 0", {}},
    {"DRFileForkResource = 1", {}},
};

REALmethodDefinition sharedMethods[] = {
    FILE_STRINGS(STRING_CONSTANT_ROW)
        sharedMethod<"hardLinkPointingTo(original as DRFileQRX, filesystem as string) as DRFileQRX",
                     hardLinkPointingTo>(),
    sharedMethod<"symLinkPointingTo(original as DRFSObjectQRX, filesystem as string) as DRFileQRX",
                 symLinkPointingTo>(),
    sharedMethod<"finderAliasPointingTo(original as DRFSObjectQRX, filesystem as string) as DRFileQRX",
                 finderAliasPointingTo>(),
    sharedMethod<"fileWithPath(path as string) as DRFileQRX", fileWithPath>(),
    sharedMethod<"fileWithPath(path as folderitem) as DRFileQRX", fileWithPath2>(),
    sharedMethod<"linkWithLinkType(linkType as string, original as DRFSObjectQRX, filesystem as string) as "
                 "DRFileQRX",
                 initWithLinkType>(),
    sharedMethod<"virtualFileWithName(name as string, data as memoryblock) as DRFileQRX",
                 virtualFileWithName>(),
};

} // namespace

REALclassDefinition DRFileQRXClass = frame::makeClass({.name = "DRFileQRX",
                                                       .superName = "DRFSObjectQRX",
                                                       .methods = methods,
                                                       .events = fs::events.rows,
                                                       .constants = constants,
                                                       .sharedMethods = sharedMethods});
