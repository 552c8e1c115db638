// DRDeviceQRX.cpp: one optical drive.
//
// Programs get drives from the shared look-ups. A drive that a program makes itself keeps an empty slot, and
// every member then answers false, 0 or nil.
#include "plugin/bridge/Member.hpp"
#include "plugin/bridge/StringConstants.hpp"
#include "plugin/device/DeviceStrings.hpp"
#include "plugin/frame/Classes.hpp"
#include "plugin/frame/HostServices.hpp"

// ---- constants -------------------------------------------------------------------------------------------

DEVICE_STRINGS(STRING_CONSTANT_GETTER)

#define DEVICE_SPEEDS(X)                                                                                     \
    X(DRDeviceBurnSpeedCD1x)                                                                                 \
    X(DRDeviceBurnSpeedDVD1x)                                                                                \
    X(DRDeviceBurnSpeedBD1x)                                                                                 \
    X(DRDeviceBurnSpeedHDDVD1x)                                                                              \
    X(DRDeviceBurnSpeedMax)

// KB/s with 1000 bytes each, as the platform has them; 0 where it lacks one.
#define SPEED_GETTER(name)                                                                                   \
    extern "C" __attribute__((weak)) const float name;                                                       \
    static float get##name() { return &name ? name : 0; }
#define SPEED_ROW(name) frame::sharedMethod<#name " as single", get##name>(),

DEVICE_SPEEDS(SPEED_GETTER)

