// How fast: GET PERFORMANCE, SET STREAMING, SET CD SPEED, and the buffer (MMC-5, 6.8, 6.21, 6.41, 6.37).
#include "Recorder.hpp"

#include <algorithm>

namespace recorder {
namespace {

std::vector<uint32_t> speedsOf(const State& state) {
    std::vector<uint32_t> speeds;
    if (state.profile() == 0) return speeds;
    for (const int factor : state.facts().factors)
        if (factor != 0)
            speeds.insert(speeds.begin(), static_cast<uint32_t>(factor) * state.facts().singleSpeed);
    return speeds;
}

void getPerformance(Recorder& recorder, Request& request) {
    const State& state = recorder.state;
    const uint8_t type = request.byte(10);
    const size_t most = request.field(8, 2);
    const auto last = static_cast<uint32_t>(std::max<int64_t>(state.capacity - 1, 0));
    const auto speeds = speedsOf(state);
    const uint32_t fastest = speeds.empty() ? 0 : speeds.front();
    Data answer(8, 0);
    if (type == 0x03) { // one descriptor for each write speed
        for (const uint32_t speed : speeds) {
            if ((answer.size() - 8) / 16 >= most) break;
            append(answer, 4, 0);
            append(answer, 4, last);
            append(answer, 4, fastest);
            append(answer, 4, speed);
        }
    } else if (type == 0x00) { // nominal speed from the first to the last block
        answer[4] = static_cast<uint8_t>(request.byte(1) & 4 ? 2 : 0);
        const uint32_t speed =
            state.writeSpeed != 0 && (request.byte(1) & 4) != 0 ? state.writeSpeed : fastest;
        for (const uint32_t value : {uint32_t{0}, speed, last, speed})
            append(answer, 4, value);
    } else {
        refuse(senses::invalidFieldInCommand);
    }
    put(answer, 0, 4, answer.size() - 4);
    request.in = answer;
}

void chooseSpeed(State& state, uint32_t wanted) {
    const auto speeds = speedsOf(state);
    if (speeds.empty()) return;
    // The fastest that is not faster than asked for, else the slowest.
    const auto found =
        std::find_if(speeds.begin(), speeds.end(), [&](uint32_t each) { return each <= wanted; });
    state.writeSpeed = found == speeds.end() ? speeds.back() : *found;
}

void setStreaming(Recorder& recorder, Request& request) {
    require(request.out.size() >= 28, senses::parameterListLength);
    if ((request.out[0] & 0x04) != 0) { // back to the drive's own
        recorder.state.writeSpeed = 0;
        return;
    }
    const uint64_t size = number(request.out, 20, 4), time = number(request.out, 24, 4);
    require(time > 0, senses::invalidFieldInParameters);
    chooseSpeed(recorder.state, static_cast<uint32_t>(std::min<uint64_t>(size * 1000 / time, UINT32_MAX)));
}

void setCDSpeed(Recorder& recorder, Request& request) {
    const uint32_t wanted = request.field(4, 2);
    if (wanted == 0xFFFF)
        recorder.state.writeSpeed = 0;
    else if (wanted != 0)
        chooseSpeed(recorder.state, wanted);
}

void readBufferCapacity(Recorder&, Request& request) {
    request.in.assign(12, 0);
    put(request.in, 0, 2, 10);
    put(request.in, 4, 4, 2u << 20);
    put(request.in, 8, 4, 2u << 20);
    request.in.resize(std::min<size_t>(12, request.field(7, 2)));
}

constexpr CommandRow rows[] = {
    {0x5C, "READ BUFFER CAPACITY", readBufferCapacity, false},
    {0xAC, "GET PERFORMANCE", getPerformance, false},
    {0xB6, "SET STREAMING", setStreaming, false},
    {0xBB, "SET CD SPEED", setCDSpeed, false},
};

} // namespace

std::span<const CommandRow> speedCommands() { return rows; }

} // namespace recorder
