#include "sources/AccessibilityExtractor.hpp"

#include "sources/TextViewReader.hpp"
#include "sources/TreeQueries.hpp"

#include <array>
#include <thread>

namespace lectorbell {

namespace {

constexpr std::size_t chainLimit = 60;
constexpr std::size_t chainTraceLimit = 6;
constexpr std::size_t secureCheckLimit = 3;
constexpr std::size_t textViewChainLimit = 5;
constexpr std::size_t childProbeParents = 3;
constexpr std::size_t childProbeChildren = 50;
constexpr auto hitRetryPause = std::chrono::milliseconds{60};
constexpr auto manualAccessibilityPause = std::chrono::milliseconds{300};

} // namespace

AccessibilityExtractor::AccessibilityExtractor(AccessibilityDesktop& desktop,
                                               ExtractorConfig config, WalkContext context)
    : desktop_(desktop)
    , config_(config)
    , context_(std::move(context)) {}

void AccessibilityExtractor::enableManualAccessibilityIfNeeded(AccessibilityApp& app,
                                                               ProcessID pid) {
    if (manualAXEnabled_.contains(pid)) {
        return;
    }
    manualAXEnabled_.insert(pid);
    if (desktop_.buildsTreeOnRequest(pid) && app.requestManualAccessibility()) {
        std::this_thread::sleep_for(manualAccessibilityPause);
    }
}

AXAnswer<ElementRef> AccessibilityExtractor::hitTest(AccessibilityApp& app, ScreenPoint point) {
    AXAnswer<ElementRef> hit = app.elementAtPosition(point);
    if (!hit && hit.failure() == AXFailure::busy) {
        std::this_thread::sleep_for(hitRetryPause);
        hit = app.elementAtPosition(point);
    }
    if (!hit || !*hit) {
        context_.trace("hit-test AXError " + std::to_string(errorCode(hit.failure())));
        return hit ? AXAnswer<ElementRef>{AXFailure::absent} : hit;
    }
    return hit;
}

CursorOutcome AccessibilityExtractor::extractAtCursor(ProcessID pid, ScreenPoint point,
                                                      bool quick) {
    if (!desktop_.isTrusted()) {
        return {std::nullopt, ReadingError{ReadingError::Kind::accessibilityPermissionNeeded}};
    }
    std::unique_ptr<AccessibilityApp> app = desktop_.application(pid);
    if (!app) {
        context_.trace("cursor: hit-test failed");
        return {};
    }
    quickWalk_ = quick;
    app->allowReadAhead(!quick);
    enableManualAccessibilityIfNeeded(*app, pid);
    CursorOutcome outcome = extractIn(*app, point);
    quickWalk_ = false;
    if (!outcome.error && !outcome.result && app->hasTimedOut()) {
        outcome.error = ReadingError{ReadingError::Kind::appNotResponding};
    }
    return outcome;
}

CursorOutcome AccessibilityExtractor::extractIn(AccessibilityApp& app, ScreenPoint point) {
    AXAnswer<ElementRef> hit = hitTest(app, point);
    if (!hit) {
        context_.trace("cursor: hit-test failed");
        return {};
    }
    std::vector<ElementRef> chain = TreeQueries::ancestors(*hit, chainLimit);
    std::string described;
    for (std::size_t i = 0; i < chain.size() && i < chainTraceLimit; ++i) {
        described += (i == 0 ? "" : " < ") + TreeQueries::describe(*chain[i]);
    }
    context_.trace("cursor: hit chain = " + described);

    for (std::size_t i = 0; i < chain.size() && i < secureCheckLimit; ++i) {
        if (TreeQueries::isSecure(*chain[i])) {
            return {std::nullopt, ReadingError{ReadingError::Kind::secureField}};
        }
    }
    if (app.hasTimedOut()) {
        return {};
    }
    if (std::optional<AXCursorResult> viewed = textViewAround(chain, point)) {
        return {std::move(viewed), std::nullopt};
    }
    ElementRef root = TreeQueries::contentRoot(chain);
    if (!root) {
        context_.trace("cursor: no content root");
        return {};
    }
    context_.trace("cursor: leaf walk under " + TreeQueries::describe(*root));
    std::optional<AXCursorResult> result = readLeaves(*hit, chain, root, point);
    if (result) {
        context_.trace("cursor: leaf walk ok, " +
                       blocksAndPrecision(result->blocks.size(), result->precision));
    } else {
        context_.trace("cursor: leaf walk found nothing");
    }
    return {std::move(result), std::nullopt};
}

std::optional<AXCursorResult>
AccessibilityExtractor::textViewAround(const std::vector<ElementRef>& chain, ScreenPoint point) {
    for (std::size_t i = 0; i < chain.size() && i < textViewChainLimit; ++i) {
        if (std::optional<AXCursorResult> result =
                readTextView(*chain[i], point, config_, context_)) {
            return result;
        }
    }
    // A text area that the hit test passed over, such as an editor inside its scroll area.
    for (std::size_t i = 0; i < chain.size() && i < childProbeParents; ++i) {
        AXAnswer<std::vector<ElementRef>> children = chain[i]->children();
        if (!children) {
            continue;
        }
        for (std::size_t c = 0; c < children->size() && c < childProbeChildren; ++c) {
            const ElementRef& child = (*children)[c];
            if (!TreeQueries::hasRole(*child, "AXTextArea")) {
                continue;
            }
            if (std::optional<AXCursorResult> result =
                    readTextView(*child, point, config_, context_)) {
                return result;
            }
        }
    }
    return std::nullopt;
}

} // namespace lectorbell
