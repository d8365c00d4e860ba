#include "platform/linux/atspi/AtspiNode.hpp"

#include <algorithm>

namespace lectorbell::platform::atspi {

namespace {

constexpr char16_t objectReplacement = u'\uFFFC';
constexpr int binarySearchSteps = 40;

bool isBlank(std::u16string_view text) {
    return text.find_first_not_of(u" \t\r\n\u00A0\uFFFC") == std::u16string_view::npos;
}

std::u16string withoutObjects(std::u16string_view text) {
    std::u16string result;
    for (char16_t c : text) {
        if (c != objectReplacement) {
            result += c;
        }
    }
    return result;
}

constexpr int inlineDepth = 8;

// An inline element's text as it reads in its owner's line: embedded objects replaced by their
// own text, or the text runs it holds as children.
std::u16string inlineText(AtspiNode& node, int depth) {
    const CodePointText* own = node.text();
    std::vector<std::shared_ptr<AtspiNode>> kids = node.rawChildren();
    if (depth == 0) {
        return own ? withoutObjects(own->utf16()) : u"";
    }
    std::u16string result;
    if (own) {
        auto objects = std::count(own->utf16().begin(), own->utf16().end(), objectReplacement);
        if (static_cast<std::size_t>(objects) == kids.size()) {
            std::size_t next = 0;
            for (char16_t c : own->utf16()) {
                result += c == objectReplacement ? inlineText(*kids[next++], depth - 1)
                                                 : std::u16string(1, c);
            }
            return result;
        }
        if (kids.empty()) {
            return withoutObjects(own->utf16());
        }
    }
    for (auto& kid : kids) {
        result += inlineText(*kid, depth - 1);
    }
    return result;
}

// The character's box is on the pointer's line (a generous band: lines have leading).
bool onSameLine(const ScreenRect& box, ScreenPoint point) {
    double slack = std::max(2.0, box.height() * 0.25);
    return point.y >= box.minY() - slack && point.y < box.maxY() + slack;
}

// Character boxes run line by line, left to right: is this box at or before the point?
bool atOrBefore(const ScreenRect& box, ScreenPoint point) {
    if (box.maxY() <= point.y) {
        return true;
    }
    return box.minY() <= point.y && box.minX() <= point.x;
}

} // namespace

const CodePointText* AtspiNode::text() {
    if (text_) {
        return &*text_;
    }
    AXAnswer<MappedRole> m = mapped();
    if (!m || m->kind == TextKind::secure) {
        return nullptr;
    }
    if (const PrefetchedElement* ahead = prefetched(); ahead && ahead->textAsked) {
        text_.emplace(*ahead->text);
        return &*text_;
    }
    GRef<AtspiText> textIface =
        GRef<AtspiText>::adopt(atspi_accessible_get_text_iface(accessible()));
    if (textIface) {
        AXAnswer<gint> count = guard_->run(
            [&](GError** e) { return atspi_text_get_character_count(textIface.get(), e); });
        if (!count || *count < 0) {
            return nullptr;
        }
        AXAnswer<gchar*> utf8 = guard_->run(
            [&](GError** e) { return atspi_text_get_text(textIface.get(), 0, *count, e); });
        if (!utf8) {
            return nullptr;
        }
        text_.emplace(takeString(*utf8));
    } else if (m->kind == TextKind::staticText) {
        // Some toolkits give a label its text only as its name.
        AXAnswer<gchar*> name =
            guard_->run([&](GError** e) { return atspi_accessible_get_name(accessible(), e); });
        if (!name) {
            return nullptr;
        }
        text_.emplace(takeString(*name));
    } else {
        return nullptr;
    }
    return &*text_;
}

std::vector<ContentItem> AtspiNode::content() {
    if (content_) {
        return *content_;
    }
    content_.emplace();
    std::vector<std::shared_ptr<AtspiNode>> kids = rawChildren();
    const CodePointText* own = hasText() ? text() : nullptr;
    const std::u16string* full = own ? &own->utf16() : nullptr;
    auto objects = full ? std::count(full->begin(), full->end(), objectReplacement) : 0;
    // Text made only of embedded objects holds no runs of its own: the children are all.
    if (!full || static_cast<std::size_t>(objects) != kids.size() || isBlank(*full)) {
        // Children that do not match the text's embedded objects: take the children alone.
        if (full && kids.empty() && !isBlank(*full)) {
            TextRun run{
                *full,
                {{0, own->codePointCount(), 0, static_cast<std::int64_t>(full->size()), nullptr}},
                0,
                own->codePointCount()};
            content_->push_back(std::move(run));
        }
        for (auto& kid : kids) {
            content_->push_back(kid);
        }
        return *content_;
    }
    TextRun run;
    std::size_t nextChild = 0;
    std::int64_t codePoint = 0;
    auto flush = [&](std::int64_t end) {
        if (!isBlank(run.text)) {
            run.ownerEnd = end;
            content_->push_back(std::move(run));
        }
        run = TextRun{};
        run.ownerStart = end;
    };
    for (std::size_t i = 0; i < full->size(); ++i, ++codePoint) {
        char16_t c = (*full)[i];
        if (c == objectReplacement) {
            std::shared_ptr<AtspiNode> child = kids[nextChild++];
            AXAnswer<AtspiRole> role = child->atspiRole();
            if (role && *role == ATSPI_ROLE_LINK) {
                std::u16string expanded = inlineText(*child, inlineDepth);
                run.pieces.push_back({codePoint, 1, static_cast<std::int64_t>(run.text.size()),
                                      static_cast<std::int64_t>(expanded.size()), child});
                run.text += expanded;
            } else {
                flush(codePoint);
                content_->push_back(child);
                run.ownerStart = codePoint + 1;
            }
            continue;
        }
        std::size_t units = (c >= 0xD800 && c <= 0xDBFF && i + 1 < full->size()) ? 2 : 1;
        if (run.pieces.empty() || run.pieces.back().link ||
            run.pieces.back().ownerStart + run.pieces.back().ownerLength != codePoint) {
            run.pieces.push_back(
                {codePoint, 0, static_cast<std::int64_t>(run.text.size()), 0, nullptr});
        }
        run.pieces.back().ownerLength += 1;
        run.pieces.back().runLength += static_cast<std::int64_t>(units);
        run.text.append(*full, i, units);
        i += units - 1;
    }
    flush(codePoint);
    return *content_;
}

const TextRun* AtspiNode::ownRun() {
    if (ownRun_) {
        return &*ownRun_;
    }
    const CodePointText* own = text();
    if (!own) {
        return nullptr;
    }
    TextRun joined;
    joined.ownerEnd = own->codePointCount();
    for (ContentItem& item : content()) {
        if (auto* run = std::get_if<TextRun>(&item)) {
            std::int64_t shift = static_cast<std::int64_t>(joined.text.size());
            for (RunPiece piece : run->pieces) {
                piece.runStart += shift;
                joined.pieces.push_back(piece);
            }
            joined.text += run->text;
        }
    }
    if (joined.pieces.empty() && !own->utf16().empty()) {
        // A label known only by its name: one plain piece.
        joined.text = withoutObjects(own->utf16());
        joined.pieces.push_back(
            {0, own->codePointCount(), 0, static_cast<std::int64_t>(joined.text.size()), nullptr});
    }
    ownRun_ = std::move(joined);
    return &*ownRun_;
}

bool AtspiNode::readsAsText() {
    AXAnswer<MappedRole> m = mapped();
    return m && (m->kind == TextKind::staticText || m->kind == TextKind::textControl);
}

AXAnswer<std::u16string> AtspiNode::value() {
    AXAnswer<MappedRole> m = mapped();
    if (!m || m->kind == TextKind::secure) {
        return m ? AXFailure::absent : m.failure();
    }
    if (m->kind == TextKind::staticText) {
        const TextRun* run = ownRun();
        return run ? AXAnswer<std::u16string>{run->text}
                   : AXAnswer<std::u16string>{AXFailure::absent};
    }
    if (m->kind == TextKind::textControl) {
        const CodePointText* own = text();
        return own ? AXAnswer<std::u16string>{own->utf16()}
                   : AXAnswer<std::u16string>{AXFailure::absent};
    }
    if (!hasText()) {
        return AXFailure::absent;
    }
    std::u16string joined;
    for (ContentItem& item : content()) {
        if (auto* run = std::get_if<TextRun>(&item)) {
            joined += joined.empty() ? run->text : u" " + run->text;
        }
    }
    return joined;
}

std::optional<std::int64_t> AtspiNode::verifiedOffsetAt(ScreenPoint point) {
    if (!accessible()) {
        return std::nullopt;
    }
    GRef<AtspiText> textIface =
        GRef<AtspiText>::adopt(atspi_accessible_get_text_iface(accessible()));
    const CodePointText* own = text();
    if (!textIface || !own || own->codePointCount() == 0) {
        return std::nullopt;
    }
    std::int64_t count = own->codePointCount();
    auto boxOf = [&](std::int64_t offset) { return codePointExtents(offset, offset + 1); };
    // Some toolkits answer -1 or a wrong first offset: check the answer against its box.
    for (int attempt = 0; attempt < 2; ++attempt) {
        AXAnswer<gint> offset = guard_->run([&](GError** e) {
            return atspi_text_get_offset_at_point(textIface.get(), static_cast<gint>(point.x),
                                                  static_cast<gint>(point.y),
                                                  ATSPI_COORD_TYPE_SCREEN, e);
        });
        if (!offset || guard_->timedOut()) {
            return std::nullopt;
        }
        if (*offset >= 0 && *offset < count) {
            if (AXAnswer<ScreenRect> box = boxOf(*offset); box && onSameLine(*box, point)) {
                return *offset;
            }
        } else {
            break;
        }
    }
    // Binary search over the character boxes, which run line by line.
    std::int64_t low = 0;
    std::int64_t high = count - 1;
    std::optional<std::int64_t> found;
    for (int step = 0; step < binarySearchSteps && low <= high && !guard_->timedOut(); ++step) {
        std::int64_t middle = low + (high - low) / 2;
        AXAnswer<ScreenRect> box = boxOf(middle);
        if (!box) {
            return std::nullopt;
        }
        if (atOrBefore(*box, point)) {
            found = middle;
            low = middle + 1;
        } else {
            high = middle - 1;
        }
    }
    if (!found) {
        return std::nullopt;
    }
    AXAnswer<ScreenRect> box = boxOf(*found);
    if (!box || !onSameLine(*box, point)) {
        return std::nullopt;
    }
    return found;
}

AXAnswer<UTF16Range> AtspiNode::rangeForPosition(ScreenPoint point) {
    AXAnswer<MappedRole> m = mapped();
    if (!m || !readsAsText()) {
        return AXFailure::absent;
    }
    if (m->kind == TextKind::staticText) {
        const TextRun* run = ownRun();
        std::optional<std::int64_t> offset = run ? runOffsetAt(*this, *run, point) : std::nullopt;
        if (!offset) {
            return guard_->timedOut() ? AXFailure::timedOut : AXFailure::absent;
        }
        return UTF16Range{*offset, 1};
    }
    std::optional<std::int64_t> offset = verifiedOffsetAt(point);
    if (!offset) {
        return guard_->timedOut() ? AXFailure::timedOut : AXFailure::absent;
    }
    return UTF16Range{text()->utf16Offset(*offset), 1};
}

AXAnswer<std::u16string> AtspiNode::stringForRange(UTF16Range range) {
    if (!readsAsText()) {
        return AXFailure::absent;
    }
    AXAnswer<std::u16string> whole = value();
    if (!whole) {
        return whole.failure();
    }
    std::optional<std::u16string> part = UTF16Text::substring(*whole, range);
    if (!part) {
        return AXFailure::absent;
    }
    return *part;
}

AXAnswer<ScreenRect> AtspiNode::boundsForRange(UTF16Range range) {
    AXAnswer<MappedRole> m = mapped();
    const CodePointText* own = text();
    if (!m || m->kind != TextKind::textControl || !own || range.length < 1) {
        return AXFailure::absent;
    }
    std::int64_t start = own->codePointOffset(range.location);
    std::int64_t end = std::max(start + 1, own->codePointOffset(range.end()));
    return codePointExtents(start, end);
}

AXAnswer<std::int64_t> AtspiNode::numberOfCharacters() {
    if (!readsAsText()) {
        return AXFailure::absent;
    }
    AXAnswer<std::u16string> whole = value();
    if (!whole) {
        return whole.failure();
    }
    return static_cast<std::int64_t>(whole->size());
}

AXAnswer<std::u16string> AtspiNode::selectedText() {
    AXAnswer<UTF16Range> range = selectedTextRange();
    if (!range) {
        return range.failure();
    }
    std::optional<std::u16string> part = UTF16Text::substring(text()->utf16(), *range);
    if (!part) {
        return AXFailure::absent;
    }
    return *part;
}

AXAnswer<UTF16Range> AtspiNode::selectedTextRange() {
    AXAnswer<MappedRole> m = mapped();
    if (!m || m->kind == TextKind::secure) {
        return AXFailure::absent;
    }
    GRef<AtspiText> textIface =
        GRef<AtspiText>::adopt(atspi_accessible_get_text_iface(accessible()));
    const CodePointText* own = textIface ? text() : nullptr;
    if (!own) {
        return AXFailure::absent;
    }
    AXAnswer<gint> count =
        guard_->run([&](GError** e) { return atspi_text_get_n_selections(textIface.get(), e); });
    if (!count) {
        return count.failure();
    }
    if (*count < 1) {
        // No selection: an empty range at the caret, as the AX attribute gives it.
        AXAnswer<gint> caret = guard_->run(
            [&](GError** e) { return atspi_text_get_caret_offset(textIface.get(), e); });
        std::int64_t at = caret && *caret >= 0 ? own->utf16Offset(*caret) : 0;
        return UTF16Range{at, 0};
    }
    AXAnswer<AtspiRange*> selection =
        guard_->run([&](GError** e) { return atspi_text_get_selection(textIface.get(), 0, e); });
    if (!selection || !*selection) {
        return selection ? AXFailure::absent : selection.failure();
    }
    std::int64_t start =
        own->utf16Offset(std::min((*selection)->start_offset, (*selection)->end_offset));
    std::int64_t end =
        own->utf16Offset(std::max((*selection)->start_offset, (*selection)->end_offset));
    g_free(*selection);
    return UTF16Range{start, end - start};
}

ElementRef AtspiNode::liftInline() {
    AXAnswer<AtspiRole> role = atspiRole();
    if (!role || *role != ATSPI_ROLE_LINK) {
        return shared_from_this();
    }
    AXAnswer<ElementRef> parentAnswer = parent();
    auto owner = parentAnswer ? std::dynamic_pointer_cast<AtspiNode>(*parentAnswer) : nullptr;
    if (!owner) {
        return shared_from_this();
    }
    AXAnswer<MappedRole> m = owner->mapped();
    if (m && m->kind == TextKind::staticText) {
        return owner;
    }
    for (ContentItem& item : owner->content()) {
        if (auto* run = std::get_if<TextRun>(&item)) {
            for (const RunPiece& piece : run->pieces) {
                if (piece.link && piece.link->isSame(*this)) {
                    return std::make_shared<AtspiTextRun>(owner, *run);
                }
            }
        }
    }
    return shared_from_this();
}

std::optional<std::int64_t> runOffsetAt(AtspiNode& owner, const TextRun& run, ScreenPoint point) {
    std::optional<std::int64_t> codePoint = owner.verifiedOffsetAt(point);
    const CodePointText* own = owner.text();
    if (!codePoint || !own) {
        return std::nullopt;
    }
    for (const RunPiece& piece : run.pieces) {
        if (*codePoint < piece.ownerStart || *codePoint >= piece.ownerStart + piece.ownerLength) {
            continue;
        }
        if (!piece.link) {
            return piece.runStart + own->utf16Offset(*codePoint) -
                   own->utf16Offset(piece.ownerStart);
        }
        std::optional<std::int64_t> inLink = piece.link->verifiedOffsetAt(point);
        const CodePointText* linkText = piece.link->text();
        std::int64_t within = inLink && linkText ? linkText->utf16Offset(*inLink) : 0;
        return piece.runStart +
               std::clamp<std::int64_t>(within, 0, std::max<std::int64_t>(0, piece.runLength - 1));
    }
    return std::nullopt;
}

AtspiTextRun::AtspiTextRun(std::shared_ptr<AtspiNode> owner, TextRun run)
    : owner_(std::move(owner))
    , run_(std::move(run)) {}

AXAnswer<ScreenRect> AtspiTextRun::frame() {
    if (!frame_) {
        frame_ = owner_->codePointExtents(run_.ownerStart, run_.ownerEnd);
    }
    return *frame_;
}

AXAnswer<ElementSnapshot> AtspiTextRun::snapshot() {
    ElementSnapshot snap;
    snap.role = "AXStaticText";
    snap.value = run_.text;
    snap.frame = frame().optional();
    return snap;
}

bool AtspiTextRun::isSame(const AccessibilityElement& other) const {
    const auto* run = dynamic_cast<const AtspiTextRun*>(&other);
    return run && run->run_.ownerStart == run_.ownerStart && owner_->isSame(*run->owner_);
}

std::set<std::string> AtspiTextRun::parameterizedNames() {
    if (owner_->insideWebContent()) {
        return {};
    }
    return {"AXRangeForPosition", "AXStringForRange"};
}

AXAnswer<UTF16Range> AtspiTextRun::rangeForPosition(ScreenPoint point) {
    std::optional<std::int64_t> offset = runOffsetAt(*owner_, run_, point);
    if (!offset) {
        return owner_->guard()->timedOut() ? AXFailure::timedOut : AXFailure::absent;
    }
    return UTF16Range{*offset, 1};
}

AXAnswer<std::u16string> AtspiTextRun::stringForRange(UTF16Range range) {
    std::optional<std::u16string> part = UTF16Text::substring(run_.text, range);
    if (!part) {
        return AXFailure::absent;
    }
    return *part;
}

} // namespace lectorbell::platform::atspi
