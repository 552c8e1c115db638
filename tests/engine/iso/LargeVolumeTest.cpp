// Volumes of so many items that ISO 9660 and Joliet are laid out by two threads.
#include "Failure.hpp"
#include "Image.hpp"

#include <gtest/gtest.h>

using namespace test;
using engine::Failure;

namespace {

constexpr unsigned items = 1500;

Image large() {
    Image image;
    image.joliet = true;
    image.settings.sessionStart = 700;
    image.settings.structureStart = 40;
    uint32_t folder = 0;
    for (unsigned i = 0; i < items; ++i) {
        const std::string number = std::to_string(10000 + i);
        if (i % 100 == 0) folder = image.folder(0, {"D" + number, "d" + number, "folder " + number});
        image.file(folder, {"F" + number + ".TXT;1", "f" + number + ".txt", "file " + number + ".txt;1"},
                   "x");
    }
    return image;
}

} // namespace

TEST(IsoLargeVolume, HasTheBlocksThatOneThreadMakes) {
    const Image image = large();
    const iso::Volume volume = image.volume();
    iso::Hierarchy plain(image.tree(), iso::Form::Iso, image.settings.rules, image.settings.zone);
    iso::Hierarchy joliet(image.tree(true), iso::Form::Joliet, image.settings.rules, image.settings.zone);
    plain.place(740);
    joliet.place(740 + plain.blocks());
    ASSERT_EQ(volume.structureBlocks(), plain.blocks() + joliet.blocks());
    Block wanted;
    for (uint32_t at = 0; at < volume.structureBlocks(); ++at) {
        at < plain.blocks() ? plain.block(at, wanted) : joliet.block(at - plain.blocks(), wanted);
        ASSERT_EQ(blockOf(volume, 40 + at), wanted) << at;
    }
}

TEST(IsoLargeVolume, WhatIsWrongInIso9660IsToldBeforeWhatIsInJoliet) {
    const auto sentence = [](const Names& names) -> std::string {
        Image image = large();
        image.file(0, names, "x");
        try {
            image.volume();
        } catch (const Failure& failure) {
            return failure.error().message;
        }
        return "nothing is wrong";
    };
    EXPECT_NE(sentence({"A/B;1", "wrong", "c?d;1"}).find("\"wrong\""), std::string::npos);
    EXPECT_NE(sentence({"GOOD;1", "good", "c?d;1"}).find("c?d"), std::string::npos);
    EXPECT_EQ(sentence({"GOOD;1", "good", "good;1"}), "nothing is wrong");
}