namespace {

using namespace bridge;

// ---- identity --------------------------------------------------------------------------------------------

// A value of any other type than text is ignored, not converted.
REALstring interconnect(REALobject self) {
    return guarded([self]() -> REALstring {
        const objc::Id info = objc::send<"info">(frame::held(self));
        const objc::Id* key = &DRDevicePhysicalInterconnectKey;
        const objc::Id value = objc::send<"objectForKey:">(info, key ? *key : nullptr);
        return objc::isKindOf<"NSString">(value) ? NSStringRB(value) : nullptr;
    });
}

REALstring DRDevicePhysicalInterconnect(REALobject self) { return interconnect(self); }
// Deliberately the same key: programs have always been given the interconnect here, not its location.
REALstring DRDevicePhysicalInterconnectLocation(REALobject self) { return interconnect(self); }

// The platform compares with a nil drive. True only when the answer's low byte is 1.
bool isEqualToDevice(REALobject self, REALobject value) {
    return guarded([=] {
        return (objc::send<"isEqualToDevice:", objc::Boolean>(frame::held(self), frame::held(value)) &
                0xFF) == 1;
    });
}

// ---- direct members --------------------------------------------------------------------------------------

REALstring mediaType(REALobject self) { return ask<String, "mediaType">(self); }
REALstring bsdName(REALobject self) { return ask<String, "bsdName">(self); }
REALboolean trayIsOpen(REALobject self) { return ask<Boolean, "trayIsOpen">(self); }
REALboolean mediaIsPresent(REALobject self) { return ask<Boolean, "mediaIsPresent">(self); }
REALboolean mediaIsTransitioning(REALobject self) { return ask<Boolean, "mediaIsTransitioning">(self); }
REALboolean mediaIsBusy(REALobject self) { return ask<Boolean, "mediaIsBusy">(self); }
REALboolean mediaIsAppendable(REALobject self) { return ask<Boolean, "mediaIsAppendable">(self); }
REALboolean mediaIsBlank(REALobject self) { return ask<Boolean, "mediaIsBlank">(self); }
REALboolean mediaIsOverwritable(REALobject self) { return ask<Boolean, "mediaIsOverwritable">(self); }
REALboolean mediaIsErasable(REALobject self) { return ask<Boolean, "mediaIsErasable">(self); }
REALboolean mediaIsReserved(REALobject self) { return ask<Boolean, "mediaIsReserved">(self); }
REALboolean isValid(REALobject self) { return ask<Boolean, "isValid">(self); }
REALboolean openTray(REALobject self) { return ask<Boolean, "openTray">(self); }
REALboolean closeTray(REALobject self) { return ask<Boolean, "closeTray">(self); }
REALboolean ejectMedia(REALobject self) { return ask<Boolean, "ejectMedia">(self); }
REALboolean acquireExclusiveAccess(REALobject self) { return ask<Boolean, "acquireExclusiveAccess">(self); }
void releaseExclusiveAccess(REALobject self) { tell<"releaseExclusiveAccess">(self); }
void acquireMediaReservation(REALobject self) { tell<"acquireMediaReservation">(self); }
void releaseMediaReservation(REALobject self) { tell<"releaseMediaReservation">(self); }
REALboolean writesCD(REALobject self) { return ask<Boolean, "writesCD">(self); }
REALboolean writesDVD(REALobject self) { return ask<Boolean, "writesDVD">(self); }
REALstring displayName(REALobject self) { return ask<String, "displayName">(self); }
REALstring ioRegistryEntryPath(REALobject self) { return ask<String, "ioRegistryEntryPath">(self); }
REALobject mediaSpaceFree(REALobject self) { return ask<MSF, "mediaSpaceFree">(self); }
REALobject mediaSpaceUsed(REALobject self) { return ask<MSF, "mediaSpaceUsed">(self); }
REALobject mediaSpaceOverwritable(REALobject self) { return ask<MSF, "mediaSpaceOverwritable">(self); }
REALdictionary info(REALobject self) { return ask<Dictionary, "info">(self); }
REALdictionary status(REALobject self) { return ask<Dictionary, "status">(self); }

// ---- look-ups --------------------------------------------------------------------------------------------

objc::Id allDevices() { return objc::sendClass<"DRDevice", "devices">(); }

// Zero-based. There is no bounds test here: past the end the platform raises, which becomes a host exception.
REALobject deviceAtIndex(uint32_t index) {
    CocoaInit();
    return guarded([=] {
        return NewDRDeviceQRX(objc::send<"objectAtIndex:">(allDevices(), static_cast<unsigned long>(index)));
    });
}

uint32_t deviceCount() {
    CocoaInit();
    return guarded([] { return static_cast<uint32_t>(objc::send<"count", unsigned long>(allDevices())); });
}

// Never nil, also when the platform raised on the way: then it holds the drives that came before.
REALarray devices() {
    const REALarray drives = REALCreateArrayObject(-1);
    CocoaInit();
    guarded([=] { FillDRDeviceArray(drives, allDevices()); });
    return drives;
}

REALobject deviceForBSDName(REALstring bsdName) {
    return make<Device, "DRDevice", "deviceForBSDName:", String>(bsdName);
}
REALobject deviceForIORegistryEntryPath(REALstring path) {
    return make<Device, "DRDevice", "deviceForIORegistryEntryPath:", String>(path);
}

void DRDeviceConstructor(REALobject self) { constructWrapper(self); }
void DRDeviceDestructor(REALobject self) { destroyWrapper(self); }

// ---- tables ----------------------------------------------------------------------------------------------

using frame::method, frame::sharedMethod;

REALmethodDefinition methods[] = {
    frame::placeholderConstructor(),
    method<"PhysicalInterconnect as string", DRDevicePhysicalInterconnect>(),
    method<"PhysicalInterconnectLocation as string", DRDevicePhysicalInterconnectLocation>(),
    method<"isEqualToDevice(value as DRDeviceQRX) as boolean", isEqualToDevice>(),
    method<"mediaType as string", mediaType>(),
    method<"bsdName as string", bsdName>(),
    method<"trayIsOpen as boolean", trayIsOpen>(),
    method<"mediaIsPresent as boolean", mediaIsPresent>(),
    method<"mediaIsTransitioning as boolean", mediaIsTransitioning>(),
    method<"mediaIsBusy as boolean", mediaIsBusy>(),
    method<"mediaIsAppendable as boolean", mediaIsAppendable>(),
    method<"mediaIsBlank as boolean", mediaIsBlank>(),
    method<"mediaIsOverwritable as boolean", mediaIsOverwritable>(),
    method<"mediaIsErasable as boolean", mediaIsErasable>(),
    method<"mediaIsReserved as boolean", mediaIsReserved>(),
    method<"isValid as boolean", isValid>(),
    method<"openTray as boolean", openTray>(),
    method<"closeTray as boolean", closeTray>(),
    method<"ejectMedia as boolean", ejectMedia>(),
    method<"acquireExclusiveAccess as boolean", acquireExclusiveAccess>(),
    method<"releaseExclusiveAccess", releaseExclusiveAccess>(),
    method<"acquireMediaReservation", acquireMediaReservation>(),
    method<"releaseMediaReservation", releaseMediaReservation>(),
    method<"writesCD as boolean", writesCD>(),
    method<"writesDVD as boolean", writesDVD>(),
    method<"displayName as string", displayName>(),
    method<"ioRegistryEntryPath as string", ioRegistryEntryPath>(),
    method<"mediaSpaceFree as DRMSFQRX", mediaSpaceFree>(),
    method<"mediaSpaceUsed as DRMSFQRX", mediaSpaceUsed>(),
    method<"mediaSpaceOverwritable as DRMSFQRX", mediaSpaceOverwritable>(),
    method<"info as dictionary", info>(),
    method<"status as dictionary", status>(),
};

REALmethodDefinition sharedMethods[] = {
    DEVICE_STRINGS(STRING_CONSTANT_ROW) DEVICE_SPEEDS(SPEED_ROW)
        sharedMethod<"device(index as UInt32) as DRDeviceQRX", deviceAtIndex>(),
    sharedMethod<"deviceCount as UInt32", deviceCount>(),
    sharedMethod<"devices as DRDeviceQRX()", devices>(),
    sharedMethod<"deviceForBSDName(bsdName as string) as DRDeviceQRX", deviceForBSDName>(),
    sharedMethod<"deviceForIORegistryEntryPath(path as string) as DRDeviceQRX",
                 deviceForIORegistryEntryPath>(),
};

} // namespace

REALclassDefinition DRDeviceQRXClass = frame::makeClass({.name = "DRDeviceQRX",
                                                         .dataSize = frame::platformObjectSize,
                                                         .constructor = DRDeviceConstructor,
                                                         .destructor = DRDeviceDestructor,
                                                         .methods = methods,
                                                         .sharedMethods = sharedMethods});
