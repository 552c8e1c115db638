// The entries of Rock Ridge.
#include "RockRidge.hpp"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>

namespace engine::iso::rockRidge {
namespace {

constexpr size_t mostContent = 250; // of an entry of 255 bytes, behind its five first
constexpr uint8_t goesOn = 1;       // in the flags of NM, SL and of SL's components

// Components of a target, in entries that are filled up. Where one entry ends and the next begins a component is
// divided, if only into nothing and itself: some readers put a '/' between components of one entry only.
class Components {
  public:
    explicit Components(SystemUse& use) : use_(use) {}

    void add(uint8_t flags, std::string_view name, bool isLast) {
        const size_t left = isLast ? 0 : 2; // for the beginning of the next one
        while (content_.size() + 2 + name.size() + left > mostContent) {
            const size_t fits = mostContent - content_.size() - 2;
            const std::string_view piece = name.substr(0, std::min(fits, name.size() - (name.size() > 0)));
            put(goesOn, piece);
            name.remove_prefix(piece.size());
            flush(goesOn);
        }
        put(flags, name);
    }
    void finish() { flush(0); }

  private:
    void put(uint8_t flags, std::string_view name) {
        content_ += static_cast<char>(flags);
        content_ += static_cast<char>(name.size());
        content_ += name;
    }
    void flush(uint8_t flags) {
        use_.add("SL", 5 + content_.size()).u8(flags).raw(content_);
        content_.clear();
    }

    SystemUse& use_;
    std::string content_;
};

} // namespace

void addPresence(SystemUse& use) { use.add("SP", 7).u8(0xBE).u8(0xEF).u8(0); }

void addExtension(SystemUse& use) {
    constexpr std::string_view identifier = "IEEE_P1282";
    constexpr std::string_view descriptor =
        "THE IEEE P1282 PROTOCOL PROVIDES SUPPORT FOR POSIX FILE SYSTEM SEMANTICS";
    constexpr std::string_view source =
        "PLEASE CONTACT THE IEEE STANDARDS DEPARTMENT, PISCATAWAY, NJ, USA FOR THE P1282 SPECIFICATION";
    use.add("ER", 8 + identifier.size() + descriptor.size() + source.size())
        .u8(identifier.size())
        .u8(descriptor.size())
        .u8(source.size())
        .u8(1)
        .raw(identifier)
        .raw(descriptor)
        .raw(source);
}

void addAttributes(SystemUse& use, const Node& node, const MoreDates* more, uint32_t links, uint32_t serial,
                   int8_t zone) {
    constexpr uint32_t types[] = {0040000, 0100000, 0120000}; // folder, file, symbolic link
    use.add("PX", 44)
        .both32(types[static_cast<size_t>(node.kind)] | (node.mode & 07777u))
        .both32(links)
        .both32(node.owner)
        .both32(node.group)
        .both32(serial);
    static const MoreDates nothing;
    const MoreDates& its = more ? *more : nothing;
    // In the order of their bits in the flags, creation first.
    const std::optional<std::time_t> dates[] = {its.created,  node.modified, node.accessed, node.changed,
                                                its.backedUp, its.expires,   its.effective};
    uint8_t flags = 0;
    size_t count = 0;
    for (size_t i = 0; i < std::size(dates); ++i) {
        if (!dates[i]) continue;
        flags |= static_cast<uint8_t>(1u << i);
        ++count;
    }
    Fields fields = use.add("TF", 5 + count * 7);
    fields.u8(flags);
    for (const auto& date : dates)
        if (date) fields.date(*date, zone);
}

void addMac(SystemUse& use, const MacFile& file) {
    constexpr uint8_t forHfs = 2; // where others have a version
    use.add("AA", 14, forHfs).big32(file.type).big32(file.creator).big16(file.flags);
}

void addName(SystemUse& use, std::string_view name) {
    do {
        const std::string_view piece = name.substr(0, mostContent);
        name.remove_prefix(piece.size());
        use.add("NM", 5 + piece.size()).u8(name.empty() ? 0 : goesOn).raw(piece);
    } while (!name.empty());
}

// Deliberate: a '/' behind another one or at the end is dropped. Components are what stands between, and an empty one
// has a meaning to some readers only; the target stays the same place.
void addTarget(SystemUse& use, std::string_view target) {
    enum : uint8_t { name = 0, current = 2, parent = 4, root = 8 };
    const bool isAbsolute = target.starts_with('/');
    const auto trim = [&target] {
        target.remove_prefix(std::min(target.find_first_not_of('/'), target.size()));
    };
    trim();
    Components components(use);
    if (isAbsolute) components.add(root, {}, target.empty());
    while (!target.empty()) {
        const std::string_view part = target.substr(0, target.find('/'));
        target.remove_prefix(part.size());
        trim();
        const bool isDots = part == "." || part == "..";
        components.add(!isDots ? name : part == "." ? current : parent, isDots ? "" : part, target.empty());
    }
    components.finish();
}

void addChild(SystemUse& use, uint32_t block) { use.add("CL", 12).both32(block); }
void addParent(SystemUse& use, uint32_t block) { use.add("PL", 12).both32(block); }
void addRelocated(SystemUse& use) { use.add("RE", 4); }

} // namespace engine::iso::rockRidge
