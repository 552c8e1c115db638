// The stores of a tree.
#include "Tree.hpp"
#include "Fields.hpp"

#include <algorithm>

namespace engine::iso {
namespace {

// The largest part of a file that can be followed by another one (ECMA-119 9.1.4: the length has 32 bits).
constexpr uint64_t mostSectionBytes = 0xFFFF'F800;

// No name is that long: what is cut here is refused later, as too long.
uint16_t lengthOf(std::string_view text) {
    return static_cast<uint16_t>(std::min<size_t>(text.size(), 0xFFFF));
}

} // namespace

Entry Tree::makeEntry(uint32_t node, std::string_view name, std::string_view rockRidge, bool hidden) {
    const Entry entry{node, static_cast<uint32_t>(text.size()), lengthOf(name), lengthOf(rockRidge), hidden};
    text += name.substr(0, entry.nameBytes);
    text += rockRidge.substr(0, entry.rockRidgeBytes);
    return entry;
}

void Tree::setTarget(Node& link, std::string_view target) {
    link.first = static_cast<uint32_t>(text.size());
    link.count = static_cast<uint32_t>(target.size());
    text += target;
}

void Tree::setSize(Node& file, uint64_t bytes) {
    file.first = static_cast<uint32_t>(sections.size());
    for (; bytes > 0; bytes -= sections.back().bytes)
        sections.push_back({0, static_cast<uint32_t>(std::min(bytes, mostSectionBytes))});
    file.count = static_cast<uint32_t>(sections.size()) - file.first;
}

void Tree::placeFile(const Node& file, uint32_t firstBlock) {
    for (Section& section : std::span(sections).subspan(file.first, file.count)) {
        section.firstBlock = firstBlock;
        firstBlock += blocksOf(section.bytes);
    }
}

uint64_t Tree::sizeOf(const Node& file) const {
    uint64_t bytes = 0;
    for (const Section& section : sectionsOf(file))
        bytes += section.bytes;
    return bytes;
}

} // namespace engine::iso
