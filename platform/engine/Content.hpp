// What is to be put on a disc: a tree of folders and files, from disk, from memory, or produced on demand.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace engine {

struct Content;

/// Gives a file's bytes while the disc is written. Called on the engine's threads, one call at a time, in
/// ascending order without gaps; again from the start when the data is asked for a second time.
class FileProducer {
  public:
    virtual ~FileProducer() = default;
    /// Bytes of the whole file. Asked once when the image is planned; what comes then must be as long.
    virtual uint64_t size() = 0;
    /// Fills the front of `buffer` from `offset` and answers how many bytes; 0 means failure, as long as
    /// bytes are due. The engine asks on after a short answer. Exceptions count as failure.
    virtual size_t read(uint64_t offset, std::span<std::byte> buffer) = 0;
};

/// A folder that exists only in this tree, with the children it is given.
struct VirtualFolder {
    std::vector<Content> children;
};

/// Whatever is at `path` on disk when the image is planned: a file, a symbolic link (stays a link), or a
/// folder with everything in it. Links inside are never followed; only when this is the root, a link to a
/// folder is.
struct RealItem {
    std::string path;
};

struct DataFile {
    std::string bytes;
};

struct ProducedFile {
    std::shared_ptr<FileProducer> producer;
};

struct SymbolicLink {
    std::string target;
};

/// Values that override what the source says; a virtual item without them is mode 0444 (folders 0555) or what
/// the process would give a new one, the owner is root, the times are the start of the burn.
struct Attributes {
    std::optional<uint32_t> mode; ///< permission bits, 07777
    std::optional<uint32_t> owner;
    std::optional<uint32_t> group;
    std::optional<std::time_t> modified;
    std::optional<std::time_t> accessed;
    std::optional<std::time_t> changed; ///< of the attributes
};

/// One item of the tree. `name` is UTF-8 in composed form where it is text, but any bytes other than '/' and
/// zero are kept in Rock Ridge. An empty name on a RealItem means the last part of its path.
struct Content {
    using Source = std::variant<VirtualFolder, RealItem, DataFile, ProducedFile, SymbolicLink>;

    std::string name;
    Source source;
    Attributes attributes;

    static Content folder(std::string name, std::vector<Content> children = {}) {
        return {std::move(name), VirtualFolder{std::move(children)}, {}};
    }
    static Content real(std::string path, std::string name = {}) {
        return {std::move(name), RealItem{std::move(path)}, {}};
    }
    static Content file(std::string name, std::string bytes) {
        return {std::move(name), DataFile{std::move(bytes)}, {}};
    }
    static Content produced(std::string name, std::shared_ptr<FileProducer> producer) {
        return {std::move(name), ProducedFile{std::move(producer)}, {}};
    }
    static Content link(std::string name, std::string target) {
        return {std::move(name), SymbolicLink{std::move(target)}, {}};
    }
};

} // namespace engine
