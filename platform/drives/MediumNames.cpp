// Kinds and capacities of media as people name them.
#include "MediumNames.hpp"
#include "Failure.hpp"
#include "Sizes.hpp"

namespace drives {

std::string kindNames(bool onlyWritable) {
    std::string names;
    for (const engine::MediumFacts& facts : engine::allMediumKinds())
        if (facts.writable || !onlyWritable) names += (names.empty() ? "" : ", ") + std::string(facts.name);
    return names;
}

engine::MediumKind kindNamed(const std::string& name) {
    const auto kind = engine::mediumKindNamed(name);
    if (!kind)
        engine::fail(engine::ErrorCode::MediaNotSupported, "There is no medium of the kind " +
                                                               engine::inQuotes(name) +
                                                               "; there are: " + kindNames(false) + '.');
    return *kind;
}

uint64_t capacityFor(engine::MediumKind kind, const std::string& capacity) {
    if (capacity.empty()) return 0;
    const uint64_t blocks = blocksFrom(capacity);
    // 100 minutes is the longest CD there is; a DVD of two layers the largest DVD; a BD has up to four.
    uint64_t most = 62'500'000;
    if (engine::factsOf(kind).mediumClass == engine::MediumClass::CD) most = 449'850;
    if (engine::factsOf(kind).mediumClass == engine::MediumClass::DVD) most = 4'173'824;
    if (blocks > most)
        engine::fail(engine::ErrorCode::BadLayout, engine::inQuotes(capacity) + " is more than a " +
                                                       std::string(engine::factsOf(kind).name) +
                                                       " can hold: " + sizeText(most * engine::blockSize) +
                                                       " at most.");
    return blocks;
}

void requireWritable(engine::MediumKind kind) {
    if (!engine::factsOf(kind).writable)
        engine::fail(engine::ErrorCode::MediaNotWritable,
                     "A blank " + std::string(engine::factsOf(kind).name) +
                         " could never be written; there are: " + kindNames(true) +
                         ". Insert an image to have a medium that can only be read.");
}

} // namespace drives
