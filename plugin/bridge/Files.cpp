// Files.cpp: host folder items as platform URLs and paths.
#include "plugin/bridge/Files.hpp"

#include "plugin/frame/HostServices.hpp"
#include "plugin/objc/Ownership.hpp"

extern "C" {
using CFMutableStringRef = struct __CFString*;

CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, const FSRef* ref);
CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url, CFStringRef component,
                                               unsigned char isDirectory);
CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFIndex style);
CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef allocator, CFIndex maxLength, CFStringRef string);
void CFStringNormalize(CFMutableStringRef string, CFIndex form);
int16_t FSpMakeFSRef(const FSSpec* spec, FSRef* ref);
}

namespace {

using objc::Adopted;

constexpr CFIndex canonicalDecomposition = 0; // normalisation form D
constexpr CFIndex posixPathStyle = 0;

// The leaf name as the platform's file systems store names; the name as it is if no copy can be made.
CFStringRef createDecomposedName(const HFSUniStr255& leafName) {
    Adopted name(CFStringCreateWithCharacters(nullptr, leafName.unicode, leafName.length));
    Adopted<CFStringRef> copy(CFStringCreateMutableCopy(nullptr, 0, name.get()));
    if (!copy) return name.give();
    CFStringNormalize(const_cast<CFMutableStringRef>(copy.get()), canonicalDecomposition);
    return copy.give();
}

CFURLRef urlInParent(const FSRef& parent, const HFSUniStr255& leafName) {
    const Adopted parentURL(CFURLCreateFromFSRef(nullptr, &parent));
    if (!parentURL || leafName.length == 0) return nullptr;
    const Adopted name(createDecomposedName(leafName));
    return CFURLCreateCopyAppendingPathComponent(nullptr, parentURL.get(), name.get(), 0);
}

} // namespace

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
    return objc::autoreleased(
        reinterpret_cast<objc::Id>(const_cast<struct __CFURL*>(MakeCFURLfromFolderItem(item))));
}

objc::Id NewNSStringPath(REALfolderItem item) {
    const objc::Id url = NewNSURLfile(item);
    if (!url) return nullptr;
    return objc::autoreleased(
        asObject(CFURLCopyFileSystemPath(reinterpret_cast<CFURLRef>(url), posixPathStyle)));
}
