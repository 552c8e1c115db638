// Turns the content of a track into libisofs's tree.
#include "ImageTree.hpp"
#include "ExtentStream.h"
#include "Failure.hpp"
#include "NodeTimes.hpp"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <map>
#include <optional>
#include <set>
#include <unistd.h>
#include <unordered_map>
#include <utility>

namespace engine {
namespace {

constexpr uint64_t largestFile = 400'000'000'000; // libisofs refuses more; a medium holds less

IsoNode* asNode(IsoDir* folder) noexcept { return reinterpret_cast<IsoNode*>(folder); }
IsoNode* asNode(IsoFile* file) noexcept { return reinterpret_cast<IsoNode*>(file); }
IsoNode* asNode(IsoSymlink* link) noexcept { return reinterpret_cast<IsoNode*>(link); }

struct Entry {
    std::string name;
    struct stat status;
};

class TreeBuilder {
  public:
    TreeBuilder(IsoImage* image, SourceList& sources, uint8_t filesystems, bool merges, const Signal& signal,
                std::time_t now)
        : image_(image), sources_(sources), filesystems_(filesystems), merges_(merges), signal_(signal),
          now_(now) {}

    void build(const Content& root) {
        IsoDir* top = iso_image_get_root(image_);
        if (const auto* folder = std::get_if<VirtualFolder>(&root.source)) {
            setVirtual(asNode(top), root.attributes, 0755);
            addChildren(top, *folder, filesystems_);
        } else if (const auto* item = std::get_if<RealItem>(&root.source)) {
            struct stat status {};
            if (::stat(item->path.c_str(), &status) != 0) missing(item->path, errno);
            if (!S_ISDIR(status.st_mode))
                fail(ErrorCode::FileLocationConflict,
                     inQuotes(item->path) + " is not a folder; only a folder can become a disc.", item->path);
            setReal(asNode(top), status);
            apply(asNode(top), root.attributes);
            pending_.push_back({top, item->path, Fingerprint::of(status), false});
        } else {
            fail(ErrorCode::BadLayout,
                 "The root of a disc must be a folder; " + inQuotes(root.name) + " is none.");
        }
        walkPending();
        addHardLinks();
    }

    NodeSet notInUdf() { return std::move(notInUdf_); }

  private:
    struct PendingFolder {
        IsoDir* node;
        std::string path;
        Fingerprint expected;
        bool isOneOfSeveral; ///< walked again under another name: the files are stored once
    };

    // One name of an item, and where it has it.
    struct Named {
        std::string name;
        uint8_t filesystems;
    };

    struct PendingLink {
        IsoDir* parent;
        Named named;
        const Content* item;
    };

    struct Stored {
        uint64_t size, number;
    };

    // ---- virtual items -------------------------------------------------------------------------------

    void addChildren(IsoDir* parent, const VirtualFolder& folder, uint8_t filesystems) {
        std::vector<const Content*> sorted;
        sorted.reserve(folder.children.size());
        for (const Content& child : folder.children)
            sorted.push_back(&child);
        // libisofs keeps children sorted by walking a list: the last name first finds its place at once.
        std::sort(sorted.begin(), sorted.end(),
                  [](auto* a, auto* b) { return nameOnDisc(*a) > nameOnDisc(*b); });
        for (const Content* child : sorted) {
            signal_.check();
            addItem(parent, *child, filesystems & child->filesystems);
        }
    }

    static void addName(std::vector<Named>& all, const std::string& name, uint8_t filesystem) {
        for (Named& known : all) {
            if (known.name != name) continue;
            known.filesystems |= filesystem;
            return;
        }
        all.push_back({name, filesystem});
    }

