// ProgressPanel.hpp: the two progress panels' common half: the delegate, construction, beginning, and the end.
//
// `Kind` says what is different: the names of platform classes and callbacks, and the events (BurnProgress.hpp,
// EraseProgress.hpp).
#pragma once

#include "plugin/bridge/Member.hpp"
#include "plugin/panels/PanelDelegate.hpp"

namespace panels {

// The host object of the burn or erase that was begun last, held with one reference, or none.
inline constexpr char jobField[] = "job";

// ---- the delegate --------------------------------------------------------------------------------------

template <class Kind>
class ProgressDelegate {
  public:
    static objc::Class delegateClass() {
        static const objc::Class made = objc::ClassBuilder("NSObject", Kind::delegateName)
                                            .template ivar<REALobject>(hostField)
                                            .template ivar<REALobject>(jobField)
                                            .template method<Kind::willBegin, willBegin>()
                                            .template method<Kind::didFinish, didFinish>()
                                            .template method<Kind::jobDidFinish, jobDidFinish>()
                                            .template method<"respondsToSelector:", respondsToSelector>()
                                            .template method<"copyWithZone:", copyWithZone>()
                                            .template method<"dealloc", dealloc>()
                                            .finish();
        return made;
    }

  private:
    static void willBegin(Id self, Sel, Id) {
        frame::callEvent<typename Kind::WillBegin>(Kind::events, hostOf(self));
    }

    static void didFinish(Id self, Sel, Id) {
        frame::callEvent<typename Kind::DidFinish>(Kind::events, hostOf(self));
    }

    // The event gets the very host object that the program began with, not a new wrapper of the platform's.
    static objc::Boolean jobDidFinish(Id self, Sel, Id, Id) {
        const REALobject host = hostOf(self);
        return frame::callEvent<typename Kind::JobDidFinish>(
            Kind::events, host, objc::Boolean{0}, [=](auto event) -> objc::Boolean {
                return event(host, *objc::ivar<REALobject>(self, jobField));
            });
    }

    static objc::Boolean respondsToSelector(Id self, Sel, Sel asked) {
        const REALobject host = hostOf(self);
        if (isMissing<Kind::willBegin, typename Kind::WillBegin>(Kind::events, asked, host) ||
            isMissing<Kind::didFinish, typename Kind::DidFinish>(Kind::events, asked, host) ||
            isMissing<Kind::jobDidFinish, typename Kind::JobDidFinish>(Kind::events, asked, host))
            return 0;
        return objc::sendSuper<"respondsToSelector:", objc::Boolean>(self, delegateClass(), asked);
    }

    static void dealloc(Id self, Sel) {
        hold(*objc::ivar<REALobject>(self, jobField), nullptr);
        hold(hostOf(self), nullptr);
        objc::sendSuper<"dealloc", void>(self, delegateClass());
    }
};

// ---- construction and the end --------------------------------------------------------------------------

// Makes the panel, with a delegate in any case, also when the program implements no event.
template <class Kind>
void constructProgressPanel(REALobject self) {
    if (frame::slot(self)) return raiseConstructorCalledTooOften();
    CocoaInit();
    bridge::guarded([=] {
        const Id panel = objc::sendClass<Kind::platformClass, "progressPanel">();
        if (!panel) return;
        objc::send<"setDelegate:", void>(panel, newDelegate(ProgressDelegate<Kind>::delegateClass(), self));
        frame::slot(self) = objc::retained(panel);
    });
}

// No platform start-up, deliberately: there is nothing to let go of while no panel was made.
inline void destroyProgressPanel(REALobject self) {
    bridge::guarded([=] {
        const Id panel = frame::slot(self);
        if (!panel) return;
        removeDelegate(panel);
        objc::release(panel);
        frame::slot(self) = nullptr;
    });
}

// ---- beginning -----------------------------------------------------------------------------------------

// The delegate takes the burn or erase that is begun, possibly nil, in the place of the one before. It is left alone
// when the program implements none of the events: then nobody will ask for it.
template <class Kind>
void rememberJob(REALobject self, REALobject job) {
    if (!Kind::events.template of<typename Kind::WillBegin>(self) &&
        !Kind::events.template of<typename Kind::DidFinish>(self) &&
        !Kind::events.template of<typename Kind::JobDidFinish>(self))
        return;
    if (auto* field = objc::ivar<REALobject>(objc::send<"delegate">(frame::slot(self)), jobField))
        hold(*field, job);
}

} // namespace panels
