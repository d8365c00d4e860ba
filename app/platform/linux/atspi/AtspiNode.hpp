#pragma once

#include "platform/AccessibilityElement.hpp"
#include "platform/linux/atspi/AtspiCall.hpp"
#include "platform/linux/atspi/AtspiReadAhead.hpp"
#include "platform/linux/atspi/AtspiRoles.hpp"
#include "platform/linux/atspi/CodePointText.hpp"

#include <atspi/atspi.h>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>

namespace lectorbell::platform::atspi {

class AtspiNode;

// One part of a text run: plain text of the owner, or an inline link expanded to its text.
struct RunPiece {
    // Code-point range in the owner's text (one U+FFFC for a link).
    std::int64_t ownerStart = 0;
    std::int64_t ownerLength = 0;
    // UTF-16 range in the run's text.
    std::int64_t runStart = 0;
    std::int64_t runLength = 0;
    std::shared_ptr<AtspiNode> link;
};

struct TextRun {
    std::u16string text;
    std::vector<RunPiece> pieces;
    std::int64_t ownerStart = 0;
    std::int64_t ownerEnd = 0;
};

// An element's content in reading order: runs of its own text between its child elements.
using ContentItem = std::variant<TextRun, std::shared_ptr<AtspiNode>>;

// One AT-SPI accessible, in the AX vocabulary. Lives for one lookup; caches what it read.
class AtspiNode final : public AccessibilityElement,
                        public std::enable_shared_from_this<AtspiNode> {
public:
    AtspiNode(GRef<AtspiAccessible> accessible, std::shared_ptr<HangGuard> guard,
              std::shared_ptr<AtspiReadAhead> readAhead = {});
    // A child fetched only when first used: listing a page's thousands of children costs one
    // call each, and a budgeted walk looks at few of them.
    AtspiNode(GRef<AtspiAccessible> owner, int index, std::shared_ptr<HangGuard> guard,
              std::shared_ptr<AtspiReadAhead> readAhead = {});
    // An element the read-ahead knows by its path; its library object is made when needed.
    AtspiNode(std::string path, std::shared_ptr<HangGuard> guard,
              std::shared_ptr<AtspiReadAhead> readAhead);

    // Null when the element is gone (or a pending child could not be fetched).
    AtspiAccessible* accessible() const;
    const std::shared_ptr<HangGuard>& guard() const { return guard_; }
    const std::shared_ptr<AtspiReadAhead>& readAhead() const { return readAhead_; }
    // Role, subrole and how the node's text is treated; no value when the call failed.
    AXAnswer<MappedRole> mapped();
    AXAnswer<AtspiRole> atspiRole();
    std::vector<std::shared_ptr<AtspiNode>> rawChildren();
    // The node's whole text; never for a password field.
    const CodePointText* text();
    std::vector<ContentItem> content();
    // The code-point offset of the character at the point, checked against its box.
    std::optional<std::int64_t> verifiedOffsetAt(ScreenPoint point);
    AXAnswer<ScreenRect> codePointExtents(std::int64_t start, std::int64_t end);
    // The run of an inline element's owner that holds it, or the owner itself.
    ElementRef liftInline();
    // The node lies inside a web page (a document-web ancestor).
    bool insideWebContent();
    // The deepest element under the point, starting here; one level per call for toolkits
    // that answer one level at a time.
    AXAnswer<std::shared_ptr<AtspiNode>> deepestAt(ScreenPoint point);

    AXAnswer<std::string> role() override;
    AXAnswer<std::string> subrole() override;
    AXAnswer<std::u16string> value() override;
    AXAnswer<std::vector<ElementRef>> children() override;
    AXAnswer<ElementRef> parent() override;
    AXAnswer<ScreenRect> frame() override;
    AXAnswer<ProcessID> processID() override;
    AXAnswer<ElementSnapshot> snapshot() override;
    bool isSame(const AccessibilityElement& other) const override;
    std::set<std::string> attributeNames() override;
    std::set<std::string> parameterizedNames() override;
    AXAnswer<UTF16Range> rangeForPosition(ScreenPoint point) override;
    AXAnswer<std::u16string> stringForRange(UTF16Range range) override;
    AXAnswer<ScreenRect> boundsForRange(UTF16Range range) override;
    AXAnswer<std::int64_t> numberOfCharacters() override;
    AXAnswer<std::u16string> selectedText() override;
    AXAnswer<UTF16Range> selectedTextRange() override;
    AXAnswer<std::vector<ElementRef>> rows() override;
    AXAnswer<std::vector<ElementRef>> cells() override;
    AXAnswer<std::vector<ElementRef>> columnHeaders() override;
    AXAnswer<std::string> url() override;
    AXAnswer<std::string> domIdentifier() override;
    AXAnswer<std::vector<std::string>> domClassList() override;
    AXAnswer<TextMarker> textMarkerForPosition(ScreenPoint point) override;
    AXAnswer<TextMarker> endTextMarker() override;
    AXAnswer<TextMarkerRange> textMarkerRange(const TextMarker& from, const TextMarker& to,
                                              bool unordered) override;
    AXAnswer<std::u16string> stringForTextMarkerRange(const TextMarkerRange& range) override;
    AXAnswer<TextMarkerRange> selectedTextMarkerRange() override;

private:
    bool hasText();
    bool readsAsText();
    std::optional<std::string> objectAttribute(const char* name);
    // The UTF-16 text and run of a static-text node: its whole content, links expanded.
    const TextRun* ownRun();

    std::optional<int> indexInParent();
    // What the read-ahead knows of this element, without fetching it.
    const CachedElement* cached() const;
    const PrefetchedElement* prefetched() const;
    // The element's bus name and path when known without a call.
    std::optional<std::pair<std::string_view, std::string_view>> identity() const;

    mutable GRef<AtspiAccessible> accessible_;
    // The parent, while the child has not been fetched yet (a library object, so no cycle
    // through the parent's list of children).
    mutable GRef<AtspiAccessible> pendingOwner_;
    std::optional<int> index_;
    std::shared_ptr<HangGuard> guard_;
    std::shared_ptr<AtspiReadAhead> readAhead_;
    // Set when the element came from the read-ahead (its object may not be made yet).
    mutable std::string path_;
    // The read-ahead's entry for this element and the path it is filed under, once found.
    mutable const CachedElement* cached_ = nullptr;
    mutable std::string cachedPath_;
    std::optional<AXAnswer<MappedRole>> mapped_;
    std::optional<std::vector<std::shared_ptr<AtspiNode>>> children_;
    std::optional<CodePointText> text_;
    std::optional<std::vector<ContentItem>> content_;
    std::optional<TextRun> ownRun_;
    std::optional<bool> insideWeb_;
};

// A run of static text inside an element that also holds other elements (a heading with a
// link, a table cell, a page's bare text): the AX vocabulary's static-text child.
class AtspiTextRun final : public AccessibilityElement {
public:
    AtspiTextRun(std::shared_ptr<AtspiNode> owner, TextRun run);

