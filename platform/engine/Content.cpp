// The end of a tree: folders inside each other, more of them than the stack has room for.
#include "Content.hpp"

#include <utility>

namespace engine {

VirtualFolder::VirtualFolder() noexcept = default;
VirtualFolder::VirtualFolder(std::vector<Content> members) noexcept : children(std::move(members)) {}
VirtualFolder::VirtualFolder(const VirtualFolder&) = default;
VirtualFolder::VirtualFolder(VirtualFolder&&) noexcept = default;
VirtualFolder& VirtualFolder::operator=(const VirtualFolder&) = default;
VirtualFolder& VirtualFolder::operator=(VirtualFolder&&) noexcept = default;

// One folder's children at a time; folders among them give up theirs first, and so are empty when they end.
VirtualFolder::~VirtualFolder() {
    std::vector<std::vector<Content>> waiting;
    const auto keepFolders = [&waiting](std::vector<Content>& items) {
        for (Content& item : items)
            if (auto* folder = std::get_if<VirtualFolder>(&item.source); folder && !folder->children.empty())
                waiting.push_back(std::move(folder->children));
    };
    keepFolders(children);
    while (!waiting.empty()) {
        std::vector<Content> last = std::move(waiting.back());
        waiting.pop_back();
        keepFolders(last);
    }
}

} // namespace engine
