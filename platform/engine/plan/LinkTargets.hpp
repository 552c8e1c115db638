// What symbolic links whose targets have the names of items lead to in a file system where these have others.
#pragma once

#include "Tree.hpp"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace engine::plan {

/// The items of a file system as they are shown, folder by folder in the order of their numbers.
class LinkTargets {
  public:
    /// Does nothing where there is no such link.
    explicit LinkTargets(const Tree& tree);

    /// All in the next folder, and the names that they have there.
    void addFolder(uint32_t folder, const std::vector<const Entry*>& shown,
                   const std::vector<std::string>& names, const std::vector<uint32_t>& numbers);

    /// Links, by their numbers, whose targets are others there. A relative path is followed part by part, and each part that
    /// is an item gets its name; from the first that is none on, and behind links, parts stay as they are. So do absolute
    /// paths. A link of several names leads from the first.
    std::vector<std::pair<uint32_t, std::string>> changed() const;

  private:
    struct Item {
        std::string_view given;
        std::string name;
        uint32_t number;
        const Node* node;
    };
    using Folder = std::unordered_map<std::string_view, const Item*>;

    std::string rewritten(std::string_view target, uint32_t folder,
                          std::unordered_map<uint32_t, Folder>& known) const;

    const Tree& tree_;
    bool hasLinks_ = false, hasOtherNames_ = false;
    std::map<uint32_t, std::vector<Item>> items_; ///< by the folder's number
    std::unordered_map<uint32_t, uint32_t> parents_;
};

} // namespace engine::plan
