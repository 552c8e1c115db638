// FileManager: references to items on disk, and what they tell; on POSIX paths.
#include "CoreServices.h"
#include "PathNames.hpp"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include <sys/stat.h>

namespace {

// Node IDs below 16 have meanings of their own (fsRtParID, fsRtDirID); ours follow them.
constexpr uint32_t firstNode = 16;

// Every path that a reference was ever made for, numbered. Nothing is ever taken out, so that a reference
// (which its holder may copy about and never gives back) stays good.
class Paths {
  public:
    uint32_t nodeFor(const std::string& path) {
        const std::lock_guard lock(mutex_);
        const auto known = numbers_.find(path);
        if (known != numbers_.end()) return known->second;
        const auto node = static_cast<uint32_t>(paths_.size()) + firstNode;
        numbers_.emplace(paths_.emplace_back(path), node);
        return node;
    }

    std::optional<std::string> pathOf(uint32_t node) {
        const std::lock_guard lock(mutex_);
        if (node < firstNode || node - firstNode >= paths_.size()) return {};
        return paths_[node - firstNode];
    }

    // Volumes have numbers of their own: -1, -2 and so on, in the order in which they are met.
    SInt16 volumeFor(const std::string& root) {
        const std::lock_guard lock(mutex_);
        auto found = std::find(volumes_.begin(), volumes_.end(), root);
        if (found == volumes_.end()) found = volumes_.insert(found, root);
        return static_cast<SInt16>(-1 - (found - volumes_.begin()));
    }

    std::optional<std::string> volumeRoot(SInt16 volume) {
        const std::lock_guard lock(mutex_);
        const int index = -1 - volume;
        if (index < 0 || static_cast<size_t>(index) >= volumes_.size()) return {};
        return volumes_[static_cast<size_t>(index)];
    }

  private:
    std::mutex mutex_;
    std::deque<std::string> paths_;
    std::unordered_map<std::string_view, uint32_t> numbers_;
    std::deque<std::string> volumes_;
};

// Never destroyed: references may be asked while the process ends.
Paths& paths() {
    static Paths& all = *new Paths;
    return all;
}

// What is inside an FSRef; the rest of it is zero.
struct Reference {
    char mark[8];
    uint32_t node;
};
constexpr char referenceMark[8] = {'p', 'a', 't', 'h', 'r', 'e', 'f', '1'};
static_assert(sizeof(Reference) <= sizeof(FSRef) && sizeof(FSRef) == 80 && sizeof(FSSpec) == 70);

void setReference(FSRef& ref, const std::string& path) {
    Reference inside{};
    std::memcpy(inside.mark, referenceMark, sizeof inside.mark);
    inside.node = paths().nodeFor(path);
    std::memset(&ref, 0, sizeof ref);
    std::memcpy(&ref, &inside, sizeof inside);
}

std::optional<std::string> pathOfReference(const FSRef* ref) {
    if (ref == nullptr) return {};
    Reference inside{};
    std::memcpy(&inside, ref, sizeof inside);
    if (std::memcmp(inside.mark, referenceMark, sizeof inside.mark) != 0) return {};
    return paths().pathOf(inside.node);
}

// An absolute path in its shortest form: no empty parts, no "." and no "/" at its end. ".." stays: what it
// means depends on links, which only the file system can follow.
std::string tidied(std::string_view path) {
    std::string tidy;
    while (!path.empty()) {
        const size_t slash = path.find('/');
        const std::string_view part = path.substr(0, slash);
        if (!part.empty() && part != ".") tidy.append("/").append(part);
        path.remove_prefix(slash == std::string_view::npos ? path.size() : slash + 1);
    }
    return tidy.empty() ? "/" : tidy;
}

std::string parentOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string nameOf(const std::string& path) { return path == "/" ? path : path.substr(path.rfind('/') + 1); }

std::string joined(const std::string& folder, std::string_view name) {
    std::string path = folder == "/" ? folder : folder + "/";
    return path.append(name);
}

std::optional<struct stat> statusOf(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) return {};
    return status;
}

// The root folder of a volume is one whose own parent lies on another device.
bool isVolumeRoot(const std::string& path, const struct stat& status) {
    if (path == "/") return true;
    if (!S_ISDIR(status.st_mode)) return false;
    const auto parent = statusOf(parentOf(path));
    return parent && parent->st_dev != status.st_dev;
}

std::string volumeRootAbove(std::string path) {
    for (;;) {
        const auto status = statusOf(path);
        if (path == "/" || (status && isVolumeRoot(path, *status))) return path;
        path = parentOf(path);
    }
}

uint32_t nodeOf(const std::string& path, const struct stat& status) {
    return isVolumeRoot(path, status) ? uint32_t{fsRtDirID} : paths().nodeFor(path);
}

uint32_t nodeOfFolderAbove(const std::string& path, const struct stat& status) {
    if (isVolumeRoot(path, status)) return fsRtParID;
    const std::string parent = parentOf(path);
    const auto parentStatus = statusOf(parent);
    return parentStatus ? nodeOf(parent, *parentStatus) : paths().nodeFor(parent);
}

constexpr size_t longestSpecName = 63;