    static std::vector<Named> namesOf(const Content& item, uint8_t filesystems) {
        std::vector<Named> all;
        const std::string name = nameOnDisc(item);
        const auto nameIn = [&](std::string FilesystemNames::*member) -> const std::string& {
            return item.names && !((*item.names).*member).empty() ? (*item.names).*member : name;
        };
        if (filesystems & filesystem::iso9660) addName(all, name, filesystem::iso9660);
        if (filesystems & filesystem::joliet)
            addName(all, nameIn(&FilesystemNames::joliet), filesystem::joliet);
        if (filesystems & filesystem::hfsPlus)
            addName(all, nameIn(&FilesystemNames::hfsPlus), filesystem::hfsPlus);
        if (filesystems & filesystem::udf) addName(all, nameIn(&FilesystemNames::udf), filesystem::udf);
        return all;
    }

    static std::string nameOnDisc(const Content& item) {
        if (!item.name.empty()) return item.name;
        const auto* real = std::get_if<RealItem>(&item.source);
        if (real == nullptr) return {};
        std::string path = real->path;
        while (path.size() > 1 && path.back() == '/')
            path.pop_back();
        return path.substr(path.rfind('/') + 1);
    }

    void addItem(IsoDir* parent, const Content& item, uint8_t filesystems) {
        const std::vector<Named> names = namesOf(item, filesystems);
        const bool isOneOfSeveral = names.size() > 1 || severalDepth_ > 0;
        for (const Named& named : names) {
            checkName(named.name);
            if (std::holds_alternative<HardLink>(item.source)) {
                links_.push_back({parent, named, &item});
                continue;
            }
            const auto known = isOneOfSeveral ? again_.find(&item) : again_.end();
            lastStored_.reset();
            IsoNode* node = known != again_.end()
                                ? addNode(parent, named.name, known->second.size, known->second.number)
                                : addNamed(parent, named, item, isOneOfSeveral);
            dress(node, item);
            hide(node, named.filesystems);
            if (!lastStored_ || std::holds_alternative<VirtualFolder>(item.source)) continue;
            if (isOneOfSeveral) again_.emplace(&item, *lastStored_);
            if (item.identity != 0) identities_.try_emplace(item.identity, *lastStored_);
        }
    }

    IsoNode* addNamed(IsoDir* parent, const Named& named, const Content& item, bool isOneOfSeveral) {
        if (const auto* folder = std::get_if<VirtualFolder>(&item.source)) {
            IsoDir* node = addFolder(parent, named.name);
            severalDepth_ += isOneOfSeveral;
            addChildren(node, *folder, named.filesystems);
            severalDepth_ -= isOneOfSeveral;
            return asNode(node);
        }
        if (const auto* data = std::get_if<DataFile>(&item.source)) {
            SourceFile file;
            file.fingerprint.size = data->bytes.size();
            file.data = &data->bytes;
            return addFile(parent, named.name, named.name, file);
        }
        if (const auto* produced = std::get_if<ProducedFile>(&item.source))
            return addProduced(parent, named.name, *produced);
        if (const auto* link = std::get_if<SymbolicLink>(&item.source))
            return addLink(parent, named.name, link->target);
        return addRealItem(parent, named.name, std::get<RealItem>(item.source), isOneOfSeveral);
    }

    // Hard links come last: then all that they can point at is there.
    void addHardLinks() {
        for (const PendingLink& link : links_) {
            const auto found = identities_.find(std::get<HardLink>(link.item->source).identity);
            if (found == identities_.end())
                fail(ErrorCode::FileLocationConflict,
                     "The hard link " + inQuotes(link.named.name) +
                         " points at nothing that is on the disc; add the file, or leave the link out.");
            IsoNode* node = addNode(link.parent, link.named.name, found->second.size, found->second.number);
            dress(node, *link.item);
            hide(node, link.named.filesystems);
        }
    }

