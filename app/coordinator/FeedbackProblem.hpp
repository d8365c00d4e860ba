#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace lectorbell::coordinator {

// What went wrong, as the report form offers it ("What went wrong?").
enum class FeedbackProblem {
    readInterface,
    skippedText,
    wrongStart,
    readPastHighlight,
    mispronounced,
    tooSlow,
    other,
};

inline constexpr std::array<FeedbackProblem, 7> allFeedbackProblems{
    FeedbackProblem::readInterface, FeedbackProblem::skippedText,
    FeedbackProblem::wrongStart,    FeedbackProblem::readPastHighlight,
    FeedbackProblem::mispronounced, FeedbackProblem::tooSlow,
    FeedbackProblem::other,
};

// "read-interface", "skipped-text", …
std::string_view rawValue(FeedbackProblem problem);
std::optional<FeedbackProblem> feedbackProblemFromRawValue(std::string_view raw);
// The form's label: "It read menus, buttons or ads", …
std::string_view label(FeedbackProblem problem);

} // namespace lectorbell::coordinator
