#pragma once

#include "lectorbell/ReadingModel.hpp"
#include "lectorbell/UTF16Text.hpp"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lectorbell {

using ProcessID = std::int32_t;

// What the accessibility layer saw in the frontmost application at the moment of the press.
struct SelectionObservation {
    ProcessID frontmostPID = 0;
    // Owner of the focused element, when one could be read.
    std::optional<ProcessID> focusedElementPID;
    // The focused element is a password field.
    bool isSecure = false;
    // The element's selected-text attribute, when it answered.
    std::optional<std::u16string> selectedText;
    // The element's selected-range attribute (UTF-16 offsets), when it answered.
    std::optional<UTF16Range> selectedRange;
    // The text looked up for selectedRange (string for range), when it answered.
    std::optional<std::u16string> textForSelectedRange;
    // E.g. "AXTextField".
    std::optional<std::string> focusedRole;
    // Length of the focused element's whole value, in UTF-16 units.
    std::optional<std::int64_t> focusedValueLength;
    bool pointerOverFocusedElement = false;
    // Selection text found by other means (e.g. in a web page); for the caller, not for decide.
    std::optional<std::u16string> selectionHint;

    friend bool operator==(const SelectionObservation&, const SelectionObservation&) = default;
};

// Whether a press reads the highlight, reads from the pointer, or is refused.
class SelectionDecision {
public:
    enum class Kind { readSelection, refuse, useCursor };

    // Read exactly this text (selection only, from the accessibility selection).
    static SelectionDecision readSelection(std::u16string text);
    // Show the error and read nothing.
    static SelectionDecision refuse(ReadingError error);
    // Ignore the selection; read from the word under the pointer.
    static SelectionDecision useCursor();

    Kind kind() const { return kind_; }
    // The text to read; empty unless kind is readSelection.
    const std::u16string& text() const { return text_; }
    // The refusal; no value unless kind is refuse.
    const std::optional<ReadingError>& error() const { return error_; }

    friend bool operator==(const SelectionDecision&, const SelectionDecision&) = default;

private:
    explicit SelectionDecision(Kind kind)
        : kind_(kind) {}

    Kind kind_;
    std::u16string text_;
    std::optional<ReadingError> error_;
};

namespace SelectionPolicy {

// Roles of fields that hold one line of text.
inline constexpr std::array<std::string_view, 3> singleLineRoles{"AXTextField", "AXComboBox",
                                                                 "AXSearchField"};

// Pure: the first matching rule wins (another process's focus, secure field, a whole single-line
// field selected only because it has focus, selected text, selected range).
SelectionDecision decide(const SelectionObservation& observation);

} // namespace SelectionPolicy

} // namespace lectorbell
