// Writes the fields of UDF's descriptors, in order, into a zeroed block (ECMA-167, little-endian throughout).
#pragma once

#include "Text.hpp"
#include "Tree.hpp"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <span>
#include <string_view>

namespace engine::udf {

/// What a descriptor's tag says that it is (ECMA-167 3/7.2.1 and 4/7.2.1).
enum class TagKind : uint16_t {
    PrimaryVolume = 1,
    Anchor = 2,
    ImplementationUse = 4,
    Partition = 5,
    LogicalVolume = 6,
    UnallocatedSpace = 7,
    Terminating = 8,
    LogicalVolumeIntegrity = 9,
    FileSet = 256,
    FileIdentifier = 257,
    FileEntry = 261,
    ExtendedAttributes = 262,
};

/// CRC-ITU-T: polynomial x^16 + x^12 + x^5 + 1, from 0, the high bit first (ECMA-167 1/7.2.6).
uint16_t checksumOf(std::span<const std::byte> bytes) noexcept;

inline constexpr size_t tagBytes = 16;
inline constexpr std::string_view developerName = "*Disc Recording";

class Fields {
  public:
    /// Begins behind the room for a tag. The bytes are zero.
    explicit Fields(std::span<std::byte> bytes) : bytes_(bytes), at_(tagBytes) {}

    Fields& u8(uint8_t value) { return number(value, 1); }
    Fields& u16(uint16_t value) { return number(value, 2); }
    Fields& u32(uint32_t value) { return number(value, 4); }
    Fields& u64(uint64_t value) { return number(value, 8); }
    Fields& skip(size_t count) {
        at_ += count;
        return *this;
    }
    Fields& raw(std::string_view text) {
        if (!text.empty()) std::memcpy(bytes_.data() + at_, text.data(), text.size());
        return skip(text.size());
    }
    Fields& fixedText(size_t size, std::string_view utf8) {
        putFixedText(bytes_.subspan(at_, size), utf8);
        return skip(size);
    }
    /// A charspec: CS0, OSTA compressed Unicode.
    Fields& characterSet() {
        raw(std::string_view("\0OSTA Compressed Unicode", 24));
        return skip(64 - 24);
    }
    /// An entity identifier: 23 characters and 8 bytes of suffix.
    Fields& identifier(std::string_view name, std::string_view suffix = {});
    /// The identifier of the writer itself.
    Fields& developer() { return identifier(developerName); }
    /// The domain that every descriptor of a UDF volume names, with the revision.
    Fields& domain(Revision revision);
    /// Local time with an offset of 0 minutes, that is UTC.
    Fields& time(std::time_t seconds);
    /// An extent: bytes and block on the medium.
    Fields& extent(uint32_t bytes, uint32_t block) { return u32(bytes).u32(block); }
    /// A long allocation descriptor: bytes, block in the partition, partition 0; the unique id for directories.
    Fields& longAllocation(uint32_t bytes, uint32_t block, uint32_t uniqueId = 0);

    size_t position() const noexcept { return at_; }

    /// Fills in the tag of the descriptor, which ends at `end` (0: where the fields end). `location` is the block
    /// that it lies in: on the medium for volume descriptors, in the partition for all others.
    void finish(TagKind kind, uint32_t location, size_t end = 0);

  private:
    Fields& number(uint64_t value, size_t count) {
        for (size_t i = 0; i < count; ++i)
            bytes_[at_++] = static_cast<std::byte>(value >> (8 * i));
        return *this;
    }

    std::span<std::byte> bytes_;
    size_t at_;
};

} // namespace engine::udf
