// What the drive can do, and what it can do with the medium at hand: GET CONFIGURATION (MMC-5, 5 and 6.6).
#include "Recorder.hpp"

#include <algorithm>

namespace recorder {
namespace {

struct Feature {
    uint16_t code;
    uint8_t version;
    bool persistent;
    bool current;
    Data more;
};

bool any(Kind kind, std::initializer_list<Kind> kinds) {
    return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

Data profileList(uint16_t current, bool canWrite) {
    Data list;
    for (int index = static_cast<int>(Kind::BDRE); index >= 0; --index) {
        if (!canWrite && factsOf(static_cast<Kind>(index)).writing != Writing::None) continue;
        const uint16_t profile = factsOf(static_cast<Kind>(index)).profile;
        append(list, 2, profile);
        append(list, 2, profile == current ? 0x0100 : 0);
        if (profile == 0x0014) {
            append(list, 2, dvdRewritableOverwrite);
            append(list, 2, dvdRewritableOverwrite == current ? 0x0100 : 0);
        }
    }
    append(list, 2, 0x0002); // removable disk
    append(list, 2, 0);
    return list;
}

std::vector<Feature> features(const State& state) {
    const bool present = state.profile() != 0;
    const Kind kind = present ? *state.medium : Kind::CDROM;
    const auto is = [&](std::initializer_list<Kind> kinds) { return present && any(kind, kinds); };
    const bool isCD = present && state.isCD();
    const bool isBD = is({Kind::BDR, Kind::BDRE});
    const bool isDVD = present && !isCD && !isBD;
    const bool sequential = present && state.writing() == Writing::Sequential;
    const bool incremental = sequential && !isBD && (!state.onlyAtOnce || state.faults.claimsIncremental);
    const bool overwrite = present && state.writing() == Writing::Overwrite;
    const bool overwriteDVDRW = overwrite && kind == Kind::DVDRW;
    const uint8_t unit = present ? static_cast<uint8_t>(state.facts().alignment) : 1;
    const auto lastBlock = static_cast<uint32_t>(std::max<int64_t>(state.capacity - 1, 0));
    const uint8_t test = state.canTestWrite ? 0x04 : 0;

    Data randomWritable;
    append(randomWritable, 4, lastBlock);
    append(randomWritable, 4, 2048);
    append(randomWritable, 4,
           0x00000100u * unit); // blocking is 16 bits wide, then the page bit and a reserved byte
    randomWritable[8] = 0;
    randomWritable[9] = unit;
    randomWritable[10] = 1;
    Data serial(state.serial.begin(), state.serial.end());
    serial.resize((serial.size() + 3) / 4 * 4, ' ');

    std::vector<Feature> list = {
        {0x0000, 0, true, true, profileList(state.profile(), state.canWrite)},
        {0x0001, 1, true, true, {0, 0, 0, 2, 1, 0, 0, 0}}, // core; ATAPI
        {0x0002, 1, true, true, {2, 0, 0, 0}},             // morphing
        {0x0003, 0, true, true, {0x29, 0, 0, 0}},          // tray that ejects and can be locked
        {0x0010, 0, false, present, {0, 0, 8, 0, 0, unit, 1, 0}},
        {0x001D, 0, false, isCD, {}},
        {0x001E, 2, false, isCD, {3, 0, 0, 0}}, // CD-Text and C2
        {0x001F, 1, false, isDVD, {1, 0, 1, 0}},
        {0x0020, 1, false, overwrite, randomWritable},
        {0x0021, 3, false, incremental, {0x01, 0x07, 1, 1, 7, 0, 0, 0}},
        {0x0023, 1, false, overwrite || is({Kind::DVDRW, Kind::BDR}), {0x0F, 0, 0, 0, 1, 0, 0, 0}},
        {0x0024, 0, false, is({Kind::DVDRAM, Kind::BDRE}), {0, 0, 0, 0}},
        {0x0026, 0, false, overwriteDVDRW, {}},
        {0x002A, 0, false, kind == Kind::DVDPlusRW && present, {1, 0, 0, 0}},
        {0x002B, 0, false, kind == Kind::DVDPlusR && present, {1, 0, 0, 0}},
        {0x002C, 0, false, overwriteDVDRW, {0x0F, 0, 0, 0}},
        {0x002D, 2, false, is({Kind::CDR, Kind::CDRW}), {static_cast<uint8_t>(0x42 | test), 0, 0x0F, 0x00}},
        {0x002E,
         0,
         false,
         is({Kind::CDR, Kind::CDRW}),
         {static_cast<uint8_t>(0x60 | test | 0x03), 0, 0x10, 0x00}}, // SAO, R-W in the lead-in
        // Buffer under-run, dual layer, RW.
        {0x002F, 2, false, present && state.isDVDMinus(), {static_cast<uint8_t>(0x4A | test), 0, 0, 0}},
        {0x0037, 0, false, kind == Kind::CDRW && present, {0, 0xFF, 0, 0}},
        {0x003B, 0, false, kind == Kind::DVDPlusRDoubleLayer && present, {1, 0, 0, 0}},
        {0x0040, 0, false, isBD, Data(28, 0)},
        {0x0041, 0, false, isBD, Data(20, 0)},
        {0x0100, 0, true, true, {}},
        {0x0105, 0, true, true, {0, 0, 0, 0}},
        {0x0107, 4, false, present, {0x1F, 0, 0, 0}},
        {0x0108, 0, true, true, serial},
    };
    // BD: read classes and versions (RE 1-2, R 1).
    for (Feature& feature : list)
        if (feature.code == 0x0040 || feature.code == 0x0041) feature.more[9] = feature.more[13] = 0x06;
    return list;
}

void getConfiguration(Recorder& recorder, Request& request) {
    const uint8_t which = request.byte(1) & 3;
    const uint16_t from = static_cast<uint16_t>(request.field(2, 2));
    Data answer(8, 0);
    put(answer, 6, 2, recorder.state.profile());
    for (const Feature& feature : features(recorder.state)) {
        if (feature.code < from || (which == 1 && !feature.current) || (which == 2 && feature.code != from))
            continue;
        append(answer, 2, feature.code);
        append(answer, 1,
               static_cast<uint64_t>(feature.version << 2 | (feature.persistent ? 2 : 0) |
                                     (feature.current ? 1 : 0)));
        append(answer, 1, feature.more.size());
        append(answer, feature.more);
    }
    put(answer, 0, 4, answer.size() - 4);
    answer.resize(std::min<size_t>(answer.size(), request.field(7, 2)));
    request.in = answer;
}

constexpr CommandRow rows[] = {{0x46, "GET CONFIGURATION", getConfiguration, false}};

} // namespace

std::span<const CommandRow> featureCommands() { return rows; }

} // namespace recorder
