// Questions to a drive by the kernel's SCSI interface.
#include "DriveQuestion.hpp"

#include <algorithm>
#include <array>
#include <scsi/sg.h>
#include <sys/ioctl.h>

namespace engine {
namespace {

constexpr unsigned patience = 5000; // milliseconds

} // namespace

std::optional<size_t> askDrive(int device, std::span<const uint8_t> command,
                               std::span<uint8_t> answer) noexcept {
    std::array<uint8_t, 16> bytes{};
    std::array<uint8_t, 32> sense{};
    std::copy_n(command.begin(), std::min(command.size(), bytes.size()), bytes.begin());
    sg_io_hdr io{};
    io.interface_id = 'S';
    io.cmdp = bytes.data();
    io.cmd_len = static_cast<unsigned char>(std::min(command.size(), bytes.size()));
    io.dxfer_direction = SG_DXFER_FROM_DEV;
    io.dxferp = answer.data();
    io.dxfer_len = static_cast<unsigned>(answer.size());
    io.sbp = sense.data();
    io.mx_sb_len = sense.size();
    io.timeout = patience;
    if (::ioctl(device, SG_IO, &io) != 0 || (io.info & SG_INFO_OK_MASK) != SG_INFO_OK) return std::nullopt;
    const auto missing = static_cast<size_t>(io.resid > 0 ? io.resid : 0);
    return answer.size() - std::min(missing, answer.size());
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
