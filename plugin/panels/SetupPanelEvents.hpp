// SetupPanelEvents.hpp: the decisions of a setup panel that a program can take over.
#pragma once

#include "plugin/frame/Events.hpp"

namespace panels {

using DeviceCouldBeTarget = frame::Event<"DeviceCouldBeTarget(device as DRDeviceQRX) as boolean",
                                         REALboolean(REALobject, REALobject device)>;
using DeviceSelectionChanged =
    frame::Event<"DeviceSelectionChanged(device as DRDeviceQRX)", void(REALobject, REALobject device)>;
using ShouldHandleMediaReservations =
    frame::Event<"SetupPanelShouldHandleMediaReservations as boolean", REALboolean(REALobject)>;
using DeviceContainsSuitableMedia =
    frame::Event<"DeviceContainsSuitableMedia(device as DRDeviceQRX, byref prompt as string) as boolean",
                 REALboolean(REALobject, REALobject device, REALstring* prompt)>;
using DetermineBestDevice =
    frame::Event<"determineBestDevice(deviceA as DRDeviceQRX, deviceB as DRDeviceQRX) as DRDeviceQRX",
                 REALobject(REALobject, REALobject deviceA, REALobject deviceB)>;

// In the order of declaration, which is fixed.
extern frame::EventTable<DeviceCouldBeTarget, DeviceSelectionChanged, ShouldHandleMediaReservations,
                         DeviceContainsSuitableMedia, DetermineBestDevice>
    setupEvents;

} // namespace panels
