// Sectors laid out byte by byte; the figures are ECMA-130's, and CD-ROM XA's for the two forms of mode 2.
#include "sectors/SectorCoding.hpp"

#include "sectors/Codes.hpp"

#include <algorithm>
#include <array>
#include <cstring>

namespace engine {
namespace {

using Sector = std::span<std::byte, sectorBytes>;
using ConstSector = std::span<const std::byte, sectorBytes>;

constexpr size_t headerAt = 12, modeAt = 15, bodyAt = 16, subheaderAt = 16, submodeAt = 18, formDataAt = 24;
constexpr size_t dataBytes = 2048, form2Bytes = 2324, codeBytes = 4;
constexpr size_t mode1CodeAt = bodyAt + dataBytes, form1CodeAt = formDataAt + dataBytes,
                 form2CodeAt = formDataAt + form2Bytes;
constexpr size_t parityAt = headerAt + parityDataBytes;
static_assert(parityAt + parityBytes == sectorBytes && form2CodeAt + codeBytes == sectorBytes);
static_assert(form1CodeAt + codeBytes == parityAt);

constexpr std::byte submodeForm2{0x20}, submodeData{0x08};

constexpr std::byte none{0}, all{0xFF};
constexpr std::array<std::byte, headerAt> sync{none, all, all, all, all, all, all, all, all, all, all, none};

std::byte decimalCoded(int64_t number) { return static_cast<std::byte>(number / 10 * 16 + number % 10); }

// ECMA-130, 14.2: minute, second and frame as the subchannel counts them, where block 0 is 00:02:00; and the mode.
// What lies before 00:00:00 counts on from the end of the hundred minutes.
std::array<std::byte, 4> headerOf(int64_t address, int mode) {
    constexpr int64_t framesOfSecond = 75, framesOfMinute = 60 * framesOfSecond,
                      circle = 100 * framesOfMinute;
    const int64_t frame = ((address + 2 * framesOfSecond) % circle + circle) % circle;
    return {decimalCoded(frame / framesOfMinute), decimalCoded(frame % framesOfMinute / framesOfSecond),
            decimalCoded(frame % framesOfSecond), static_cast<std::byte>(mode)};
}

// What a sector of a form has behind sync and header.
enum class Kind { Bare, Mode1, Formless, Form1, Form2 };

Kind kindOf(BlockForm form, ConstSector sector) {
    switch (form) {
    case BlockForm::Data:
    case BlockForm::RawMode1:
        return Kind::Mode1;
    case BlockForm::Mode2:
    case BlockForm::RawMode2:
        return Kind::Formless;
    case BlockForm::Mode2Form1:
        return Kind::Form1;
    case BlockForm::Mode2Form2:
        return Kind::Form2;
    case BlockForm::XA:
    case BlockForm::Mixed:
        return (sector[submodeAt] & submodeForm2) != std::byte{0} ? Kind::Form2 : Kind::Form1;
    case BlockForm::Audio:
        return Kind::Bare;
    }
    return Kind::Bare;
}

std::array<std::byte, codeBytes> detectionCode(ConstSector sector, size_t from, size_t to) {
    const uint32_t code = errorDetectionCode(sector.subspan(from, to - from));
    std::array<std::byte, codeBytes> bytes;
    for (size_t at = 0; at < codeBytes; ++at)
        bytes[at] = static_cast<std::byte>(code >> (8 * at));
    return bytes;
}

// In form 1 the parity sees zeros for the header, so that a sector may be moved without coding it anew.
std::array<std::byte, parityBytes> parityOf(ConstSector sector, bool withHeader) {
    std::array<std::byte, parityDataBytes> data;
    std::memcpy(data.data(), &sector[headerAt], data.size());
    if (!withHeader) std::fill_n(data.begin(), bodyAt - headerAt, none);
    std::array<std::byte, parityBytes> parity;
    errorCorrectionParity(data, parity);
    return parity;
}

template <size_t size>
void put(const std::array<std::byte, size>& bytes, Sector sector, size_t at) {
    std::memcpy(&sector[at], bytes.data(), size);
}

template <size_t size>
bool has(ConstSector sector, size_t at, const std::array<std::byte, size>& bytes) {
    return std::memcmp(&sector[at], bytes.data(), size) == 0;
}

bool isZero(ConstSector sector, size_t at, size_t size) {
    return std::all_of(&sector[at], &sector[at] + size, [](std::byte byte) { return byte == none; });
}

int modeOf(Kind kind) { return kind == Kind::Mode1 ? 1 : 2; }

bool isRaw(BlockForm form) { return form == BlockForm::RawMode1 || form == BlockForm::RawMode2; }

} // namespace

size_t userDataOffset(BlockForm form) noexcept {
    switch (form) {
    case BlockForm::Data:
    case BlockForm::Mode2:
    case BlockForm::XA:
    case BlockForm::Mixed:
        return bodyAt;
    case BlockForm::Mode2Form1:
    case BlockForm::Mode2Form2:
        return formDataAt;
    case BlockForm::Audio:
    case BlockForm::RawMode1:
    case BlockForm::RawMode2:
        return 0;
    }
    return 0;
}

void encodeSector(BlockForm form, int64_t address, std::span<const std::byte> user, Sector sector) noexcept {
    std::memmove(&sector[userDataOffset(form)], user.data(), bytesPerBlock(form));
    const Kind kind = kindOf(form, sector);
    if (kind == Kind::Bare || isRaw(form)) return;

    put(sync, sector, 0);
    put(headerOf(address, modeOf(kind)), sector, headerAt);
    if (form == BlockForm::Mode2Form1 || form == BlockForm::Mode2Form2) {
        // File number, channel number, submode, coding information; all of it twice.
        const std::byte submode = kind == Kind::Form2 ? submodeForm2 : submodeData;
        put(std::array{none, none, submode, none, none, none, submode, none}, sector, subheaderAt);
    }
    switch (kind) {
    case Kind::Mode1:
        put(detectionCode(sector, 0, mode1CodeAt), sector, mode1CodeAt);
        std::fill_n(&sector[mode1CodeAt + codeBytes], parityAt - mode1CodeAt - codeBytes, none);
        put(parityOf(sector, true), sector, parityAt);
        break;
    case Kind::Form1:
        put(detectionCode(sector, subheaderAt, form1CodeAt), sector, form1CodeAt);
        put(parityOf(sector, false), sector, parityAt);
        break;
    case Kind::Form2:
        put(detectionCode(sector, subheaderAt, form2CodeAt), sector, form2CodeAt);
        break;
    case Kind::Formless:
    case Kind::Bare:
        break;
    }
}

void makeEmptyBlock(BlockForm form, int64_t address, std::span<std::byte> block) noexcept {
    constexpr std::array<std::byte, sectorBytes> zeros{};
    if (!isRaw(form)) {
        std::memset(block.data(), 0, block.size());
        return;
    }
    // Mode 2 without a form: its zeros are right as an empty sector of form 1, too, codes included.
    const BlockForm content = form == BlockForm::RawMode1 ? BlockForm::Data : BlockForm::Mode2;
    encodeSector(content, address, std::span(zeros).first(bytesPerBlock(content)),
                 block.first<sectorBytes>());
}

void clearPadding(BlockForm form, std::span<std::byte> blocks) noexcept {
    if (form != BlockForm::Mixed) return;
    constexpr size_t blockBytes = bytesPerBlock(BlockForm::Mixed), padding = form1CodeAt - subheaderAt;
    for (; blocks.size() >= blockBytes; blocks = blocks.subspan(blockBytes))
        if ((blocks[submodeAt - subheaderAt] & submodeForm2) == none)
            std::memset(&blocks[padding], 0, blockBytes - padding);
}

void completeCodes(BlockForm form, std::span<std::byte> blocks) noexcept {
    if (form != BlockForm::XA) return;
    constexpr size_t blockBytes = bytesPerBlock(BlockForm::XA);
    std::array<std::byte, sectorBytes> sector{};
    for (; blocks.size() >= blockBytes; blocks = blocks.subspan(blockBytes)) {
        encodeSector(form, 0, blocks.first(blockBytes), sector); // the codes are the same at any address
        std::memcpy(blocks.data(), &sector[bodyAt], blockBytes);
    }
}

bool isIntactSector(BlockForm form, int64_t address, ConstSector sector) noexcept {
    const Kind kind = kindOf(form, sector);
    if (kind == Kind::Bare) return true;
    if (!has(sector, 0, sync) || sector[modeAt] != static_cast<std::byte>(modeOf(kind))) return false;
    if (!isRaw(form) && !has(sector, headerAt, headerOf(address, modeOf(kind)))) return false;
    return hasIntactCodes(form, sector);
}

bool hasIntactCodes(BlockForm form, ConstSector sector) noexcept {
    switch (kindOf(form, sector)) {
    case Kind::Mode1:
        return has(sector, mode1CodeAt, detectionCode(sector, 0, mode1CodeAt)) &&
               isZero(sector, mode1CodeAt + codeBytes, parityAt - mode1CodeAt - codeBytes) &&
               has(sector, parityAt, parityOf(sector, true));
    case Kind::Form1:
        return has(sector, form1CodeAt, detectionCode(sector, subheaderAt, form1CodeAt)) &&
               has(sector, parityAt, parityOf(sector, false));
    case Kind::Form2: // its code is optional: 0 says that there is none
        return isZero(sector, form2CodeAt, codeBytes) ||
               has(sector, form2CodeAt, detectionCode(sector, subheaderAt, form2CodeAt));
    case Kind::Formless:
    case Kind::Bare:
        return true;
    }
    return false;
}

} // namespace engine
