// The texts of sense data (SPC-3, tables 27 and 28; MMC-5, annex F), and the errors they lead to.
#include "Sense.hpp"

#include <array>
#include <cstdio>

namespace engine {
namespace {

constexpr std::string_view keys[] = {
    "No Sense",
    "Recovered Error",
    "Not Ready",
    "Medium Error",
    "Hardware Error",
    "Illegal Request",
    "Unit Attention",
    "Data Protect",
    "Blank Check",
    "Vendor Specific",
    "Copy Aborted",
    "Aborted Command",
    "",
    "Volume Overflow",
    "Miscompare",
    "",
};

struct Row {
    uint8_t code, qualifier;
    std::string_view text;
};

constexpr Row rows[] = {
    {0x00, 0x00, "No additional sense information"},
    {0x02, 0x00, "No seek complete"},
    {0x03, 0x00, "Peripheral device write fault"},
    {0x04, 0x00, "Logical unit not ready"},
    {0x04, 0x01, "Logical unit is becoming ready"},
    {0x04, 0x04, "Logical unit not ready, format in progress"},
    {0x04, 0x07, "Logical unit not ready, operation in progress"},
    {0x04, 0x08, "Logical unit not ready, long write in progress"},
    {0x05, 0x00, "Logical unit does not respond to selection"},
    {0x08, 0x00, "Logical unit communication failure"},
    {0x08, 0x03, "Logical unit communication CRC error"},
    {0x09, 0x00, "Track following error"},
    {0x0C, 0x00, "Write error"},
    {0x0C, 0x07, "Write error, recovery needed"},
    {0x0C, 0x09, "Write error, loss of streaming"},
    {0x11, 0x00, "Unrecovered read error"},
    {0x11, 0x05, "L-EC uncorrectable error"},
    {0x15, 0x00, "Random positioning error"},
    {0x1A, 0x00, "Parameter list length error"},
    {0x20, 0x00, "Invalid command operation code"},
    {0x21, 0x00, "Logical block address out of range"},
    {0x21, 0x02, "Invalid address for write"},
    {0x24, 0x00, "Invalid field in CDB"},
    {0x26, 0x00, "Invalid field in parameter list"},
    {0x27, 0x00, "Write protected"},
    {0x28, 0x00, "Not ready to ready change, medium may have changed"},
    {0x29, 0x00, "Power on, reset, or bus device reset occurred"},
    {0x2C, 0x00, "Command sequence error"},
    {0x30, 0x00, "Incompatible medium installed"},
    {0x30, 0x01, "Cannot read medium, unknown format"},
    {0x30, 0x05, "Cannot write medium, incompatible format"},
    {0x30, 0x06, "Cannot format medium, incompatible medium"},
    {0x31, 0x00, "Medium format corrupted"},
    {0x31, 0x01, "Format command failed"},
    {0x3A, 0x00, "Medium not present"},
    {0x3A, 0x01, "Medium not present, tray closed"},
    {0x3A, 0x02, "Medium not present, tray open"},
    {0x3E, 0x01, "Logical unit failure"},
    {0x3E, 0x02, "Timeout on logical unit"},
    {0x44, 0x00, "Internal target failure"},
    {0x51, 0x00, "Erase failure"},
    {0x51, 0x01, "Erase failure, incomplete erase operation detected"},
    {0x53, 0x00, "Media load or eject failed"},
    {0x53, 0x02, "Medium removal prevented"},
    {0x57, 0x00, "Unable to recover table of contents"},
    {0x63, 0x00, "End of user area encountered on this track"},
    {0x64, 0x00, "Illegal mode for this track"},
    {0x6F, 0x00, "Copy protection key exchange failure"},
    {0x72, 0x00, "Session fixation error"},
    {0x72, 0x01, "Session fixation error writing lead-in"},
    {0x72, 0x02, "Session fixation error writing lead-out"},
    {0x72, 0x03, "Session fixation error, incomplete track in session"},
    {0x72, 0x05, "No more track reservations allowed"},
    {0x73, 0x00, "CD control error"},
    {0x73, 0x01, "Power calibration area almost full"},
    {0x73, 0x02, "Power calibration area is full"},
    {0x73, 0x03, "Power calibration area error"},
    {0x73, 0x05, "Program memory area is full"},
};

} // namespace

std::optional<Sense> senseOf(std::span<const uint8_t> bytes) noexcept {
    if (bytes.size() < 14 || (bytes[0] & 0x7E) != 0x70) return std::nullopt;
    return Sense{static_cast<uint8_t>(bytes[2] & 0x0F), bytes[12], bytes[13]};
}

std::vector<uint8_t> bytesOf(const Sense& sense) {
    std::vector<uint8_t> bytes(18);
    bytes[0] = 0x70;
    bytes[2] = sense.key;
    bytes[7] = 10;
    bytes[12] = sense.code;
    bytes[13] = sense.qualifier;
    return bytes;
}

std::string_view textOfSenseKey(uint8_t key) noexcept { return keys[key & 0x0F]; }

std::string textOfAdditionalSense(const Sense& sense) {
    for (const Row& row : rows)
        if (row.code == sense.code && row.qualifier == sense.qualifier) return std::string(row.text);
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "Code %02X/%02X", sense.code, sense.qualifier);
    return text.data();
}

ErrorCode codeOf(const Sense& sense, ErrorCode otherwise) noexcept {
    switch (sense.code) {
    case 0x3A:
        return ErrorCode::MediaNotPresent;
    case 0x73:
        return sense.qualifier >= 0x01 && sense.qualifier <= 0x03 ? ErrorCode::PowerCalibration : otherwise;
    case 0x04:
        return ErrorCode::DeviceNotReady;
    case 0x27:
    case 0x30:
        return ErrorCode::MediaNotWritable;
    case 0x08:
    case 0x3E:
    case 0x44:
        return ErrorCode::DeviceCommunication;
    default:
        return otherwise;
    }
}

} // namespace engine
