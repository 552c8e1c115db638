// Questions to a drive by the kernel's SCSI interface.
#include "DriveQuestion.hpp"
#include "Sense.hpp"

#include <algorithm>
#include <array>
#include <scsi/sg.h>
#include <sys/ioctl.h>

namespace engine {
namespace {

constexpr unsigned patience = 5000; // milliseconds

using SenseBytes = std::array<uint8_t, 32>;

// False when the command did not get to the drive; what comes of it stands in `io` and `sense`.
bool send(int device, std::span<const uint8_t> command, std::span<uint8_t> answer, sg_io_hdr& io,
          SenseBytes& sense) noexcept {
    std::array<uint8_t, 16> bytes{};
    std::copy_n(command.begin(), std::min(command.size(), bytes.size()), bytes.begin());
    io.interface_id = 'S';
    io.cmdp = bytes.data();
    io.cmd_len = static_cast<unsigned char>(std::min(command.size(), bytes.size()));
    io.dxfer_direction = answer.empty() ? SG_DXFER_NONE : SG_DXFER_FROM_DEV;
    io.dxferp = answer.data();
    io.dxfer_len = static_cast<unsigned>(answer.size());
    io.sbp = sense.data();
    io.mx_sb_len = static_cast<unsigned char>(sense.size());
    io.timeout = patience;
    return ::ioctl(device, SG_IO, &io) == 0;
}

} // namespace

std::optional<size_t> askDrive(int device, std::span<const uint8_t> command,
                               std::span<uint8_t> answer) noexcept {
    sg_io_hdr io{};
    SenseBytes sense{};
    if (!send(device, command, answer, io, sense) || (io.info & SG_INFO_OK_MASK) != SG_INFO_OK)
        return std::nullopt;
    const auto missing = static_cast<size_t>(io.resid > 0 ? io.resid : 0);
    return answer.size() - std::min(missing, answer.size());
}

bool isAtWork(int device) noexcept {
    sg_io_hdr io{};
    SenseBytes bytes{};
    const std::array<uint8_t, 6> testUnitReady{};
    if (!send(device, testUnitReady, {}, io, bytes) || io.sb_len_wr == 0) return false;
    const auto sense = senseOf(std::span(bytes).first(std::min<size_t>(io.sb_len_wr, bytes.size())));
    return sense && sense->key == 0x2 && sense->code == 0x04 &&
           (sense->qualifier == 0x04 || sense->qualifier == 0x07 || sense->qualifier == 0x08);
}

std::optional<LastSession> lastSessionIn(int device) noexcept {
    std::array<uint8_t, 34> answer{};
    // READ DISC INFORMATION
    const std::array<uint8_t, 10> command = {0x51, 0, 0, 0, 0, 0, 0, 0, answer.size(), 0};
    const auto length = askDrive(device, command, answer);
    if (!length || *length < 3) return std::nullopt;
    return static_cast<LastSession>(answer[2] >> 2 & 3);
}

} // namespace engine
