#pragma once

#include "platform/linux/AtspiCall.hpp"

#include <atspi/atspi.h>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace lectorbell::atspi {

// What an application's own cache says of one element.
struct CachedElement {
    std::string parent;
    int index = -1;
    int childCount = 0;
    AtspiRole role = ATSPI_ROLE_INVALID;
    std::uint64_t states = 0;
    bool hasText = false;
    // Paths in index order; used only when the cache holds every child.
    std::vector<std::string> children;

    bool childrenKnown() const { return static_cast<int>(children.size()) == childCount; }
    bool hasState(AtspiStateType state) const {
        return state < 64 && (states >> static_cast<unsigned>(state) & 1U) != 0;
    }
};

// Text, box and landmark attribute of one element, fetched ahead of the walk.
struct PrefetchedElement {
    std::optional<std::string> text;
    bool textAsked = false;
    std::optional<AtspiRect> extents;
    bool extentsAsked = false;
    std::optional<std::string> xmlRoles;
    bool attributesAsked = false;
};

// Reads a large tree ahead of a walk, for one application during one lookup. A walk that
// asks element after element pays one round trip per attribute: thousands for a long web page.
// Once a lookup has looked at enough elements one by one, the application's cache (roles,
// states, children of every element) is read in one request, and the text and boxes of the
// elements that follow in document order are asked for in pipelined batches.
class AtspiReadAhead {
public:
    explicit AtspiReadAhead(std::shared_ptr<HangGuard> guard);

    // Off: every element is asked for call by call.
    void allow(bool allowed) { allowed_ = allowed; }
    // One element looked at call by call; after enough of them the cache is loaded.
    void noteLookedAt(AtspiAccessible* any);
    bool loaded() const { return !elements_.empty(); }
    const CachedElement* element(const std::string& path) const;
    const std::string& busName() const { return busName_; }
    // What was fetched for `path`, reading the window that starts there when it was not.
    const PrefetchedElement* prefetched(const std::string& path);
    // Whether elements known only by their paths can be made into library objects.
    static bool resolvesPaths();
    // A library object for an element known only by its path.
    GRef<AtspiAccessible> accessible(const std::string& path) const;

private:
    bool load(AtspiAccessible* any);
    void readWindow(const std::string& from);
    const std::string* nextInDocument(const std::string& path) const;

    std::shared_ptr<HangGuard> guard_;
    int lookedAt_ = 0;
    bool tried_ = false;
    bool allowed_ = true;
    DBusConnection* connection_ = nullptr;
    std::string busName_;
    std::unordered_map<std::string, CachedElement> elements_;
    std::unordered_map<std::string, PrefetchedElement> prefetched_;
    std::size_t window_;
};

} // namespace lectorbell::atspi
