// Files.cpp: host folder items as platform URLs and paths.
#include "plugin/bridge/Files.hpp"

#include "plugin/frame/HostServices.hpp"
#include "plugin/objc/Ownership.hpp"

#include <algorithm>
#include <iterator>

namespace {

using objc::Adopted;

CFURLRef urlInParent(const FSRef& parent, const HFSUniStr255& leafName) {
    const Adopted parentURL(CFURLCreateFromFSRef(nullptr, &parent));
    if (!parentURL || leafName.length == 0) return nullptr;
    // The length is the host's word, and never more than there is.
    const auto length = std::min<CFIndex>(leafName.length, std::size(leafName.unicode));
    const Adopted name(createDecomposedName(CFStringCreateWithCharacters(nullptr, leafName.unicode, length)));
    if (!name) return nullptr;
    return CFURLCreateCopyAppendingPathComponent(nullptr, parentURL.get(), name.get(), 0);
}

} // namespace

CFStringRef createDecomposedName(CFStringRef name) {
    if (!name) return nullptr;
    Adopted original(name);
    Adopted<CFStringRef> copy(CFStringCreateMutableCopy(nullptr, 0, name));
    if (!copy) return original.give();
    CFStringNormalize(const_cast<CFMutableStringRef>(copy.get()), kCFStringNormalizationFormD);
    return copy.give();
}

CFURLRef MakeCFURLfromFolderItem(REALfolderItem item) {
    if (!item) return nullptr;
    FSRef ref{};
    if (REALFSRefFromFolderItem(item, &ref, nullptr))
        if (const CFURLRef url = CFURLCreateFromFSRef(nullptr, &ref)) return url;

    FSRef parent{};
    HFSUniStr255 leafName{};
    if (REALFSRefFromFolderItem(item, &parent, &leafName))
        if (const CFURLRef url = urlInParent(parent, leafName)) return url;

    FSSpec spec{};
    if (!REALFSSpecFromFolderItem(item, &spec) || FSpMakeFSRef(&spec, &ref) != 0) return nullptr;
    return CFURLCreateFromFSRef(nullptr, &ref);
}

objc::Id NewNSURLfile(REALfolderItem item) {
    return objc::autoreleased(asObject(MakeCFURLfromFolderItem(item)));
}

objc::Id NewNSStringPath(REALfolderItem item) {
    const objc::Id url = NewNSURLfile(item);
    if (!url) return nullptr;
    return objc::autoreleased(asObject(CFURLCopyFileSystemPath(asURL(url), kCFURLPOSIXPathStyle)));
}
