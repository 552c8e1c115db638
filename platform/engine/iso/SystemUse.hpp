// The system use entries of one record (SUSP 1.12), and how they are spread over the record and continuation areas.
#pragma once

#include "Fields.hpp"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace engine::iso {

/// Entries are added in order, then fit() finds their places. One object serves many records: clear() in between.
///
/// What doesn't fit into the record goes to the continuation area, in order and whole entries at a time. Readers want
/// such a piece within one block: it begins in the next block where it doesn't fit into the rest of this one, and what
/// is longer than a block goes on in the next.
class SystemUse {
  public:
    /// Entries that stand in one place.
    struct Part {
        size_t firstEntry, endEntry;
        uint32_t offset; ///< in the continuation area; 0 for the record's own part
        uint32_t bytes;  ///< with the CE entry that leads to the next part
    };

    void clear() noexcept {
        bytes_.clear();
        starts_.clear();
        parts_.clear();
    }
    /// Adds an entry of `size` bytes in all (4 to 255) and gives its fields behind the version, zeroed. Valid up to the
    /// next add().
    Fields add(std::string_view signature, size_t size, uint8_t version = 1);

    /// Spreads the entries: `room` bytes in the record (at least 28, that is a CE entry), then from `cursor` on in the
    /// continuation area. Moves the cursor behind what is used, and answers whether any of it was.
    bool fit(size_t room, uint32_t& cursor);

    /// The first is the record's own.
    std::span<const Part> parts() const noexcept { return parts_; }
    /// Writes a part; `firstBlock` is where the continuation area begins on the medium.
    void put(size_t part, uint32_t firstBlock, std::span<std::byte> to) const;

  private:
    size_t startOf(size_t entry) const noexcept {
        return entry < starts_.size() ? starts_[entry] : bytes_.size();
    }

    std::vector<std::byte> bytes_;
    std::vector<size_t> starts_;
    std::vector<Part> parts_;
};

} // namespace engine::iso
