// Mode pages: read/write error recovery 01, write parameters 05, power 1A, capabilities 2A (MMC-5, 7).
#include "Recorder.hpp"

#include <algorithm>

namespace recorder {
namespace {

Data errorRecoveryPage() { return {0x01, 0x0A, 0, 0x10, 0, 0, 0, 0, 0, 0, 0, 0}; }
Data powerPage() { return {0x1A, 0x0A, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}; }
Data timeoutPage() { return {0x1D, 0x08, 0, 0, 0, 0, 0, 60, 0, 60}; }

uint16_t speedOf(uint32_t factor, uint32_t single) { return static_cast<uint16_t>(factor * single); }

Data capabilitiesPage(const State& state) {
    Data page(32, 0);
    page[0] = 0x2A;
    page[2] = 0x3F;     // reads CD-R, -RW, DVD-ROM, -R, -RAM
    if (state.canWrite) // CD-R, -RW, DVD-R, -RAM, tests
        page[3] =
            static_cast<uint8_t>(0x31 | (state.canWriteCDRW ? 0x02 : 0) | (state.canTestWrite ? 0x04 : 0));
    page[4] = 0xF1; // underrun protection, multi-session, Mode 2, audio
    page[5] = 0x73; // audio by READ CD, C2 no, ISRC, MCN
    page[6] = static_cast<uint8_t>(state.loadingMechanism << 5 | (state.canEject ? 0x08 : 0) |
                                   (state.locked ? 0x02 : 0) | 0x01);
    page[7] = 0x20; // R-W in the lead-in
    put(page, 8, 2, 48 * 176);
    put(page, 12, 2, 2048); // KiB of buffer
    put(page, 14, 2, 48 * 176);
    Data speeds;
    uint16_t fastest = 0;
    if (state.profile() != 0) {
        const KindFacts& facts = state.facts();
        for (auto factor = facts.factors.rbegin(); factor != facts.factors.rend(); ++factor) {
            if (*factor == 0) continue;
            const uint16_t speed = speedOf(static_cast<uint32_t>(*factor), facts.singleSpeed);
            fastest = std::max(fastest, speed);
            append(speeds, 2, 0);
            append(speeds, 2, speed);
        }
    }
    put(page, 18, 2, fastest);
    put(page, 20, 2, state.writeSpeed != 0 ? state.writeSpeed : fastest);
    put(page, 28, 2, state.writeSpeed != 0 ? state.writeSpeed : fastest);
    put(page, 30, 2, speeds.size() / 4);
    append(page, speeds);
    page[1] = static_cast<uint8_t>(page.size() - 2);
    return page;
}

Data pagesOf(const State& state, uint8_t code, uint8_t control) {
    Data pages;
    const bool changeable = control == 1;
    const auto add = [&](uint8_t which, Data page) {
        if (code != which && code != 0x3F) return;
        if (changeable) std::fill(page.begin() + 2, page.end(), which == 0x05 ? uint8_t{0xFF} : uint8_t{0});
        append(pages, page);
    };
    add(0x01, errorRecoveryPage());
    add(0x05, control == 2 ? defaultWriteParameters() : state.writeParameters);
    add(0x1A, powerPage());
    add(0x1D, timeoutPage());
    add(0x2A, capabilitiesPage(state));
    return pages;
}

void modeSense(Recorder& recorder, Request& request, size_t header, size_t room) {
    const Data pages = pagesOf(recorder.state, request.byte(2) & 0x3F, request.byte(2) >> 6);
    require(!pages.empty(), senses::invalidFieldInCommand);
    Data answer(header, 0);
    append(answer, pages);
    if (header == 8)
        put(answer, 0, 2, answer.size() - 2);
    else
        answer[0] = static_cast<uint8_t>(answer.size() - 1);
    answer.resize(std::min(answer.size(), room));
    request.in = answer;
}

void modeSense6(Recorder& recorder, Request& request) { modeSense(recorder, request, 4, request.byte(4)); }
void modeSense10(Recorder& recorder, Request& request) {
    modeSense(recorder, request, 8, request.field(7, 2));
}

// MMC-5, 7.5.3: what this recorder doesn't do is refused here, not at the first WRITE.
void setWriteParameters(State& state, View page) {
    require(page.size() >= 50 && page[1] >= 0x32, senses::parameterListLength);
    const uint8_t writeType = page[2] & 0x0F, blockType = page[4] & 0x0F;
    require(writeType <= 2, senses::invalidFieldInParameters);
    if ((page[2] & 0x10) != 0) require(state.canTestWrite, senses::invalidFieldInParameters);
    if (state.isCD()) {
        constexpr uint8_t known[] = {0, 8, 9, 10, 12};
        require(std::find(std::begin(known), std::end(known), blockType) != std::end(known),
                senses::invalidFieldInParameters);
    }
    const size_t length = std::min<size_t>(page.size(), size_t{2} + page[1]);
    state.writeParameters.assign(page.begin(), page.begin() + static_cast<ptrdiff_t>(length));
    state.writeParameters[0] = 0x05;
}

void modeSelect(Recorder& recorder, Request& request, size_t header, size_t descriptorLength) {
    require((request.byte(1) & 0x10) != 0, senses::invalidFieldInCommand);
    require(request.out.size() >= header + 2, senses::parameterListLength);
    for (size_t at = header + descriptorLength; at + 2 <= request.out.size();
         at += 2u + request.out[at + 1]) {
        const View page = request.out.subspan(at);
        const uint8_t code = page[0] & 0x3F;
        if (code == 0x05) setWriteParameters(recorder.state, page);
        if (code == 0x05 && (page[2] & 0x10) == 0 && recorder.rehearsed) {
            static_cast<Written&>(recorder.state) = *recorder.rehearsed;
            recorder.rehearsed.reset();
        }
        constexpr uint8_t known[] = {0x01, 0x05, 0x1A, 0x1D, 0x2A};
        require(std::find(std::begin(known), std::end(known), code) != std::end(known),
                senses::invalidFieldInParameters);
    }
}

void modeSelect6(Recorder& recorder, Request& request) {
    require(request.out.size() >= 4, senses::parameterListLength);
    modeSelect(recorder, request, 4, request.out[3]);
}
void modeSelect10(Recorder& recorder, Request& request) {
    require(request.out.size() >= 8, senses::parameterListLength);
    modeSelect(recorder, request, 8, number(request.out, 6, 2));
}

constexpr CommandRow rows[] = {
    {0x15, "MODE SELECT(6)", modeSelect6, false},
    {0x1A, "MODE SENSE(6)", modeSense6, false},
    {0x55, "MODE SELECT(10)", modeSelect10, false},
    {0x5A, "MODE SENSE(10)", modeSense10, false},
};

} // namespace

// Track at once, Mode 1, underrun protection on, no other session to follow.
Data defaultWriteParameters() {
    Data page(52, 0);
    page[0] = 0x05;
    page[1] = 0x32;
    page[2] = 0x41;
    page[3] = 0x04;
    page[4] = 0x08;
    put(page, 14, 2, 150);
    return page;
}

std::span<const CommandRow> modeCommands() { return rows; }

} // namespace recorder
