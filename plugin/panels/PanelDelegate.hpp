// PanelDelegate.hpp: what all delegates have in common that answer a platform panel for a host object.
//
// A delegate is a platform object of a class that is made at run time. It holds the host object with one reference, from
// when it is installed until it is deallocated, and only the host object's destructor removes it. So a panel object with
// a delegate is not destroyed by the host while the delegate exists. That is kept deliberately: programs rely on a
// panel's events for as long as the platform can call them.
#pragma once

#include "plugin/bridge/HostReference.hpp"
#include "plugin/frame/Events.hpp"
#include "plugin/frame/InstanceData.hpp"
#include "plugin/objc/ClassBuilder.hpp"
#include "plugin/objc/Ownership.hpp"

namespace panels {

using objc::Id, objc::Sel;

inline constexpr char hostField[] = "host";

inline REALobject& hostOf(Id delegate) { return *objc::ivar<REALobject>(delegate, hostField); }

// A field takes a reference of its own to a host object, or none; what it held is dropped.
inline void hold(REALobject& field, REALobject object) {
    if (object) REALLockObject(object);
    if (const REALobject before = std::exchange(field, object)) REALUnlockObject(before);
}

// A delegate is never duplicated.
inline Id copyWithZone(Id self, Sel, void*) { return objc::retained(self); }

// A new delegate that holds the host object, with the one reference of its allocation.
inline Id newDelegate(objc::Class delegateClass, REALobject host) {
    const Id made = objc::send<"init">(objc::send<"alloc">(reinterpret_cast<Id>(delegateClass)));
    if (made) hold(hostOf(made), host);
    return made;
}

// The host object is the panel's no longer. The panel doesn't retain its delegate, so this drops the last reference.
inline void removeDelegate(Id panel) {
    const Id delegate = objc::send<"delegate">(panel);
    if (!delegate) return;
    objc::send<"setDelegate:", void>(panel, Id{});
    objc::release(delegate);
}

// Whether a callback is asked for whose event the host object does not implement. The panel then decides itself.
// Looked up at every question. Without a host object nothing is denied.
template <objc::FixedString callback, class Wanted, class Table>
bool isMissing(const Table& events, Sel asked, REALobject host) {
    return host && asked == objc::selector<callback>() && !events.template of<Wanted>(host);
}

} // namespace panels
