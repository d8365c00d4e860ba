#include "platform/linux/atspi/AtspiNode.hpp"

// AT-SPI has no text markers. A web page's marker here is a position in one text leaf (a
// paragraph or a run of text), found by hit-testing the page; the string of a marker range is
// that leaf's text from the marker on, which is what anchoring needs. Only the web area offers
// them.

namespace lectorbell::platform::atspi {

namespace {

constexpr int maxDescent = 60;

struct LeafPosition {
    ElementRef leaf;
    std::int64_t utf16Offset = 0;
};

struct MarkerSpan {
    std::optional<LeafPosition> start;
};

} // namespace

bool AtspiNode::insideWebContent() {
    if (insideWeb_) {
        return *insideWeb_;
    }
    insideWeb_ = false;
    std::shared_ptr<AtspiNode> current = shared_from_this();
    for (int level = 0; level < maxDescent && current; ++level) {
        AXAnswer<AtspiRole> role = current->atspiRole();
        if (!role) {
            break;
        }
        if (isDocumentRole(*role)) {
            insideWeb_ = true;
            break;
        }
        if (*role == ATSPI_ROLE_FRAME || *role == ATSPI_ROLE_APPLICATION) {
            break;
        }
        AXAnswer<ElementRef> parent = current->parent();
        current = parent ? std::dynamic_pointer_cast<AtspiNode>(*parent) : nullptr;
    }
    return *insideWeb_;
}

AXAnswer<std::shared_ptr<AtspiNode>> AtspiNode::deepestAt(ScreenPoint point) {
    std::shared_ptr<AtspiNode> current = shared_from_this();
    for (int level = 0; level < maxDescent && current->accessible(); ++level) {
        GRef<AtspiComponent> component = GRef<AtspiComponent>::adopt(
            atspi_accessible_get_component_iface(current->accessible()));
        if (!component) {
            break;
        }
        AXAnswer<AtspiAccessible*> next = guard_->run([&](GError** e) {
            return atspi_component_get_accessible_at_point(
                component.get(), static_cast<gint>(point.x), static_cast<gint>(point.y),
                ATSPI_COORD_TYPE_SCREEN, e);
        });
        if (!next) {
            return next.failure();
        }
        if (!*next) {
            break;
        }
        auto child =
            std::make_shared<AtspiNode>(GRef<AtspiAccessible>::adopt(*next), guard_, readAhead_);
        if (child->isSame(*current)) {
            break;
        }
        current = child;
    }
    return current;
}

AXAnswer<TextMarker> AtspiNode::textMarkerForPosition(ScreenPoint point) {
    AXAnswer<std::shared_ptr<AtspiNode>> deepest = deepestAt(point);
    if (!deepest) {
        return deepest.failure();
    }
    ElementRef leaf = (*deepest)->liftInline();
    std::optional<std::int64_t> offset;
    if (auto* run = dynamic_cast<AtspiTextRun*>(leaf.get())) {
        offset = runOffsetAt(*run->owner(), run->run(), point);
    } else if (auto* node = dynamic_cast<AtspiNode*>(leaf.get())) {
        AXAnswer<MappedRole> m = node->mapped();
        if (m && m->kind == TextKind::staticText && node->ownRun()) {
            offset = runOffsetAt(*node, *node->ownRun(), point);
        }
    }
    if (!offset) {
        return guard_->timedOut() ? AXFailure::timedOut : AXFailure::absent;
    }
    return TextMarker{LeafPosition{leaf, *offset}};
}

AXAnswer<TextMarker> AtspiNode::endTextMarker() {
    if (!parameterizedNames().contains("AXTextMarkerForPosition")) {
        return AXFailure::absent;
    }
    return TextMarker{LeafPosition{}};
}

AXAnswer<TextMarkerRange> AtspiNode::textMarkerRange(const TextMarker& from, const TextMarker&,
                                                     bool) {
    const auto* start = std::any_cast<LeafPosition>(&from.handle);
    if (!start || !start->leaf) {
        return AXFailure::absent;
    }
    return TextMarkerRange{MarkerSpan{*start}};
}

AXAnswer<std::u16string> AtspiNode::stringForTextMarkerRange(const TextMarkerRange& range) {
    const auto* span = std::any_cast<MarkerSpan>(&range.handle);
    if (!span || !span->start) {
        return AXFailure::absent;
    }
    AXAnswer<std::u16string> text = span->start->leaf->value();
    if (!text) {
        return text.failure();
    }
    return UTF16Text::suffix(*text, span->start->utf16Offset);
}

AXAnswer<TextMarkerRange> AtspiNode::selectedTextMarkerRange() {
    return AXFailure::absent;
}

} // namespace lectorbell::platform::atspi
