#pragma once

#include "platform/linux/atspi/AtspiCachedTree.hpp"
#include "platform/linux/atspi/AtspiCall.hpp"

#include <atspi/atspi.h>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace lectorbell::platform::atspi {

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
    ~AtspiReadAhead();
    AtspiReadAhead(const AtspiReadAhead&) = delete;
    AtspiReadAhead& operator=(const AtspiReadAhead&) = delete;

    // Off: every element is asked for call by call.
    void allow(bool allowed) { allowed_ = allowed; }
    // One element looked at call by call; after enough of them the cache is loaded.
    void noteLookedAt(AtspiAccessible* any);
    bool loaded() const { return !tree_.empty(); }
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

    std::shared_ptr<HangGuard> guard_;
    int lookedAt_ = 0;
    bool tried_ = false;
    bool allowed_ = true;
    DBusConnection* connection_ = nullptr;
    std::string busName_;
    CachedTree tree_;
    std::unordered_map<std::string, PrefetchedElement> prefetched_;
    std::size_t window_;
};

} // namespace lectorbell::platform::atspi
