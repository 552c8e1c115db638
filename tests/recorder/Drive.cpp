// Commands about the drive itself: who it is, is it ready, the tray (SPC-3, 6; MMC-5, 6.46).
#include "Recorder.hpp"

#include <algorithm>

namespace recorder {
namespace {

void testUnitReady(Recorder&, Request&) {}

// The sense of a command comes with the command; what is left to tell is a long operation's progress.
void requestSense(Recorder& recorder, Request& request) {
    request.in.assign(18, 0);
    request.in[0] = 0x70;
    request.in[7] = 10;
    State& state = recorder.state;
    if (state.busyPolls > 0) {
        request.in[2] = senses::operationInProgress.key;
        request.in[12] = senses::operationInProgress.code;
        request.in[13] = senses::operationInProgress.qualifier;
        request.in[15] = 0x80;
        put(request.in, 16, 2,
            static_cast<uint64_t>(65535 * (state.busyTotal - state.busyPolls) / state.busyTotal));
        --state.busyPolls;
    }
    request.in.resize(std::min<size_t>(request.in.size(), request.byte(4)));
}

void inquiry(Recorder& recorder, Request& request) {
    const State& state = recorder.state;
    if ((request.byte(1) & 1) != 0) { // vital product data
        Data page = {0x05, request.byte(2), 0, 0};
        if (request.byte(2) == 0x00) {
            append(page, {0x00, 0x80});
        } else if (request.byte(2) == 0x80) {
            page.insert(page.end(), state.serial.begin(), state.serial.end());
        } else {
            refuse(senses::invalidFieldInCommand);
        }
        page[3] = static_cast<uint8_t>(page.size() - 4);
        request.in = page;
    } else {
        request.in = {0x05, 0x80, 0x05, 0x32, 31, 0, 0, 0};
        putText(request.in, 8, 8, state.vendor);
        putText(request.in, 16, 16, state.product);
        putText(request.in, 32, 4, state.revision);
    }
    request.in.resize(std::min<size_t>(request.in.size(), request.field(3, 2)));
}

void startStop(Recorder& recorder, Request& request) {
    State& state = recorder.state;
    const bool loadOrEject = (request.byte(4) & 2) != 0, start = (request.byte(4) & 1) != 0;
    if (!loadOrEject) return;
    require(!state.faults.stuckTray, senses::loadOrEjectFailed);
    if (start) {
        state.attention = state.trayOpen && state.medium;
        state.trayOpen = false;
        return;
    }
    require(!state.locked, senses::removalPrevented);
    state.trayOpen = true;
}

void preventRemoval(Recorder& recorder, Request& request) {
    recorder.state.locked = (request.byte(4) & 1) != 0;
}

// Polled, media class only (MMC-5, 6.7): event code 0, and what is in the drive.
void eventStatus(Recorder& recorder, Request& request) {
    require((request.byte(1) & 1) != 0, senses::invalidFieldInCommand);
    if ((request.byte(4) & 0x10) == 0) {
        request.in = {0, 2, 0x80, 0x10};
        return;
    }
    const State& state = recorder.state;
    request.in = {0, 6, 0x04, 0x10, 0, 0, 0, 0};
    request.in[5] =
        static_cast<uint8_t>((state.trayOpen ? 1 : 0) | (state.medium && !state.trayOpen ? 2 : 0));
}

void mechanismStatus(Recorder& recorder, Request& request) {
    request.in.assign(8, 0);
    request.in[1] = recorder.state.trayOpen ? 0x10 : 0;
}

void readBuffer(Recorder&, Request& request) {
    // Mode 3 is the descriptor, which tells of no buffer to play with.
    require((request.byte(1) & 0x1F) == 3, senses::invalidFieldInCommand);
    request.in.assign(4, 0);
}

constexpr CommandRow rows[] = {
    {0x00, "TEST UNIT READY", testUnitReady, true},
    {0x03, "REQUEST SENSE", requestSense, false},
    {0x12, "INQUIRY", inquiry, false},
    {0x1B, "START STOP UNIT", startStop, false},
    {0x1E, "PREVENT ALLOW REMOVAL", preventRemoval, false},
    {0x3C, "READ BUFFER", readBuffer, false},
    {0x4A, "GET EVENT STATUS", eventStatus, false},
    {0xBD, "MECHANISM STATUS", mechanismStatus, false},
};

} // namespace

std::span<const CommandRow> driveCommands() { return rows; }

} // namespace recorder
