// Blocks back to the initiator: READ(10), READ(12), READ CD (MMC-5, 6.19, 6.20; SBC-2, 5.6).
#include "Recorder.hpp"

#include <algorithm>

namespace recorder {
namespace {

constexpr size_t userBytes = 2048;

const Track* requireReadable(const State& state, int64_t block) {
    const auto& bad = state.faults.readErrors;
    if (std::find(bad.begin(), bad.end(), block) != bad.end()) {
        Sense sense = senses::unrecoveredReadError;
        sense.block = static_cast<int32_t>(block);
        refuse(sense);
    }
    const auto& never = state.faults.notWritten;
    require(std::find(never.begin(), never.end(), block) == never.end(), senses::blankCheck);
    if (state.writing() == Writing::Overwrite) {
        require(state.formatted, senses::blankCheck);
        require(block >= 0 && block < state.capacity, senses::blockOutOfRange);
        return nullptr;
    }
    for (const Track& track : state.tracks) {
        if (block < track.start - track.pregap || block >= track.end()) continue;
        require(block < track.next(), track.closed ? senses::illegalModeForTrack : senses::blankCheck);
        return &track;
    }
    refuse(senses::blockOutOfRange);
}

// Run-out blocks behind a track written at once can't be read as data.
void readBlocks(Recorder& recorder, Request& request, uint32_t start, uint32_t count) {
    State& state = recorder.state;
    request.in.reserve(count * userBytes);
    Data sector(recorder.sectorBytes());
    for (uint32_t index = 0; index < count; ++index) {
        const int64_t block = int64_t{start} + index;
        const Track* track = requireReadable(state, block);
        require(track == nullptr || (track->mode != SectorMode::Audio && track->mode != SectorMode::Mode2),
                senses::illegalModeForTrack);
        recorder.fetch(block, sector);
        const ptrdiff_t at = !state.isCD() ? 0 : track->mode == SectorMode::Mode1 ? 16 : 24;
        request.in.insert(request.in.end(), sector.begin() + at, sector.begin() + at + ptrdiff_t{userBytes});
    }
}

void read10(Recorder& recorder, Request& request) {
    readBlocks(recorder, request, request.field(2, 4), request.field(7, 2));
}
void read12(Recorder& recorder, Request& request) {
    readBlocks(recorder, request, request.field(2, 4), request.field(6, 4));
}

// The parts of a sector that byte 9 selects.
void appendSector(Data& answer, const Data& sector, SectorMode mode, uint8_t parts) {
    const auto add = [&](size_t from, size_t count) {
        answer.insert(answer.end(), sector.begin() + static_cast<ptrdiff_t>(from),
                      sector.begin() + static_cast<ptrdiff_t>(from + count));
    };
    if (mode == SectorMode::Audio) {
        if ((parts & 0x10) != 0) add(0, 2352);
        return;
    }
    if ((parts & 0x80) != 0) add(0, 12);
    if ((parts & 0x20) != 0) add(12, 4);
    const bool isXA = mode == SectorMode::Form1 || mode == SectorMode::Form2;
    if (isXA && (parts & 0x40) != 0) add(16, 8);
    const size_t at = isXA ? 24 : 16;
    const size_t user = mode == SectorMode::Mode2 ? 2336 : mode == SectorMode::Form2 ? 2324 : userBytes;
    if ((parts & 0x10) != 0) add(at, user);
    if ((parts & 0x08) != 0) add(at + user, 2352 - at - user);
}

void readSectors(Recorder& recorder, Request& request, int64_t start, uint32_t count) {
    State& state = recorder.state;
    require(state.isCD(), senses::incompatibleMedium);
    const uint8_t expected = request.byte(1) >> 2 & 7, subChannel = request.byte(10) & 7;
    Data sector(2352);
    for (uint32_t index = 0; index < count; ++index) {
        const Track* track = requireReadable(state, start + index);
        const SectorMode mode = track->mode;
        const bool fits =
            expected == 0 || (expected == 1 && mode == SectorMode::Audio) ||
            (expected == 2 && mode == SectorMode::Mode1) || (expected == 3 && mode == SectorMode::Mode2) ||
            (expected == 4 && mode == SectorMode::Form1) || (expected == 5 && mode == SectorMode::Form2);
        require(fits, senses::illegalModeForTrack);
        recorder.fetch(start + index, sector);
        appendSector(request.in, sector, mode, request.byte(9));
        request.in.resize(request.in.size() + (subChannel == 1 || subChannel == 4 ? 96u
                                               : subChannel == 2                  ? 16u
                                                                                  : 0u));
    }
}

void readCD(Recorder& recorder, Request& request) {
    readSectors(recorder, request, static_cast<int32_t>(request.field(2, 4)), request.field(6, 3));
}
void readCDByTime(Recorder& recorder, Request& request) {
    const int64_t start = blockOfTime(request.command, 3), end = blockOfTime(request.command, 6);
    require(end >= start, senses::invalidFieldInCommand);
    readSectors(recorder, request, start, static_cast<uint32_t>(end - start));
}

void verify(Recorder& recorder, Request& request) {
    for (uint32_t index = 0; index < request.field(7, 2); ++index)
        requireReadable(recorder.state, int64_t{request.field(2, 4)} + index);
}

void seek(Recorder&, Request&) {}

constexpr CommandRow rows[] = {
    {0x28, "READ(10)", read10, true}, {0x01, "REZERO UNIT", seek, true},
    {0x2B, "SEEK", seek, true},       {0x2F, "VERIFY", verify, true},
    {0xA8, "READ(12)", read12, true}, {0xB9, "READ CD MSF", readCDByTime, true},
    {0xBE, "READ CD", readCD, true},
};

} // namespace

std::span<const CommandRow> readCommands() { return rows; }

} // namespace recorder
