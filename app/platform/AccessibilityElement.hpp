#pragma once

#include "lectorbell/ScreenGeometry.hpp"
#include "lectorbell/SelectionPolicy.hpp"
#include "lectorbell/UTF16Text.hpp"
#include "platform/AXAnswer.hpp"

#include <any>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace lectorbell {

class AccessibilityElement;
using ElementRef = std::shared_ptr<AccessibilityElement>;

// An opaque position in a web page's text, for the platforms whose pages expose text markers
// instead of character ranges per element. Only the element that made it can read it.
struct TextMarker {
    std::any handle;
};
struct TextMarkerRange {
    std::any handle;
};

// The attributes of one element that a tree walk needs, fetched in one round trip.
struct ElementSnapshot {
    std::optional<std::string> role;
    std::optional<std::string> subrole;
    std::optional<std::u16string> value;
    std::vector<ElementRef> children;
    std::optional<ScreenRect> frame;
};

// One element of another application's accessibility tree, in the platform-neutral vocabulary
// ("AXStaticText", "AXWebArea", …). Every query answers a value or why there is none; none
// throws. Text offsets and lengths are UTF-16 code units.
class AccessibilityElement {
public:
    virtual ~AccessibilityElement() = default;

    virtual AXAnswer<std::string> role() = 0;
    virtual AXAnswer<std::string> subrole() = 0;
    // The element's text (static text, a field's value, a document's text).
    virtual AXAnswer<std::u16string> value() = 0;
    virtual AXAnswer<std::vector<ElementRef>> children() = 0;
    virtual AXAnswer<ElementRef> parent() = 0;
    // Global screen coordinates, top-left origin, points.
    virtual AXAnswer<ScreenRect> frame() = 0;
    virtual AXAnswer<ProcessID> processID() = 0;
    // Role, subrole, value, children and frame at once.
    virtual AXAnswer<ElementSnapshot> snapshot() = 0;
    // Identity of the underlying platform element.
    virtual bool isSame(const AccessibilityElement& other) const = 0;

    // Names of the plain attributes ("AXSelectedText", …) and of the parameterised queries
    // ("AXRangeForPosition", "AXStringForRange", "AXBoundsForRange", "AXTextMarkerForPosition",
    // …) this element answers; callers check before asking.
    virtual std::set<std::string> attributeNames() = 0;
    virtual std::set<std::string> parameterizedNames() = 0;

    // Text queries.
    virtual AXAnswer<UTF16Range> rangeForPosition(ScreenPoint point) = 0;
    virtual AXAnswer<std::u16string> stringForRange(UTF16Range range) = 0;
    virtual AXAnswer<ScreenRect> boundsForRange(UTF16Range range) = 0;
    virtual AXAnswer<std::int64_t> numberOfCharacters() = 0;
    virtual AXAnswer<std::u16string> selectedText() = 0;
    virtual AXAnswer<UTF16Range> selectedTextRange() = 0;

    // Tables: the rows of a table, the cells of a row, the column header cells of a table.
    virtual AXAnswer<std::vector<ElementRef>> rows() = 0;
    virtual AXAnswer<std::vector<ElementRef>> cells() = 0;
    virtual AXAnswer<std::vector<ElementRef>> columnHeaders() = 0;

    // Web documents: the page address, DOM id and classes.
    virtual AXAnswer<std::string> url() = 0;
    virtual AXAnswer<std::string> domIdentifier() = 0;
    virtual AXAnswer<std::vector<std::string>> domClassList() = 0;

    // Text markers, where the platform offers them (see parameterizedNames()).
    virtual AXAnswer<TextMarker> textMarkerForPosition(ScreenPoint point) = 0;
    virtual AXAnswer<TextMarker> endTextMarker() = 0;
    virtual AXAnswer<TextMarkerRange> textMarkerRange(const TextMarker& from, const TextMarker& to,
                                                      bool unordered) = 0;
    virtual AXAnswer<std::u16string> stringForTextMarkerRange(const TextMarkerRange& range) = 0;
    virtual AXAnswer<TextMarkerRange> selectedTextMarkerRange() = 0;
};

} // namespace lectorbell
