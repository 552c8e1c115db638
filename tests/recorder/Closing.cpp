// Tracks and sessions begin and end, media become blank or formatted: RESERVE TRACK, CLOSE TRACK/SESSION, BLANK,
// FORMAT UNIT (MMC-5, 6.34, 6.3, 6.2, 6.5).
#include "Recorder.hpp"

#include <algorithm>

namespace recorder {
namespace {

void reserveTrack(Recorder& recorder, Request& request) {
    State& state = recorder.state;
    require(state.writing() == Writing::Sequential && !state.finalised, senses::incompatibleMedium);
    require(state.openTrack() == nullptr, senses::commandSequenceError);
    require(!state.onlyAtOnce || state.writesDVDAtOnce(), senses::illegalModeForTrack);
    recorder.rehearseIfAsked();
    const int64_t unit = state.facts().alignment;
    Track track;
    track.number = static_cast<int>(state.tracks.size()) + 1;
    track.session = state.currentSession();
    track.start = state.nextTrackStart();
    track.size = (int64_t{request.field(5, 4)} + unit - 1) / unit * unit;
    track.reserved = true;
    require(track.size > 0 && track.start + track.size <= state.capacity, senses::invalidFieldInCommand);
    state.tracks.push_back(track);
}

void closeTracksOf(Recorder& recorder) {
    for (Track& track : recorder.state.tracks)
        if (!track.closed) closeTrack(recorder, track);
}

void close(Recorder& recorder, Request& request) {
    State& state = recorder.state;
    const uint8_t what = request.byte(2) & 7;
    const uint32_t number = request.field(4, 2);
    recorder.goOnInBackground((request.byte(1) & 1) != 0 && !recorder.rehearsed);
    if (state.writing() == Writing::Overwrite) return;
    require(state.writing() == Writing::Sequential && !state.finalised, senses::incompatibleMedium);
    if (what == 0) return;
    if (what == 1) {
        Track* open = state.openTrack();
        require(open != nullptr, senses::invalidFieldInCommand);
        require(number == 0xFF || static_cast<int>(number) == open->number, senses::invalidFieldInCommand);
        closeTrack(recorder, *open);
        return;
    }
    closeTracksOf(recorder);
    const bool isPlus = state.isDVDPlusR() || *state.medium == Kind::BDR;
    const bool more = isPlus ? what == 2 : state.writeParameters[3] >> 6 == 3;
    require(state.sessionIsOpen() || (isPlus && !more && state.closedSessions > 0),
            senses::commandSequenceError);
    closeSession(recorder, more);
}

void blank(Recorder& recorder, Request& request) {
    State& state = recorder.state;
    require(*state.medium == Kind::CDRW || *state.medium == Kind::DVDRW, senses::incompatibleMedium);
    const uint8_t how = request.byte(1) & 7;
    require(how <= 1, senses::invalidFieldInCommand);
    state.makeBlank();
    // A DVD-RW that was only blanked quickly takes one session in one go until all of it is blanked.
    state.onlyAtOnce = how == 1 && *state.medium == Kind::DVDRW;
    if (how == 0) recorder.dropData();
    recorder.goOnInBackground((request.byte(1) & 0x10) != 0);
}

bool isFormatOf(Kind kind, uint8_t type) {
    switch (kind) {
    case Kind::DVDPlusRW:
        return type == 0x26;
    case Kind::DVDRW:
        return type == 0x00 || type == 0x10 || type == 0x13 || type == 0x15;
    case Kind::DVDRAM:
        return type <= 0x01;
    case Kind::BDRE:
        return type == 0x00 || type == 0x30 || type == 0x31;
    case Kind::BDR:
        return type == 0x00 || type == 0x32;
    default:
        return false;
    }
}

void format(Recorder& recorder, Request& request) {
    State& state = recorder.state;
    require(request.out.size() >= 12, senses::parameterListLength);
    require(isFormatOf(*state.medium, request.out[8] >> 2), senses::cannotFormatMedium);
    require(*state.medium != Kind::BDR || state.isBlank(), senses::cannotFormatMedium);
    if (*state.medium != Kind::BDR) {
        state.makeBlank();
        state.formatted = true;
    }
    recorder.goOnInBackground((request.out[1] & 2) != 0);
}

constexpr CommandRow rows[] = {
    {0x04, "FORMAT UNIT", format, true},
    {0x53, "RESERVE TRACK", reserveTrack, true},
    {0x5B, "CLOSE TRACK/SESSION", close, true},
    {0xA1, "BLANK", blank, true},
};

} // namespace

// A CD's track has at least four seconds and two blocks of run-out; elsewhere whole blocks of error correction.
void closeTrack(Recorder& recorder, Track& track) {
    const State& state = recorder.state;
    if (track.reserved) {
        track.written = track.size;
    } else if (state.isCD()) {
        track.written = std::max<int64_t>(track.written, 300);
        track.size = track.written + 2;
    } else {
        const int64_t unit = state.facts().alignment;
        track.size = track.written = (track.written + unit - 1) / unit * unit;
    }
    track.reserved = false;
    track.closed = true;
}

void closeSession(Recorder& recorder, bool more) {
    State& state = recorder.state;
    if (state.sessionIsOpen()) ++state.closedSessions;
    if (!more) state.finalised = true;
}

std::span<const CommandRow> sessionCommands() { return rows; }

} // namespace recorder
