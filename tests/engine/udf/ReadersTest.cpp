// Volumes as other programs read them: 7zz, udfinfo and GRUB's own driver.
//
// 7zz refuses a whole volume that has a symbolic link, and GRUB 2.06 reads past the end of each: links are looked at
// byte by byte in VolumeTest.cpp.
#include "Image.hpp"
#include "Scratch.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>

namespace {

using namespace test;
class UdfReaders : public Scratch {
  protected:
    std::string volumeOf(const Image& image, udf::Revision revision = udf::Revision::V102) {
        image.write((base / "volume.udf").string(),
                    {revision, "Holiday Übersee", "The set", {}, 1'700'000'000});
        return "volume.udf";
    }
    fs::path extract(const std::string& volume) {
        run("7zz x -y -tudf -oout " + volume);
        return base / "out";
    }
    std::string grubRead(const std::string& volume, const std::string& file) {
        return run("grub-fstest " + volume + " cat '(loop0)/" + file + "'");
    }
};

TEST_F(UdfReaders, UdfinfoFindsNoFaultInBothRevisions) {
    Image image;
    image.file(image.folder(0, "folder"), "file", "bytes");
    image.symbolicLink(0, "link", "folder/file");
    for (const auto& [revision, text] :
         {std::pair(udf::Revision::V102, "udfrev=1.02"), std::pair(udf::Revision::V150, "udfrev=1.50")}) {
        const std::string told = run("udfinfo --utf8 " + volumeOf(image, revision));
        for (const char* line : {text, "label=Holiday Übersee\n", "numfiles=2\n", "numdirs=2\n",
                                 "integrity=closed\n", "accesstype=readonly\n", "freeblocks=0\n"})
            EXPECT_NE(told.find(line), std::string::npos) << line << told;
        EXPECT_EQ(told.find("arning"), std::string::npos) << told;
        EXPECT_EQ(told.find("rror"), std::string::npos) << told;
    }
}

TEST_F(UdfReaders, NamesOfEveryScriptAndLengthComeBack) {
    Image image;
    const std::vector<std::string> names = {"plain.txt",
                                            "ümläut",
                                            "漢字の名前.dat",
                                            "𝄞 clef",
                                            "with space and 'quote'",
                                            std::string(254, 'n'),
                                            "名" + std::string(126, 'm'),
                                            ".hidden"};
    for (const auto& name : names)
        image.file(0, name, "content of " + name);
    const fs::path out = extract(volumeOf(image));
    for (const auto& name : names) {
        if (name.size() > 255) continue; // no file system of ours can hold what came out
        EXPECT_EQ(bytesOf(out / name), "content of " + name) << name;
    }
}

TEST_F(UdfReaders, AHardLinkIsTheSameFileUnderTwoNames) {
    Image image;
    const uint32_t node = image.file(0, "one", std::string(5000, 'x'));
    image.link(image.folder(0, "folder"), "two", node);
    const std::string path = volumeOf(image);
    const fs::path out = extract(path);
    EXPECT_EQ(bytesOf(out / "one"), std::string(5000, 'x'));
    EXPECT_EQ(bytesOf(out / "folder/two"), std::string(5000, 'x'));
}

TEST_F(UdfReaders, ALargeFolderIsReadWhole) {
    Image image;
    const uint32_t folder = image.folder(0, "many");
    for (int i = 0; i < 3000; ++i)
        image.file(folder, "entry " + std::to_string(i) + std::string(static_cast<size_t>(i % 60), '-'),
                   std::to_string(i));
    const fs::path out = extract(volumeOf(image));
    for (int i = 0; i < 3000; ++i)
        ASSERT_EQ(bytesOf(out / "many" /
                          ("entry " + std::to_string(i) + std::string(static_cast<size_t>(i % 60), '-'))),
                  std::to_string(i));
}

TEST_F(UdfReaders, TimesAreKept) {
    Image image;
    const uint32_t node = image.file(0, "file", "x");
    image.nodes[node].modified = 1'234'567'890;
    const std::string told = run("7zz l -slt -tudf " + volumeOf(image));
    EXPECT_NE(told.find("Modified = 2009-02-13 23:31:30"), std::string::npos) << told;
}

// Random trees: what two independent readers see is what was put in.
class UdfTrees : public UdfReaders, public testing::WithParamInterface<unsigned> {};

TEST_P(UdfTrees, ComeBackWhole) {
    std::mt19937 random(GetParam());
    const auto upTo = [&](size_t most) { return std::uniform_int_distribution<size_t>(0, most)(random); };
    Image image;
    std::vector<std::pair<uint32_t, fs::path>> folders{{0, ""}};
    std::map<std::string, std::string> files;
    for (size_t count = 1 + upTo(120); count > 0; --count) {
        const auto [parent, where] = folders[upTo(folders.size() - 1)];
        const char* const alphabets[] = {"a", "Ü", "é", "文", "Ж", "-", "0"};
        std::string name = std::to_string(count) + " ";
        for (size_t length = upTo(30); length > 0; --length)
            name += alphabets[upTo(6)];
        if (name.back() == ' ') name += 'x';
        if (upTo(3) == 0) {
            folders.emplace_back(image.folder(parent, name), where / name);
            continue;
        }
        std::string bytes(upTo(1) == 0 ? upTo(100) : upTo(20000), '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(random());
        image.file(parent, name, bytes);
        files[(where / name).string()] = bytes;
    }
    const std::string path = volumeOf(image, GetParam() % 2 == 0 ? udf::Revision::V102 : udf::Revision::V150);
    const fs::path out = extract(path);
    size_t found = 0;
    for (const auto& item : fs::recursive_directory_iterator(out)) {
        if (item.is_directory()) continue;
        const auto expected = files.find(item.path().lexically_relative(out).string());
        ASSERT_NE(expected, files.end()) << item.path();
        EXPECT_EQ(bytesOf(item.path()), expected->second) << item.path();
        ++found;
    }
    EXPECT_EQ(found, files.size());
    if (files.empty()) return;
    const auto& [name, bytes] = *files.begin();
    EXPECT_EQ(grubRead(path, name), bytes) << name;
}

INSTANTIATE_TEST_SUITE_P(Seeds, UdfTrees, testing::Range(1u, 21u));

} // namespace
