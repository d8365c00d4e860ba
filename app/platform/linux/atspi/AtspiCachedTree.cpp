#include "platform/linux/atspi/AtspiCachedTree.hpp"

#include <algorithm>
#include <utility>

namespace lectorbell::platform::atspi {

void CachedTree::add(std::string path, CachedElement element) {
    elements_.insert_or_assign(std::move(path), std::move(element));
}

void CachedTree::linkChildren() {
    std::unordered_map<std::string, std::vector<std::pair<int, std::string>>> byParent;
    for (auto& [path, element] : elements_) {
        element.children.clear();
        if (!element.parent.empty()) {
            byParent[element.parent].emplace_back(element.index, path);
        }
    }
    for (auto& [parentPath, kids] : byParent) {
        auto parent = elements_.find(parentPath);
        if (parent == elements_.end() ||
            static_cast<int>(kids.size()) != parent->second.childCount) {
            continue;
        }
        std::sort(kids.begin(), kids.end());
        bool contiguous = true;
        for (std::size_t i = 0; i < kids.size() && contiguous; ++i) {
            contiguous = kids[i].first == static_cast<int>(i);
        }
        if (contiguous) {
            for (auto& kid : kids) {
                parent->second.children.push_back(std::move(kid.second));
            }
        }
    }
}

const CachedElement* CachedTree::element(const std::string& path) const {
    auto found = elements_.find(path);
    return found == elements_.end() ? nullptr : &found->second;
}

const std::string* CachedTree::next(const std::string& path) const {
    const CachedElement* current = element(path);
    // Nothing inside a password field is ever asked for, not even its bullets.
    if (current && current->childrenKnown() && !current->children.empty() &&
        current->role != ATSPI_ROLE_PASSWORD_TEXT) {
        return &current->children.front();
    }
    // Bounded like every chain: a cyclic cache must not loop.
    for (int level = 0; current && level < 200; ++level) {
        const CachedElement* parent = element(current->parent);
        if (!parent || !parent->childrenKnown()) {
            return nullptr;
        }
        auto following = static_cast<std::size_t>(current->index) + 1;
        if (following < parent->children.size()) {
            return &parent->children[following];
        }
        current = parent;
    }
    return nullptr;
}

} // namespace lectorbell::platform::atspi
