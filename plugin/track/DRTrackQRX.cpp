// DRTrackQRX.cpp: one track that the burn engine writes.
#include "plugin/bridge/Files.hpp"
#include "plugin/bridge/Member.hpp"
#include "plugin/bridge/Properties.hpp"
#include "plugin/bridge/Registry.hpp"
#include "plugin/bridge/StringConstants.hpp"
#include "plugin/frame/Classes.hpp"
#include "plugin/track/MyDRTrack.hpp"
#include "plugin/track/TrackConstants.hpp"
#include "plugin/track/TrackEvents.hpp"
#include "plugin/track/TrackStrings.hpp"

// The older of the key's two names.
extern "C" __attribute__((weak)) const objc::Id kDRPreGapIsRequiredKey;

TRACK_STRINGS(STRING_CONSTANT_GETTER)

namespace {

using namespace bridge;

uint64_t estimateLength(REALobject self) { return ask<Number<uint64_t>, "estimateLength">(self); }

REALboolean getDRPreGapIsRequiredValue(REALobject self) {
    return getBooleanProperty(self, &kDRPreGapIsRequiredKey);
}
void setDRPreGapIsRequiredValue(REALobject self, REALboolean value) {
    setBooleanProperty(self, &kDRPreGapIsRequiredKey, value);
}
double getDRPreGapLengthValue(REALobject self) { return getDoubleProperty(self, &DRPreGapLengthKey); }
void setDRPreGapLengthValue(REALobject self, double value) {
    setDoubleProperty(self, &DRPreGapLengthKey, value);
}
double getDRMaxBurnSpeedValue(REALobject self) { return getDoubleProperty(self, &DRMaxBurnSpeedKey); }
void setDRMaxBurnSpeedValue(REALobject self, double value) {
    setDoubleProperty(self, &DRMaxBurnSpeedKey, value);
}
REALmemoryBlock getDRTrackISRCValue(REALobject self) { return getDataProperty(self, &DRTrackISRCKey); }
void setDRTrackISRCValue(REALobject self, REALmemoryBlock value) {
    setDataProperty(self, &DRTrackISRCKey, value);
}
REALstring getDRVerificationTypeValue(REALobject self) {
    return getStringProperty(self, &DRVerificationTypeKey);
}
void setDRVerificationTypeValue(REALobject self, REALstring value) {
    setStringProperty(self, &DRVerificationTypeKey, value);
}
int32_t getDRBlockSizeValue(REALobject self) { return getIntegerProperty(self, &DRBlockSizeKey); }
void setDRBlockSizeValue(REALobject self, int32_t value) { setIntegerProperty(self, &DRBlockSizeKey, value); }
// Deliberately the block type's key, so this property is an alias of BlockType: programs rely on it. Who wants
// the real track mode stores it under DRTrackModeKey through `properties`.
int32_t getDRTrackModeValue(REALobject self) { return getIntegerProperty(self, &DRBlockTypeKey); }
void setDRTrackModeValue(REALobject self, int32_t value) { setIntegerProperty(self, &DRBlockTypeKey, value); }
int32_t getDRSessionFormatValue(REALobject self) { return getIntegerProperty(self, &DRSessionFormatKey); }
void setDRSessionFormatValue(REALobject self, int32_t value) {
    setIntegerProperty(self, &DRSessionFormatKey, value);
}
int32_t getDRDataFormValue(REALobject self) { return getIntegerProperty(self, &DRDataFormKey); }
void setDRDataFormValue(REALobject self, int32_t value) { setIntegerProperty(self, &DRDataFormKey, value); }
int32_t getDRBlockTypeValue(REALobject self) { return getIntegerProperty(self, &DRBlockTypeKey); }
void setDRBlockTypeValue(REALobject self, int32_t value) { setIntegerProperty(self, &DRBlockTypeKey, value); }

// Best throughput reached, in KB/s.
double testProductionSpeedForInterval(REALobject self, double seconds) {
    return guarded([=]() -> double {
        return objc::send<"testProductionSpeedForInterval:", float>(frame::held(self), seconds);
    });
}
double testProductionSpeedForLength(REALobject self, int32_t bytes) {
    return guarded([=]() -> double {
        return objc::send<"testProductionSpeedForLength:", float>(frame::held(self),
                                                                  static_cast<uint32_t>(bytes));
    });
}

// Reading asks the track and assigning writes its properties: the asymmetry is deliberate, because a track may
// know its length from elsewhere than from what was stored.
REALobject length(REALobject self) { return ask<MSF, "length">(self); }
void setDRTrackLengthValue(REALobject self, REALobject value) {
    setProperty(self, &DRTrackLengthKey, frame::held(value));
}
REALobject preGap(REALobject self) { return ask<MSF, "preGap">(self); }
void setPreGap(REALobject self, REALobject value) { tell<"setPreGap:", MSF>(self, value); }

// Makes the object a track that its own events produce. No platform start-up: the class constructor has run it.
void Constructor(REALobject self) {
    if (frame::held(self)) return raiseConstructorCalledTooOften();
    guarded([=] {
        frame::slot(self) = track::newProducerTrack(self);
        RegisterInstance(self, frame::slot(self));
    });
}

REALdictionary properties(REALobject self) { return ask<Dictionary, "properties">(self); }
void setProperties(REALobject self, REALdictionary value) { tell<"setProperties:", Dictionary>(self, value); }

REALobject trackForFile(objc::Id path) {
    return path ? NewDRTrackQRX(objc::sendClass<"DRTrack", "trackForAudioFile:">(path)) : nullptr;
}

REALobject trackFor(objc::Id folder) {
    return folder ? NewDRTrackQRX(objc::sendClass<"DRTrack", "trackForRootFolder:">(folder)) : nullptr;
}

// The factories run platform start-up inside the guard. Each answers nil when any step gives nil.
REALobject trackForAudioFile(REALstring path) {
    return guarded([=] {
        CocoaInit();
        return trackForFile(NewNSString(path));
    });
}

REALobject trackForAudioFile2(REALfolderItem file) {
    return guarded([=] {
        CocoaInit();
        return trackForFile(NewNSStringPath(file));
    });
}

REALobject trackForRootFolder(REALobject folder) {
    return guarded([=] {
        CocoaInit();
        return trackFor(frame::held(folder));
    });
}

// The platform folder on the way is neither kept nor wrapped.
REALobject trackForRootFolder2(REALfolderItem folder) {
    return guarded([=] {
        CocoaInit();
        const objc::Id path = NewNSStringPath(folder);
        return path ? trackFor(objc::sendClass<"DRFolder", "folderWithPath:">(path)) : nullptr;
    });
}

void DRTrackConstructor(REALobject self) { constructWrapper(self); }
void DRTrackDestructor(REALobject self) { destroyWrapper(self); }

using frame::method, frame::property;

REALmethodDefinition methods[] = {
    method<"estimateLength as UInt64", estimateLength>(),
    property<"PreGapIsRequired as boolean", getDRPreGapIsRequiredValue, setDRPreGapIsRequiredValue>(),
    property<"PreGapLength as double", getDRPreGapLengthValue, setDRPreGapLengthValue>(),
    property<"MaxBurnSpeed as double", getDRMaxBurnSpeedValue, setDRMaxBurnSpeedValue>(),
    property<"TrackISRC as memoryblock", getDRTrackISRCValue, setDRTrackISRCValue>(),
    property<"VerificationType as string", getDRVerificationTypeValue, setDRVerificationTypeValue>(),
    property<"BlockSize as integer", getDRBlockSizeValue, setDRBlockSizeValue>(),
    property<"TrackMode as integer", getDRTrackModeValue, setDRTrackModeValue>(),
    property<"SessionFormat as integer", getDRSessionFormatValue, setDRSessionFormatValue>(),
    property<"DataForm as integer", getDRDataFormValue, setDRDataFormValue>(),
    property<"BlockType as integer", getDRBlockTypeValue, setDRBlockTypeValue>(),
    method<"testProductionSpeedForInterval(seconds as double) as double", testProductionSpeedForInterval>(),
    method<"testProductionSpeedForLength(length as integer) as double", testProductionSpeedForLength>(),
    property<"Length as DRMSFQRX", length, setDRTrackLengthValue>(),
    property<"preGap as DRMSFQRX", preGap, setPreGap>(),
    method<"Constructor", Constructor>(),
    property<"properties as dictionary", properties, setProperties>(),
};

REALmethodDefinition sharedMethods[] = {
    TRACK_STRINGS(STRING_CONSTANT_ROW)
        frame::sharedMethod<"trackForAudioFile(path as string) as DRTrackQRX", trackForAudioFile>(),
    frame::sharedMethod<"trackForAudioFile(path as folderitem) as DRTrackQRX", trackForAudioFile2>(),
    frame::sharedMethod<"trackForRootFolder(folder as DRFolderQRX) as DRTrackQRX", trackForRootFolder>(),
    frame::sharedMethod<"trackForRootFolder(folder as folderitem) as DRTrackQRX", trackForRootFolder2>(),
};

} // namespace

REALclassDefinition DRTrackQRXClass = frame::makeClass({.name = "DRTrackQRX",
                                                        .dataSize = frame::platformObjectSize,
                                                        .constructor = DRTrackConstructor,
                                                        .destructor = DRTrackDestructor,
                                                        .methods = methods,
                                                        .events = track::events.rows,
                                                        .constants = track::constants,
                                                        .sharedMethods = sharedMethods});
