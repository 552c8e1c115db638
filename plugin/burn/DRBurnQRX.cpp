// DRBurnQRX.cpp: one burn of one drive.
//
// The platform burns in the background; a program starts the burn with a layout and polls its status.
#include "plugin/bridge/Files.hpp"
#include "plugin/bridge/Member.hpp"
#include "plugin/bridge/Properties.hpp"
#include "plugin/bridge/Registry.hpp"
#include "plugin/bridge/StringConstants.hpp"
#include "plugin/burn/BurnStrings.hpp"
#include "plugin/frame/Classes.hpp"

BURN_STRINGS(STRING_CONSTANT_GETTER)

namespace {

using namespace bridge;

using Speed = Number<float>;

REALdictionary status(REALobject self) { return ask<Dictionary, "status">(self); }
REALdictionary properties(REALobject self) { return ask<Dictionary, "properties">(self); }
void setProperties(REALobject self, REALdictionary value) { tell<"setProperties:", Dictionary>(self, value); }

// True says that the burn was started with the image's layout; what becomes of it stands in the status. What can't
// be read as an image answers false and starts nothing.
bool burnImage(REALobject self, objc::Id path) {
    if (!path) return false;
    const objc::Id layout = objc::sendClass<"DRBurn", "layoutForImageFile:">(path);
    if (!layout) return false;
    objc::send<"writeLayout:", void>(frame::held(self), layout);
    return true;
}

// The slot is tested before the path is made.
bool writeImageFile(REALobject self, REALfolderItem ImageFile) {
    return guarded([=] { return frame::held(self) && burnImage(self, NewNSStringPath(ImageFile)); });
}
bool writeImageFilePath(REALobject self, REALstring ImagePath) {
    return guarded([=] { return frame::held(self) && burnImage(self, NewNSString(ImagePath)); });
}

// Only with a track and a burn on both sides; otherwise nothing happens, without an exception.
void writeLayout(REALobject self, REALobject track) {
    guarded([=] {
        if (frame::held(track)) objc::send<"writeLayout:", void>(frame::held(self), frame::held(track));
    });
}

// A nil or empty array is the layout all the same; what to do with it is the platform's to say.
void writeLayoutArray(REALobject self, REALarray tracks) {
    guarded([=] {
        const objc::Id layout = CreateNSObjectArray(tracks, false);
        objc::send<"writeLayout:", void>(frame::held(self), layout);
    });
}

REALobject device(REALobject self) { return ask<Device, "device">(self); }
void abortRB(REALobject self) { tell<"abort">(self); }
REALboolean appendable(REALobject self) { return ask<Boolean, "appendable">(self); }
void setAppendable(REALobject self, REALboolean value) { tell<"setAppendable:", Boolean>(self, value); }
REALboolean verifyDisc(REALobject self) { return ask<Boolean, "verifyDisc">(self); }
void setVerifyDisc(REALobject self, REALboolean value) { tell<"setVerifyDisc:", Boolean>(self, value); }
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

REALmemoryBlock getDRMediaCatalogNumberValue(REALobject self) {
    return getDataProperty(self, &DRMediaCatalogNumberKey);
}
void setDRMediaCatalogNumberValue(REALobject self, REALmemoryBlock value) {
    setDataProperty(self, &DRMediaCatalogNumberKey, value);
}
REALstring getDRBurnFailureActionValue(REALobject self) {
    return getStringProperty(self, &DRBurnFailureActionKey);
}
void setDRBurnFailureActionValue(REALobject self, REALstring value) {
    setStringProperty(self, &DRBurnFailureActionKey, value);
}
REALboolean getDRBurnOverwriteDiscValue(REALobject self) {
    return getBooleanProperty(self, &DRBurnOverwriteDiscKey);
}
void setDRBurnOverwriteDiscValue(REALobject self, REALboolean value) {
    setBooleanProperty(self, &DRBurnOverwriteDiscKey, value);
}
REALboolean getDRBurnUnderrunProtectionValue(REALobject self) {
    return getBooleanProperty(self, &DRBurnUnderrunProtectionKey);
}
void setDRBurnUnderrunProtectionValue(REALobject self, REALboolean value) {
    setBooleanProperty(self, &DRBurnUnderrunProtectionKey, value);
}
REALboolean getDRBurnTestingValue(REALobject self) { return getBooleanProperty(self, &DRBurnTestingKey); }
void setDRBurnTestingValue(REALobject self, REALboolean value) {
    setBooleanProperty(self, &DRBurnTestingKey, value);
}
double getDRBurnDoubleLayerL0DataZoneBlocksValue(REALobject self) {
    return getDoubleProperty(self, &DRBurnDoubleLayerL0DataZoneBlocksKey);
}
void setDRBurnDoubleLayerL0DataZoneBlocksValue(REALobject self, double value) {
    setDoubleProperty(self, &DRBurnDoubleLayerL0DataZoneBlocksKey, value);
}

REALobject burnForDevice(REALobject device) { return make<Burn, "DRBurn", "burnForDevice:", Device>(device); }

void DRBurnConstructor(REALobject self) { constructWrapper(self); }
void DRBurnDestructor(REALobject self) { destroyWrapper(self); }

using frame::method, frame::property, frame::sharedMethod;

REALmethodDefinition methods[] = {
    method<"status as dictionary", status>(),
    property<"properties as dictionary", properties, setProperties>(),
    method<"writeImageFile(ImageFile as FolderItem) as boolean", writeImageFile>(),
    method<"writeImageFile(ImagePath as String) as boolean", writeImageFilePath>(),
    method<"writeLayout(track as DRTrackQRX)", writeLayout>(),
    method<"writeLayout(tracks() as DRTrackQRX)", writeLayoutArray>(),
    method<"device as DRDeviceQRX", device>(),
    method<"abort", abortRB>(),
    property<"appendable as boolean", appendable, setAppendable>(),
    property<"verifyDisc as boolean", verifyDisc, setVerifyDisc>(),
    property<"completionAction as string", completionAction, setCompletionAction>(),
    property<"requestedBurnSpeed as single", requestedBurnSpeed, setRequestedBurnSpeed>(),
    method<"Constructor(device as DRDeviceQRX)", Constructor2>(),
    property<"MediaCatalogNumber as memoryblock", getDRMediaCatalogNumberValue,
             setDRMediaCatalogNumberValue>(),
    property<"BurnFailureAction as string", getDRBurnFailureActionValue, setDRBurnFailureActionValue>(),
    property<"Overwrite as boolean", getDRBurnOverwriteDiscValue, setDRBurnOverwriteDiscValue>(),
    property<"UnderrunProtection as boolean", getDRBurnUnderrunProtectionValue,
             setDRBurnUnderrunProtectionValue>(),
    property<"Testing as boolean", getDRBurnTestingValue, setDRBurnTestingValue>(),
    property<"DoubleLayerL0DataZoneBlocks as double", getDRBurnDoubleLayerL0DataZoneBlocksValue,
             setDRBurnDoubleLayerL0DataZoneBlocksValue>(),
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
