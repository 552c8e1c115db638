// What symbolic links lead to whose targets have the names of items.
#include "LinkTargets.hpp"

#include <algorithm>
#include <unordered_set>

namespace engine::plan {

LinkTargets::LinkTargets(const Tree& tree)
    : tree_(tree), hasLinks_(std::ranges::any_of(tree.nodes, &Node::leadsToItems)) {}

void LinkTargets::addFolder(uint32_t folder, const std::vector<const Entry*>& shown,
                            const std::vector<std::string>& names, const std::vector<uint32_t>& numbers) {
    if (!hasLinks_) return;
    std::vector<Item>& items = items_[folder];
    items.reserve(shown.size());
    for (size_t i = 0; i < shown.size(); ++i) {
        const std::string_view given = tree_.nameOf(*shown[i]);
        const Node& node = tree_.nodes[shown[i]->node];
        const uint32_t number = numbers[shown[i]->node];
        hasOtherNames_ = hasOtherNames_ || names[i] != given;
        items.push_back({given, names[i], number, &node});
        if (node.kind == NodeKind::Folder) parents_.emplace(number, folder);
    }
}

std::vector<std::pair<uint32_t, std::string>> LinkTargets::changed() const {
    std::vector<std::pair<uint32_t, std::string>> result;
    if (!hasLinks_ || !hasOtherNames_) return result;
    std::unordered_map<uint32_t, Folder> known;
    std::unordered_set<uint32_t> seen;
    for (const auto& [folder, items] : items_) {
        for (const Item& item : items) {
            if (!item.node->leadsToItems || !seen.insert(item.number).second) continue;
            const std::string_view target = tree_.targetOf(*item.node);
            if (target.starts_with('/')) continue;
            std::string other = rewritten(target, folder, known);
            if (other != target) result.emplace_back(item.number, std::move(other));
        }
    }
    return result;
}

std::string LinkTargets::rewritten(std::string_view target, uint32_t folder,
                                   std::unordered_map<uint32_t, Folder>& known) const {
    std::string result;
    bool isInside = true;
    while (true) {
        const size_t slash = target.find('/');
        const std::string_view part = target.substr(0, slash);
        std::string_view name = part;
        if (part == "..") {
            const auto parent = parents_.find(folder);
            isInside = isInside && parent != parents_.end();
            if (isInside) folder = parent->second;
        } else if (isInside && !part.empty() && part != ".") {
            const auto [place, isNew] = known.try_emplace(folder);
            if (isNew)
                if (const auto items = items_.find(folder); items != items_.end())
                    for (const Item& item : items->second)
                        place->second.emplace(item.given, &item);
            const auto found = place->second.find(part);
            isInside = found != place->second.end();
            if (isInside) {
                name = found->second->name;
                isInside = found->second->node->kind == NodeKind::Folder;
                folder = found->second->number;
            }
        }
        result += name;
        if (slash == std::string_view::npos) return result;
        result += '/';
        target.remove_prefix(slash + 1);
    }
}

} // namespace engine::plan
