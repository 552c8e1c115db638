// Kinds of medium, and where on them the next track may start.
#include "Disc.hpp"

#include <algorithm>

namespace recorder {
namespace {

constexpr KindFacts table[] = {
    {Kind::CDROM, "CD-ROM", 0x0008, Writing::None, false, 359847, 1, 176, {}},
    {Kind::CDR, "CD-R", 0x0009, Writing::Sequential, false, 359847, 1, 176, {8, 16, 24, 48}},
    {Kind::CDRW, "CD-RW", 0x000A, Writing::Sequential, true, 359847, 1, 176, {4, 10, 16, 24}},
    {Kind::DVDROM, "DVD-ROM", 0x0010, Writing::None, false, 2295104, 16, 1385, {}},
    {Kind::DVDR, "DVD-R", 0x0011, Writing::Sequential, false, 2298496, 16, 1385, {2, 4, 8, 16}},
    {Kind::DVDRDualLayer, "DVD-R DL", 0x0015, Writing::Sequential, false, 4171712, 16, 1385, {2, 4, 8}},
    {Kind::DVDRW, "DVD-RW", 0x0014, Writing::Sequential, true, 2297888, 16, 1385, {1, 2, 4, 6}},
    {Kind::DVDRAM, "DVD-RAM", 0x0012, Writing::Overwrite, true, 2236704, 16, 1385, {2, 3, 5}},
    {Kind::DVDPlusR, "DVD+R", 0x001B, Writing::Sequential, false, 2295104, 16, 1385, {2, 4, 8, 16}},
    {Kind::DVDPlusRDoubleLayer, "DVD+R DL", 0x002B, Writing::Sequential, false, 4173824, 16, 1385, {2, 4, 8}},
    {Kind::DVDPlusRW, "DVD+RW", 0x001A, Writing::Overwrite, true, 2295104, 16, 1385, {2, 4, 8}},
    {Kind::BDR, "BD-R", 0x0041, Writing::Sequential, false, 12219392, 32, 4495, {2, 4, 6, 12}},
    {Kind::BDRE, "BD-RE", 0x0043, Writing::Overwrite, true, 11826176, 32, 4495, {1, 2}},
};

// Blocks between the end of a session and the first track of the next one. On a CD: lead-out, lead-in and
// pregap. DVD and BD: border and lead zones, of a size that real drives choose.
int64_t sessionGap(const State& state) {
    if (state.isCD()) return state.closedSessions == 1 ? 11400 : 6900;
    return *state.medium == Kind::BDR ? 0 : state.closedSessions == 1 ? 12288 : 4096;
}

} // namespace

const KindFacts& factsOf(Kind kind) noexcept { return table[static_cast<size_t>(kind)]; }

std::optional<Kind> kindNamed(const std::string& name) {
    for (const KindFacts& row : table)
        if (name == row.name) return row.kind;
    return std::nullopt;
}

Writing State::writing() const noexcept {
    if (!medium) return Writing::None;
    return *medium == Kind::DVDRW && formatted ? Writing::Overwrite : facts().writing;
}

uint16_t State::profile() const noexcept {
    if (!medium || trayOpen) return 0;
    return *medium == Kind::DVDRW && formatted ? dvdRewritableOverwrite : facts().profile;
}

bool State::isBlank() const noexcept { return writing() == Writing::Overwrite ? !formatted : tracks.empty(); }

bool State::isComplete() const noexcept {
    return writing() == Writing::None || finalised || (writing() == Writing::Overwrite && formatted);
}

const Track* State::openTrack() const noexcept {
    const auto found =
        std::find_if(tracks.begin(), tracks.end(), [](const Track& each) { return !each.closed; });
    return found == tracks.end() ? nullptr : &*found;
}

const Track* State::trackAt(int64_t block) const noexcept {
    for (const Track& track : tracks)
        if (block >= track.start && block < track.end()) return &track;
    return nullptr;
}

int64_t State::nextTrackStart() const noexcept {
    if (tracks.empty()) return 0;
    const int64_t end = tracks.back().end();
    const int64_t gap = !sessionIsOpen() ? sessionGap(*this) : isCD() ? 150 : 0;
    const int64_t unit = facts().alignment;
    return (end + gap + unit - 1) / unit * unit;
}

int64_t State::freeBlocks(int64_t from) const noexcept {
    return finalised || from >= capacity ? 0 : capacity - from;
}

void State::makeBlank() {
    tracks.clear();
    text.clear();
    cueSheet.clear();
    catalogue.clear();
    closedSessions = 0;
    finalised = false;
    formatted = false;
    onlyAtOnce = false;
}

} // namespace recorder
