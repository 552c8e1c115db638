// Asks the producers of an image's files once more, and compares with what was read back.
#pragma once

#include "SourceList.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace engine {

/// What was read back is not what it is to be, from a byte on.
struct Difference {
    size_t byte; ///< of those that were compared
    std::string how;
};

/// Goes through the contents in the order in which they were burned. Files with a producer are compared; others are left to the
/// burn's checksums.
class ProducedAgain {
  public:
    explicit ProducedAgain(const SourceList& list) : list_(list) {}

    /// `read` is what comes next of the contents, in whole blocks. What can't be had again is a difference, too.
    std::optional<Difference> compare(std::span<const std::byte> read);

  private:
    std::optional<Difference> compareFile(const SourceFile& file, std::span<const std::byte> read);
    void prepare(const SourceFile& file) const;

    const SourceList& list_;
    size_t next_ = 0;
    uint64_t offset_ = 0; ///< in the present file
    std::vector<std::byte> again_;
};

} // namespace engine
