#include "sources/GoogleDocsAreas.hpp"

#include "sources/TreeQueries.hpp"

#include <algorithm>
#include <deque>
#include <functional>

namespace lectorbell::GoogleDocsAreas {

namespace {

constexpr std::size_t ancestorLimit = 40;
constexpr std::size_t searchNodes = 5000;
constexpr double usableSide = 200;
constexpr double toolbarHeight = 130;

struct Search {
    std::vector<ElementRef> chain;
    ElementRef webArea;
};

Search focusedWebArea(AccessibilityApp& app) {
    Search search;
    AXAnswer<ElementRef> focused = app.focusedElement();
    if (!focused || !*focused) {
        return search;
    }
    search.chain = TreeQueries::ancestors(*focused, ancestorLimit);
    for (const ElementRef& element : search.chain) {
        if (TreeQueries::hasRole(*element, "AXWebArea")) {
            search.webArea = element;
            break;
        }
    }
    return search;
}

// Breadth first through the web area; stops at the first element `match` accepts.
std::size_t visit(const ElementRef& root, const std::function<bool(AccessibilityElement&)>& match) {
    std::deque<ElementRef> pending{root};
    std::size_t visited = 0;
    while (!pending.empty() && visited < searchNodes) {
        ElementRef element = pending.front();
        pending.pop_front();
        ++visited;
        if (match(*element)) {
            break;
        }
        if (AXAnswer<std::vector<ElementRef>> children = element->children()) {
            pending.insert(pending.end(), children->begin(), children->end());
        }
    }
    return visited;
}

bool hasClass(AccessibilityElement& element, std::string_view name) {
    AXAnswer<std::vector<std::string>> classes = element.domClassList();
    return classes && std::find(classes->begin(), classes->end(), name) != classes->end();
}

std::string frameText(const std::optional<ScreenRect>& frame) {
    if (!frame) {
        return "none";
    }
    return traceNumber(frame->x()) + "," + traceNumber(frame->y()) + " " +
           traceNumber(frame->width()) + "x" + traceNumber(frame->height());
}

} // namespace

std::optional<ScreenRect> editorFrame(AccessibilityApp& app, const WalkContext& context) {
    Search search = focusedWebArea(app);
    std::optional<ScreenRect> frame;
    std::string how;
    std::size_t visited = 0;
    if (search.webArea) {
        visited = visit(search.webArea, [&](AccessibilityElement& element) {
            for (std::string_view name : {"kix-appview-editor", "kix-appview-editor-container"}) {
                AXAnswer<std::string> id = element.domIdentifier();
                if (id && *id == name) {
                    how = "id " + std::string{name};
                } else if (hasClass(element, name)) {
                    how = "class " + std::string{name};
                } else {
                    continue;
                }
                frame = element.frame().optional();
                return true;
            }
            return false;
        });
    }
    if (frame && frame->width() >= usableSide && frame->height() >= usableSide) {
        context.trace("google docs: editor area " + frameText(frame) +
                      " at y=" + traceNumber(frame->y()) + " via " + how + " (" +
                      std::to_string(visited) + " nodes)");
        return frame;
    }
    context.trace("google docs: editor area not usable (" + frameText(frame) +
                  "); using whole window");
    for (const ElementRef& element : search.chain) {
        if (TreeQueries::hasRole(*element, "AXWindow")) {
            if (AXAnswer<ScreenRect> window = element->frame()) {
                return ScreenRect{window->x(), window->y() + toolbarHeight, window->width(),
                                  std::max(0.0, window->height() - toolbarHeight)};
            }
        }
    }
    return std::nullopt;
}

std::vector<ScreenRect> pageFrames(AccessibilityApp& app, const WalkContext& context) {
    Search search = focusedWebArea(app);
    std::vector<ScreenRect> pages;
    std::size_t visited = 0;
    if (search.webArea) {
        visited = visit(search.webArea, [&](AccessibilityElement& element) {
            if (hasClass(element, "kix-page-paginated")) {
                if (AXAnswer<ScreenRect> frame = element.frame();
                    frame && frame->width() > 0 && frame->height() > 0) {
                    pages.push_back(*frame);
                }
            }
            return false;
        });
    }
    context.trace(std::to_string(pages.size()) + " visible page(s) found (" +
                  std::to_string(visited) + " nodes)");
    return pages;
}

} // namespace lectorbell::GoogleDocsAreas
