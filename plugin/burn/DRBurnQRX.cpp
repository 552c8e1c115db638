// DRBurnQRX.cpp: one burn of one drive.
//
// The platform burns in the background; a program starts the burn with a layout and polls its status.
#include "plugin/bridge/Member.hpp"
#include "plugin/bridge/Registry.hpp"
#include "plugin/bridge/StringConstants.hpp"
#include "plugin/burn/BurnStrings.hpp"
#include "plugin/burn/Properties.hpp"
#include "plugin/frame/Classes.hpp"

extern "C" {
__attribute__((weak)) extern const objc::Id DRBurnFailureActionKey;
__attribute__((weak)) extern const objc::Id DRBurnOverwriteDiscKey;
}

namespace {

using namespace bridge;

using Speed = Number<float>;

REALdictionary status(REALobject self) { return ask<Dictionary, "status">(self); }

// Only with a track and a burn on both sides; otherwise nothing happens, without an exception.
void writeLayout(REALobject self, REALobject track) {
    guarded([=] {
        if (frame::held(track)) objc::send<"writeLayout:", void>(frame::held(self), frame::held(track));
    });
}

REALobject device(REALobject self) { return ask<Device, "device">(self); }
void abortRB(REALobject self) { tell<"abort">(self); }
bool appendable(REALobject self) { return ask<Boolean, "appendable">(self); }
void setAppendable(REALobject self, bool value) { tell<"setAppendable:", Boolean>(self, value); }
bool verifyDisc(REALobject self) { return ask<Boolean, "verifyDisc">(self); }
void setVerifyDisc(REALobject self, bool value) { tell<"setVerifyDisc:", Boolean>(self, value); }
REALstring completionAction(REALobject self) { return ask<String, "completionAction">(self); }
void setCompletionAction(REALobject self, REALstring value) {
    tell<"setCompletionAction:", String>(self, value);
}
float requestedBurnSpeed(REALobject self) { return ask<Speed, "requestedBurnSpeed">(self); }
void setRequestedBurnSpeed(REALobject self, float value) {
    tell<"setRequestedBurnSpeed:", Speed>(self, value);
}

// The nil test comes first, deliberately: on a burn that is already made, a nil drive reports "device is
// nil". No platform start-up: the class constructor has run it.
void Constructor2(REALobject self, REALobject device) {
    if (!frame::held(device)) return raiseDeviceIsNil();
    if (frame::slot(self)) return raiseConstructorCalledTooOften();
    guarded([=] {
        frame::slot(self) = objc::send<"initWithDevice:">(objc::alloc<"DRBurn">(), frame::held(device));
        RegisterInstance(self, frame::slot(self));
    });
}

REALstring getDRBurnFailureActionValue(REALobject self) {
    return getStringProperty(self, &DRBurnFailureActionKey);
}
void setDRBurnFailureActionValue(REALobject self, REALstring value) {
    setStringProperty(self, &DRBurnFailureActionKey, value);
}
bool getDRBurnOverwriteDiscValue(REALobject self) { return booleanProperty(self, &DRBurnOverwriteDiscKey); }
void setDRBurnOverwriteDiscValue(REALobject self, bool value) {
    setBooleanProperty(self, &DRBurnOverwriteDiscKey, value);
}

REALobject burnForDevice(REALobject device) { return make<Burn, "DRBurn", "burnForDevice:", Device>(device); }

BURN_STRINGS(STRING_CONSTANT_GETTER)

void DRBurnConstructor(REALobject self) { constructWrapper(self); }
void DRBurnDestructor(REALobject self) { destroyWrapper(self); }

using frame::method, frame::property, frame::sharedMethod;

REALmethodDefinition methods[] = {
    method<"status as dictionary", status>(),
    method<"writeLayout(track as DRTrackQRX)", writeLayout>(),
    method<"device as DRDeviceQRX", device>(),
    method<"abort", abortRB>(),
    property<"appendable as boolean", appendable, setAppendable>(),
    property<"verifyDisc as boolean", verifyDisc, setVerifyDisc>(),
    property<"completionAction as string", completionAction, setCompletionAction>(),
    property<"requestedBurnSpeed as single", requestedBurnSpeed, setRequestedBurnSpeed>(),
    method<"Constructor(device as DRDeviceQRX)", Constructor2>(),
    property<"BurnFailureAction as string", getDRBurnFailureActionValue, setDRBurnFailureActionValue>(),
    property<"Overwrite as boolean", getDRBurnOverwriteDiscValue, setDRBurnOverwriteDiscValue>(),
};

REALmethodDefinition sharedMethods[] = {
    sharedMethod<"burnForDevice(device as DRDeviceQRX) as DRBurnQRX", burnForDevice>(),
    BURN_STRINGS(STRING_CONSTANT_ROW)};

} // namespace

REALclassDefinition DRBurnQRXClass = frame::makeClass({.name = "DRBurnQRX",
                                                       .dataSize = frame::platformObjectSize,
                                                       .constructor = DRBurnConstructor,
                                                       .destructor = DRBurnDestructor,
                                                       .methods = methods,
                                                       .sharedMethods = sharedMethods});
