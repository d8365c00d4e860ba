#include "lectorbell/SelectionPolicy.hpp"

#include <algorithm>
#include <unicode/uchar.h>
#include <unicode/utf16.h>
#include <utility>

namespace lectorbell {

SelectionDecision SelectionDecision::readSelection(std::u16string text) {
    SelectionDecision decision{Kind::readSelection};
    decision.text_ = std::move(text);
    return decision;
}

SelectionDecision SelectionDecision::refuse(ReadingError error) {
    SelectionDecision decision{Kind::refuse};
    decision.error_ = std::move(error);
    return decision;
}

SelectionDecision SelectionDecision::useCursor() {
    return SelectionDecision{Kind::useCursor};
}

namespace SelectionPolicy {

namespace {

// Nothing left after trimming whitespace and line breaks (the Unicode White_Space property).
bool isBlank(std::u16string_view text) {
    const std::size_t length = text.size();
    std::size_t i = 0;
    while (i < length) {
        UChar32 c = 0;
        U16_NEXT(text.data(), i, length, c);
        if (u_isUWhiteSpace(c) == 0) {
            return false;
        }
    }
    return true;
}

bool hasText(const std::optional<std::u16string>& text) {
    return text && !isBlank(*text);
}

bool isSingleLineRole(const std::optional<std::string>& role) {
    return role && std::find(singleLineRoles.begin(), singleLineRoles.end(), *role) !=
                       singleLineRoles.end();
}

// A single-line field (a search field, say) whose whole value is selected only because it has
// focus: a press aimed at other text must not read it. Deliberately an exception to the rules
// that follow.
bool isWholeFieldSelectedByFocus(const SelectionObservation& seen) {
    if (!isSingleLineRole(seen.focusedRole) || seen.pointerOverFocusedElement ||
        !seen.selectedRange || !seen.focusedValueLength) {
        return false;
    }
    const std::int64_t valueLength = *seen.focusedValueLength;
    return valueLength >= 1 && seen.selectedRange->location == 0 &&
           seen.selectedRange->length >= valueLength;
}

} // namespace

SelectionDecision decide(const SelectionObservation& seen) {
    // Focus owned by another process: its selection is not the user's current one.
    if (!seen.focusedElementPID || *seen.focusedElementPID != seen.frontmostPID) {
        return SelectionDecision::useCursor();
    }
    if (seen.isSecure) {
        return SelectionDecision::refuse(ReadingError{ReadingError::Kind::secureField});
    }
    if (isWholeFieldSelectedByFocus(seen)) {
        return SelectionDecision::useCursor();
    }
    if (hasText(seen.selectedText)) {
        return SelectionDecision::readSelection(*seen.selectedText);
    }
    if (seen.selectedRange) {
        const UTF16Range range = *seen.selectedRange;
        if (range.location == UTF16Range::notFound || range.length < 1) {
            return SelectionDecision::useCursor();
        }
        const auto& rangeText = seen.textForSelectedRange;
        if (hasText(rangeText) && range.length >= static_cast<std::int64_t>(rangeText->size())) {
            return SelectionDecision::readSelection(*rangeText);
        }
        if (!seen.selectedText) {
            if (rangeText) {
                return SelectionDecision::useCursor();
            }
            return SelectionDecision::refuse(
                ReadingError{ReadingError::Kind::selectionUnsupported});
        }
    }
    return SelectionDecision::useCursor();
}

} // namespace SelectionPolicy

} // namespace lectorbell
