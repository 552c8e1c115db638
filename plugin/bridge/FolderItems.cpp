// FolderItems.cpp: platform URLs and file references as host folder items.
#include "plugin/bridge/FolderItems.hpp"

#include "plugin/bridge/Text.hpp"
#include "plugin/frame/HostServices.hpp"
#include "plugin/objc/Ownership.hpp"

#include <algorithm>
#include <iterator>

namespace {

using objc::Adopted;

bool exists(const FSRef* ref) {
    return FSGetCatalogInfo(ref, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr) == 0;
}

// By the parent's reference and the item's name; false sends the caller to the next route.
bool parentAndName(const FSRef* ref, FSRef& parent, HFSUniStr255& name) {
    FSCatalogInfo info{};
    if (FSGetCatalogInfo(ref, kFSCatInfoNodeID, &info, nullptr, nullptr, &parent) != 0) return false;
    // Deliberate: without a parent this route fails, so the root of a volume always takes the other one.
    if (info.nodeID == fsRtDirID) parent = FSRef{};
    return FSGetCatalogInfo(ref, kFSCatInfoNone, nullptr, &name, nullptr, nullptr) == 0 && exists(&parent);
}

HFSUniStr255 leafNameOf(CFStringRef text) {
    HFSUniStr255 name{};
    const CFIndex length =
        std::clamp<CFIndex>(CFStringGetLength(text), 0, static_cast<CFIndex>(std::size(name.unicode)));
    CFStringGetCharacters(text, CFRange{0, length}, name.unicode);
    name.length = static_cast<uint16_t>(length);
    return name;
}

} // namespace

REALfolderItem REALFolderItemFromFSRef(const FSRef* ref) {
    if (!ref) return nullptr;
    FSRef parent{};
    HFSUniStr255 name{};
    if (parentAndName(ref, parent, name)) return REALFolderItemFromParentFSRef(&parent, &name);
    FSSpec spec{};
    if (FSGetCatalogInfo(ref, kFSCatInfoNone, nullptr, nullptr, &spec, nullptr) != 0) return nullptr;
    return REALFolderItemFromFSSpec(&spec);
}

REALfolderItem CFURL2RBFile(CFURLRef url) {
    if (!url) return nullptr;
    FSRef ref{};
    if (CFURLGetFSRef(url, &ref)) return REALFolderItemFromFSRef(&ref);

    const Adopted parentURL(CFURLCreateCopyDeletingLastPathComponent(nullptr, url));
    FSRef parent{};
    if (!parentURL || !CFURLGetFSRef(parentURL.get(), &parent)) return nullptr;
    const Adopted name(createDecomposedName(CFURLCopyLastPathComponent(url)));
    if (!name) return nullptr;
    const HFSUniStr255 leafName = leafNameOf(name.get());
    return REALFolderItemFromParentFSRef(&parent, &leafName);
}

REALstring NSURLRB(objc::Id url) { return NSStringRB(objc::send<"absoluteString">(url)); }
