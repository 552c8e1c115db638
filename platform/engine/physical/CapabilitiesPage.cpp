// Mode page 2A: how media go in and out, and the speed of writing (MMC-3, 6.3.11; MMC-5, annex E).
#include "CapabilitiesPage.hpp"
#include "DriveQuestion.hpp"

#include <algorithm>
#include <array>

namespace engine {
namespace {

constexpr uint8_t pageCode = 0x2A;
constexpr size_t headerBytes = 8, mechanismAt = 6, oldSpeedAt = 20, speedAt = 28;

enum Mechanism : uint8_t { Tray = 1, Changer = 4, Magazine = 5 }; // others: caddy or slot, pop-up

} // namespace

std::optional<CapabilitiesPage> capabilitiesIn(std::span<const uint8_t> answer) noexcept {
    if (answer.size() < headerBytes) return std::nullopt;
    const size_t descriptors = static_cast<size_t>(answer[6]) << 8 | answer[7];
    if (answer.size() < headerBytes + descriptors + 2) return std::nullopt;
    auto page = answer.subspan(headerBytes + descriptors);
    if ((page[0] & 0x3F) != pageCode) return std::nullopt;
    page = page.first(std::min(page.size(), size_t{2} + page[1]));
    if (page.size() <= mechanismAt) return std::nullopt;
    CapabilitiesPage told;
    const uint8_t mechanism = page[mechanismAt] >> 5;
    told.loading.canEject = (page[mechanismAt] & 0x08) != 0;
    told.loading.canOpen = mechanism == Tray;
    told.loading.canInject = mechanism == Tray || mechanism == Changer || mechanism == Magazine;
    for (const size_t at : {speedAt, oldSpeedAt})
        if (told.writeSpeed == 0 && page.size() > at + 1) told.writeSpeed = page[at] << 8 | page[at + 1];
    return told;
}

std::optional<CapabilitiesPage> readCapabilitiesPage(int device) noexcept {
    std::array<uint8_t, 254> answer{};
    // MODE SENSE(10), without block descriptors, the present values.
    const std::array<uint8_t, 10> command = {0x5A, 0x08, pageCode, 0, 0, 0, 0, 0, answer.size(), 0};
    const auto length = askDrive(device, command, answer);
    return length ? capabilitiesIn(std::span(answer).first(*length)) : std::nullopt;
}

} // namespace engine
