#include "sources/AccessibilityExtractor.hpp"

#include "sources/TextViewReader.hpp"
#include "sources/TreeQueries.hpp"

#include <array>

namespace lectorbell {

namespace {

constexpr std::size_t chainLimit = 60;
constexpr std::size_t chainTraceLimit = 6;
constexpr std::size_t secureCheckLimit = 3;
constexpr std::size_t textViewChainLimit = 5;
constexpr std::size_t childProbeParents = 3;
constexpr std::size_t childProbeChildren = 50;
constexpr auto manualAccessibilityPause = std::chrono::milliseconds{300};

CursorOutcome failed(ReadingError::Kind kind) {
    return {std::nullopt, ReadingError{kind}, false};
}

CursorOutcome found(std::optional<AXCursorResult> result) {
    return {std::move(result), std::nullopt, false};
}

// Puts a lookup's cancel token on the context for the length of the lookup.
class CancelScope {
public:
    CancelScope(WalkContext& context, CancelToken cancel)
        : context_(context) {
        context_.cancel = std::move(cancel);
    }
    ~CancelScope() { context_.cancel = CancelToken{}; }
    CancelScope(const CancelScope&) = delete;
    CancelScope& operator=(const CancelScope&) = delete;

private:
    WalkContext& context_;
};

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
        context_.pause(manualAccessibilityPause);
    }
}

AXAnswer<ElementRef> AccessibilityExtractor::hitTest(AccessibilityApp& app, ScreenPoint point) {
    // No retry: an application that did not answer in time is hung for this lookup, and one
    // that answered "nothing here" says the same again.
    AXAnswer<ElementRef> hit = app.elementAtPosition(point);
    if (!hit || !*hit) {
        context_.trace("hit-test AXError " + std::to_string(errorCode(hit.failure())));
        return hit ? AXAnswer<ElementRef>{AXFailure::absent} : hit;
    }
    return hit;
}

CursorOutcome AccessibilityExtractor::extractAtCursor(ProcessID pid, ScreenPoint point, bool quick,
                                                      CancelToken cancel) {
    CancelScope scope{context_, std::move(cancel)};
    if (!desktop_.isTrusted()) {
        return failed(ReadingError::Kind::accessibilityPermissionNeeded);
    }
    std::unique_ptr<AccessibilityApp> app = desktop_.application(pid);
    if (!app) {
        context_.trace("cursor: hit-test failed");
        return {};
    }
    quickWalk_ = quick;
    app->allowReadAhead(!quick);
    enableManualAccessibilityIfNeeded(*app, pid);
    CursorOutcome outcome = context_.cancelled() ? CursorOutcome{} : extractIn(*app, point);
    quickWalk_ = false;
    // Whatever a cancelled lookup found (or failed on) is stale: the press that wanted it is gone.
    if (context_.cancelled()) {
        context_.trace("cursor: cancelled");
        return {std::nullopt, std::nullopt, true};
    }
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
    std::vector<ElementRef> chain = TreeQueries::ancestors(
        *hit, chainLimit, TreeQueries::StopAt::applicationRole, &context_.cancel);
    if (context_.cancelled()) {
        return {};
    }
    std::string described;
    for (std::size_t i = 0; i < chain.size() && i < chainTraceLimit && !context_.cancelled(); ++i) {
        described += (i == 0 ? "" : " < ") + TreeQueries::describe(*chain[i]);
    }
    context_.trace("cursor: hit chain = " + described);
    if (context_.cancelled()) {
        return {};
    }

    for (std::size_t i = 0; i < chain.size() && i < secureCheckLimit; ++i) {
        if (TreeQueries::isSecure(*chain[i])) {
            return failed(ReadingError::Kind::secureField);
        }
    }
    if (app.hasTimedOut() || context_.cancelled()) {
        return {};
    }
    if (std::optional<AXCursorResult> viewed = textViewAround(chain, point)) {
        return found(std::move(viewed));
    }
    if (context_.cancelled()) {
        return {};
    }
    ElementRef root = TreeQueries::contentRoot(chain);
    if (!root) {
        context_.trace("cursor: no content root");
        return {};
    }
    context_.trace("cursor: leaf walk under " + TreeQueries::describe(*root));
    std::optional<AXCursorResult> result = readLeaves(*hit, chain, root, point);
    if (context_.cancelled()) {
        return {};
    }
    if (result) {
        context_.trace("cursor: leaf walk ok, " +
                       blocksAndPrecision(result->blocks.size(), result->precision));
    } else {
        context_.trace("cursor: leaf walk found nothing");
    }
    return found(std::move(result));
}

std::optional<AXCursorResult>
AccessibilityExtractor::textViewAround(const std::vector<ElementRef>& chain, ScreenPoint point) {
    for (std::size_t i = 0; i < chain.size() && i < textViewChainLimit && !context_.cancelled();
         ++i) {
        if (std::optional<AXCursorResult> result =
                readTextView(*chain[i], point, config_, context_)) {
            return result;
        }
    }
    // A text area that the hit test passed over, such as an editor inside its scroll area.
    for (std::size_t i = 0; i < chain.size() && i < childProbeParents && !context_.cancelled();
         ++i) {
        AXAnswer<std::vector<ElementRef>> children = chain[i]->children();
        if (!children) {
            continue;
        }
        for (std::size_t c = 0;
             c < children->size() && c < childProbeChildren && !context_.cancelled(); ++c) {
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