    void hide(IsoNode* node, uint8_t shown) {
        const auto hidden = static_cast<uint8_t>(filesystems_ & ~shown);
        int flags = 0;
        if (hidden & filesystem::iso9660) flags |= LIBISO_HIDE_ON_RR;
        if (hidden & filesystem::joliet) flags |= LIBISO_HIDE_ON_JOLIET;
        if (hidden & filesystem::hfsPlus) flags |= LIBISO_HIDE_ON_HFSPLUS;
        if (hidden & filesystem::udf) notInUdf_.insert(node);
        // What only UDF shows must be written all the same.
        if (flags != 0) iso_node_set_hidden(node, flags | LIBISO_HIDE_BUT_WRITE);
    }

    IsoNode* addProduced(IsoDir* parent, const std::string& name, const ProducedFile& produced) {
        if (!produced.producer)
            fail(ErrorCode::DataProduction, "The file " + inQuotes(name) + " has no producer of its bytes.");
        SourceFile file;
        file.producer = produced.producer.get();
        bool isPrepared = false;
        std::string reason;
        try {
            // Before the call: what began is ended.
            sources_.prepared.emplace_back(nullptr, [kept = produced.producer](void*) { kept->cleanup(); });
            isPrepared = file.producer->prepare();
            if (isPrepared) file.fingerprint.size = file.producer->size();
        } catch (const std::exception& problem) {
            isPrepared = false;
            reason = problem.what();
        }
        if (!isPrepared)
            fail(ErrorCode::DataProduction,
                 "The producer of the file " + inQuotes(name) +
                     " could not prepare it, or can't tell its size.",
                 reason);
        return addFile(parent, name, name, file);
    }

    IsoNode* addRealItem(IsoDir* parent, const std::string& name, const RealItem& item, bool isOneOfSeveral) {
        struct stat status {};
        if (::lstat(item.path.c_str(), &status) != 0) missing(item.path, errno);
        IsoNode* node = nullptr;
        if (S_ISDIR(status.st_mode)) {
            IsoDir* folder = addFolder(parent, name);
            pending_.push_back({folder, item.path, Fingerprint::of(status), isOneOfSeveral});
            node = asNode(folder);
        } else {
            node = addLeaf(parent, name, AT_FDCWD, item.path, SourceList::noFolder, item.path, status, false);
        }
        setReal(node, status);
        return node;
    }

    // ---- what is on disk -----------------------------------------------------------------------------

    void walkPending() {
        while (!pending_.empty()) {
            const PendingFolder folder = std::move(pending_.back());
            pending_.pop_back();
            walk(folder);
        }
    }

    void walk(const PendingFolder& folder) {
        const int number = ::open(folder.path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK);
        if (number < 0) missing(folder.path, errno);
        const std::unique_ptr<DIR, int (*)(DIR*)> stream(::fdopendir(number), ::closedir);
        if (!stream) {
            ::close(number);
            fail(ErrorCode::FileLocationConflict, "The folder " + inQuotes(folder.path) + " can't be read.",
                 systemText(errno));
        }
        struct stat status {};
        if (::fstat(number, &status) != 0 || Fingerprint::of(status).inode != folder.expected.inode)
            fail(ErrorCode::FileModifiedDuringBurn,
                 "The folder " + inQuotes(folder.path) + " became another one while it was read.",
                 folder.path);
        const auto index = static_cast<uint32_t>(sources_.folders.size());
        sources_.folders.push_back({folder.path, Fingerprint::of(status)});

        std::vector<Entry> entries = readEntries(stream.get(), folder.path);
        for (const Entry& entry : entries) {
            const std::string path = folder.path + '/' + entry.name;
            IsoNode* node = nullptr;
            if (S_ISDIR(entry.status.st_mode)) {
                IsoDir* child = addFolder(folder.node, entry.name);
                pending_.push_back({child, path, Fingerprint::of(entry.status), folder.isOneOfSeveral});
                node = asNode(child);
            } else {
                node = addLeaf(folder.node, entry.name, number, entry.name, index, path, entry.status,
                               folder.isOneOfSeveral);
            }
            setReal(node, entry.status);
        }
    }

