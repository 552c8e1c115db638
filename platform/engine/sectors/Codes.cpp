// The codes of data sectors, by table for the one and many columns at a time for the other.
#include "sectors/Codes.hpp"

#include <array>
#include <cstring>

namespace engine {
namespace {

// P(x) = (x^16 + x^15 + x^2 + 1) (x^16 + x^2 + x + 1), bits reversed because the least significant goes first.
constexpr uint32_t polynomial = 0xD8018001;
constexpr size_t stride = 8;

// tables[n][b]: what byte b does to the code n bytes later.
using Tables = std::array<std::array<uint32_t, 256>, stride>;

constexpr Tables makeTables() {
    Tables tables{};
    for (uint32_t byte = 0; byte < 256; ++byte) {
        uint32_t code = byte;
        for (int bit = 0; bit < 8; ++bit)
            code = (code & 1) != 0 ? (code >> 1) ^ polynomial : code >> 1;
        tables[0][byte] = code;
    }
    for (size_t later = 1; later < stride; ++later)
        for (size_t byte = 0; byte < 256; ++byte)
            tables[later][byte] = (tables[later - 1][byte] >> 8) ^ tables[0][tables[later - 1][byte] & 0xFF];
    return tables;
}
constexpr Tables tables = makeTables();

// The product code lives in GF(2^8) over x^8 + x^4 + x^3 + x^2 + 1; its alpha is 2.
constexpr uint8_t timesAlpha(uint8_t value) {
    return static_cast<uint8_t>((value << 1) ^ ((value & 0x80) != 0 ? 0x1D : 0));
}

// Quotients by alpha + 1: multiplying by 3 reaches every element once.
constexpr std::array<uint8_t, 256> makeQuotients() {
    std::array<uint8_t, 256> quotients{};
    for (unsigned value = 0; value < 256; ++value)
        quotients[timesAlpha(static_cast<uint8_t>(value)) ^ value] = static_cast<uint8_t>(value);
    return quotients;
}
constexpr std::array<uint8_t, 256> quotients = makeQuotients();

// Many code words side by side, one byte of each in a line. A line more is Horner's rule on
//   sum = d0 + d1 + … and weighted = alpha^n d0 + alpha^(n-1) d1 + …;
// the two parity bytes p, q make both check sums zero: p + q = sum, alpha p + q = alpha weighted.
template <size_t columns>
struct CodeWords {
    std::array<uint8_t, columns> sum{};
    std::array<uint8_t, columns> weighted{};

    void add(const uint8_t* line) noexcept {
        for (size_t at = 0; at < columns; ++at) {
            sum[at] = static_cast<uint8_t>(sum[at] ^ line[at]);
            weighted[at] = timesAlpha(static_cast<uint8_t>(weighted[at] ^ line[at]));
        }
    }
    void finish(uint8_t* first, uint8_t* second) const noexcept {
        for (size_t at = 0; at < columns; ++at) {
            first[at] = quotients[sum[at] ^ timesAlpha(weighted[at])];
            second[at] = static_cast<uint8_t>(sum[at] ^ first[at]);
        }
    }
};

// Annex A sees the bytes as 16-bit words, 43 in a row; the two bytes of a word are coded apart.
constexpr size_t wordsInRow = 43, rowBytes = 2 * wordsInRow, dataRows = 24, rows = dataRows + 2;
static_assert(dataRows * rowBytes == parityDataBytes);
constexpr size_t diagonalBytes = 2 * rows;

} // namespace

uint32_t errorDetectionCode(std::span<const std::byte> bytes) noexcept {
    uint32_t code = 0;
    const std::byte* at = bytes.data();
    size_t left = bytes.size();
    const auto byteAt = [&at](size_t index) { return std::to_integer<uint32_t>(at[index]); };
    for (; left >= stride; left -= stride, at += stride)
        code = tables[7][(code ^ byteAt(0)) & 0xFF] ^ tables[6][((code >> 8) ^ byteAt(1)) & 0xFF] ^
               tables[5][((code >> 16) ^ byteAt(2)) & 0xFF] ^ tables[4][(code >> 24) ^ byteAt(3)] ^
               tables[3][byteAt(4)] ^ tables[2][byteAt(5)] ^ tables[1][byteAt(6)] ^ tables[0][byteAt(7)];
    for (; left > 0; --left, ++at)
        code = (code >> 8) ^ tables[0][(code ^ byteAt(0)) & 0xFF];
    return code;
}

void errorCorrectionParity(std::span<const std::byte, parityDataBytes> data,
                           std::span<std::byte, parityBytes> parity) noexcept {
    std::array<uint8_t, rows * rowBytes> words;
    std::memcpy(words.data(), data.data(), parityDataBytes);

    CodeWords<rowBytes> columns;
    for (size_t row = 0; row < dataRows; ++row)
        columns.add(&words[row * rowBytes]);
    columns.finish(&words[dataRows * rowBytes], &words[(dataRows + 1) * rowBytes]);

    // A Q word runs down a diagonal: from row n, column 0 on, to the next row with every column, round at the
    // 26th. A column written twice over, one after the other, has all 26 diagonals' bytes in one line.
    CodeWords<diagonalBytes> diagonals;
    for (size_t column = 0; column < wordsInRow; ++column) {
        std::array<uint8_t, 2 * diagonalBytes> line;
        for (size_t row = 0; row < rows; ++row)
            std::memcpy(&line[2 * row], &words[row * rowBytes + 2 * column], 2);
        std::memcpy(&line[diagonalBytes], line.data(), diagonalBytes);
        diagonals.add(&line[2 * (column % rows)]);
    }
    std::array<uint8_t, 2 * diagonalBytes> q;
    diagonals.finish(q.data(), &q[diagonalBytes]);

    std::memcpy(parity.data(), &words[dataRows * rowBytes], 2 * rowBytes);
    std::memcpy(parity.data() + 2 * rowBytes, q.data(), q.size());
}

} // namespace engine
