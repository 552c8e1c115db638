// Random trees: what other programs see is what was put in.
#include "Maker.hpp"
#include "Scratch.hpp"

namespace {

using namespace test;

class IsoTrees : public Scratch, public testing::WithParamInterface<unsigned> {};

TEST_P(IsoTrees, ComeBackWhole) {
    for (unsigned round = 0; round < 5; ++round) {
        iso::VolumeSettings settings;
        settings.volumeName = "Trees";
        settings.rules.level = static_cast<uint8_t>(1 + (GetParam() + round) % 3);
        settings.rules.rockRidge = (GetParam() + round) % 5 != 0;
        settings.structureStart = round % 2 == 0 ? 0 : 300;
        Maker maker(GetParam() * 5 + round, settings);
        maker.fill(1 + maker.upTo(60));
        const std::string number = std::to_string(round);
        maker.image.write((base / (number + ".iso")).string());
        maker.image.list(base / number);
        run("/usr/bin/python3 '" ISO_READ "' " + number + " " + number + ".iso");
        if (HasFailure()) return;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, IsoTrees, testing::Range(1u, 41u));

} // namespace
