// Blocks onto the medium: WRITE(10), WRITE(12), SEND CUE SHEET, calibration (MMC-5, 4.10, 6.36 to 6.39, 6.49).
#include "CueSheet.hpp"
#include "Recorder.hpp"

#include <algorithm>

namespace recorder {
namespace {

constexpr size_t userBytes = 2048;

// A CD sector as it lies on the disc, without the correction bytes, which nobody asks this recorder for.
Data sectorOf(int64_t block, SectorMode mode, View bytes) {
    if (mode == SectorMode::Audio || bytes.size() == 2352) return {bytes.begin(), bytes.end()};
    Data sector = {0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0};
    Data time;
    appendTime(time, block);
    for (const uint8_t part : time)
        sector.push_back(static_cast<uint8_t>(part / 10 << 4 | part % 10));
    sector.push_back(mode == SectorMode::Mode1 ? 1 : 2);
    const bool needsSubheader =
        (mode == SectorMode::Form1 || mode == SectorMode::Form2) && bytes.size() != 2336;
    const uint8_t form = mode == SectorMode::Form2 ? 0x28 : 0x08;
    if (needsSubheader) append(sector, Data{0, 0, form, 0, 0, 0, form, 0});
    sector.insert(sector.end(), bytes.begin(), bytes.end());
    sector.resize(2352);
    return sector;
}

void checkFaults(const State& state, int64_t block) {
    require(!state.faults.powerCalibration, senses::powerCalibrationError);
    const auto& bad = state.faults.writeErrors;
    if (std::find(bad.begin(), bad.end(), block) == bad.end()) return;
    Sense sense = senses::writeError;
    sense.block = static_cast<int32_t>(block);
    refuse(sense);
}

void storeBlock(Recorder& recorder, int64_t block, SectorMode mode, View bytes) {
    checkFaults(recorder.state, block);
    if (recorder.state.isCD())
        recorder.store(block, sectorOf(block, mode, bytes));
    else
        recorder.store(block, bytes);
}

// Track at once: what kind of sectors, and how long, the write parameters say (MMC-5, table 661).
std::pair<SectorMode, size_t> blocksOf(const State& state) {
    if (!state.isCD()) return {SectorMode::Mode1, userBytes};
    switch (state.writeParameters[4] & 0x0F) {
    case 0:
        return {SectorMode::Audio, 2352};
    case 9:
        return {SectorMode::Mode2, 2336};
    case 10:
        return {SectorMode::Form1, userBytes};
    case 12:
        return {SectorMode::Form2, 2324};
    default:
        return {SectorMode::Mode1, userBytes};
    }
}

Track& trackForWriting(State& state, int64_t block, SectorMode mode) {
    for (Track& track : state.tracks) {
        if (track.closed || track.next() != block) continue;
        require(track.mode == mode || track.written == 0, senses::illegalModeForTrack);
        return track;
    }
    require(state.openTrack() == nullptr && block == state.nextTrackStart(), senses::invalidAddressForWrite);
    require(!state.isCD() || state.tracks.size() < 99, senses::noMoreTracks);
    Track track;
    track.number = static_cast<int>(state.tracks.size()) + 1;
    track.session = state.currentSession();
    track.start = block;
    return state.tracks.emplace_back(track);
}

void writeTrackAtOnce(Recorder& recorder, int64_t block, uint32_t count, View bytes) {
    State& state = recorder.state;
    // Drives say it like that, and programs know it (MMC-5, 4.10.2 and 5.3.14).
    require(state.writesDVDAtOnce() ? state.closedSessions == 0 : !state.onlyAtOnce,
            senses::illegalModeForTrack);
    const auto [mode, length] = blocksOf(state);
    require(bytes.size() == count * length, senses::invalidFieldInCommand);
    require(block + count <= state.capacity, senses::blockOutOfRange);
    Track& track = trackForWriting(state, block, mode);
    require(!track.reserved || block + count <= track.start + track.size, senses::endOfUserArea);
    if (track.written == 0) {
        track.mode = mode;
        track.control = state.isCD() ? state.writeParameters[3] & 0x0F : 4;
        require(!state.isCD() || ((track.control & 4) != 0) == (mode != SectorMode::Audio),
                senses::illegalModeForTrack);
        if (state.isCD() && state.writeParameters[16] == 0x80)
            track.isrc.assign(state.writeParameters.begin() + 17, state.writeParameters.begin() + 29);
    }
    for (uint32_t index = 0; index < count; ++index) {
        storeBlock(recorder, block + index, mode, bytes.subspan(index * length, length));
        ++track.written;
    }
}

// CD-Text packs come as sub-channel: six bits in a byte, four packs of 18 bytes in a block. They go round.
void collectText(State& state, View bytes) {
    for (size_t at = 0; at + 24 <= bytes.size(); at += 24) {
        Data pack;
        for (size_t part = 0; part < 24; part += 4) {
            uint32_t bits = 0;
            for (size_t index = 0; index < 4; ++index)
                bits = bits << 6 | (bytes[at + part + index] & 0x3Fu);
            append(pack, 3, bits);
        }
        const bool goesRound =
            !state.text.empty() && std::equal(pack.begin(), pack.end(), state.text.begin());
        if (goesRound || state.text.size() >= size_t{2048} * 18) {
            state.text.push_back(0xFF); // a mark that no more are collected
            return;
        }
        append(state.text, pack);
    }
}

Track& trackOfPart(State& state, const CueSheet& sheet, const Part& part) {
    for (Track& track : state.tracks)
        if (track.number == part.number) return track;
    Track track;
    track.number = part.number;
    track.session = state.currentSession();
    track.mode = part.mode;
    track.control = part.control;
    track.start = part.from;
    // INDEX 1 is where the track starts; what is before is its pregap.
    for (const Part& each : sheet.parts) {
        if (each.number != part.number) continue;
        if (each.index == 0) track.pregap += each.until - each.from;
        if (each.index == 1) track.start = each.from;
    }
    for (const auto& [number, code] : sheet.codes)
        if (number == part.number) track.isrc = code.substr(0, 12);
    return state.tracks.emplace_back(track);
}

void endSheet(Recorder& recorder) {
    State& state = recorder.state;
    for (Track& track : state.tracks) {
        if (track.closed) continue;
        track.size = track.written;
        track.closed = true;
    }
    if (state.text.size() % 18 == 1) state.text.pop_back();
    state.cueSheet.clear();
    closeSession(recorder, state.writeParameters[3] >> 6 == 3);
}

// The sheet says what each block is; blocks that the drive makes itself are passed over.
void writeSessionAtOnce(Recorder& recorder, int64_t block, uint32_t count, View bytes) {
    State& state = recorder.state;
    require(!state.cueSheet.empty(), senses::commandSequenceError);
    const CueSheet sheet = readCueSheet(state.cueSheet);
    require(block == state.cuePosition, senses::invalidAddressForWrite);
    for (uint32_t index = 0; index < count; ++index) {
        const Part* part = sheet.partAt(state.cuePosition);
        require(part != nullptr && part->hostBytes != 0, senses::invalidAddressForWrite);
        require(bytes.size() >= part->hostBytes, senses::invalidFieldInCommand);
        const View one = bytes.first(part->hostBytes);
        bytes = bytes.subspan(part->hostBytes);
        if (part->isText) {
            if (state.text.size() % 18 == 0) collectText(state, one);
        } else {
            storeBlock(recorder, state.cuePosition, part->mode, one);
            Track& track = trackOfPart(state, sheet, *part);
            track.written = std::max(track.written, state.cuePosition + 1 - track.start);
        }
        ++state.cuePosition;
        for (const Part* next = sheet.partAt(state.cuePosition); next != nullptr && next->hostBytes == 0;
             next = sheet.partAt(state.cuePosition)) {
            Track& track = trackOfPart(state, sheet, *next);
            state.cuePosition = next->until;
            if (next->index > 0) track.written = std::max(track.written, state.cuePosition - track.start);
        }
    }
    require(bytes.empty(), senses::invalidFieldInCommand);
    if (state.cuePosition >= sheet.end()) endSheet(recorder);
}

void writeAnywhere(Recorder& recorder, int64_t block, uint32_t count, View bytes) {
    const State& state = recorder.state;
    require(state.formatted, senses::cannotWriteMedium);
    require(block + count <= state.capacity, senses::blockOutOfRange);
    require(bytes.size() == count * userBytes, senses::invalidFieldInCommand);
    for (uint32_t index = 0; index < count; ++index)
        storeBlock(recorder, block + index, SectorMode::Mode1, bytes.subspan(index * userBytes, userBytes));
}

void write(Recorder& recorder, Request& request, uint32_t count) {
    State& state = recorder.state;
    const auto block = static_cast<int32_t>(request.field(2, 4));
    require(state.writing() != Writing::None, senses::writeProtected);
    ++state.writes;
    if (state.faults.goneAfterWrites >= 0 && state.writes > state.faults.goneAfterWrites) {
        state.gone = true;
        refuse(senses::hardwareFailure);
    }
    if (const auto& said = state.faults.writeSense; said.size() == 3)
        refuse({static_cast<uint8_t>(said[0]), static_cast<uint8_t>(said[1]), static_cast<uint8_t>(said[2])});
    if (state.faults.busyEveryWrites > 0 && state.writes % state.faults.busyEveryWrites == 0)
        refuse(senses::longWriteInProgress);
    if (state.writing() == Writing::Overwrite) {
        writeAnywhere(recorder, block, count, request.out);
        return;
    }
    require(!state.finalised, senses::writeProtected);
    recorder.rehearseIfAsked();
    if (state.isCD() && (state.writeParameters[2] & 0x0F) == 2)
        writeSessionAtOnce(recorder, block, count, request.out);
    else
        writeTrackAtOnce(recorder, block, count, request.out);
}

void write10(Recorder& recorder, Request& request) { write(recorder, request, request.field(7, 2)); }
void write12(Recorder& recorder, Request& request) { write(recorder, request, request.field(6, 4)); }

// The end of writing is the end of a track written at once, and of a DVD-R written in one go (MMC-5, 4.10.2).
void synchronize(Recorder& recorder, Request& request) {
    State& state = recorder.state;
    Track* open = state.writing() == Writing::Sequential ? state.openTrack() : nullptr;
    if (open == nullptr || open->written == 0) return;
    const bool isImmediate = (request.byte(1) & 2) != 0 && !recorder.rehearsed;
    if (state.isCD() && (state.writeParameters[2] & 0x0F) == 1) closeTrack(recorder, *open);
    if (state.writesDVDAtOnce()) {
        closeTrack(recorder, *open);
        closeSession(recorder, state.writeParameters[3] >> 6 == 3);
    }
    // A track or session that is closed by this gets its end now, which takes the drive some time.
    recorder.goOnInBackground(isImmediate && state.openTrack() == nullptr);
}

void sendCueSheet(Recorder& recorder, Request& request) {
    State& state = recorder.state;
    require((state.writeParameters[2] & 0x0F) == 2 && state.isCD(), senses::commandSequenceError);
    require(!state.finalised && !state.sessionIsOpen() && state.writing() == Writing::Sequential,
            senses::writeProtected);
    require(request.out.size() == request.field(6, 3), senses::invalidFieldInParameters);
    const CueSheet sheet = readCueSheet(request.out);
    require(sheet.firstTrack().from == state.nextTrackStart() - 150, senses::invalidFieldInParameters);
    require(sheet.end() <= state.capacity + 2, senses::blockOutOfRange);
    recorder.rehearseIfAsked();
    state.cueSheet.assign(request.out.begin(), request.out.end());
    state.cuePosition = sheet.parts.front().from;
    state.text.clear();
    if (!sheet.catalogue.empty()) state.catalogue = sheet.catalogue;
    // A pregap that the drive makes itself.
    while (const Part* part = sheet.partAt(state.cuePosition)) {
        if (part->hostBytes != 0) break;
        state.cuePosition = part->until;
    }
}

void calibrate(Recorder& recorder, Request&) {
    require(!recorder.state.faults.powerCalibration, senses::powerCalibrationError);
}

constexpr CommandRow rows[] = {
    {0x2A, "WRITE(10)", write10, true},
    {0x2E, "WRITE AND VERIFY", write10, true},
    {0x35, "SYNCHRONIZE CACHE", synchronize, true},
    {0x54, "SEND OPC INFORMATION", calibrate, true},
    {0x5D, "SEND CUE SHEET", sendCueSheet, true},
    {0xAA, "WRITE(12)", write12, true},
};

} // namespace

std::span<const CommandRow> writeCommands() { return rows; }

} // namespace recorder
