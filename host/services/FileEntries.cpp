// FileEntries.cpp: folder items to and from the platform's file references, through the platform's File
// Manager.
#include "host/runtime/FolderItem.hpp"
#include "host/services/Entries.hpp"
#include "host/services/PathNames.hpp"

#include <algorithm>
#include <climits>
#include <dlfcn.h>
#include <iterator>

namespace host::entries {
namespace {

// Looked up at each use: the platform may be loaded later than the host.
template <class Function>
Function* platformFunction(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_DEFAULT, name));
}

using MakeRef = int32_t(const uint8_t*, FSRef*, uint8_t*);
using MakePath = int32_t(const FSRef*, uint8_t*, uint32_t);
using GetCatalogInfo = int16_t(const FSRef*, uint32_t, void*, HFSUniStr255*, FSSpec*, FSRef*);
using MakeRefFromSpec = int16_t(const FSSpec*, FSRef*);

bool makeRef(const std::string& path, FSRef* ref) {
    auto* function = platformFunction<MakeRef>("FSPathMakeRef");
    return function && function(reinterpret_cast<const uint8_t*>(path.c_str()), ref, nullptr) == 0;
}

std::string pathOfRef(const FSRef* ref) {
    auto* function = platformFunction<MakePath>("FSRefMakePath");
    uint8_t path[4 * PATH_MAX];
    if (!function || function(ref, path, sizeof path) != 0) return "";
    return reinterpret_cast<const char*>(path);
}

} // namespace

REALfolderItem FolderItemFromFSSpec(const FSSpec* spec) {
    if (!spec) return nullptr;
    return guarded<REALfolderItem>([=]() -> REALfolderItem {
        auto* function = platformFunction<MakeRefFromSpec>("FSpMakeFSRef");
        FSRef ref{};
        if (!function || function(spec, &ref) != 0) return nullptr;
        const auto path = pathOfRef(&ref);
        return path.empty() ? nullptr : newFolderItem(path).detach();
    });
}

uint8_t REALFSSpecFromFolderItem(REALfolderItem item, FSSpec* spec) {
    if (!isA(item, "FolderItem") || !spec) return 0;
    return guarded<uint8_t>([=]() -> uint8_t {
        auto* function = platformFunction<GetCatalogInfo>("FSGetCatalogInfo");
        FSRef ref{};
        if (!function || !makeRef(pathOf(item), &ref)) return 0;
        return function(&ref, 0, nullptr, nullptr, spec, nullptr) == 0;
    });
}

uint8_t REALFSRefFromFolderItem(REALfolderItem item, FSRef* ref, HFSUniStr255* leafName) {
    if (!isA(item, "FolderItem") || !ref) return 0;
    return guarded<uint8_t>([=]() -> uint8_t {
        const auto path = pathOf(item);
        if (!leafName) return makeRef(path, ref);
        const auto slash = path.rfind('/');
        if (slash == std::string::npos || slash + 1 == path.size()) return 0;
        const auto name = nameFromDisk(std::string_view(path).substr(slash + 1));
        if (name.size() > std::size(leafName->unicode)) return 0;
        if (!makeRef(slash == 0 ? "/" : path.substr(0, slash), ref)) return 0;
        leafName->length = static_cast<uint16_t>(name.size());
        std::copy(name.begin(), name.end(), leafName->unicode);
        return 1;
    });
}

REALfolderItem REALFolderItemFromParentFSRef(const FSRef* parent, const HFSUniStr255* leafName) {
    if (!parent || !leafName) return nullptr;
    return guarded<REALfolderItem>([=]() -> REALfolderItem {
        const auto folder = pathOfRef(parent);
        const std::size_t length = std::min<std::size_t>(leafName->length, std::size(leafName->unicode));
        const std::u16string text(leafName->unicode, leafName->unicode + length);
        const auto name = nameOnDisk(text);
        // Names that are no name of one item: the folder itself, its parent, or a path.
        if (folder.empty() || name.empty() || name == "." || name == ".." ||
            name.find('/') != std::string::npos || name.find('\0') != std::string::npos)
            return nullptr;
        return newFolderItem(folder + "/" + name).detach();
    });
}

} // namespace host::entries
