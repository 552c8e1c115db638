// Wrappers.cpp: makes wrappers, finds them again, and lets them go.
#include "plugin/bridge/Wrappers.hpp"

#include "plugin/bridge/Registry.hpp"
#include "plugin/frame/HostServices.hpp"
#include "plugin/frame/InstanceData.hpp"
#include "plugin/objc/Ownership.hpp"

#include <cstring>
#include <string>

namespace {

// A new host object of the class with the platform object retained in its slot; null if there is no such
// class.
REALobject newHolder(const char* className, objc::Id object) {
    const REALobject made = REALnewInstance(className);
    if (made) frame::slot(made) = objc::retained(object);
    return made;
}

REALobject newWrapper(const char* className, objc::Id object) {
    if (!object) return nullptr;
    if (const REALobject known = FindInstance(object)) {
        REALLockObject(known);
        return known;
    }
    const REALobject made = newHolder(className, object);
    if (made) RegisterInstance(made, object);
    return made;
}

// The array takes its own reference of each element; the one of the making is dropped, so it keeps the only
// one.
template <class Wrap>
void fillArray(REALarray hostArray, objc::Id platformArray, Wrap wrap) {
    const objc::Id walk = objc::send<"objectEnumerator">(platformArray);
    int32_t index = 0;
    while (const objc::Id element = objc::send<"nextObject">(walk)) {
        const REALobject wrapper = wrap(element);
        REALInsertArrayValueObject(hostArray, index++, wrapper);
        if (wrapper) REALUnlockObject(wrapper);
    }
}

} // namespace

REALobject NewDRDeviceQRX(objc::Id device) { return newWrapper("DRDeviceQRX", device); }
REALobject NewDREraseQRX(objc::Id erase) { return newWrapper("DREraseQRX", erase); }
REALobject NewDRMSFQRX(objc::Id msf) { return newWrapper("DRMSFQRX", msf); }
REALobject NewDRTrackQRX(objc::Id track) { return newWrapper("DRTrackQRX", track); }
REALobject NewDRBurnQRX(objc::Id burn) { return newWrapper("DRBurnQRX", burn); }
REALobject NewDRFileQRX(objc::Id file) { return newWrapper("DRFileQRX", file); }
REALobject NewDRFolderQRX(objc::Id folder) { return newWrapper("DRFolderQRX", folder); }

REALobject NewDRFSObjectQRX(objc::Id object) {
    if (!object) return nullptr;
    if (objc::isKindOf<"DRFile">(object)) return NewDRFileQRX(object);
    if (objc::isKindOf<"DRFolder">(object)) return NewDRFolderQRX(object);
    return newHolder("DRFSObjectQRX", object);
}

REALobject NewNSObjectQRX(objc::Id object) {
    if (!object) return nullptr;
    constexpr std::size_t nameLimit = 200; // longer names are skipped, not cut
    auto cls = objc::send<"class", objc::Class>(object);
    for (; cls; cls = objc::class_getSuperclass(cls)) {
        const char* name = objc::class_getName(cls);
        if (!name || std::strlen(name) >= nameLimit) continue;
        if (const REALobject made = newHolder((std::string(name) + "QRX").c_str(), object)) return made;
    }
    return nullptr;
}

void FillDRDeviceArray(REALarray hostArray, objc::Id devices) {
    fillArray(hostArray, devices, NewDRDeviceQRX);
}

void FillDRFSObjectArray(REALarray hostArray, objc::Id objects) {
    fillArray(hostArray, objects, NewDRFSObjectQRX);
}

void releaseHeld(REALobject wrapper) {
    objc::Id& slot = frame::slot(wrapper);
    if (!slot) return;
    UnregisterInstance(slot);
    objc::release(slot);
    slot = nullptr;
}
