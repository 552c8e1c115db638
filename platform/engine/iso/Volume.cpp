// The descriptors of a volume, and which block is whose.
#include "Volume.hpp"
#include "Assistant.hpp"
#include "Failure.hpp"

#include <algorithm>
#include <array>

namespace engine::iso {
namespace {

enum : uint8_t { primary = 1, supplementary = 2, terminator = 255 }; // kinds of descriptors (ECMA-119 8.1.1)

void checkRules(const VolumeSettings& settings) {
    if (settings.rules.level < 1 || settings.rules.level > 3)
        fail(ErrorCode::BadLayout, "There is no ISO 9660 level " + std::to_string(settings.rules.level) +
                                       "; the levels are 1 to 3.");
    if (settings.zone < -48 || settings.zone > 52)
        fail(ErrorCode::BadLayout, "A disc's time zone is 12 hours west to 13 hours east of Greenwich.");
}

} // namespace

Volume::Volume(Tree tree, std::optional<Tree> joliet, VolumeSettings settings)
    : settings_((checkRules(settings), std::move(settings))) {
    const size_t shared = joliet ? tree.entries.size() : 0;
    const auto makeIso = [&] { iso_.emplace(std::move(tree), Form::Iso, settings_.rules, settings_.zone); };
    const auto makeJoliet = [&] {
        if (joliet) joliet_.emplace(std::move(*joliet), Form::Joliet, settings_.rules, settings_.zone);
    };
    doBoth(shared, makeIso, makeJoliet);
    const uint32_t front = firstDescriptorBlock + descriptorBlocks();
    if (settings_.structureStart == 0) settings_.structureStart = front;
    if (settings_.structureStart < front)
        fail(ErrorCode::BadLayout, "A disc's folders lie behind its descriptors.");
    const uint32_t start = settings_.sessionStart + settings_.structureStart;
    iso_->place(start);
    if (joliet_) joliet_->place(start + iso_->blocks());
}

bool Volume::has(uint64_t number) const noexcept {
    return (number >= firstDescriptorBlock && number < firstDescriptorBlock + descriptorBlocks()) ||
           (number >= settings_.structureStart && number - settings_.structureStart < structureBlocks());
}

void Volume::block(uint64_t number, std::span<std::byte, blockBytes> block) const {
    const auto at = static_cast<uint32_t>(number);
    if (at >= settings_.structureStart) {
        const uint32_t structure = at - settings_.structureStart;
        if (structure < iso_->blocks()) return iso_->block(structure, block);
        return joliet_->block(structure - iso_->blocks(), block);
    }
    std::ranges::fill(block, std::byte{0});
    if (at == firstDescriptorBlock) return descriptor(*iso_, false, block);
    if (joliet_ && at == firstDescriptorBlock + 1) return descriptor(*joliet_, true, block);
    Fields(block).u8(terminator).raw("CD001").u8(1);
}

// Deliberate: what a field can't hold is cut, and texts of the primary descriptor are UTF-8 as they are, for those who
// read them have long shown more than capital letters.
void Volume::descriptor(const Hierarchy& hierarchy, bool wide, std::span<std::byte> block) const {
    Fields fields(block);
    const auto text = [&](size_t size, std::string_view utf8) {
        if (wide)
            fields.wideText(size, utf8);
        else
            fields.text(size, utf8);
    };
    const int8_t zone = settings_.zone;
    fields.u8(wide ? supplementary : primary).raw("CD001").u8(1).u8(0);
    text(32, settings_.system);
    text(32, wide && !settings_.jolietName.empty() ? settings_.jolietName : settings_.volumeName);
    fields.skip(8).both32(settings_.sessionStart + totalBlocks_);
    fields.raw(wide ? "%/E" : "").skip(wide ? 32 - 3 : 32); // UCS-2 level 3
    fields.both16(1).both16(1).both16(blockBytes).both32(hierarchy.pathTableBytes());
    fields.little32(hierarchy.littleTable()).little32(0).big32(hierarchy.bigTable()).big32(0);
    hierarchy.rootRecord(block.subspan(fields.position()).first<34>());
    fields.skip(34);
    for (const std::string* name :
         {&settings_.volumeSet, &settings_.publisher, &settings_.dataPreparer, &settings_.application})
        text(128, *name);
    for (const std::string* name :
         {&settings_.copyrightFile, &settings_.abstractFile, &settings_.bibliographicFile})
        text(37, *name);
    fields.digits(settings_.created.value_or(settings_.recorded), zone);
    fields.digits(settings_.modified.value_or(settings_.recorded), zone);
    fields.digits(settings_.expires, zone).digits(settings_.effective, zone).u8(1);
}

} // namespace engine::iso