void setSpec(FSSpec& spec, const std::string& path, const struct stat& status) {
    std::memset(&spec, 0, sizeof spec);
    spec.vRefNum = paths().volumeFor(volumeRootAbove(path));
    spec.parID = static_cast<int32_t>(nodeOfFolderAbove(path, status));
    std::string name = nameOf(path);
    if (name.size() > longestSpecName) {
        char number[16];
        std::snprintf(number, sizeof number, "#%X", paths().nodeFor(path));
        name = name.substr(0, longestSpecName - std::strlen(number)) + number;
    }
    spec.name[0] = static_cast<UInt8>(name.size());
    std::memcpy(spec.name + 1, name.data(), name.size());
}

// The long name that an FSSpec abbreviates, when this process abbreviated it.
std::optional<std::string> unabbreviated(const std::string& folder, const std::string& name) {
    const size_t mark = name.rfind('#');
    if (mark == std::string::npos || name.size() != longestSpecName) return {};
    unsigned node = 0;
    if (std::sscanf(name.c_str() + mark + 1, "%X", &node) != 1) return {};
    auto path = paths().pathOf(node);
    if (!path || parentOf(*path) != folder || nameOf(*path).compare(0, mark, name, 0, mark) != 0) return {};
    return path;
}

} // namespace

extern "C" OSStatus FSPathMakeRef(const UInt8* path, FSRef* ref, Boolean* isDirectory) {
    if (path == nullptr || ref == nullptr) return paramErr;
    const std::string_view given = reinterpret_cast<const char*>(path);
    if (given.empty() || given[0] != '/') return bdNamErr;
    const std::string tidy = tidied(given);
    const auto status = statusOf(tidy);
    if (!status) return statusOf(parentOf(tidy)) ? fnfErr : dirNFErr;
    setReference(*ref, tidy);
    if (isDirectory != nullptr) *isDirectory = S_ISDIR(status->st_mode);
    return noErr;
}

extern "C" OSStatus FSRefMakePath(const FSRef* ref, UInt8* path, UInt32 size) {
    const auto found = pathOfReference(ref);
    if (!found || path == nullptr) return paramErr;
    if (found->size() >= size) return pathTooLongErr;
    std::memcpy(path, found->c_str(), found->size() + 1);
    return noErr;
}

extern "C" OSErr FSGetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap whichInfo, FSCatalogInfo* info,
                                  HFSUniStr255* name, FSSpec* spec, FSRef* parent) {
    constexpr FSCatalogInfoBitmap known =
        kFSCatInfoNodeFlags | kFSCatInfoVolume | kFSCatInfoParentDirID | kFSCatInfoNodeID;
    const auto path = pathOfReference(ref);
    if (!path || (whichInfo & ~known) != 0 || (whichInfo != kFSCatInfoNone && info == nullptr))
        return paramErr;
    const auto status = statusOf(*path);
    if (!status) return fnfErr;

    if ((whichInfo & kFSCatInfoNodeFlags) != 0) {
        info->nodeFlags = S_ISDIR(status->st_mode) ? UInt16{kFSNodeIsDirectoryMask} : UInt16{0};
    }
    if ((whichInfo & kFSCatInfoVolume) != 0) info->volume = paths().volumeFor(volumeRootAbove(*path));
    if ((whichInfo & kFSCatInfoParentDirID) != 0) info->parentDirID = nodeOfFolderAbove(*path, *status);
    if ((whichInfo & kFSCatInfoNodeID) != 0) info->nodeID = nodeOf(*path, *status);
    if (name != nullptr) {
        const std::u16string text = pathnames::decode(nameOf(*path));
        name->length = static_cast<UInt16>(std::min<size_t>(text.size(), std::size(name->unicode)));
        std::memcpy(name->unicode, text.data(), name->length * sizeof(UniChar));
    }
    if (spec != nullptr) setSpec(*spec, *path, *status);
    if (parent != nullptr) {
        if (isVolumeRoot(*path, *status)) {
            std::memset(parent, 0, sizeof *parent);
        } else {
            setReference(*parent, parentOf(*path));
        }
    }
    return noErr;
}

extern "C" OSErr FSpMakeFSRef(const FSSpec* spec, FSRef* ref) {
    if (spec == nullptr || ref == nullptr || spec->name[0] > longestSpecName) return paramErr;
    const auto volume = paths().volumeRoot(spec->vRefNum);
    if (!volume) return dirNFErr;
    if (spec->parID == fsRtParID) {
        setReference(*ref, *volume);
        return noErr;
    }
    const auto folder =
        spec->parID == fsRtDirID ? volume : paths().pathOf(static_cast<uint32_t>(spec->parID));
    if (!folder) return dirNFErr;
    const std::string name(reinterpret_cast<const char*>(spec->name) + 1, spec->name[0]);
    // A name is one part of a path: nothing in it may lead elsewhere.
    if (name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos ||
        name.find('\0') != std::string::npos) {
        return bdNamErr;
    }
    std::string path = joined(*folder, name);
    if (!statusOf(path)) {
        const auto longer = unabbreviated(*folder, name);
        if (!longer || !statusOf(*longer)) return fnfErr;
        path = *longer;
    }
    setReference(*ref, path);
    return noErr;
}
