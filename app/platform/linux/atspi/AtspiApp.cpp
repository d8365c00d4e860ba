#include "platform/linux/atspi/AtspiApp.hpp"

#include <algorithm>
#include <deque>

namespace lectorbell::platform::atspi {

namespace {

constexpr std::size_t focusSearchNodes = 3000;

bool hasState(AtspiNode& node, AtspiStateType state) {
    if (!node.accessible()) {
        return false;
    }
    GRef<AtspiStateSet> states =
        GRef<AtspiStateSet>::adopt(atspi_accessible_get_state_set(node.accessible()));
    return states && atspi_state_set_contains(states.get(), state);
}

// One Collection query, where the toolkit offers it, is far cheaper than a walk.
std::shared_ptr<AtspiNode> focusedByCollection(AtspiNode& frame) {
    if (!frame.accessible()) {
        return nullptr;
    }
    GRef<AtspiCollection> collection =
        GRef<AtspiCollection>::adopt(atspi_accessible_get_collection_iface(frame.accessible()));
    if (!collection) {
        return nullptr;
    }
    GRef<AtspiStateSet> wanted = GRef<AtspiStateSet>::adopt(atspi_state_set_new(nullptr));
    atspi_state_set_add(wanted.get(), ATSPI_STATE_FOCUSED);
    GRef<AtspiMatchRule> rule = GRef<AtspiMatchRule>::adopt(atspi_match_rule_new(
        wanted.get(), ATSPI_Collection_MATCH_ALL, nullptr, ATSPI_Collection_MATCH_NONE, nullptr,
        ATSPI_Collection_MATCH_NONE, nullptr, ATSPI_Collection_MATCH_NONE, FALSE));
    AXAnswer<GArray*> matches = frame.guard()->run([&](GError** e) {
        return atspi_collection_get_matches(collection.get(), rule.get(),
                                            ATSPI_Collection_SORT_ORDER_CANONICAL, 1, TRUE, e);
    });
    if (!matches || !*matches) {
        return nullptr;
    }
    std::shared_ptr<AtspiNode> found;
    if ((*matches)->len > 0) {
        auto* accessible = g_array_index(*matches, AtspiAccessible*, 0);
        found = std::make_shared<AtspiNode>(GRef<AtspiAccessible>::retain(accessible),
                                            frame.guard(), frame.readAhead());
    }
    for (guint i = 0; i < (*matches)->len; ++i) {
        g_object_unref(g_array_index(*matches, AtspiAccessible*, i));
    }
    g_array_free(*matches, TRUE);
    return found;
}

} // namespace

AtspiApp::AtspiApp(GRef<AtspiAccessible> application, ProcessID pid)
    : guard_(std::make_shared<HangGuard>())
    , root_(std::make_shared<AtspiNode>(std::move(application), guard_,
                                        std::make_shared<AtspiReadAhead>(guard_)))
    , pid_(pid) {}

AXAnswer<ElementRef> AtspiApp::elementAtPosition(ScreenPoint point) {
    for (const std::shared_ptr<AtspiNode>& frame : root_->rawChildren()) {
        AXAnswer<ScreenRect> extents = frame->frame();
        if (guard_->timedOut()) {
            return AXFailure::timedOut;
        }
        if (!extents || !extents->contains(point) || !hasState(*frame, ATSPI_STATE_SHOWING)) {
            continue;
        }
        AXAnswer<std::shared_ptr<AtspiNode>> deepest = frame->deepestAt(point);
        if (!deepest) {
            return deepest.failure();
        }
        return (*deepest)->liftInline();
    }
    return guard_->timedOut() ? AXFailure::timedOut : AXFailure::absent;
}

AXAnswer<ElementRef> AtspiApp::focusedElement() {
    std::vector<std::shared_ptr<AtspiNode>> frames = root_->rawChildren();
    // The active window first: the focus of a background window is not the user's.
    std::stable_partition(frames.begin(), frames.end(),
                          [](const auto& frame) { return hasState(*frame, ATSPI_STATE_ACTIVE); });
    for (const std::shared_ptr<AtspiNode>& frame : frames) {
        if (std::shared_ptr<AtspiNode> found = focusedByCollection(*frame)) {
            return ElementRef{found};
        }
    }
    std::deque<std::shared_ptr<AtspiNode>> pending(frames.begin(), frames.end());
    for (std::size_t visited = 0; !pending.empty() && visited < focusSearchNodes; ++visited) {
        std::shared_ptr<AtspiNode> node = pending.front();
        pending.pop_front();
        if (guard_->timedOut()) {
            return AXFailure::timedOut;
        }
        if (hasState(*node, ATSPI_STATE_FOCUSED)) {
            return ElementRef{node};
        }
        if (hasState(*node, ATSPI_STATE_MANAGES_DESCENDANTS)) {
            continue;
        }
        for (auto& child : node->rawChildren()) {
            pending.push_back(child);
        }
    }
    return guard_->timedOut() ? AXFailure::timedOut : AXFailure::absent;
}

} // namespace lectorbell::platform::atspi
