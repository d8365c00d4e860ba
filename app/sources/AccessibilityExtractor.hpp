#pragma once

#include "lectorbell/ReadingModel.hpp"
#include "lectorbell/SelectionPolicy.hpp"
#include "platform/AccessibilityApp.hpp"
#include "sources/AXCursorResult.hpp"
#include "sources/ExtractorConfig.hpp"
#include "sources/WalkContext.hpp"

#include <optional>
#include <set>

namespace lectorbell {

// The text at the pointer: a result, nothing readable (the caller falls back to OCR), an error
// for the user, or a lookup cancelled on the way (neither result nor error).
struct CursorOutcome {
    std::optional<AXCursorResult> result;
    std::optional<ReadingError> error;
    bool cancelled = false;
};

// What is highlighted in the frontmost application, and the Google Docs hint to show when
// nothing else is read there.
struct SelectionLookup {
    SelectionObservation observation;
    std::optional<std::string> googleDocsHint;
};

// Turns "what is written at this point of that application" into the text to read, using only
// the application's accessibility tree. Not thread-safe: every call runs on one worker thread
// (AccessibilityWorker), one lookup at a time.
class AccessibilityExtractor {
public:
    AccessibilityExtractor(AccessibilityDesktop& desktop, ExtractorConfig config,
                           WalkContext context);

    // Stops between calls into the application once `cancel` is cancelled, and then gives
    // neither result nor error (one trace line says so).
    CursorOutcome extractAtCursor(ProcessID pid, ScreenPoint point, bool quick,
                                  CancelToken cancel = {});

    // What is highlighted in the frontmost application.
    SelectionLookup observeSelection(ProcessID frontPID, ScreenPoint point);

    // The deepest element at the point.
    AXAnswer<ElementRef> hitTest(AccessibilityApp& app, ScreenPoint point);

    const WalkContext& context() const { return context_; }

private:
    CursorOutcome extractIn(AccessibilityApp& app, ScreenPoint point);
    std::optional<AXCursorResult> textViewAround(const std::vector<ElementRef>& chain,
                                                 ScreenPoint point);
    std::optional<AXCursorResult> readLeaves(const ElementRef& hit,
                                             const std::vector<ElementRef>& chain, ElementRef root,
                                             ScreenPoint point);
    void enableManualAccessibilityIfNeeded(AccessibilityApp& app, ProcessID pid);

    AccessibilityDesktop& desktop_;
    ExtractorConfig config_;
    WalkContext context_;
    bool quickWalk_ = false;
    std::set<ProcessID> manualAXEnabled_;
};

} // namespace lectorbell
