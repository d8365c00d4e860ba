#include "sources/SelectionSources.hpp"

#include "sources/TextSpace.hpp"
#include "sources/TreeQueries.hpp"

namespace lectorbell::SelectionSources {

namespace {

constexpr std::size_t ancestorLimit = 40;
constexpr std::int64_t innerSearchNodes = 400;

void addWebAreas(const ElementRef& element, std::vector<ElementRef>& areas) {
    for (const ElementRef& ancestor :
         TreeQueries::ancestors(element, ancestorLimit, TreeQueries::StopAt::missingParentOnly)) {
        if (TreeQueries::hasRole(*ancestor, "AXWebArea") &&
            !TreeQueries::containsElement(areas, *ancestor)) {
            areas.push_back(ancestor);
        }
    }
}

bool isGoogleDocsArea(AccessibilityElement& area) {
    std::optional<std::string> address = area.url().optional();
    return address && address->find(googleDocsDocument) != std::string::npos;
}

// Breadth first, so the editor's text area near the top of the page is found early.
std::optional<std::u16string> innerTextAreaSelection(const ElementRef& area,
                                                     const WalkContext& context) {
    std::vector<ElementRef> queue{area};
    std::int64_t visited = 0;
    for (std::size_t i = 0; i < queue.size() && visited < innerSearchNodes; ++i, ++visited) {
        const ElementRef& element = queue[i];
        if (i > 0 && TreeQueries::hasRole(*element, "AXTextArea") &&
            !TreeQueries::isSecure(*element)) {
            AXAnswer<std::u16string> selected = element->selectedText();
            if (selected && !TextSpace::isBlank(*selected)) {
                context.trace("selection: found in a Google Docs inner AXTextArea (" +
                              std::to_string(selected->size()) + " chars)");
                return *selected;
            }
        }
        if (AXAnswer<std::vector<ElementRef>> children = element->children()) {
            queue.insert(queue.end(), children->begin(), children->end());
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<std::u16string> markerSelection(AccessibilityElement& element) {
    if (!element.parameterizedNames().contains("AXStringForTextMarkerRange")) {
        return std::nullopt;
    }
    AXAnswer<TextMarkerRange> range = element.selectedTextMarkerRange();
    if (!range) {
        return std::nullopt;
    }
    return element.stringForTextMarkerRange(*range).optional();
}

std::optional<std::u16string> webPageSelection(AccessibilityApp& app, const ElementRef& focused,
                                               ScreenPoint point, ProcessID pid,
                                               const WalkContext& context) {
    std::vector<ElementRef> areas;
    addWebAreas(focused, areas);
    AXAnswer<ElementRef> hit = app.elementAtPosition(point);
    if (hit && *hit) {
        AXAnswer<ProcessID> owner = (*hit)->processID();
        if (owner && *owner == pid) {
            addWebAreas(*hit, areas);
        }
    }
    for (const ElementRef& area : areas) {
        if (std::optional<std::u16string> text = markerSelection(*area);
            text && !TextSpace::isBlank(*text)) {
            return text;
        }
        if (isGoogleDocsArea(*area)) {
            if (std::optional<std::u16string> inner = innerTextAreaSelection(area, context)) {
                return inner;
            }
        }
    }
    return std::nullopt;
}

bool isGoogleDocs(const ElementRef& focused) {
    for (const ElementRef& element : TreeQueries::ancestors(focused, ancestorLimit)) {
        if (TreeQueries::hasRole(*element, "AXWebArea") && isGoogleDocsArea(*element)) {
            return true;
        }
    }
    return false;
}

ElementRef webHost(AccessibilityApp& app, ScreenPoint point) {
    AXAnswer<ElementRef> hit = app.elementAtPosition(point);
    if (!hit || !*hit) {
        return nullptr;
    }
    for (const ElementRef& element : TreeQueries::ancestors(*hit, ancestorLimit)) {
        if (TreeQueries::hasRole(*element, "AXWebArea")) {
            return element;
        }
    }
    return nullptr;
}

} // namespace lectorbell::SelectionSources
