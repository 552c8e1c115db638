// Random trees: what independent readers see is what was put in.
#include "Image.hpp"
#include "Scratch.hpp"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace {

using namespace test;

class HfsTrees : public Scratch, public testing::WithParamInterface<unsigned> {
  protected:
    struct Item {
        std::string path; ///< as stored
        uint32_t node;
        std::string data, resources;
        bool isLink; ///< of several names
    };

    size_t upTo(size_t most) { return std::uniform_int_distribution<size_t>(0, most)(random); }

    std::string name(size_t count) {
        // Characters that are stored as they are, and one that isn't. The last one is a pair of units, which fshfsinfo
        // shows as another character.
        const char* const alphabet[] = {"a", "B", "z", "文", "Ж", "-", "0", "_", "é", "𝄞"};
        std::string result;
        for (size_t length = upTo(upTo(9) == 0 ? 100 : 20); length > 0; --length)
            result += alphabet[upTo(hasPairs ? 9 : 8)];
        return result + std::to_string(count);
    }
    static std::string apart(std::string name) {
        for (size_t at = 0; (at = name.find("é", at)) != std::string::npos;)
            name.replace(at, 2, "e\u0301");
        return name;
    }
    std::string bytes() {
        std::string result(upTo(3) == 0 ? 0 : upTo(1) == 0 ? upTo(100) : upTo(20000), '\0');
        for (char& byte : result)
            byte = static_cast<char>(random());
        return result;
    }
    void dress(hfsplus::Node& node) {
        node.mode = static_cast<uint16_t>(0400 | upTo(0377));
        if (node.kind == hfsplus::NodeKind::Folder) node.mode |= 0700; // so that it can be read back
        node.owner = static_cast<uint32_t>(upTo(70000));
        node.group = static_cast<uint32_t>(upTo(70000));
        for (std::time_t* time : {&node.created, &node.modified, &node.changed, &node.accessed})
            *time = static_cast<std::time_t>(1 + upTo(2'000'000'000));
    }

    void make();
    void look(uint32_t start);

    std::mt19937 random{GetParam()};
    Image image;
    bool hasPairs = false;
    std::vector<Item> items;
    std::map<uint32_t, std::string> targets; ///< of symbolic links
};

void HfsTrees::make() {
    std::vector<std::pair<uint32_t, std::string>> folders{{0, ""}};
    dress(image.node(0));
    for (size_t count = 1 + upTo(upTo(4) == 0 ? 400 : 60); count > 0; --count) {
        const auto [parent, where] = folders[upTo(folders.size() - 1)];
        const std::string called = name(count), path = where + "/" + apart(called);
        Item item{path, 0, {}, {}, false};
        switch (upTo(9)) {
        case 0:
        case 1:
            item.node = image.folder(parent, called);
            folders.emplace_back(item.node, path);
            break;
        case 2:
            item.node = image.symbolicLink(parent, called, "to" + std::to_string(count));
            targets[item.node] = "to" + std::to_string(count);
            break;
        case 3:
            if (!items.empty() && !items.back().isLink &&
                image.node(items.back().node).kind == hfsplus::NodeKind::File) {
                items.back().isLink = true;
                item = items.back();
                item.path = path;
                image.link(parent, called, item.node);
                items.push_back(item);
                continue;
            }
            [[fallthrough]];
        default:
            item.data = bytes();
            item.node = image.file(parent, called, item.data, 1 + static_cast<uint32_t>(upTo(12)));
            if (upTo(3) == 0) {
                item.resources = bytes();
                if (upTo(1) == 0)
                    image.resourceFork(item.node, item.resources, 1 + static_cast<uint32_t>(upTo(12)));
                else
                    image.ownResourceFork(item.node, item.resources);
            }
        }
        dress(image.node(item.node));
        items.push_back(item);
    }
}

std::string modeText(const hfsplus::Node& node) {
    std::string text;
    for (int bit = 8; bit >= 0; --bit)
        text += (node.mode >> bit & 1) != 0 ? "xwr"[bit % 3] : '-';
    return text;
}

void HfsTrees::look(uint32_t start) {
    hfsplus::VolumeSettings settings;
    settings.volumeName = "Trees";
    settings.created = Image::time;
    settings.volumeStart = start;
    settings.structureStart = start + 1 + static_cast<uint32_t>(upTo(3));
    if (upTo(1) == 0) settings.catalogNodeBytes = 4096;
    image.write((base / "volume.hfs").string(), settings);
    const std::string offset = "-o " + std::to_string(start * 4) + " volume.hfs";

    // The Sleuth Kit: every name with kind, mode, owner, size and times; then the bytes.
    std::set<std::string> had, wanted;
    std::istringstream lines(run("fls -r -m '' " + offset));
    for (std::string line; std::getline(lines, line);)
        if (line.find("|/$") == std::string::npos && line.find("HFS+ Private Data") == std::string::npos)
            had.insert(line);
    for (const Item& item : items) {
        const auto& node = image.node(item.node);
        const bool link = targets.contains(item.node);
        const char kind = node.kind == hfsplus::NodeKind::Folder ? 'd' : link ? 'l' : 'r';
        const size_t size = link ? targets[item.node].size() : item.data.size();
        wanted.insert("0|" + item.path + (link ? " -> " + targets[item.node] : "") + "|" +
                      std::to_string(15 + item.node) + "|" + kind + "/" + kind + modeText(node) + "|" +
                      std::to_string(node.owner) + "|" + std::to_string(node.group) + "|" +
                      std::to_string(size) + "|" + std::to_string(node.accessed) + "|" +
                      std::to_string(node.modified) + "|" + std::to_string(node.changed) + "|" +
                      std::to_string(node.created));
    }
    EXPECT_EQ(had, wanted);
    run("rm -rf recovered && tsk_recover -a " + std::string("-o ") + std::to_string(start * 4) +
        " volume.hfs recovered");
    for (const Item& item : items)
        if (!item.data.empty()) {
            EXPECT_TRUE(bytesOf(base / ("recovered" + item.path)) == item.data) << item.path;
        }

    // 7zz: both forks. A hard link is empty for it.
    run("chmod -R u+rwx out 2>/dev/null; rm -rf out; LC_ALL=C.UTF-8 7zz x -y -thfs -oout volume.hfs");
    for (const Item& item : items) {
        const std::string path = (base / "out/Trees").string() + item.path;
        if (targets.contains(item.node)) {
            EXPECT_EQ(fs::read_symlink(path), targets[item.node]);
        } else if (image.node(item.node).kind == hfsplus::NodeKind::Folder) {
            EXPECT_TRUE(fs::is_directory(path)) << path;
        } else if (!item.isLink) {
            EXPECT_TRUE(bytesOf(path) == item.data) << path;
        }
        if (!item.resources.empty() && !item.isLink) {
            EXPECT_TRUE(bytesOf(path + ":rsrc") == item.resources) << path;
        }
    }

    // fshfsinfo: strict about the catalog; and GRUB finds one of the files by its name.
    if (start == 0 && !hasPairs) {
        std::set<std::string> paths, expected{"/"};
        std::istringstream listed(run("LC_ALL=C.UTF-8 fshfsinfo -H volume.hfs"));
        for (std::string line; std::getline(listed, line);)
            if (line.starts_with('/') && line.find("HFS+ Private Data") == std::string::npos)
                paths.insert(line);
        for (const Item& item : items)
            expected.insert(item.path);
        EXPECT_EQ(paths, expected);
    }
    for (const Item& item : items) {
        if (item.data.empty() || item.isLink || item.path.find("\u0301") != std::string::npos) continue;
        const std::string disc = start == 0 ? "(loop0)" : "(loop0,apple3)";
        EXPECT_TRUE(run("grub-fstest volume.hfs cat '" + disc + item.path + "'") == item.data) << item.path;
        break;
    }
}

TEST_P(HfsTrees, ComeBackWhole) {
    for (int round = 0; round < 5 && !HasFailure(); ++round) {
        image = {};
        items.clear();
        targets.clear();
        hasPairs = round % 4 == 0;
        make();
        look(round % 2 == 0 ? 0 : static_cast<uint32_t>(17 + upTo(100)));
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, HfsTrees, testing::Range(1u, 41u));

} // namespace