    // All entries, last name first (see addChildren).
    std::vector<Entry> readEntries(DIR* stream, const std::string& path) {
        std::vector<Entry> entries;
        while (true) {
            errno = 0;
            const dirent* found = ::readdir(stream);
            if (found == nullptr) {
                if (errno != 0)
                    fail(ErrorCode::FileLocationConflict, "The folder " + inQuotes(path) + " can't be read.",
                         systemText(errno));
                break;
            }
            const std::string_view name = found->d_name;
            if (name == "." || name == "..") continue;
            signal_.check();
            Entry entry{std::string(name), {}};
            if (::fstatat(::dirfd(stream), found->d_name, &entry.status, AT_SYMLINK_NOFOLLOW) != 0) {
                if (errno == ENOENT)
                    fail(ErrorCode::FileModifiedDuringBurn,
                         inQuotes(path + '/' + entry.name) + " went away while its folder was read.",
                         systemText(errno));
                missing(path + '/' + entry.name, errno);
            }
            entries.push_back(std::move(entry));
        }
        std::sort(entries.begin(), entries.end(),
                  [](const Entry& a, const Entry& b) { return a.name > b.name; });
        return entries;
    }

    IsoNode* addLeaf(IsoDir* parent, const std::string& name, int folder, const std::string& nameThere,
                     uint32_t folderIndex, const std::string& path, const struct stat& status,
                     bool mayComeAgain) {
        if (S_ISLNK(status.st_mode)) return addLink(parent, name, readLink(folder, nameThere, path));
        if (!S_ISREG(status.st_mode)) {
            const char* what = S_ISFIFO(status.st_mode)   ? "a pipe"
                               : S_ISSOCK(status.st_mode) ? "a socket"
                                                          : "a device";
            fail(ErrorCode::FileLocationConflict,
                 inQuotes(path) + " is " + what + ", which can't stand on a disc: take it out of the folder.",
                 path);
        }
        // Files that all may read need no question; for the others it is asked before anything is written.
        if ((status.st_mode & 0444) != 0444 && ::faccessat(folder, nameThere.c_str(), R_OK, AT_EACCESS) != 0)
            fail(ErrorCode::FileLocationConflict, "The file " + inQuotes(path) + " can't be read.",
                 systemText(errno));
        SourceFile file;
        file.fingerprint = Fingerprint::of(status);
        file.folder = folderIndex;
        if (status.st_nlink < 2 && !mayComeAgain) return addFile(parent, name, nameThere, file);
        const auto [known, isNew] = linked_.try_emplace({status.st_dev, status.st_ino}, 0);
        if (isNew) {
            IsoNode* node = addFile(parent, name, nameThere, file);
            known->second = sources_.files.size();
            return node;
        }
        lastStored_ = Stored{file.fingerprint.size, known->second};
        return addNode(parent, name, file.fingerprint.size, known->second);
    }

    static std::string readLink(int folder, const std::string& name, const std::string& path) {
        std::string target(PATH_MAX, '\0');
        const ssize_t length = ::readlinkat(folder, name.c_str(), target.data(), target.size());
        if (length < 0 || static_cast<size_t>(length) == target.size())
            fail(ErrorCode::FileLocationConflict, "The symbolic link " + inQuotes(path) + " can't be read.",
                 systemText(errno));
        target.resize(static_cast<size_t>(length));
        return target;
    }

    [[noreturn]] static void missing(const std::string& path, int errorNumber) {
        if (errorNumber == ENOENT || errorNumber == ENOTDIR)
            fail(ErrorCode::FileLocationConflict, inQuotes(path) + " does not exist.",
                 systemText(errorNumber));
        fail(ErrorCode::FileLocationConflict, inQuotes(path) + " can't be read.", systemText(errorNumber));
    }

    // ---- libisofs's nodes ----------------------------------------------------------------------------

