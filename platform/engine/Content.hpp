// What is to be put on a disc: a tree of folders and files, from disk, from memory, or produced on demand.
#pragma once

#include "Rare.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace engine {

struct Content;

/// File systems of a disc, as bits of a mask.
namespace filesystem {
inline constexpr uint8_t iso9660 = 1, joliet = 2, udf = 4, hfsPlus = 8, all = 15;
}

/// Gives a file's bytes while the disc is written. Called on the engine's threads, one call at a time, in
/// ascending order without gaps; again from the start when the data is asked for a second time.
class FileProducer {
  public:
    virtual ~FileProducer() = default;
    /// Before anything else is asked; false fails the burn.
    virtual bool prepare() { return true; }
    /// Bytes of the whole file. Asked once when the image is planned; what comes then must be as long.
    virtual uint64_t size() = 0;
    /// Fills the front of `buffer` from `offset` and answers how many bytes; 0 means failure, as long as
    /// bytes are due. The engine asks on after a short answer. Exceptions count as failure.
    virtual size_t read(uint64_t offset, std::span<std::byte> buffer) = 0;
    /// The same of the resource fork, which only HFS+ has: asked where the file is on the disc there. 0 for none.
    virtual uint64_t resourceSize() { return 0; }
    virtual size_t readResource(uint64_t offset, std::span<std::byte> buffer) {
        (void)offset, (void)buffer;
        return 0;
    }
    /// Before the data, and the fork, are asked for a second time; false fails the burn.
    virtual bool prepareAgain() { return true; }
    /// After success and failure, once for each prepare(). What it throws fails the burn, though the medium is whole by then
    /// and stays so.
    virtual void cleanup() {}
};

/// A folder that exists only in this tree, with the children it is given.
struct VirtualFolder {
    std::vector<Content> children;

    VirtualFolder() noexcept;
    explicit VirtualFolder(std::vector<Content> members) noexcept;
    VirtualFolder(const VirtualFolder&);
    VirtualFolder(VirtualFolder&&) noexcept;
    VirtualFolder& operator=(const VirtualFolder&);
    VirtualFolder& operator=(VirtualFolder&&) noexcept;
    ~VirtualFolder(); ///< however deep the tree is
};

/// Whatever is at `path` on disk when the image is planned: a file, a symbolic link (stays a link), or a
/// folder with everything in it. Links inside are never followed; only when this is the root, or the path ends
/// in "/", a link to a folder is.
struct RealItem {
    std::string path;
};

/// Bytes in memory, for as long as `keeper` lives: a tree of many small files has one of those, and copies none.
struct DataFile {
    std::string_view bytes;
    std::shared_ptr<const void> keeper = nullptr;
};

struct ProducedFile {
    std::shared_ptr<FileProducer> producer;
};

struct SymbolicLink {
    std::string target;
    /// Whether the target has the names of items, and is to lead to them where a file system has others.
    bool leadsToItems = false;
};

/// Another name of a file of the tree, the one with that identity; its bytes are on the disc once.
struct HardLink {
    uint64_t identity;
};

/// The Finder's alias to another item of the tree, the one with that identity. HFS+ only.
struct FinderAlias {
    uint64_t identity;
};

/// Names that an item has in single file systems; an empty one is made of the item's name. The root's are the volume's.
struct FilesystemNames {
    std::string joliet, udf, hfsPlus, iso = {};
};

/// What only HFS+ keeps of an item, most of it for the Finder. The numbers are its own; points are top and left.
struct MacAttributes {
    std::optional<std::time_t> created, backedUp;
    std::optional<std::array<uint8_t, 4>> type, creator;
    std::optional<uint16_t> flags, extendedFlags, view, textEncoding;
    std::optional<std::array<int16_t, 4>> windowBounds; ///< top, left, bottom, right
    std::optional<std::array<int16_t, 2>> iconLocation, scrollPosition;
};

/// What an item has in one file system, over what it has in all of them.
struct OwnAttributes {
    std::optional<uint32_t> mode, owner, group;
    /// HFS+ takes those of creation and backup from MacAttributes, and knows no others but of use and change. Rock Ridge
    /// holds all, UDF all but when an item expires. ISO 9660's record has one date, and Joliet's: when it was recorded, else
    /// modified.
    std::optional<std::time_t> created, modified, accessed, changed, backedUp, recorded, effective, expires;
    std::optional<bool> invisible;
    std::optional<uint32_t> version; ///< of a file in ISO 9660, 1 to 32767

    bool operator==(const OwnAttributes&) const = default;
};

/// By the file systems' bits, lowest first.
using FilesystemAttributes = std::array<OwnAttributes, 4>;

/// Values that override what the source says; a virtual item without them has mode 0644 (folders 0755,
/// symbolic links 0777), the owner is root, the times are the track's default date or when the image is planned.
struct Attributes {
    std::optional<uint32_t> mode; ///< permission bits, 07777
    std::optional<uint32_t> owner;
    std::optional<uint32_t> group;
    std::optional<std::time_t> modified;
    std::optional<std::time_t> accessed;
    std::optional<std::time_t> changed; ///< of the attributes
    std::optional<bool> realTime;       ///< of a file, in UDF: its bytes are to be read at a constant speed
    /// In UDF, who may change attributes and delete: bits 0 and 1 others, 2 and 3 the group, 4 and 5 the owner. Without it
    /// those who may write.
    std::optional<uint8_t> udfPermissions;
    std::optional<bool> invisible; ///< hidden in all file systems but Rock Ridge, which knows no such thing
    std::shared_ptr<const MacAttributes> mac = nullptr; ///< null for most
    /// Of a file, type, creator and flags that ISO 9660 is to show, too.
    std::shared_ptr<const MacAttributes> isoMac = nullptr;
    std::shared_ptr<const FilesystemAttributes> own = nullptr; ///< null for most
};

/// One item of the tree. `name` is UTF-8 in composed form where it is text, but any bytes other than '/' and
/// zero are kept in Rock Ridge. An empty name on a RealItem means the last part of its path.
struct Content {
    using Source =
        std::variant<VirtualFolder, RealItem, DataFile, ProducedFile, SymbolicLink, HardLink, FinderAlias>;

    std::string name;
    Source source;
    Rare<Attributes> attributes = {};
    /// Where the item appears; what a folder lacks, all in it lacks. Left off the disc when nothing is left.
    uint8_t filesystems = filesystem::all;
    std::shared_ptr<const FilesystemNames> names = nullptr; ///< null for most
    uint64_t identity = 0;                                  ///< for links to it; 0 for none

    static Content folder(std::string name, std::vector<Content> children = {}) {
        return {std::move(name), VirtualFolder{std::move(children)}};
    }
    static Content real(std::string path, std::string name = {}) {
        return {std::move(name), RealItem{std::move(path)}};
    }
    static Content file(std::string name, std::string bytes) {
        auto kept = std::make_shared<const std::string>(std::move(bytes));
        const std::string_view all = *kept;
        return {std::move(name), DataFile{all, std::move(kept)}};
    }
    static Content produced(std::string name, std::shared_ptr<FileProducer> producer) {
        return {std::move(name), ProducedFile{std::move(producer)}};
    }
    static Content link(std::string name, std::string target) {
        return {std::move(name), SymbolicLink{std::move(target)}};
    }
};

} // namespace engine
