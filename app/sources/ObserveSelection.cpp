#include "lectorbell/Utf8.hpp"
#include "sources/AccessibilityExtractor.hpp"
#include "sources/SelectionSources.hpp"
#include "sources/TextSpace.hpp"
#include "sources/TreeQueries.hpp"

namespace lectorbell {

namespace {

bool isBlank(const std::optional<std::u16string>& text) {
    return !text || TextSpace::isBlank(*text);
}

std::string chars(std::size_t length) {
    return "(" + std::to_string(length) + " chars)";
}

} // namespace

SelectionLookup AccessibilityExtractor::observeSelection(ProcessID frontPID, ScreenPoint point) {
    SelectionLookup lookup;
    SelectionObservation& observation = lookup.observation;
    observation.frontmostPID = frontPID;
    if (!desktop_.isTrusted()) {
        return lookup;
    }
    std::unique_ptr<AccessibilityApp> app = desktop_.application(frontPID);
    if (!app) {
        return lookup;
    }
    AXAnswer<ElementRef> focusedAnswer = app->focusedElement();
    if (!focusedAnswer || !*focusedAnswer) {
        return lookup;
    }
    ElementRef focused = *focusedAnswer;
    observation.focusedElementPID = focused->processID().optional();
    if (TreeQueries::isSecure(*focused)) {
        // Nothing of a password field is read: only the fact that it is one.
        observation.isSecure = true;
        return lookup;
    }
    observation.selectedText = focused->selectedText().optional();
    observation.selectedRange = focused->selectedTextRange().optional();
    if (observation.selectedRange && observation.selectedRange->length >= 1) {
        observation.textForSelectedRange =
            focused->stringForRange(*observation.selectedRange).optional();
    }
    observation.focusedRole = focused->role().optional();
    if (AXAnswer<std::int64_t> count = focused->numberOfCharacters()) {
        observation.focusedValueLength = *count;
    } else if (AXAnswer<std::u16string> value = focused->value()) {
        observation.focusedValueLength = static_cast<std::int64_t>(value->size());
    }
    if (AXAnswer<ScreenRect> frame = focused->frame()) {
        observation.pointerOverFocusedElement = frame->contains(point);
    }
    if (!isBlank(observation.selectedText) || !isBlank(observation.textForSelectedRange)) {
        return lookup;
    }

    // Text found by other means stands in for the selection, without the range fields.
    auto selectionOnly = [&](std::u16string text) {
        observation.selectedText = text;
        observation.selectionHint = std::move(text);
        observation.selectedRange.reset();
        observation.textForSelectedRange.reset();
        return lookup;
    };
    if (std::optional<std::u16string> marked = SelectionSources::markerSelection(*focused);
        !isBlank(marked)) {
        context_.trace("selection: found via text markers on the focused element " +
                       chars(marked->size()));
        return selectionOnly(std::move(*marked));
    }
    if (std::optional<std::u16string> page =
            SelectionSources::webPageSelection(*app, focused, point, frontPID, context_)) {
        context_.trace("selection: found in web page content " + chars(page->size()));
        return selectionOnly(std::move(*page));
    }
    if (SelectionSources::isGoogleDocs(focused)) {
        std::string line = "google docs: focused " + observation.focusedRole.value_or("");
        line += std::string{", AXSelectedText="} +
                (focused->attributeNames().contains("AXSelectedText") ? "true" : "false");
        line += std::string{", markers="} +
                (focused->parameterizedNames().contains("AXStringForTextMarkerRange") ? "true"
                                                                                      : "false");
        line += ", value=" + std::to_string(observation.focusedValueLength.value_or(0)) + " chars";
        context_.trace(line);
        lookup.googleDocsHint = std::string{SelectionSources::googleDocsHint};
    }
    return lookup;
}

} // namespace lectorbell
