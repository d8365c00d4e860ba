#include "platform/linux/atspi/AtspiNode.hpp"

#include <cstring>

namespace lectorbell::platform::atspi {

namespace {

AXAnswer<ScreenRect> frameFrom(const AtspiRect& rect) {
    // An empty box is a box (a hidden element); a negative one is the toolkit saying "unknown".
    if (rect.width < 0 || rect.height < 0) {
        return AXFailure::absent;
    }
    return ScreenRect{static_cast<double>(rect.x), static_cast<double>(rect.y),
                      static_cast<double>(rect.width), static_cast<double>(rect.height)};
}

// A box the library allocated, read and freed.
AXAnswer<ScreenRect> rectFrom(AtspiRect* rect) {
    if (!rect) {
        return AXFailure::absent;
    }
    AXAnswer<ScreenRect> frame = frameFrom(*rect);
    g_free(rect);
    return frame;
}

} // namespace

AtspiNode::AtspiNode(GRef<AtspiAccessible> accessible, std::shared_ptr<HangGuard> guard,
                     std::shared_ptr<AtspiReadAhead> readAhead)
    : accessible_(std::move(accessible))
    , guard_(std::move(guard))
    , readAhead_(std::move(readAhead)) {}

AtspiNode::AtspiNode(GRef<AtspiAccessible> owner, int index, std::shared_ptr<HangGuard> guard,
                     std::shared_ptr<AtspiReadAhead> readAhead)
    : pendingOwner_(std::move(owner))
    , index_(index)
    , guard_(std::move(guard))
    , readAhead_(std::move(readAhead)) {}

AtspiNode::AtspiNode(std::string path, std::shared_ptr<HangGuard> guard,
                     std::shared_ptr<AtspiReadAhead> readAhead)
    : guard_(std::move(guard))
    , readAhead_(std::move(readAhead))
    , path_(std::move(path)) {
    if (const CachedElement* element = cached()) {
        index_ = element->index;
    }
}

AtspiAccessible* AtspiNode::accessible() const {
    if (!accessible_ && !path_.empty() && readAhead_) {
        accessible_ = readAhead_->accessible(path_);
    }
    if (pendingOwner_ && !accessible_) {
        GRef<AtspiAccessible> owner = std::move(pendingOwner_);
        pendingOwner_ = GRef<AtspiAccessible>{};
        AXAnswer<AtspiAccessible*> child = guard_->run([&](GError** e) {
            return atspi_accessible_get_child_at_index(owner.get(), *index_, e);
        });
        if (child && *child) {
            accessible_ = GRef<AtspiAccessible>::adopt(*child);
        }
    }
    return accessible_.get();
}

std::optional<int> AtspiNode::indexInParent() {
    if (!index_ && accessible()) {
        AXAnswer<gint> index = guard_->run(
            [&](GError** e) { return atspi_accessible_get_index_in_parent(accessible(), e); });
        if (index && *index >= 0) {
            index_ = *index;
        }
    }
    return index_;
}

std::optional<std::pair<std::string_view, std::string_view>> AtspiNode::identity() const {
    if (accessible_) {
        const AtspiObject& object = accessible_.get()->parent;
        if (object.app && object.app->bus_name && object.path) {
            return std::pair<std::string_view, std::string_view>{object.app->bus_name, object.path};
        }
        return std::nullopt;
    }
    if (path_.empty() && pendingOwner_ && readAhead_ && readAhead_->loaded()) {
        // A child listed before the tree was read ahead: its place names it.
        const AtspiObject& owner = pendingOwner_.get()->parent;
        const CachedElement* parent = owner.path && owner.app && owner.app->bus_name &&
                                              owner.app->bus_name == readAhead_->busName()
                                          ? readAhead_->element(owner.path)
                                          : nullptr;
        if (parent && parent->childrenKnown() &&
            static_cast<std::size_t>(*index_) < parent->children.size()) {
            path_ = parent->children[static_cast<std::size_t>(*index_)];
        }
    }
    if (!path_.empty() && readAhead_) {
        return std::pair<std::string_view, std::string_view>{readAhead_->busName(), path_};
    }
    return std::nullopt;
}

const CachedElement* AtspiNode::cached() const {
    // Asked many times per element on a walk: found once, kept (the cache does not change
    // after it is loaded).
    if (cached_ || !readAhead_ || !readAhead_->loaded()) {
        return cached_;
    }
    std::optional<std::pair<std::string_view, std::string_view>> id = identity();
    if (id && id->first == readAhead_->busName()) {
        cachedPath_ = std::string{id->second};
        cached_ = readAhead_->element(cachedPath_);
    }
    return cached_;
}

const PrefetchedElement* AtspiNode::prefetched() const {
    return cached() ? readAhead_->prefetched(cachedPath_) : nullptr;
}

AXAnswer<AtspiRole> AtspiNode::atspiRole() {
    if (const CachedElement* element = cached()) {
        return element->role;
    }
    if (!accessible()) {
        return AXFailure::absent;
    }
    return guard_->run([&](GError** e) { return atspi_accessible_get_role(accessible(), e); });
}

AXAnswer<MappedRole> AtspiNode::mapped() {
    if (mapped_) {
        return *mapped_;
    }
    AXAnswer<AtspiRole> role = atspiRole();
    if (!role || *role == ATSPI_ROLE_INVALID) {
        mapped_ = AXAnswer<MappedRole>{role ? AXFailure::absent : role.failure()};
        return *mapped_;
    }
    const CachedElement* element = cached();
    bool multiLine = false;
    if (*role == ATSPI_ROLE_TEXT) {
        if (element) {
            multiLine = element->hasState(ATSPI_STATE_MULTI_LINE);
        } else {
            GRef<AtspiStateSet> states =
                GRef<AtspiStateSet>::adopt(atspi_accessible_get_state_set(accessible()));
            multiLine = states && atspi_state_set_contains(states.get(), ATSPI_STATE_MULTI_LINE);
        }
    }
    std::string xmlRoles;
    if (needsXmlRoles(*role)) {
        const PrefetchedElement* ahead = element ? prefetched() : nullptr;
        xmlRoles = ahead && ahead->attributesAsked ? *ahead->xmlRoles
                                                   : objectAttribute("xml-roles").value_or("");
    }
    MappedRole result = mapRole(*role, multiLine, xmlRoles);
    // Static text runs never hold children; paragraphs and labels may.
    if (result.kind == TextKind::staticText && *role != ATSPI_ROLE_STATIC) {
        // A paragraph or label whose text runs are its own children (as Chromium exposes them)
        // is a group of those runs, not one run itself.
        // A count the cache does not know (-1) is asked for.
        AXAnswer<gint> count = element && element->childCount >= 0
                                   ? AXAnswer<gint>{element->childCount}
                                   : guard_->run([&](GError** e) {
                                         return atspi_accessible_get_child_count(accessible(), e);
                                     });
        if (count && *count > 0) {
            result.role = "AXGroup";
            result.kind = TextKind::container;
        }
    }
    mapped_ = AXAnswer<MappedRole>{result};
    return *mapped_;
}

std::optional<std::string> AtspiNode::objectAttribute(const char* name) {
    if (!accessible()) {
        return std::nullopt;
    }
    AXAnswer<GHashTable*> table =
        guard_->run([&](GError** e) { return atspi_accessible_get_attributes(accessible(), e); });
    if (!table || !*table) {
        return std::nullopt;
    }
    std::optional<std::string> value;
    if (auto* found = static_cast<const char*>(g_hash_table_lookup(*table, name))) {
        value = found;
    }
    g_hash_table_unref(*table);
    return value;
}

AXAnswer<std::string> AtspiNode::role() {
    AXAnswer<MappedRole> m = mapped();
    if (!m) {
        return m.failure();
    }
    return m->role;
}

AXAnswer<std::string> AtspiNode::subrole() {
    AXAnswer<MappedRole> m = mapped();
    if (!m || !m->subrole) {
        return m ? AXFailure::absent : m.failure();
    }
    return *m->subrole;
}

std::vector<std::shared_ptr<AtspiNode>> AtspiNode::rawChildren() {
    if (children_) {
        return *children_;
    }
    children_.emplace();
    if (const CachedElement* element = cached();
        element && element->childrenKnown() && readAhead_->resolvesPaths()) {
        for (const std::string& path : element->children) {
            children_->push_back(std::make_shared<AtspiNode>(path, guard_, readAhead_));
        }
        return *children_;
    }
    if (!accessible()) {
        return *children_;
    }
    AXAnswer<gint> count =
        guard_->run([&](GError** e) { return atspi_accessible_get_child_count(accessible(), e); });
    if (!count || *count <= 0) {
        return *children_;
    }
    // Bounded: a broken application may claim absurd counts.
    gint limit = std::min<gint>(*count, 20000);
    for (gint i = 0; i < limit; ++i) {
        children_->push_back(std::make_shared<AtspiNode>(
            GRef<AtspiAccessible>::retain(accessible()), i, guard_, readAhead_));
    }
    return *children_;
}

AXAnswer<std::vector<ElementRef>> AtspiNode::children() {
    AXAnswer<MappedRole> m = mapped();
    if (!m) {
        return m.failure();
    }
    std::vector<ElementRef> result;
    if (m->kind == TextKind::staticText || m->kind == TextKind::secure) {
        return result;
    }
    if (m->kind == TextKind::textControl) {
        for (auto& child : rawChildren()) {
            result.push_back(child);
        }
        return result;
    }
    for (ContentItem& item : content()) {
        if (auto* run = std::get_if<TextRun>(&item)) {
            result.push_back(std::make_shared<AtspiTextRun>(shared_from_this(), *run));
        } else {
            result.push_back(std::get<std::shared_ptr<AtspiNode>>(item));
        }
    }
    if (guard_->timedOut()) {
        return AXFailure::timedOut;
    }
    return result;
}

AXAnswer<ElementRef> AtspiNode::parent() {
    if (!accessible()) {
        return AXFailure::absent;
    }
    AXAnswer<AtspiAccessible*> parent =
        guard_->run([&](GError** e) { return atspi_accessible_get_parent(accessible(), e); });
    if (!parent) {
        return parent.failure();
    }
    if (!*parent) {
        return AXFailure::absent;
    }
    auto node =
        std::make_shared<AtspiNode>(GRef<AtspiAccessible>::adopt(*parent), guard_, readAhead_);
    AXAnswer<AtspiRole> role = node->atspiRole();
    // The desktop above the application is not part of the application's tree.
    if (role && *role == ATSPI_ROLE_DESKTOP_FRAME) {
        return AXFailure::absent;
    }
    return ElementRef{node};
}

AXAnswer<ScreenRect> AtspiNode::frame() {
    if (const PrefetchedElement* ahead = prefetched(); ahead && ahead->extentsAsked) {
        return frameFrom(*ahead->extents);
    }
    if (!accessible()) {
        return AXFailure::absent;
    }
    GRef<AtspiComponent> component =
        GRef<AtspiComponent>::adopt(atspi_accessible_get_component_iface(accessible()));
    if (!component) {
        return AXFailure::absent;
    }
    AXAnswer<AtspiRect*> rect = guard_->run([&](GError** e) {
        return atspi_component_get_extents(component.get(), ATSPI_COORD_TYPE_SCREEN, e);
    });
    if (!rect) {
        return rect.failure();
    }
    return rectFrom(*rect);
}

AXAnswer<ScreenRect> AtspiNode::codePointExtents(std::int64_t start, std::int64_t end) {
    if (!accessible()) {
        return AXFailure::absent;
    }
    GRef<AtspiText> textIface =
        GRef<AtspiText>::adopt(atspi_accessible_get_text_iface(accessible()));
    if (!textIface || end <= start) {
        return AXFailure::absent;
    }
    AXAnswer<AtspiRect*> rect = guard_->run([&](GError** e) {
        if (end - start == 1) {
            return atspi_text_get_character_extents(textIface.get(), static_cast<gint>(start),
                                                    ATSPI_COORD_TYPE_SCREEN, e);
        }
        return atspi_text_get_range_extents(textIface.get(), static_cast<gint>(start),
                                            static_cast<gint>(end), ATSPI_COORD_TYPE_SCREEN, e);
    });
    if (!rect) {
        return rect.failure();
    }
    return rectFrom(*rect);
}

AXAnswer<ProcessID> AtspiNode::processID() {
    if (!accessible()) {
        return AXFailure::absent;
    }
    AXAnswer<guint> pid =
        guard_->run([&](GError** e) { return atspi_accessible_get_process_id(accessible(), e); });
    if (!pid || *pid == 0) {
        return pid ? AXFailure::absent : pid.failure();
    }
    return static_cast<ProcessID>(*pid);
}

AXAnswer<ElementSnapshot> AtspiNode::snapshot() {
    if (readAhead_ && !cached()) {
        readAhead_->noteLookedAt(accessible());
    }
    AXAnswer<MappedRole> m = mapped();
    if (!m) {
        return m.failure();
    }
    ElementSnapshot snap;
    snap.role = m->role;
    snap.subrole = m->subrole;
    if (m->kind == TextKind::staticText) {
        snap.value = value().optional();
        // Only text is placed on screen by a walk; a container's box would cost a call each.
        snap.frame = frame().optional();
    } else if (AXAnswer<std::vector<ElementRef>> kids = children()) {
        snap.children = std::move(*kids);
    }
    if (guard_->timedOut()) {
        return AXFailure::timedOut;
    }
    return snap;
}

namespace {

bool sameAccessible(AtspiAccessible* a, AtspiAccessible* b) {
    if (a == b) {
        return true;
    }
    if (!a || !b) {
        return false;
    }
    // The library usually hands out one object per remote element; compare addresses anyway.
    const AtspiObject* x = &a->parent;
    const AtspiObject* y = &b->parent;
    return x->app == y->app && x->path && y->path && std::strcmp(x->path, y->path) == 0;
}

} // namespace

bool AtspiNode::isSame(const AccessibilityElement& other) const {
    const auto* node = dynamic_cast<const AtspiNode*>(&other);
    if (!node) {
        return false;
    }
    if (node == this) {
        return true;
    }
    std::optional<std::pair<std::string_view, std::string_view>> mine = identity();
    std::optional<std::pair<std::string_view, std::string_view>> theirs = node->identity();
    if (mine && theirs) {
        return *mine == *theirs;
    }
    // A pending child is compared by its place, so a walk need not fetch its siblings.
    if (pendingOwner_ && node->pendingOwner_) {
        return *index_ == *node->index_ &&
               sameAccessible(pendingOwner_.get(), node->pendingOwner_.get());
    }
    if (pendingOwner_ || node->pendingOwner_) {
        const AtspiNode& pending = pendingOwner_ ? *this : *node;
        auto& fetched = const_cast<AtspiNode&>(pendingOwner_ ? *node : *this);
        std::optional<int> index = fetched.indexInParent();
        if (!index || *index != *pending.index_) {
            return false;
        }
        AXAnswer<ElementRef> parent = fetched.parent();
        auto* parentNode = parent ? dynamic_cast<AtspiNode*>(parent->get()) : nullptr;
        return parentNode && sameAccessible(parentNode->accessible(), pending.pendingOwner_.get());
    }
    return sameAccessible(accessible(), node->accessible());
}

std::set<std::string> AtspiNode::attributeNames() {
    std::set<std::string> names{"AXRole", "AXParent", "AXChildren", "AXPosition", "AXSize"};
    AXAnswer<MappedRole> m = mapped();
    if (m && m->kind != TextKind::secure && hasText()) {
        names.insert({"AXValue", "AXNumberOfCharacters", "AXSelectedText", "AXSelectedTextRange"});
    }
    return names;
}

std::set<std::string> AtspiNode::parameterizedNames() {
    AXAnswer<MappedRole> m = mapped();
    if (!m || m->kind == TextKind::secure) {
        return {};
    }
    if (m->kind == TextKind::container) {
        // Markers come from hit tests over the document's paragraphs, not from its own text.
        AXAnswer<AtspiRole> role = atspiRole();
        if (role && isDocumentRole(*role)) {
            return {"AXTextMarkerForPosition", "AXTextMarkerRangeForUnorderedTextMarkers",
                    "AXStringForTextMarkerRange"};
        }
        return {};
    }
    if (!hasText()) {
        return {};
    }
    if (m->kind == TextKind::staticText) {
        // Text in web pages is anchored through the page's markers, as browsers do elsewhere;
        // a range query here would make every paragraph look like a text view.
        return insideWebContent() ? std::set<std::string>{}
                                  : std::set<std::string>{"AXRangeForPosition", "AXStringForRange"};
    }
    return {"AXRangeForPosition", "AXStringForRange", "AXBoundsForRange"};
}

bool AtspiNode::hasText() {
    if (const CachedElement* element = cached()) {
        return element->hasText;
    }
    if (!accessible()) {
        return false;
    }
    GRef<AtspiText> textIface =
        GRef<AtspiText>::adopt(atspi_accessible_get_text_iface(accessible()));
    return static_cast<bool>(textIface);
}

AXAnswer<std::vector<ElementRef>> AtspiNode::rows() {
    std::vector<ElementRef> result;
    // Rows may sit inside row groups (head, body, foot).
    std::vector<std::shared_ptr<AtspiNode>> pending = rawChildren();
    for (std::size_t i = 0; i < pending.size() && i < 5000; ++i) {
        AXAnswer<AtspiRole> role = pending[i]->atspiRole();
        if (role && *role == ATSPI_ROLE_TABLE_ROW) {
            result.push_back(pending[i]);
        } else if (role && (*role == ATSPI_ROLE_SECTION || *role == ATSPI_ROLE_PANEL ||
                            *role == ATSPI_ROLE_GROUPING)) {
            for (auto& child : pending[i]->rawChildren()) {
                pending.push_back(child);
            }
        }
    }
    return result;
}

AXAnswer<std::vector<ElementRef>> AtspiNode::cells() {
    std::vector<ElementRef> result;
    for (auto& child : rawChildren()) {
        result.push_back(child);
    }
    return result;
}

AXAnswer<std::vector<ElementRef>> AtspiNode::columnHeaders() {
    AXAnswer<std::vector<ElementRef>> all = rows();
    if (!all || all->empty()) {
        return AXFailure::absent;
    }
    auto first = std::dynamic_pointer_cast<AtspiNode>(all->front());
    std::vector<ElementRef> headers;
    for (auto& cell : first->rawChildren()) {
        AXAnswer<AtspiRole> role = cell->atspiRole();
        if (!role ||
            (*role != ATSPI_ROLE_COLUMN_HEADER && *role != ATSPI_ROLE_TABLE_COLUMN_HEADER)) {
            return AXFailure::absent;
        }
        headers.push_back(cell);
    }
    return headers;
}

AXAnswer<std::string> AtspiNode::url() {
    if (!accessible()) {
        return AXFailure::absent;
    }
    GRef<AtspiDocument> document =
        GRef<AtspiDocument>::adopt(atspi_accessible_get_document_iface(accessible()));
    if (!document) {
        return AXFailure::absent;
    }
    for (const char* name : {"DocURL", "URI"}) {
        AXAnswer<gchar*> value = guard_->run([&](GError** e) {
            return atspi_document_get_document_attribute_value(document.get(),
                                                               const_cast<gchar*>(name), e);
        });
        if (value && *value && **value) {
            return takeString(*value);
        }
        if (value) {
            g_free(*value);
        }
    }
    return AXFailure::absent;
}

AXAnswer<std::string> AtspiNode::domIdentifier() {
    std::optional<std::string> id = objectAttribute("id");
    if (!id) {
        return AXFailure::absent;
    }
    return *id;
}

AXAnswer<std::vector<std::string>> AtspiNode::domClassList() {
    std::optional<std::string> classes = objectAttribute("class");
    if (!classes) {
        return AXFailure::absent;
    }
    std::vector<std::string> names;
    std::size_t start = 0;
    while (start < classes->size()) {
        std::size_t end = classes->find(' ', start);
        if (end == std::string::npos) {
            end = classes->size();
        }
        if (end > start) {
            names.push_back(classes->substr(start, end - start));
        }
        start = end + 1;
    }
    return names;
}

} // namespace lectorbell::platform::atspi
