// Reads folders on disk.
#include "FolderWalker.hpp"
#include "Failure.hpp"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace engine::plan {
namespace {

constexpr uint64_t largestFile = 200'000'000'000; // more than a medium holds, and less than UDF can describe

[[noreturn]] void missing(const std::string& path, int errorNumber) {
    if (errorNumber == ENOENT || errorNumber == ENOTDIR)
        fail(ErrorCode::FileLocationConflict, inQuotes(path) + " does not exist.", systemText(errorNumber));
    fail(ErrorCode::FileLocationConflict, inQuotes(path) + " can't be read.", systemText(errorNumber));
}

[[noreturn]] void unreadable(const std::string& path, int errorNumber) {
    fail(ErrorCode::FileLocationConflict, "The folder " + inQuotes(path) + " can't be read.",
         systemText(errorNumber));
}

std::string readLink(int folder, const std::string& name, const std::string& path) {
    std::string target(PATH_MAX, '\0');
    const ssize_t length = ::readlinkat(folder, name.c_str(), target.data(), target.size());
    if (length < 0 || static_cast<size_t>(length) == target.size())
        fail(ErrorCode::FileLocationConflict, "The symbolic link " + inQuotes(path) + " can't be read.",
             systemText(errno));
    target.resize(static_cast<size_t>(length));
    return target;
}

std::string withoutSlash(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

} // namespace

void checkName(std::string_view name, size_t mostBytes) {
    if (name.empty() || name == "." || name == ".." ||
        name.find_first_of(std::string_view("/\0", 2)) != std::string_view::npos)
        fail(ErrorCode::FileLocationConflict, inQuotes(name) + " can't be the name of a file or folder.");
    if (name.size() > mostBytes)
        fail(ErrorCode::FileLocationConflict, "The name " + inQuotes(name) + " is longer than " +
                                                  std::to_string(mostBytes) +
                                                  " bytes; give it a shorter one.");
}

void FolderWalker::describe(Node& node, const struct stat& status) {
    node.mode = static_cast<uint16_t>(status.st_mode & 07777);
    node.owner = status.st_uid;
    node.group = status.st_gid;
    node.modified = status.st_mtime;
    node.accessed = status.st_atime;
    node.changed = status.st_ctime;
    node.invisible = false; // what an old folder was
}

void FolderWalker::addRoot(const std::string& path, uint8_t filesystems) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) missing(path, errno);
    if (!S_ISDIR(status.st_mode))
        fail(ErrorCode::FileLocationConflict,
             inQuotes(path) + " is not a folder; only a folder can become a disc.", path);
    describe(tree_.nodes[0], status);
    pending_.push_back({0, withoutSlash(path), Fingerprint::of(status), filesystems});
}

uint32_t FolderWalker::addItem(const std::string& path, uint8_t filesystems, uint32_t oldFolder,
                               bool isItsOwn) {
    struct stat status {};
    // A link whose path ends in "/" is the folder that it leads to.
    if (::lstat(path.c_str(), &status) != 0) missing(path, errno);
    if (!S_ISDIR(status.st_mode))
        return addLeaf({AT_FDCWD, SourceList::noFolder, path, path}, status, isItsOwn);
    Node folder;
    folder.kind = NodeKind::Folder;
    const uint32_t node = oldFolder == none ? tree_.addNode(folder) : oldFolder;
    describe(tree_.nodes[node], status);
    tree_.own.erase(node); // where an old folder was hidden
    pending_.push_back({node, withoutSlash(path), Fingerprint::of(status), filesystems});
    return node;
}

void FolderWalker::walk() {
    while (!pending_.empty()) {
        const Pending folder = std::move(pending_.back());
        pending_.pop_back();
        walk(folder);
    }
}

