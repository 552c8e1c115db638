// SetupPanel.hpp: setup panels of programs, a panel's five questions as the platform asks them, and the events that
// decide them.
#pragma once

#include "tests/plugin/PanelTest.hpp"

namespace test {

inline constexpr const char* setupBase = "DRSetupPanelQRX";
inline constexpr const char* burnSetup = "DRBurnSetupPanelQRX";
inline constexpr const char* eraseSetup = "DREraseSetupPanelQRX";

inline constexpr std::string_view couldBe = "DeviceCouldBeTarget(device As DRDeviceQRX) As Boolean";
inline constexpr std::string_view changed = "DeviceSelectionChanged(device As DRDeviceQRX)";
inline constexpr std::string_view reservations = "SetupPanelShouldHandleMediaReservations As Boolean";
inline constexpr std::string_view suitable =
    "DeviceContainsSuitableMedia(device As DRDeviceQRX, ByRef prompt As String) As Boolean";
inline constexpr std::string_view best =
    "determineBestDevice(deviceA As DRDeviceQRX, deviceB As DRDeviceQRX) As DRDeviceQRX";

// What a handler answers that only looks.
inline Value nothingOf(std::string_view event) {
    return event == changed ? Value() : event == best ? Value() : Value(false);
}

class SetupPanelTest : public PanelTest {
  protected:
    Ref plain(const char* className = burnSetup) { return panelWith(className, {}); }
    Ref deciding(const char* className = burnSetup) { return panelWith(className, {aDecision()}); }
    static host::MemberSpec aDecision() {
        return on(couldBe, [](REALobject, Arguments) { return Value(true); });
    }
    void destroy(const Ref& panel) { harness::definition(setupBase)->destructor(panel.get()); }
};

// The same, with two devices to ask about.
class SetupPanelEvents : public SetupPanelTest {
  protected:
    // In the order of the events' table.
    static constexpr std::string_view events[] = {couldBe, changed, reservations, suitable, best};
    static constexpr const char* const callbacks[] = {
        "setupPanel:deviceCouldBeTarget:", "setupPanelDeviceSelectionChanged:",
        "setupPanelShouldHandleMediaReservations:", "setupPanel:deviceContainsSuitableMedia:promptString:",
        "setupPanel:determineBestDeviceOfA:orB:"};

    void SetUp() override {
        SetupPanelTest::SetUp();
        first = aDevice();
        // The plug-in does not look at what a device is.
        second = objc::autoreleased(objc::send<"init">(objc::alloc<"NSObject">()));
    }
    Ref deciding(std::string_view event, host::Body body) {
        return panelWith(burnSetup, {on(event, std::move(body))});
    }
    bool askCouldBe(Id device) {
        return objc::send<"setupPanel:deviceCouldBeTarget:", objc::Boolean>(delegate(), fake::shared,
                                                                            device) != 0;
    }
    void tellChanged(Id notification) {
        objc::send<"setupPanelDeviceSelectionChanged:", void>(delegate(), notification);
    }
    void tellSelected(Id device) {
        tellChanged(
            notification(objc::sendClass<"NSDictionary", "dictionaryWithObject:forKey:">(device, key())));
    }
    bool askReservations() {
        return objc::send<"setupPanelShouldHandleMediaReservations:", objc::Boolean>(delegate(),
                                                                                     fake::shared) != 0;
    }
    bool askSuitable(Id device, Id* prompt) {
        return objc::send<"setupPanel:deviceContainsSuitableMedia:promptString:", objc::Boolean>(
                   delegate(), fake::shared, device, prompt) != 0;
    }
    Id askBest(Id a, Id b) {
        return objc::send<"setupPanel:determineBestDeviceOfA:orB:">(delegate(), fake::shared, a, b);
    }
    // All five questions, with devices where they take some.
    void askEverything() {
        Id prompt = nsString("old");
        askCouldBe(first);
        tellSelected(first);
        askReservations();
        askSuitable(first, &prompt);
        askBest(first, second);
    }
    Id key() { return nsString("DRSetupPanelSelectedDeviceKey"); }
    Id notification(Id info) {
        return objc::sendClass<"NSNotification", "notificationWithName:object:userInfo:">(key(), fake::shared,
                                                                                          info);
    }
    std::size_t wrappers() { return harness::liveInstances()["DRDeviceQRX"]; }

    Id first = nullptr, second = nullptr;
};

} // namespace test