    AXAnswer<std::string> role() override { return std::string{"AXStaticText"}; }
    AXAnswer<std::string> subrole() override { return AXFailure::absent; }
    AXAnswer<std::u16string> value() override { return run_.text; }
    AXAnswer<std::vector<ElementRef>> children() override { return std::vector<ElementRef>{}; }
    AXAnswer<ElementRef> parent() override { return ElementRef{owner_}; }
    AXAnswer<ScreenRect> frame() override;
    AXAnswer<ProcessID> processID() override { return owner_->processID(); }
    AXAnswer<ElementSnapshot> snapshot() override;
    bool isSame(const AccessibilityElement& other) const override;
    std::set<std::string> attributeNames() override { return {"AXValue"}; }
    std::set<std::string> parameterizedNames() override;
    AXAnswer<UTF16Range> rangeForPosition(ScreenPoint point) override;
    AXAnswer<std::u16string> stringForRange(UTF16Range range) override;
    AXAnswer<ScreenRect> boundsForRange(UTF16Range) override { return AXFailure::absent; }
    const std::shared_ptr<AtspiNode>& owner() const { return owner_; }
    AXAnswer<std::int64_t> numberOfCharacters() override {
        return static_cast<std::int64_t>(run_.text.size());
    }
    AXAnswer<std::u16string> selectedText() override { return AXFailure::absent; }
    AXAnswer<UTF16Range> selectedTextRange() override { return AXFailure::absent; }
    AXAnswer<std::vector<ElementRef>> rows() override { return AXFailure::absent; }
    AXAnswer<std::vector<ElementRef>> cells() override { return AXFailure::absent; }
    AXAnswer<std::vector<ElementRef>> columnHeaders() override { return AXFailure::absent; }
    AXAnswer<std::string> url() override { return AXFailure::absent; }
    AXAnswer<std::string> domIdentifier() override { return AXFailure::absent; }
    AXAnswer<std::vector<std::string>> domClassList() override { return AXFailure::absent; }
    AXAnswer<TextMarker> textMarkerForPosition(ScreenPoint) override { return AXFailure::absent; }
    AXAnswer<TextMarker> endTextMarker() override { return AXFailure::absent; }
    AXAnswer<TextMarkerRange> textMarkerRange(const TextMarker&, const TextMarker&, bool) override {
        return AXFailure::absent;
    }
    AXAnswer<std::u16string> stringForTextMarkerRange(const TextMarkerRange&) override {
        return AXFailure::absent;
    }
    AXAnswer<TextMarkerRange> selectedTextMarkerRange() override { return AXFailure::absent; }

    const TextRun& run() const { return run_; }

private:
    std::shared_ptr<AtspiNode> owner_;
    TextRun run_;
    std::optional<AXAnswer<ScreenRect>> frame_;
};

// The UTF-16 offset in a run of the owner's code-point offset (a link asked for its own).
std::optional<std::int64_t> runOffsetAt(AtspiNode& owner, const TextRun& run, ScreenPoint point);

} // namespace lectorbell::platform::atspi
