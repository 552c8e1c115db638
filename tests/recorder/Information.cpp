// What is on the medium and where it goes on: READ DISC INFORMATION, READ TRACK INFORMATION, capacities, structures
// (MMC-5, 6.22, 6.24, 6.26 to 6.28).
#include "CueSheet.hpp"
#include "Recorder.hpp"

#include <algorithm>

namespace recorder {
namespace {

void cut(Request& request, size_t room) { request.in.resize(std::min(request.in.size(), room)); }

int lastSessionNumber(const State& state) {
    // The empty session that may follow counts, but on a disc that is complete there is none.
    return std::max(1, state.closedSessions + (state.isComplete() && !state.sessionIsOpen() ? 0 : 1));
}

void readDiscInformation(Recorder& recorder, Request& request) {
    const State& state = recorder.state;
    require((request.byte(1) & 7) == 0, senses::invalidFieldInCommand);
    Data answer(34, 0);
    const bool overwrite = state.writing() == Writing::Overwrite;
    const uint8_t disc = state.isBlank() ? 0 : state.isComplete() ? 2 : 1;
    const uint8_t session = state.isBlank() ? 0 : state.isComplete() ? 3 : state.sessionIsOpen() ? 1 : 0;
    put(answer, 0, 2, answer.size() - 2);
    answer[2] = static_cast<uint8_t>((state.facts().erasable ? 0x10 : 0) | session << 2 | disc);
    answer[3] = 1;
    const int last = lastSessionNumber(state);
    answer[4] = static_cast<uint8_t>(last);
    int first = 0, final = 0;
    for (const Track& track : state.tracks) {
        if (track.session != last) continue;
        if (first == 0) first = track.number;
        final = track.number;
    }
    if (first == 0) first = static_cast<int>(state.tracks.size()) + 1;
    if (overwrite) first = 1;
    if (!state.isComplete() && state.openTrack() == nullptr)
        final = static_cast<int>(state.tracks.size()) + 1;
    answer[5] = static_cast<uint8_t>(first);
    answer[6] = static_cast<uint8_t>(std::max(first, final));
    answer[7] = 0x20; // use is unrestricted
    if (*state.medium == Kind::DVDPlusRW)
        answer[7] = static_cast<uint8_t>(answer[7] | (state.formatted ? 3 : 0));
    answer[8] = state.isCD() && state.isBlank() ? 0xFF : 0;
    std::fill(answer.begin() + 16, answer.begin() + 24, uint8_t{0xFF});
    if (state.isCD() && !state.isComplete()) {
        Data times = {0};
        appendTime(times, state.closedSessions == 0 ? leadInStart : state.nextTrackStart() - 150 - 4500);
        times.push_back(0);
        appendTime(times, state.capacity + 2);
        std::copy(times.begin(), times.end(), answer.begin() + 16);
    }
    request.in = answer;
    cut(request, request.field(7, 2));
}

Track nextTrack(const State& state) {
    Track track;
    track.number = static_cast<int>(state.tracks.size()) + 1;
    track.session = state.currentSession();
    track.start = state.nextTrackStart();
    return track;
}

Track wholeMedium(const State& state) {
    Track track;
    track.size = track.written = state.capacity;
    track.closed = true;
    return track;
}

Track wantedTrack(const State& state, uint8_t type, uint32_t address) {
    if (state.writing() == Writing::Overwrite) {
        require(state.formatted || *state.medium != Kind::DVDRAM, senses::blankCheck);
        require(type != 1 || address == 1 || address == 0xFF, senses::invalidFieldInCommand);
        return wholeMedium(state);
    }
    for (const Track& track : state.tracks) {
        const bool isIt =
            type == 0
                ? static_cast<int64_t>(address) >= track.start && static_cast<int64_t>(address) < track.end()
            : type == 1 ? static_cast<int>(address) == track.number || (address == 0xFF && !track.closed)
                        : static_cast<int>(address) == track.session;
        if (isIt) return track;
    }
    const Track next = nextTrack(state);
    const bool isNext = type == 0   ? static_cast<int64_t>(static_cast<int32_t>(address)) >= next.start
                        : type == 1 ? address == 0xFF || static_cast<int>(address) == next.number
                                    : static_cast<int>(address) == next.session;
    require(isNext && !state.isComplete(), senses::invalidFieldInCommand);
    // A track that waits for data hides the one behind it.
    require(address != 0xFF || type != 1 || state.openTrack() == nullptr, senses::invalidFieldInCommand);
    return next;
}

void readTrackInformation(Recorder& recorder, Request& request) {
    const State& state = recorder.state;
    const Track track = wantedTrack(state, request.byte(1) & 3, request.field(2, 4));
    const bool overwrite = state.writing() == Writing::Overwrite;
    const bool blank = track.written == 0 && !overwrite;
    Data answer(36, 0);
    put(answer, 0, 2, answer.size() - 2);
    answer[2] = static_cast<uint8_t>(track.number);
    answer[3] = static_cast<uint8_t>(track.session);
    answer[5] = static_cast<uint8_t>(blank ? (state.isCD() ? 4 : 4) : track.control & 0x0D);
    const uint8_t dataMode = blank                             ? 0x0F
                             : track.mode == SectorMode::Audio ? 0x0F
                             : track.mode == SectorMode::Mode1 ? 1
                                                               : 2;
    answer[6] = static_cast<uint8_t>((track.reserved ? 0x80 : 0) | (blank ? 0x40 : 0) | dataMode);
    const bool writable = !track.closed;
    const int64_t end = track.reserved ? track.start + track.size : state.capacity;
    const int64_t free = writable ? std::max<int64_t>(0, end - track.next()) : 0;
    answer[7] = static_cast<uint8_t>(writable && !state.finalised ? 1 : 0);
    if (!writable && track.written > 0 && !overwrite) answer[7] |= 2;
    put(answer, 8, 4, static_cast<uint32_t>(track.start));
    put(answer, 12, 4, writable ? static_cast<uint32_t>(track.next()) : 0);
    put(answer, 16, 4, static_cast<uint64_t>(overwrite ? state.capacity : free));
    put(answer, 20, 4, state.isCD() ? 0 : state.facts().alignment);
    const int64_t size = track.closed || track.reserved ? track.size : track.written + free;
    put(answer, 24, 4, static_cast<uint64_t>(size));
    put(answer, 28, 4, track.written > 0 ? static_cast<uint32_t>(track.next() - 1) : 0);
    request.in = answer;
    cut(request, request.field(7, 2));
}

// The last readable block (MMC-5, 6.25).
void readCapacity(Recorder& recorder, Request& request) {
    const State& state = recorder.state;
    int64_t end = 0;
    if (state.writing() == Writing::Overwrite) {
        end = state.capacity;
    } else {
        for (const Track& track : state.tracks)
            if (track.closed) end = std::max(end, track.end());
    }
    append(request.in, 4, static_cast<uint64_t>(std::max<int64_t>(end - 1, 0)));
    append(request.in, 4, 2048);
}

void readFormatCapacities(Recorder& recorder, Request& request) {
    const State& state = recorder.state;
    Data list;
    const auto add = [&](int64_t blocks, uint8_t kind, uint32_t more) {
        append(list, 4, static_cast<uint64_t>(blocks));
        append(list, 1, kind);
        append(list, 3, more);
    };
    if (state.profile() == 0) {
        add(0, 3, 2048);
    } else {
        const bool needsFormat = state.writing() == Writing::Overwrite;
        const bool formatted = needsFormat ? state.formatted : !state.isBlank();
        add(state.capacity, formatted ? 2 : 1, 2048);
        const auto format = [&](uint8_t type, uint32_t more) {
            add(state.capacity, static_cast<uint8_t>(type << 2), more);
        };
        switch (*state.medium) {
        case Kind::DVDPlusRW:
            format(0x26, 0);
            break;
        case Kind::DVDRW:
            format(0x00, 2048);
            format(0x10, 16);
            format(0x13, 16);
            format(0x15, 16);
            break;
        case Kind::DVDRAM:
            format(0x00, 2048);
            format(0x01, 2048);
            break;
        case Kind::BDRE:
            format(0x00, 0x3000);
            format(0x30, 0x3000);
            add(state.capacity - 262144, 0x30 << 2, 0x5000);
            add(state.capacity + 393216, 0x31 << 2, 2048);
            break;
        case Kind::BDR:
            if (state.isBlank()) format(0x32, 0x1000);
            break;
        case Kind::CDRW:
            format(0x10, 32);
            break;
        default:
            break;
        }
    }
    request.in = {0, 0, 0, static_cast<uint8_t>(list.size())};
    append(request.in, list);
    cut(request, request.field(7, 2));
}

// Physical format and the makers' codes; enough to tell what kind of disc this is.
void readStructure(Recorder& recorder, Request& request) {
    const State& state = recorder.state;
    require(!state.isCD(), senses::incompatibleMedium);
    const bool isBD = *state.medium == Kind::BDR || *state.medium == Kind::BDRE;
    const uint8_t format = request.byte(7);
    Data answer(4, 0);
    if ((request.byte(1) & 0x0F) == 1) {
        require(isBD && format == 0, senses::invalidFieldInCommand);
        answer.resize(4 + 112);
        putText(answer, 4, 2, "DI");
        putText(answer, 4 + 8, 3, *state.medium == Kind::BDR ? "BDR" : "BDW");
        putText(answer, 4 + 100, 6, "TSTLAB");
        putText(answer, 4 + 106, 3, "001");
    } else if (format == 0x00 || format == 0x11 || format == 0x10) {
        require(!isBD, senses::invalidFieldInCommand);
        answer.resize(4 + 2048);
        const Kind kind = *state.medium;
        const uint8_t book = kind == Kind::DVDR                  ? 0x25
                             : kind == Kind::DVDRW               ? 0x32
                             : kind == Kind::DVDRAM              ? 0x16
                             : kind == Kind::DVDPlusRW           ? 0x92
                             : kind == Kind::DVDPlusR            ? 0xA1
                             : kind == Kind::DVDRDualLayer       ? 0x26
                             : kind == Kind::DVDPlusRDoubleLayer ? 0xE1
                                                                 : 0x01;
        const bool hasTwoLayers = kind == Kind::DVDRDualLayer || kind == Kind::DVDPlusRDoubleLayer;
        answer[4] = book;
        answer[5] = 0x0F;
        answer[6] = static_cast<uint8_t>(hasTwoLayers ? 0x32 : 0x02); // the second one opposite to the first
        put(answer, 8, 4, 0x00030000);
        put(answer, 12, 4, static_cast<uint64_t>(0x00030000 + state.capacity - 1));
        if (hasTwoLayers) put(answer, 16, 4, static_cast<uint64_t>(0x00030000 + state.capacity / 2 - 1));
        if (state.isDVDPlusR() || kind == Kind::DVDPlusRW) {
            putText(answer, 4 + 19, 8, "TESTLAB");
            putText(answer, 4 + 27, 3, "001");
        }
    } else if (format == 0x0E) {
        require(state.isDVDMinus(), senses::invalidFieldInCommand);
        answer.resize(4 + 44);
        answer[4] = 1;
        answer[4 + 16] = 3;
        putText(answer, 4 + 17, 6, "TESTLA");
        answer[4 + 24] = 4;
        putText(answer, 4 + 25, 6, "B001  ");
    } else {
        refuse(senses::invalidFieldInCommand);
    }
    put(answer, 0, 2, answer.size() - 2);
    request.in = answer;
    cut(request, request.field(8, 2));
}

constexpr CommandRow rows[] = {
    {0x23, "READ FORMAT CAPACITIES", readFormatCapacities, false},
    {0x25, "READ CAPACITY", readCapacity, true},
    {0x51, "READ DISC INFORMATION", readDiscInformation, true},
    {0x52, "READ TRACK INFORMATION", readTrackInformation, true},
    {0xAD, "READ DISC STRUCTURE", readStructure, true},
};

} // namespace

std::span<const CommandRow> informationCommands() { return rows; }

} // namespace recorder
