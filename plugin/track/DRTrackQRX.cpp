// DRTrackQRX.cpp: one track that the burn engine writes.
#include "plugin/bridge/Files.hpp"
#include "plugin/bridge/Member.hpp"
#include "plugin/bridge/StringConstants.hpp"
#include "plugin/frame/Classes.hpp"
#include "plugin/track/TrackStrings.hpp"

namespace {

using namespace bridge;

REALobject trackFor(objc::Id folder) {
    return folder ? NewDRTrackQRX(objc::sendClass<"DRTrack", "trackForRootFolder:">(folder)) : nullptr;
}

// The factories run platform start-up inside the guard. Each answers nil when any step gives nil.
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

TRACK_STRINGS(STRING_CONSTANT_GETTER)

void DRTrackConstructor(REALobject self) { constructWrapper(self); }
void DRTrackDestructor(REALobject self) { destroyWrapper(self); }

REALmethodDefinition sharedMethods[] = {
    TRACK_STRINGS(STRING_CONSTANT_ROW)
        frame::sharedMethod<"trackForRootFolder(folder as DRFolderQRX) as DRTrackQRX", trackForRootFolder>(),
    frame::sharedMethod<"trackForRootFolder(folder as folderitem) as DRTrackQRX", trackForRootFolder2>(),
};

} // namespace

REALclassDefinition DRTrackQRXClass = frame::makeClass({.name = "DRTrackQRX",
                                                        .dataSize = frame::platformObjectSize,
                                                        .constructor = DRTrackConstructor,
                                                        .destructor = DRTrackDestructor,
                                                        .sharedMethods = sharedMethods});
