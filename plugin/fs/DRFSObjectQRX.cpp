// DRFSObjectQRX.cpp: a file or folder of a data disc; the base of DRFileQRX and DRFolderQRX.
#include "plugin/bridge/Member.hpp"
#include "plugin/bridge/StringConstants.hpp"
#include "plugin/frame/Classes.hpp"
#include "plugin/fs/FSObjectStrings.hpp"

FSOBJECT_STRINGS(STRING_CONSTANT_GETTER)

namespace {

using namespace bridge;

// The members that name a file system look whether there is a platform object before they convert an argument.
template <class Answer, class Body>
typename Answer::Host askHeld(REALobject self, Body body) {
    return guarded([=]() -> typename Answer::Host {
        const objc::Id object = frame::held(self);
        if (!object) return {};
        return Answer::toHost(body(object));
    });
}

template <class Body>
void tellHeld(REALobject self, Body body) {
    guarded([=] {
        if (const objc::Id object = frame::held(self)) body(object);
    });
}

// ---- properties ------------------------------------------------------------------------------------------
// The platform keeps them for each file system, and what merging means is its rule: the host's boolean crosses
// as it is.

REALdictionary propertiesForFilesystem(REALobject self, REALstring filesystem,
                                       REALboolean mergeWithOtherFilesystems) {
    return askHeld<Dictionary>(self, [=](objc::Id object) {
        return objc::send<"propertiesForFilesystem:mergeWithOtherFilesystems:">(
            object, NewNSString(filesystem), objc::Boolean{mergeWithOtherFilesystems});
    });
}

void setProperties(REALobject self, REALdictionary value, REALstring filesystem) {
    tellHeld(self, [=](objc::Id object) {
        objc::send<"setProperties:inFilesystem:", void>(object, NewNSDictionary(value),
                                                        NewNSString(filesystem));
    });
}

REALvariant propertyForKey(REALobject self, REALstring key, REALstring filesystem,
                           REALboolean mergeWithOtherFilesystems) {
    return askHeld<Variant>(self, [=](objc::Id object) {
        return objc::send<"propertyForKey:inFilesystem:mergeWithOtherFilesystems:">(
            object, NewNSString(key), NewNSString(filesystem), objc::Boolean{mergeWithOtherFilesystems});
    });
}

// A nil variant goes over as nil: the platform decides.
void setProperty(REALobject self, REALvariant value, REALstring key, REALstring filesystem) {
    tellHeld(self, [=](objc::Id object) {
        objc::send<"setProperty:forKey:inFilesystem:", void>(object, GetVariantAsNSObject(value),
                                                             NewNSString(key), NewNSString(filesystem));
    });
}

// ---- names -----------------------------------------------------------------------------------------------

REALdictionary specificNames(REALobject self) { return ask<Dictionary, "specificNames">(self); }
void setSpecificNames(REALobject self, REALdictionary value) {
    tell<"setSpecificNames:", Dictionary>(self, value);
}
REALdictionary mangledNames(REALobject self) { return ask<Dictionary, "mangledNames">(self); }
REALobject parent(REALobject self) { return ask<Folder, "parent">(self); }
REALstring sourcePath(REALobject self) { return ask<String, "sourcePath">(self); }
REALstring baseName(REALobject self) { return ask<String, "baseName">(self); }
void setBaseName(REALobject self, REALstring value) { tell<"setBaseName:", String>(self, value); }
REALboolean isVirtual(REALobject self) { return ask<Boolean, "isVirtual">(self); }

REALstring specificNameForFilesystem(REALobject self, REALstring filesystem) {
    return askHeld<String>(self, [=](objc::Id object) {
        return objc::send<"specificNameForFilesystem:">(object, NewNSString(filesystem));
    });
}

// The host gives the file system first, the platform takes it last.
void setSpecificName(REALobject self, REALstring filesystem, REALstring name) {
    tellHeld(self, [=](objc::Id object) {
        objc::send<"setSpecificName:forFilesystem:", void>(object, NewNSString(name),
                                                           NewNSString(filesystem));
    });
}

REALstring mangledNameForFilesystem(REALobject self, REALstring filesystem) {
    return askHeld<String>(self, [=](objc::Id object) {
        return objc::send<"mangledNameForFilesystem:">(object, NewNSString(filesystem));
    });
}

// ---- masks -----------------------------------------------------------------------------------------------

using Mask = Number<uint32_t, int32_t>;

int32_t explicitFilesystemMask(REALobject self) { return ask<Mask, "explicitFilesystemMask">(self); }
void setExplicitFilesystemMask(REALobject self, int32_t value) {
    tell<"setExplicitFilesystemMask:", Mask>(self, value);
}
int32_t effectiveFilesystemMask(REALobject self) { return ask<Mask, "effectiveFilesystemMask">(self); }

void DRFSObjectConstructor(REALobject self) { constructWrapper(self); }
void DRFSObjectDestructor(REALobject self) { destroyWrapper(self); }

using frame::method, frame::property;

REALmethodDefinition methods[] = {
    frame::placeholderConstructor(),
    method<"propertiesForFilesystem(filesystem as string, mergeWithOtherFilesystems as boolean) as "
           "dictionary",
           propertiesForFilesystem>(),
    method<"setProperties(Value as dictionary, filesystem as string)", setProperties>(),
    method<"propertyForKey(key as string, filesystem as string, mergeWithOtherFilesystems as boolean) as "
           "variant",
           propertyForKey>(),
    method<"setProperty(Value as variant, key as string, filesystem as string)", setProperty>(),
    property<"specificNames as dictionary", specificNames, setSpecificNames>(),
    method<"mangledNames as dictionary", mangledNames>(),
    method<"parent as DRFolderQRX", parent>(),
    method<"sourcePath as string", sourcePath>(),
    property<"baseName as string", baseName, setBaseName>(),
    method<"isVirtual as boolean", isVirtual>(),
    property<"specificNameForFilesystem(filesystem as string) as string", specificNameForFilesystem,
             setSpecificName>(),
    method<"mangledNameForFilesystem(filesystem as string) as string", mangledNameForFilesystem>(),
    property<"explicitFilesystemMask as integer", explicitFilesystemMask, setExplicitFilesystemMask>(),
    method<"effectiveFilesystemMask as integer", effectiveFilesystemMask>(),
};

// The bits of both masks.
REALconstant constants[] = {
    {.declaration = "DRFilesystemInclusionMaskISO9660 = 1", .reserved = {}},
    {.declaration = "DRFilesystemInclusionMaskJoliet = 2", .reserved = {}},
    {.declaration = "DRFilesystemInclusionMaskUDF = 4", .reserved = {}},
    {.declaration = "DRFilesystemInclusionMaskHFSPlus = 8", .reserved = {}},
};

REALmethodDefinition sharedMethods[] = {FSOBJECT_STRINGS(STRING_CONSTANT_ROW)};

} // namespace

REALclassDefinition DRFSObjectQRXClass = frame::makeClass({.name = "DRFSObjectQRX",
                                                           .dataSize = frame::platformObjectSize,
                                                           .constructor = DRFSObjectConstructor,
                                                           .destructor = DRFSObjectDestructor,
                                                           .methods = methods,
                                                           .constants = constants,
                                                           .sharedMethods = sharedMethods});
