#include "coordinator/FeedbackProblem.hpp"

namespace lectorbell::coordinator {

namespace {

struct Names {
    std::string_view raw;
    std::string_view label;
};

constexpr std::array<Names, 7> names{{
    {"read-interface", "It read menus, buttons or ads"},
    {"skipped-text", "It skipped some of the text"},
    {"wrong-start", "It started in the wrong place"},
    {"read-past-highlight", "It read more than my highlight"},
    {"mispronounced", "It said a word wrong"},
    {"too-slow", "It took too long to start"},
    {"other", "Something else"},
}};

} // namespace

std::string_view rawValue(FeedbackProblem problem) {
    return names.at(static_cast<std::size_t>(problem)).raw;
}

std::optional<FeedbackProblem> feedbackProblemFromRawValue(std::string_view raw) {
    for (FeedbackProblem problem : allFeedbackProblems) {
        if (rawValue(problem) == raw) {
            return problem;
        }
    }
    return std::nullopt;
}

std::string_view label(FeedbackProblem problem) {
    return names.at(static_cast<std::size_t>(problem)).label;
}

} // namespace lectorbell::coordinator