    static void checkName(const std::string& name) {
        if (name.empty() || name == "." || name == ".." ||
            name.find_first_of(std::string_view("/\0", 2)) != std::string::npos)
            fail(ErrorCode::FileLocationConflict, inQuotes(name) + " can't be the name of a file or folder.");
        if (name.size() > 255)
            fail(ErrorCode::FileLocationConflict,
                 "The name " + inQuotes(name) + " is longer than 255 bytes; give it a shorter one.");
    }

    [[noreturn]] static void refused(const std::string& name, int code) {
        if (code == static_cast<int>(ISO_NODE_NAME_NOT_UNIQUE))
            fail(ErrorCode::FileLocationConflict,
                 "Two items of one folder are named " + inQuotes(name) + "; give one of them another name.",
                 name);
        fail(ErrorCode::FileLocationConflict, "The item " + inQuotes(name) + " can't be put on the disc.",
             iso_error_to_msg(code));
    }

    // What an imported tree has at a place that something new takes: a folder that both have is gone on with,
    // all else goes.
    IsoDir* makeWay(IsoDir* parent, const std::string& name, bool forFolder) {
        IsoNode* old = nullptr;
        if (!merges_ || iso_dir_get_node(parent, name.c_str(), &old) != 1 || added_.contains(old))
            return nullptr;
        if (forFolder && iso_node_get_type(old) == LIBISO_DIR) return reinterpret_cast<IsoDir*>(old);
        iso_node_remove(old);
        return nullptr;
    }

    template <typename Node>
    Node* noted(Node* node) {
        if (merges_) added_.insert(asNode(node));
        return node;
    }

    IsoDir* addFolder(IsoDir* parent, const std::string& name) {
        if (IsoDir* known = makeWay(parent, name, true)) return noted(known);
        IsoDir* node = nullptr;
        const int code = iso_image_add_new_dir(image_, parent, name.c_str(), &node);
        if (code < 0) refused(name, code);
        return noted(node);
    }

    IsoNode* addLink(IsoDir* parent, const std::string& name, const std::string& target) {
        if (target.empty() || target.find('\0') != std::string::npos)
            fail(ErrorCode::FileLocationConflict, "The symbolic link " + inQuotes(name) + " points nowhere.");
        makeWay(parent, name, false);
        IsoSymlink* node = nullptr;
        const int code = iso_image_add_new_symlink(image_, parent, name.c_str(), target.c_str(), &node);
        if (code < 0) refused(name, code);
        return asNode(noted(node));
    }

    // A file with contents of its own. Its number is its place in the list, from 1: libisofs lays out by it,
    // because the image asks for sorting by weight.
    IsoNode* addFile(IsoDir* parent, const std::string& name, const std::string& nameThere, SourceFile file) {
        if (file.fingerprint.size > largestFile)
            fail(ErrorCode::FileLocationConflict, "The file " + inQuotes(name) + " of " +
                                                      megabytes(file.fingerprint.size) +
                                                      " is larger than any disc.");
        if (sources_.names.size() + nameThere.size() >= INT_MAX)
            fail(ErrorCode::FileLocationConflict, "There are too many files for one disc.");
        IsoNode* node = addNode(parent, name, file.fingerprint.size, sources_.files.size() + 1);
        file.nameAt = static_cast<uint32_t>(sources_.names.size());
        sources_.names.append(nameThere.c_str(), nameThere.size() + 1);
        sources_.files.push_back(file);
        lastStored_ = Stored{file.fingerprint.size, sources_.files.size()};
        return node;
    }

    IsoNode* addNode(IsoDir* parent, const std::string& name, uint64_t size, uint64_t number) {
        makeWay(parent, name, false);
        IsoStream* stream = engine_extent_stream(size, number);
        if (stream == nullptr) throw std::bad_alloc();
        IsoFile* node = nullptr;
        const int code = iso_image_add_new_file(image_, parent, name.c_str(), stream, &node);
        if (code < 0) {
            iso_stream_unref(stream);
            refused(name, code);
        }
        iso_node_set_sort_weight(asNode(node),
                                 static_cast<int>(INT_MAX - number)); // heavier files lie further in front
        return asNode(noted(node));
    }

