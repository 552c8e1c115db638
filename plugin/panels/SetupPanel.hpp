// SetupPanel.hpp: what the constructors of the two setup panels share.
#pragma once

#include "plugin/bridge/Member.hpp"
#include "plugin/objc/Ownership.hpp"
#include "plugin/panels/SetupPanelDelegate.hpp"

namespace panels {

// Makes the panel. Deliberately without a test for an earlier call, unlike the progress panels: a second call stores
// what the platform gives then, and the earlier reference is not released.
//
// The delegate comes first, then the panel is retained. A panel that refuses its delegate is none: the object never
// stores what it does not own.
template <objc::FixedString platformClass>
void constructSetupPanel(REALobject self) {
    CocoaInit();
    objc::Id panel = nullptr;
    bridge::guarded([&] {
        const objc::Id given = objc::sendClass<platformClass, "setupPanel">();
        if (!given) return;
        addDelegate(given, self);
        panel = objc::retained(given);
    });
    frame::slot(self) = panel;
}

// Many messages of panels want to know who sends; the panel itself does.
template <objc::FixedString message>
void tellFromItself(REALobject self) {
    bridge::guarded([=] { objc::send<message, void>(frame::held(self), frame::held(self)); });
}

} // namespace panels