void FolderWalker::walk(const Pending& folder) {
    const int number = ::open(folder.path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK);
    if (number < 0) missing(folder.path, errno);
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::fdopendir(number), ::closedir);
    if (!stream) {
        ::close(number);
        unreadable(folder.path, errno);
    }
    struct stat status {};
    if (::fstat(number, &status) != 0 || Fingerprint::of(status).inode != folder.expected.inode)
        fail(ErrorCode::FileModifiedDuringBurn,
             "The folder " + inQuotes(folder.path) + " became another one while it was read.", folder.path);
    const auto index = static_cast<uint32_t>(sources_.folders.size());
    sources_.folders.push_back({folder.path, Fingerprint::of(status)});

    const size_t waiting = pending_.size();
    for (const Found& found : read(stream.get(), folder.path)) {
        const std::string path = folder.path + '/' + found.name;
        const ItemNames names{found.name};
        uint32_t node;
        if (S_ISDIR(found.status.st_mode)) {
            Node made;
            made.kind = NodeKind::Folder;
            node = tree_.oldFolder(folder.node, names, folder.filesystems);
            if (node == none) node = tree_.addNode(made);
            describe(tree_.nodes[node], found.status);
            tree_.own.erase(node);
            pending_.push_back({node, path, Fingerprint::of(found.status), folder.filesystems});
        } else {
            node = addLeaf({number, index, found.name, path}, found.status, false);
        }
        tree_.addEntry(folder.node, node, names, folder.filesystems);
    }
    // The last one waiting is the next: so they come in the order of their names.
    std::reverse(pending_.begin() + static_cast<ptrdiff_t>(waiting), pending_.end());
}

// All entries, by name.
std::vector<FolderWalker::Found> FolderWalker::read(DIR* stream, const std::string& path) const {
    std::vector<Found> all;
    while (true) {
        errno = 0;
        const dirent* found = ::readdir(stream);
        if (found == nullptr) {
            if (errno != 0) unreadable(path, errno);
            break;
        }
        const std::string_view name = found->d_name;
        if (name == "." || name == "..") continue;
        signal_.check();
        Found entry{std::string(name), {}};
        if (::fstatat(::dirfd(stream), found->d_name, &entry.status, AT_SYMLINK_NOFOLLOW) != 0) {
            if (errno == ENOENT)
                fail(ErrorCode::FileModifiedDuringBurn,
                     inQuotes(path + '/' + entry.name) + " went away while its folder was read.",
                     systemText(errno));
            missing(path + '/' + entry.name, errno);
        }
        all.push_back(std::move(entry));
    }
    std::ranges::sort(all, {}, &Found::name);
    return all;
}

uint32_t FolderWalker::addLeaf(const Place& place, const struct stat& status, bool isItsOwn) {
    Node node;
    describe(node, status);
    if (S_ISLNK(status.st_mode)) {
        node.kind = NodeKind::SymbolicLink;
        node.leadsToItems = true;
        tree_.setTarget(node, readLink(place.folder, place.name, place.path));
        return tree_.addNode(node);
    }
    if (!S_ISREG(status.st_mode)) {
        const char* what = S_ISFIFO(status.st_mode)   ? "a pipe"
                           : S_ISSOCK(status.st_mode) ? "a socket"
                                                      : "a device";
        fail(ErrorCode::FileLocationConflict,
             inQuotes(place.path) + " is " + what +
                 ", which can't stand on a disc: take it out of the folder.",
             place.path);
    }
    // Files that all may read need no question; for the others it is asked before anything is written.
    if ((status.st_mode & 0444) != 0444 &&
        ::faccessat(place.folder, place.name.c_str(), R_OK, AT_EACCESS) != 0)
        fail(ErrorCode::FileLocationConflict, "The file " + inQuotes(place.path) + " can't be read.",
             systemText(errno));
    Linked once;
    Linked& linked = status.st_nlink < 2 ? once : linked_[{status.st_dev, status.st_ino}];
    if (linked.node != none && !isItsOwn) return linked.node;
    if (linked.extent == none) {
        SourceFile file;
        file.fingerprint = Fingerprint::of(status);
        file.folder = place.index;
        linked.extent = addSource(file, place.name, place.name);
    }
    node.first = linked.extent;
    const uint32_t index = tree_.addNode(node);
    if (!isItsOwn) linked.node = index;
    return index;
}

uint32_t FolderWalker::addSource(const SourceFile& wanted, std::string_view name,
                                 std::string_view nameThere) {
    SourceFile file = wanted;
    if (file.fingerprint.size > largestFile)
        fail(ErrorCode::FileLocationConflict, "The file " + inQuotes(name) + " of " +
                                                  megabytes(file.fingerprint.size) +
                                                  " is larger than any disc.");
    if (sources_.names.size() + nameThere.size() >= INT_MAX)
        fail(ErrorCode::FileLocationConflict, "There are too many files for one disc.");
    file.nameAt = static_cast<uint32_t>(sources_.names.size());
    sources_.names += nameThere;
    sources_.names += '\0';
    sources_.files.push_back(file);
    Extent extent;
    extent.bytes = file.fingerprint.size;
    tree_.extents.push_back(extent);
    return static_cast<uint32_t>(tree_.extents.size() - 1);
}

} // namespace engine::plan