    // ---- attributes ----------------------------------------------------------------------------------

    static void setReal(IsoNode* node, const struct stat& status) {
        iso_node_set_permissions(node, status.st_mode & 07777);
        iso_node_set_uid(node, status.st_uid);
        iso_node_set_gid(node, status.st_gid);
        setModified(node, status.st_mtime);
        setAccessed(node, status.st_atime);
        setChanged(node, status.st_ctime);
    }

    // What is said of the item goes before what its source says; a real item has that already.
    void dress(IsoNode* node, const Content& item) {
        if (std::holds_alternative<RealItem>(item.source))
            apply(node, item.attributes);
        else
            setVirtual(node, item.attributes,
                       std::holds_alternative<VirtualFolder>(item.source)  ? 0755
                       : std::holds_alternative<SymbolicLink>(item.source) ? 0777
                                                                           : 0644);
    }

    void setVirtual(IsoNode* node, const Attributes& attributes, mode_t mode) {
        iso_node_set_permissions(node, mode);
        iso_node_set_uid(node, 0);
        iso_node_set_gid(node, 0);
        setModified(node, now_);
        setAccessed(node, now_);
        setChanged(node, now_);
        apply(node, attributes);
    }

    static void apply(IsoNode* node, const Attributes& attributes) {
        if (attributes.mode) iso_node_set_permissions(node, *attributes.mode & 07777);
        if (attributes.owner) iso_node_set_uid(node, *attributes.owner);
        if (attributes.group) iso_node_set_gid(node, *attributes.group);
        if (attributes.modified) setModified(node, *attributes.modified);
        if (attributes.accessed) setAccessed(node, *attributes.accessed);
        if (attributes.changed) setChanged(node, *attributes.changed);
        if (attributes.macType || attributes.macCreator) setMacCodes(node, attributes);
    }

    static void setMacCodes(IsoNode* node, const Attributes& attributes) {
        std::unique_ptr<iso_hfsplus_xinfo_data, void (*)(void*)> codes(iso_hfsplus_xinfo_new(0), std::free);
        if (!codes) throw std::bad_alloc();
        if (attributes.macType) std::copy_n(attributes.macType->begin(), 4, codes->type_code);
        if (attributes.macCreator) std::copy_n(attributes.macCreator->begin(), 4, codes->creator_code);
        // A node that is there already answers 0, and keeps what it has.
        if (iso_node_add_xinfo(node, iso_hfsplus_xinfo_func, codes.get()) > 0)
            static_cast<void>(codes.release()); // the node's now
    }

    IsoImage* image_;
    SourceList& sources_;
    NodeSet notInUdf_;
    uint8_t filesystems_;      ///< that are written
    bool merges_;              ///< the image has a tree already
    std::set<IsoNode*> added_; ///< what this builder put into it
    const Signal& signal_;
    std::time_t now_;
    std::vector<PendingFolder> pending_;
    std::map<std::pair<uint64_t, uint64_t>, uint64_t>
        linked_;           // device and inode to number, for files with several names
    int severalDepth_ = 0; // inside of folders that have several names
    std::unordered_map<const Content*, Stored> again_; // files that come again under another name
    std::unordered_map<uint64_t, Stored> identities_;  // what hard links can point at
    std::vector<PendingLink> links_;
    std::optional<Stored> lastStored_; // by the node that was added last, if it has contents
};

} // namespace

NodeSet buildImageTree(IsoImage* image, const DataTrack& track, uint8_t filesystems, SourceList& sources,
                       bool merges, const Signal& signal) {
    const std::time_t now = track.defaultDate.value_or(std::time(nullptr));
    TreeBuilder builder(image, sources, filesystems, merges, signal, now);
    builder.build(track.root);
    return builder.notInUdf();
}

} // namespace engine
