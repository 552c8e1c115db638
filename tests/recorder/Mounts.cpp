// Lines of /proc/self/mountinfo as proc(5) has them, and of /proc/sys/dev/cdrom/info.
#include "Mounts.hpp"
#include "Device.hpp"

#include <array>
#include <cstring>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace recorder {
namespace {

std::string lineOf(int device) {
    const std::string number = std::to_string(device);
    std::string line = "9" + number + " 1 11:" + number + " / ";
    for (const char letter : mountPoint(device))
        line += letter == ' ' ? "\\040" : std::string(1, letter);
    return line + " ro,relatime - iso9660 /dev/sr" + number + " ro\n";
}

// A file that is in no folder.
int fileOf(const std::string& text, const char* name) {
    const int result = ::memfd_create(name, MFD_CLOEXEC);
    if (result < 0) return -1;
    if (::write(result, text.data(), text.size()) < 0 || ::lseek(result, 0, SEEK_SET) < 0) return -1;
    return result;
}

} // namespace

bool isDriveTable(const char* path) noexcept {
    return path != nullptr && std::strcmp(path, "/proc/sys/dev/cdrom/info") == 0;
}

// A column for each drive, the one that came last in front.
int ownDriveTable() {
    std::string names = "drive name:\t", discs = "Can write CD-R:\t", again = "Can write CD-RW:",
                dvds = "Can write DVD-R:", rams = "Can write DVD-RAM:", ram = "Can write RAM:\t";
    for (int device = static_cast<int>(deviceCount()) - 1; device >= 0; --device) {
        if (!isAttached(device)) continue;
        const char* writes = canWrite(device) ? "\t1" : "\t0";
        names += "\tsr" + std::to_string(device);
        for (std::string* line : {&discs, &again, &dvds})
            *line += writes;
        rams += "\t0";
        ram += "\t1"; // of drives for reading, too
    }
    std::string text = "CD-ROM information, Id: cdrom.c 3.20 2003/12/17\n\n";
    for (const std::string& line : {names, discs, again, dvds, rams, ram})
        text += line + '\n';
    return fileOf(text + "\n\n", "info");
}

bool isMountTable(const char* path) noexcept {
    return path != nullptr && std::strcmp(path, "/proc/self/mountinfo") == 0;
}

int withOwnMounts(int table) {
    if (table < 0) return table;
    std::string text;
    for (int device = 0; device < static_cast<int>(deviceCount()); ++device)
        if (isAttached(device) && !mountPoint(device).empty()) text += lineOf(device);
    if (text.empty()) return table;
    std::array<char, 4096> part{};
    std::string others;
    for (ssize_t count = 0; (count = ::read(table, part.data(), part.size())) > 0;)
        others.append(part.data(), static_cast<size_t>(count));
    ::close(table);
    text.insert(0, others);
    return fileOf(text, "mountinfo");
}

} // namespace recorder
