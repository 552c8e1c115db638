// Mounted discs, and drives that are at work by themselves.
#include "DriveUse.hpp"
#include "../Failure.hpp"
#include "../Files.hpp"
#include "DriveQuestion.hpp"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <vector>

namespace engine {
namespace {

// The kernel writes a space as \040, and so on.
std::string withoutEscapes(const std::string& text) {
    std::string result;
    for (size_t at = 0; at < text.size(); ++at) {
        const bool isEscape =
            text[at] == '\\' && at + 3 < text.size() && text.find_first_not_of("01234567", at + 1) >= at + 4;
        if (!isEscape) {
            result += text[at];
            continue;
        }
        result += static_cast<char>(std::stoi(text.substr(at + 1, 3), nullptr, 8));
        at += 3;
    }
    return result;
}

} // namespace

// A line has a number, its parent's, the device's two, what of the device is mounted, and where: proc(5).
std::optional<std::string> mountPointOf(const std::string& path) {
    struct stat node {};
    if (::stat(path.c_str(), &node) != 0) return std::nullopt;
    const std::string device =
        std::to_string(major(node.st_rdev)) + ':' + std::to_string(minor(node.st_rdev));
    const auto table = guarded([] { return readSmallFile(AT_FDCWD, "/proc/self/mountinfo"); });
    if (!table || !*table) return std::nullopt;
    std::istringstream lines(**table);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string number, parent, mounted, root, where;
        if (words >> number >> parent >> mounted >> root >> where && mounted == device)
            return withoutEscapes(where);
    }
    return std::nullopt;
}

Error inUseError(const std::string& path, const std::string& name) {
    if (const auto where = mountPointOf(path))
        return {ErrorCode::MediaBusy,
                "The disc in " + inQuotes(name) + " is mounted at " + inQuotes(*where) +
                    "; unmount it, and try again.",
                path,
                {}};
    return {ErrorCode::DeviceBusy,
            "The drive " + inQuotes(name) + " is in use by another program; try again later.",
            path,
            {}};
}

std::optional<Error> forbiddenError(const std::string& path) {
    const Descriptor node(::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
    const int problem = errno;
    if (node || (problem != EACCES && problem != EPERM)) return std::nullopt;
    return Error{ErrorCode::DeviceAccess,
                 "You may not use the drive " + inQuotes(path) +
                     "; join the group that its device belongs to, and log in again.",
                 path + ": " + systemText(problem),
                 {}};
}

// A line has what it is about, a colon, and a word for each drive; "drive name" comes first.
std::optional<bool> isWriterInTable(const std::string& path) {
    const auto table = guarded([] { return readSmallFile(AT_FDCWD, "/proc/sys/dev/cdrom/info"); });
    if (!table || !*table) return std::nullopt;
    const std::string name = std::filesystem::path(path).filename().string();
    std::optional<size_t> column;
    std::istringstream lines(**table);
    for (std::string line; std::getline(lines, line);) {
        const size_t colon = line.find(':');
        if (colon == std::string::npos) continue;
        const std::string about = line.substr(0, colon);
        std::istringstream words(line.substr(colon + 1));
        const std::vector<std::string> each{std::istream_iterator<std::string>(words), {}};
        if (about == "drive name") {
            const auto found = std::find(each.begin(), each.end(), name);
            if (found == each.end()) return std::nullopt;
            column = static_cast<size_t>(found - each.begin());
        }
        const bool isOfWriting = about == "Can write CD-R" || about == "Can write CD-RW" ||
                                 about == "Can write DVD-R" || about == "Can write DVD-RAM";
        if (isOfWriting && column && *column < each.size() && each[*column] != "0") return true;
    }
    return column ? std::optional(false) : std::nullopt;
}

void requireRest(int device, const std::string& name) {
    if (isAtWork(device))
        fail(ErrorCode::DeviceBusy, "The drive " + inQuotes(name) +
                                        " is still busy with what was begun before: it erases, formats or "
                                        "closes a disc; try again when "
                                        "it is done.");
}

} // namespace engine
