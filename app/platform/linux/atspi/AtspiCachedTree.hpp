#pragma once

#include <atspi/atspi.h>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace lectorbell::platform::atspi {

// What an application's own cache says of one element.
struct CachedElement {
    std::string parent;
    int index = -1;
    // -1 when the application does not say (an element that manages its descendants).
    int childCount = 0;
    AtspiRole role = ATSPI_ROLE_INVALID;
    std::uint64_t states = 0;
    bool hasText = false;
    // Paths in index order; filled by CachedTree::linkChildren only when every child is cached.
    std::vector<std::string> children;

    bool childrenKnown() const {
        return childCount >= 0 && static_cast<int>(children.size()) == childCount;
    }
    bool hasState(AtspiStateType state) const {
        const auto bit = static_cast<unsigned>(state);
        return bit < 64U && (states >> bit & 1U) != 0;
    }
};

// An application's tree as its cache lists it: elements by path, each naming its parent and
// its place there.
class CachedTree {
public:
    void add(std::string path, CachedElement element);
    // Gives each parent its children, once every element is in. A parent whose children are
    // not all listed, or listed with gaps, keeps none: it is then asked for one call at a time.
    void linkChildren();
    void clear() { elements_.clear(); }
    bool empty() const { return elements_.empty(); }
    const CachedElement* element(const std::string& path) const;
    // The element after `path` in document order (depth first); null at the end of what the
    // cache knows. Nothing inside a password field is ever next.
    const std::string* next(const std::string& path) const;

private:
    std::unordered_map<std::string, CachedElement> elements_;
};

} // namespace lectorbell::platform::atspi
