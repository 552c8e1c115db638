// DREraseQRX.cpp: one erase of a re-writable disc in one drive.
//
// The platform erases in the background; a program starts the erase and polls its status.
#include "plugin/bridge/Member.hpp"
#include "plugin/bridge/StringConstants.hpp"
#include "plugin/burn/EraseStrings.hpp"
#include "plugin/frame/Classes.hpp"

ERASE_STRINGS(STRING_CONSTANT_GETTER)

namespace {

using namespace bridge;

REALobject device(REALobject self) { return ask<Device, "device">(self); }
void start(REALobject self) { tell<"start">(self); }
REALdictionary status(REALobject self) { return ask<Dictionary, "status">(self); }
REALdictionary properties(REALobject self) { return ask<Dictionary, "properties">(self); }
void setProperties(REALobject self, REALdictionary value) { tell<"setProperties:", Dictionary>(self, value); }
REALstring eraseType(REALobject self) { return ask<String, "eraseType">(self); }
void setEraseType(REALobject self, REALstring value) { tell<"setEraseType:", String>(self, value); }

// Three differences from a burn's constructor, all deliberate, because programs tell the cases apart: the
// test for a second call comes before the test for nil, platform start-up runs, and the erase is not
// registered, so the same platform erase comes back from the platform as another host object.
void Constructor(REALobject self, REALobject device) {
    if (frame::slot(self)) return raiseConstructorCalledTooOften();
    CocoaInit();
    guarded([=] {
        if (!frame::held(device)) return raiseDeviceIsNil();
        frame::slot(self) = objc::send<"initWithDevice:">(objc::alloc<"DRErase">(), frame::held(device));
    });
}

// No nil test: what a nil drive means is the platform's to say. The wrapper retains the erase, and the
// reference that the allocation gave is deliberately never given up, so the platform's erase outlives its
// last host object: an erase that was started goes on to its end.
REALobject eraseForDevice(REALobject device) {
    CocoaInit();
    return guarded([=] {
        return NewDREraseQRX(objc::send<"initWithDevice:">(objc::alloc<"DRErase">(), frame::held(device)));
    });
}

void DREraseConstructor(REALobject self) { constructWrapper(self); }
void DREraseDestructor(REALobject self) { destroyWrapper(self); }

using frame::method, frame::property, frame::sharedMethod;

REALmethodDefinition methods[] = {
    method<"device as DRDeviceQRX", device>(),
    method<"start", start>(),
    method<"status as dictionary", status>(),
    property<"properties as dictionary", properties, setProperties>(),
    property<"eraseType as string", eraseType, setEraseType>(),
    method<"Constructor(device as DRDeviceQRX)", Constructor>(),
};

REALmethodDefinition sharedMethods[] = {
    ERASE_STRINGS(STRING_CONSTANT_ROW)
        sharedMethod<"eraseForDevice(device as DRDeviceQRX) as DREraseQRX", eraseForDevice>(),
};

} // namespace

REALclassDefinition DREraseQRXClass = frame::makeClass({.name = "DREraseQRX",
                                                        .dataSize = frame::platformObjectSize,
                                                        .constructor = DREraseConstructor,
                                                        .destructor = DREraseDestructor,
                                                        .methods = methods,
                                                        .sharedMethods = sharedMethods});
