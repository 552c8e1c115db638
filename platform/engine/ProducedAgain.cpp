// The second production of files, piece by piece.
#include "ProducedAgain.hpp"
#include "Failure.hpp"
#include "MediumKind.hpp"

#include <algorithm>

namespace engine {

std::optional<Difference> ProducedAgain::compare(std::span<const std::byte> read) {
    size_t at = 0;
    while (at < read.size() && next_ < list_.files.size()) {
        const SourceFile& file = list_.files[next_];
        const uint64_t left = file.fingerprint.size - offset_;
        const auto count = static_cast<size_t>(std::min<uint64_t>(left, read.size() - at));
        if (file.producer != nullptr)
            if (auto difference = compareFile(file, read.subspan(at, count))) {
                difference->byte += at;
                return difference;
            }
        at += count;
        offset_ += count;
        if (offset_ < file.fingerprint.size) continue;
        at += static_cast<size_t>((blockSize - at % blockSize) % blockSize);
        offset_ = 0;
        ++next_;
    }
    return std::nullopt;
}

std::optional<Difference> ProducedAgain::compareFile(const SourceFile& file,
                                                     std::span<const std::byte> read) {
    again_.resize(std::max(again_.size(), read.size()));
    const std::span<std::byte> again(again_.data(), read.size());
    size_t filled = 0;
    try {
        if (offset_ == 0) prepare(file);
        while (filled < again.size())
            filled += askProducer(list_, file, offset_ + filled, again.subspan(filled));
    } catch (const Failure& failure) {
        const Error& error = failure.error();
        return Difference{filled, error.info.empty() ? error.message : error.message + ' ' + error.info};
    }
    const auto differs = std::ranges::mismatch(read, again).in1;
    if (differs == read.end()) return std::nullopt;
    const auto byte = static_cast<size_t>(differs - read.begin());
    return Difference{byte, "The file " + inQuotes(list_.names.c_str() + file.nameAt) +
                                " is not what its producer gives when it is asked again, from byte " +
                                std::to_string(offset_ + byte) + " on."};
}

void ProducedAgain::prepare(const SourceFile& file) const {
    bool isPrepared = false;
    std::string reason;
    try {
        isPrepared = file.producer->prepareAgain();
    } catch (const std::exception& problem) {
        reason = problem.what();
    }
    if (!isPrepared)
        fail(ErrorCode::DataProduction,
             "The producer of the file " + inQuotes(list_.names.c_str() + file.nameAt) +
                 " could not prepare its verification.",
             reason);
}

} // namespace engine
