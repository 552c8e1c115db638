// Random trees.
#pragma once

#include "Image.hpp"

#include <random>
#include <string>
#include <vector>

namespace test {

// Names that differ in every file system, and cross: what one calls an item another one calls its neighbour.
class Maker {
  public:
    Maker(unsigned seed, iso::VolumeSettings settings) : random_(seed), image(std::move(settings)) {}

    size_t upTo(size_t most) { return std::uniform_int_distribution<size_t>(0, most)(random_); }
    bool oneIn(size_t count) { return upTo(count - 1) == 0; }

    void fill(size_t count) {
        image.joliet = !oneIn(4);
        std::vector<uint32_t> folders{0}, files;
        for (; count > 0; --count) {
            const uint32_t parent = folders[oneIn(3) ? folders.size() - 1 : upTo(folders.size() - 1)];
            uint32_t node;
            if (oneIn(4)) {
                folders.push_back(node = image.folder(parent, names(true)));
            } else if (image.settings.rules.rockRidge && oneIn(6)) {
                Names link = names(false);
                link.joliet.clear();
                node = image.symbolicLink(parent, link, target());
            } else if (!files.empty() && oneIn(6)) {
                image.link(parent, names(false), files[upTo(files.size() - 1)]);
                continue;
            } else {
                files.push_back(node = image.file(parent, names(false), bytes()));
            }
            iso::Node& made = image.nodes[node];
            // Who runs the tests must be able to read what is extracted.
            made.mode = static_cast<uint16_t>(made.kind == iso::NodeKind::Folder ? 0700 | upTo(0777)
                                                                                 : 0400 | upTo(07777));
            if (made.kind == iso::NodeKind::SymbolicLink) made.mode = 0777;
            made.owner = static_cast<uint32_t>(upTo(511));
            made.group = static_cast<uint32_t>(upTo(511));
            made.modified = static_cast<std::time_t>(upTo(2'000'000'000));
        }
    }

  private:
    Names names(bool isFolder) {
        const iso::Rules& rules = image.settings.rules;
        const std::string number = std::to_string(++count_);
        Names result;
        result.iso = text(dCharacters(), rules.level == 1 ? 4 : 12) + number;
        if (!isFolder && oneIn(2))
            result.iso += "." + text(dCharacters(), rules.level == 1 ? 3 : 12);
        else if (!isFolder && oneIn(2))
            result.iso += ".";
        if (!isFolder && oneIn(2)) result.iso += ";1";
        if (rules.rockRidge) result.rockRidge = text(alphabet_, oneIn(5) ? 120 : 12) + number;
        if (image.joliet && !oneIn(5)) result.joliet = text(alphabet_, 25) + number;
        return result;
    }
    std::string target() {
        std::string result = oneIn(3) ? "/" : "";
        for (size_t parts = 1 + upTo(oneIn(10) ? 60 : 4); parts > 0; --parts) {
            result += oneIn(4) ? ".." : oneIn(6) ? "." : text(alphabet_, oneIn(6) ? 125 : 8) + "x";
            if (parts > 1) result += '/';
        }
        // xorriso takes no more than 1023 bytes; what goes beyond is looked at in ReadersTest.cpp.
        if (result.size() > 1000) result.resize(1000);
        return result.ends_with('/') ? result + "x" : result;
    }
    std::string bytes() {
        std::string result(oneIn(3) ? 0 : oneIn(2) ? upTo(100) : upTo(9000), '\0');
        for (char& byte : result)
            byte = static_cast<char>(random_());
        return result;
    }
    static const std::vector<std::string>& dCharacters() {
        static const std::vector<std::string> all = {"A", "B", "Z", "0", "9", "_"};
        return all;
    }
    std::string text(const std::vector<std::string>& alphabet, size_t most) {
        std::string result;
        for (size_t length = upTo(most); length > 0; --length)
            result += alphabet[upTo(alphabet.size() - 1)];
        return result;
    }

    std::mt19937 random_;
    unsigned count_ = 0;
    const std::vector<std::string> alphabet_ = {"a", "Ü", "é", "B", "-", "0", "(", "."};

  public:
    Image image;
};

} // namespace test
