// Devices as a process opens them, and the kernel's side of the SCSI generic interface.
#include "Device.hpp"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <linux/cdrom.h>
#include <linux/fs.h>
#include <map>
#include <mutex>
#include <scsi/sg.h>
#include <sys/file.h>
#include <unistd.h>

namespace recorder {
namespace {

// SCSI_IOCTL_GET_IDLUN and SCSI_IOCTL_GET_BUS_NUMBER of the kernel's <scsi/scsi.h>, which no user sees.
constexpr unsigned long identityRequest = 0x5382, busNumberRequest = 0x5386;

struct Device {
    std::mutex mutex; ///< one command at a time
    Recorder recorder;
    explicit Device(std::string folder) : recorder(std::move(folder)) {}
};

struct Devices {
    std::vector<std::unique_ptr<Device>> all;
    std::mutex mutex;
    std::map<int, std::pair<int, int>>
        open; ///< descriptor: device, and the descriptor that holds it exclusively
};

// Never destroyed: a process may use its drives until its very end.
Devices& devices() {
    static auto* instance = [] {
        auto* made = new Devices;
        const char* folders = std::getenv("DISC_RECORDER");
        for (std::string rest = folders != nullptr ? folders : ""; !rest.empty();) {
            const size_t colon = rest.find(':');
            made->all.push_back(std::make_unique<Device>(rest.substr(0, colon)));
            rest = colon == std::string::npos ? "" : rest.substr(colon + 1);
        }
        return made;
    }();
    return *instance;
}

// What the kernel's sg header takes and gives (SCSI generic, version 3).
int transport(Device& device, sg_io_hdr& io) {
    if (io.interface_id != 'S' || io.iovec_count != 0) {
        errno = EINVAL;
        return -1;
    }
    const bool isOut = io.dxfer_direction == SG_DXFER_TO_DEV;
    const auto* bytes = static_cast<const uint8_t*>(io.dxferp);
    Request request;
    request.command = {io.cmdp, io.cmd_len};
    if (isOut && bytes != nullptr) request.out = {bytes, io.dxfer_len};
    request.wanted = isOut || io.dxfer_direction == SG_DXFER_NONE ? 0 : io.dxfer_len;
    const auto sense = device.recorder.execute(request);
    if (request.byte(0) == 0x2A || request.byte(0) == 0xAA)
        ::usleep(static_cast<useconds_t>(1000 * device.recorder.state.faults.slowWrites));
    if (device.recorder.state.gone) {
        errno = ENODEV;
        return -1;
    }
    io.status = io.masked_status = io.msg_status = 0;
    io.host_status = io.driver_status = 0;
    io.sb_len_wr = 0;
    io.resid = 0;
    io.duration = 1;
    io.info = 0;
    if (sense) {
        uint8_t fixed[18] = {0x70, 0, sense->key, 0, 0, 0, 0, 10};
        fixed[12] = sense->code;
        fixed[13] = sense->qualifier;
        if (sense->block >= 0) {
            fixed[0] |= 0x80;
            for (int index = 0; index < 4; ++index)
                fixed[3 + index] = static_cast<uint8_t>(sense->block >> (24 - 8 * index));
        }
        if (sense->progress >= 0) {
            fixed[15] = 0x80;
            fixed[16] = static_cast<uint8_t>(sense->progress >> 8);
            fixed[17] = static_cast<uint8_t>(sense->progress);
        }
        io.status = 0x02; // CHECK CONDITION
        io.masked_status = 0x01;
        io.driver_status = 0x08; // sense is there
        io.info = SG_INFO_CHECK;
        io.resid = static_cast<int>(io.dxfer_len);
        io.sb_len_wr = std::min<unsigned char>(io.mx_sb_len, sizeof fixed);
        if (io.sbp != nullptr) std::memcpy(io.sbp, fixed, io.sb_len_wr);
        return 0;
    }
    if (!isOut && io.dxferp != nullptr) {
        std::memcpy(io.dxferp, request.in.data(), request.in.size());
        io.resid = static_cast<int>(io.dxfer_len - request.in.size());
    }
    return 0;
}

// The older way: a packet with the CD-ROM driver's own header.
int packet(Device& device, cdrom_generic_command& command) {
    sg_io_hdr io{};
    uint8_t sense[18] = {};
    io.interface_id = 'S';
    io.cmdp = command.cmd;
    io.cmd_len = sizeof command.cmd;
    io.dxferp = command.buffer;
    io.dxfer_len = command.buflen;
    io.dxfer_direction = command.data_direction == CGC_DATA_WRITE  ? SG_DXFER_TO_DEV
                         : command.data_direction == CGC_DATA_READ ? SG_DXFER_FROM_DEV
                                                                   : SG_DXFER_NONE;
    io.sbp = sense;
    io.mx_sb_len = sizeof sense;
    if (transport(device, io) != 0) return -1;
    if (io.status == 0) return 0;
    if (command.sense != nullptr)
        std::memcpy(command.sense, sense, std::min(sizeof sense, sizeof *command.sense));
    command.stat = io.status;
    errno = EIO;
    return -1;
}

int simpleCommand(Device& device, std::initializer_list<uint8_t> bytes) {
    const Data command(bytes);
    Request request;
    request.command = command;
    if (!device.recorder.execute(request)) return 0;
    errno = EIO;
    return -1;
}

} // namespace

int deviceNamed(const char* path) noexcept {
    constexpr char prefix[] = "/dev/sr";
    if (path == nullptr || std::strncmp(path, prefix, sizeof prefix - 1) != 0) return -1;
    char* end = nullptr;
    const char* digits = path + sizeof prefix - 1;
    const long number = std::strtol(digits, &end, 10);
    if (end == digits || *end != '\0' || number < 0 || static_cast<size_t>(number) >= deviceCount())
        return -1;
    return static_cast<int>(number);
}

size_t deviceCount() noexcept { return devices().all.size(); }

bool isAttached(int device) { return !devices().all[static_cast<size_t>(device)]->recorder.isGone(); }

int attachment(int device) { return devices().all[static_cast<size_t>(device)]->recorder.attachment(); }

bool canWrite(int device) { return devices().all[static_cast<size_t>(device)]->recorder.canWrite(); }

std::string mountPoint(int device) {
    return devices().all[static_cast<size_t>(device)]->recorder.mountedAt();
}

int openDevice(int device, int flags) {
    Device& own = *devices().all[static_cast<size_t>(device)];
    if (own.recorder.isGone()) {
        errno = ENXIO;
        return -1;
    }
    if (own.recorder.isForbidden()) {
        errno = EACCES;
        return -1;
    }
    const std::string& folder = own.recorder.folder();
    int exclusive = -1;
    if ((flags & O_EXCL) != 0) {
        if (!own.recorder.mountedAt().empty()) {
            errno = EBUSY;
            return -1;
        }
        exclusive = ::open((folder + "/exclusive").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        if (::flock(exclusive, LOCK_EX | LOCK_NB) != 0) {
            ::close(exclusive);
            errno = EBUSY;
            return -1;
        }
    }
    const int descriptor = ::open((folder + "/node").c_str(), O_RDWR | O_CREAT | (flags & O_CLOEXEC), 0666);
    if (descriptor < 0) return -1;
    own.recorder.opened();
    const std::lock_guard lock(devices().mutex);
    devices().open[descriptor] = {device, exclusive};
    return descriptor;
}

int deviceOf(int descriptor) noexcept {
    const std::lock_guard lock(devices().mutex);
    const auto found = devices().open.find(descriptor);
    return found == devices().open.end() ? -1 : found->second.first;
}

void forget(int descriptor) noexcept {
    int exclusive = -1;
    {
        const std::lock_guard lock(devices().mutex);
        const auto found = devices().open.find(descriptor);
        if (found == devices().open.end()) return;
        exclusive = found->second.second;
        devices().open.erase(found);
    }
    if (exclusive >= 0) ::close(exclusive);
}

int control(int number, unsigned long request, void* argument) {
    Device& device = *devices().all[static_cast<size_t>(number)];
    const std::lock_guard lock(device.mutex);
    const auto answer = [&](int value) {
        *static_cast<int*>(argument) = value;
        return 0;
    };
    switch (request) {
    case SG_IO:
        return transport(device, *static_cast<sg_io_hdr*>(argument));
    case CDROM_SEND_PACKET:
        return packet(device, *static_cast<cdrom_generic_command*>(argument));
    case SG_GET_VERSION_NUM:
        return answer(30536);
    case SG_GET_RESERVED_SIZE:
        return answer(131072);
    case SG_EMULATED_HOST:
        return answer(1);
    case SG_SET_TIMEOUT:
    case SG_SET_RESERVED_SIZE:
    case BLKFLSBUF:
        return 0;
    case SG_GET_TIMEOUT:
        return 6000;
    case busNumberRequest:
        return answer(0);
    case identityRequest: {
        auto* pair = static_cast<int*>(argument);
        pair[0] = number; // target number on host 0, channel 0
        pair[1] = 0;
        return 0;
    }
    case CDROM_DRIVE_STATUS:
        return device.recorder.driveStatus();
    case CDROM_GET_CAPABILITY:
        return CDC_OPEN_TRAY | CDC_CLOSE_TRAY | CDC_LOCK | CDC_DVD | CDC_GENERIC_PACKET |
               (device.recorder.canWrite() ? CDC_CD_R | CDC_CD_RW | CDC_DVD_R : 0);
    case CDROM_MEDIA_CHANGED:
        return 0;
    case CDROM_LOCKDOOR:
        return simpleCommand(device, {0x1E, 0, 0, 0, static_cast<uint8_t>(argument != nullptr ? 1 : 0), 0});
    case CDROMEJECT:
        return simpleCommand(device, {0x1B, 0, 0, 0, 2, 0});
    case CDROMCLOSETRAY:
        return simpleCommand(device, {0x1B, 0, 0, 0, 3, 0});
    default:
        errno = request == SG_GET_SCSI_ID ? EINVAL : ENOTTY;
        return -1;
    }
}

} // namespace recorder
