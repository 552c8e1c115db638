// SetupPanelDelegate.cpp: turns the questions of a setup panel into events of a host object.
#include "plugin/panels/SetupPanelDelegate.hpp"

#include "plugin/bridge/Text.hpp"
#include "plugin/bridge/Wrappers.hpp"
#include "plugin/panels/PanelDelegate.hpp"
#include "plugin/panels/SetupPanelEvents.hpp"

namespace panels {

constinit decltype(setupEvents) setupEvents;

namespace {

objc::Class delegateClass();

// Without a host object, or without an implementation of the event, `missing` is the answer.
template <class Wanted, class Result, class Body>
Result answer(Id self, Result missing, Body body) {
    const REALobject host = hostOf(self);
    return frame::callEvent<Wanted>(setupEvents, host, missing,
                                    [&](auto event) -> Result { return body(event, host); });
}

objc::Boolean deviceCouldBeTarget(Id self, Sel, Id, Id device) {
    return answer<DeviceCouldBeTarget>(self, objc::Boolean{1},
                                       [=](auto event, REALobject host) -> objc::Boolean {
                                           const HostReference wrapper(NewDRDeviceQRX(device));
                                           return event(host, wrapper.get());
                                       });
}

// The key is written out: not every platform exports its constant.
Id selectedDevice(Id notification) {
    const objc::Adopted key(
        CFStringCreateWithCString(nullptr, "DRSetupPanelSelectedDeviceKey", kREALEncodingASCII));
    return objc::send<"objectForKey:">(objc::send<"userInfo">(notification), asObject(key.get()));
}

// Nil when no drive is selected.
void deviceSelectionChanged(Id self, Sel, Id notification) {
    answer<DeviceSelectionChanged>(self, 0, [=](auto event, REALobject host) {
        const HostReference wrapper(NewDRDeviceQRX(selectedDevice(notification)));
        event(host, wrapper.get());
        return 0;
    });
}

objc::Boolean shouldHandleMediaReservations(Id self, Sel, Id) {
    return answer<ShouldHandleMediaReservations>(
        self, objc::Boolean{0}, [](auto event, REALobject host) -> objc::Boolean { return event(host); });
}

// The prompt is written back in any case, changed or not. An empty one becomes nil, whether the host's empty string is a
// null or not.
objc::Boolean deviceContainsSuitableMedia(Id self, Sel, Id, Id device, Id* prompt) {
    return answer<DeviceContainsSuitableMedia>(
        self, objc::Boolean{1}, [=](auto event, REALobject host) -> objc::Boolean {
            const HostReference wrapper(NewDRDeviceQRX(device));
            REALstring text = prompt ? NSStringRB(*prompt) : nullptr;
            const objc::Boolean suitable = event(host, wrapper.get(), &text);
            const HostReference changed(text);
            const Id back = NewNSString(text);
            if (prompt) *prompt = objc::send<"length", unsigned long>(back) ? back : nullptr;
            return suitable;
        });
}

Id determineBestDevice(Id self, Sel, Id, Id deviceA, Id deviceB) {
    return answer<DetermineBestDevice>(self, deviceA, [=](auto event, REALobject host) -> Id {
        const HostReference wrapperA(NewDRDeviceQRX(deviceA));
        const HostReference wrapperB(NewDRDeviceQRX(deviceB));
        const HostReference best(event(host, wrapperA.get(), wrapperB.get()));
        return objc::autoreleased(objc::retained(frame::held(best.get())));
    });
}

objc::Boolean respondsToSelector(Id self, Sel, Sel asked) {
    const REALobject host = hostOf(self);
    if (isMissing<"setupPanel:deviceCouldBeTarget:", DeviceCouldBeTarget>(setupEvents, asked, host) ||
        isMissing<"setupPanelDeviceSelectionChanged:", DeviceSelectionChanged>(setupEvents, asked, host) ||
        isMissing<"setupPanelShouldHandleMediaReservations:", ShouldHandleMediaReservations>(setupEvents,
                                                                                             asked, host) ||
        isMissing<"setupPanel:deviceContainsSuitableMedia:promptString:", DeviceContainsSuitableMedia>(
            setupEvents, asked, host) ||
        isMissing<"setupPanel:determineBestDeviceOfA:orB:", DetermineBestDevice>(setupEvents, asked, host))
        return 0;
    return objc::sendSuper<"respondsToSelector:", objc::Boolean>(self, delegateClass(), asked);
}

void dealloc(Id self, Sel) {
    hold(hostOf(self), nullptr);
    objc::sendSuper<"dealloc", void>(self, delegateClass());
}

objc::Class delegateClass() {
    static const objc::Class made =
        objc::ClassBuilder("NSObject", "MyDRSetupPanelDelegateMethods")
            .ivar<REALobject>(hostField)
            .method<"setupPanel:deviceCouldBeTarget:", deviceCouldBeTarget>()
            .method<"setupPanelDeviceSelectionChanged:", deviceSelectionChanged>()
            .method<"setupPanelShouldHandleMediaReservations:", shouldHandleMediaReservations>()
            .method<"setupPanel:deviceContainsSuitableMedia:promptString:", deviceContainsSuitableMedia>()
            .method<"setupPanel:determineBestDeviceOfA:orB:", determineBestDevice>()
            .method<"respondsToSelector:", respondsToSelector>()
            .method<"copyWithZone:", copyWithZone>()
            .method<"dealloc", dealloc>()
            .finish();
    return made;
}

} // namespace

void addDelegate(Id panel, REALobject host) {
    if (!setupEvents.of<DeviceCouldBeTarget>(host) && !setupEvents.of<DeviceSelectionChanged>(host) &&
        !setupEvents.of<ShouldHandleMediaReservations>(host) &&
        !setupEvents.of<DeviceContainsSuitableMedia>(host) && !setupEvents.of<DetermineBestDevice>(host))
        return;
    objc::send<"setDelegate:", void>(panel, newDelegate(delegateClass(), host));
}

} // namespace panels
