// The table of contents in its forms, and sub-channel data: READ TOC/PMA/ATIP, READ SUB-CHANNEL (MMC-5, 6.29, 6.30).
#include "CueSheet.hpp"
#include "Recorder.hpp"

#include <algorithm>

namespace recorder {
namespace {

// Tracks as readers see them: only those of closed sessions. A medium that takes blocks in any order has one.
std::vector<Track> closedTracks(const State& state) {
    if (state.writing() == Writing::Overwrite) {
        require(state.formatted, senses::invalidFieldInCommand);
        Track track;
        track.size = state.capacity;
        track.closed = true;
        return {track};
    }
    std::vector<Track> tracks;
    for (const Track& track : state.tracks)
        if (track.session <= state.closedSessions) tracks.push_back(track);
    require(!tracks.empty(), senses::invalidFieldInCommand);
    return tracks;
}

uint8_t controlOf(const Track& track) { return static_cast<uint8_t>(0x10 | track.control); }

void appendAddress(Data& bytes, int64_t block, bool asTime) {
    if (asTime) {
        bytes.push_back(0);
        appendTime(bytes, block);
    } else {
        append(bytes, 4, static_cast<uint32_t>(block));
    }
}

Data plainTable(const State& state, uint8_t from, bool asTime) {
    const auto tracks = closedTracks(state);
    require(from <= tracks.size() || from == 0xAA, senses::invalidFieldInCommand);
    Data answer = {0, 0, 1, static_cast<uint8_t>(tracks.size())};
    const auto entry = [&](uint8_t control, uint8_t number, int64_t block) {
        append(answer, Data{0, control, number, 0});
        appendAddress(answer, block, asTime);
    };
    for (const Track& track : tracks)
        if (track.number >= from) entry(controlOf(track), static_cast<uint8_t>(track.number), track.start);
    entry(controlOf(tracks.back()), 0xAA, tracks.back().end());
    return answer;
}

Data sessionTable(const State& state, bool asTime) {
    const auto tracks = closedTracks(state);
    const int last = tracks.back().session;
    const auto first =
        std::find_if(tracks.begin(), tracks.end(), [&](const Track& t) { return t.session == last; });
    Data answer = {
        0, 0, 1, static_cast<uint8_t>(last), 0, controlOf(*first), static_cast<uint8_t>(first->number), 0};
    appendAddress(answer, first->start, asTime);
    return answer;
}

// As the lead-in's Q channel has it: for each session the pointers A0, A1, A2 and its tracks (MMC-5, 4.2.3.7).
Data fullTable(const State& state, uint8_t fromSession) {
    const auto tracks = closedTracks(state);
    Data answer = {0, 0, 1, static_cast<uint8_t>(tracks.back().session)};
    const auto entry = [&](int session, uint8_t control, uint8_t point, Data address) {
        append(answer, Data{static_cast<uint8_t>(session), control, 0, point, 0, 0, 0, 0});
        append(answer, address);
    };
    const auto time = [](int64_t block) {
        Data bytes;
        appendTime(bytes, block);
        return bytes;
    };
    for (int session = std::max<int>(fromSession, 1); session <= tracks.back().session; ++session) {
        std::vector<Track> own;
        std::copy_if(tracks.begin(), tracks.end(), std::back_inserter(own),
                     [&](const Track& t) { return t.session == session; });
        if (own.empty()) continue;
        const uint8_t first = controlOf(own.front()), last = controlOf(own.back());
        entry(session, first, 0xA0, {static_cast<uint8_t>(own.front().number), 0, 0});
        entry(session, last, 0xA1, {static_cast<uint8_t>(own.back().number), 0, 0});
        entry(session, last, 0xA2, time(own.back().end()));
        for (const Track& track : own)
            entry(session, controlOf(track), static_cast<uint8_t>(track.number), time(track.start));
    }
    return answer;
}

// The wobble's own data: kind of disc, where the lead-in starts and the lead-out may start at the latest.
Data preGroove(const State& state) {
    require(*state.medium == Kind::CDR || *state.medium == Kind::CDRW, senses::invalidFieldInCommand);
    Data answer(28, 0);
    answer[4] = 0xC0;
    answer[6] = static_cast<uint8_t>(0x80 | (*state.medium == Kind::CDRW ? 0x40 : 0));
    Data times;
    appendTime(times, leadInStart);
    times.push_back(0);
    appendTime(times, state.capacity + 2);
    std::copy(times.begin(), times.end(), answer.begin() + 8);
    return answer;
}

void readTable(Recorder& recorder, Request& request) {
    const State& state = recorder.state;
    const bool asTime = (request.byte(1) & 2) != 0;
    uint8_t format = request.byte(2) & 0x0F;
    if (format == 0) format = request.byte(9) >> 6; // where older initiators have it
    Data answer;
    switch (format) {
    case 0:
        answer = plainTable(state, request.byte(6), asTime);
        break;
    case 1:
        answer = sessionTable(state, asTime);
        break;
    case 2:
        answer = fullTable(state, request.byte(6));
        break;
    case 3:
        answer = {0, 0, 0, 0};
        break;
    case 4:
        answer = preGroove(state);
        break;
    case 5:
        require(!state.text.empty(), senses::invalidFieldInCommand);
        answer = {0, 0, 0, 0};
        append(answer, state.text);
        break;
    default:
        refuse(senses::invalidFieldInCommand);
    }
    put(answer, 0, 2, answer.size() - 2);
    answer.resize(std::min<size_t>(answer.size(), request.field(7, 2)));
    request.in = answer;
}

// Catalogue number (2) and recording codes (3).
void readSubChannel(Recorder& recorder, Request& request) {
    const State& state = recorder.state;
    require(state.isCD(), senses::incompatibleMedium);
    Data answer = {0, 0x15, 0, 0};
    if ((request.byte(2) & 0x40) != 0) {
        const uint8_t format = request.byte(3);
        require(format >= 1 && format <= 3, senses::invalidFieldInCommand);
        answer.resize(format == 1 ? 16 : 24, 0);
        answer[4] = format;
        if (format == 2 && !state.catalogue.empty()) {
            answer[8] = 0x80;
            putText(answer, 9, 13, state.catalogue);
        }
        if (format == 3) {
            const auto found = std::find_if(state.tracks.begin(), state.tracks.end(),
                                            [&](const Track& t) { return t.number == request.byte(6); });
            require(found != state.tracks.end(), senses::invalidFieldInCommand);
            answer[5] = controlOf(*found);
            answer[6] = request.byte(6);
            if (!found->isrc.empty()) {
                answer[8] = 0x80;
                putText(answer, 9, 12, found->isrc);
            }
        }
        put(answer, 2, 2, answer.size() - 4);
    }
    answer.resize(std::min<size_t>(answer.size(), request.field(7, 2)));
    request.in = answer;
}

constexpr CommandRow rows[] = {
    {0x42, "READ SUB-CHANNEL", readSubChannel, true},
    {0x43, "READ TOC/PMA/ATIP", readTable, true},
};

} // namespace

std::span<const CommandRow> tableCommands() { return rows; }

} // namespace recorder
