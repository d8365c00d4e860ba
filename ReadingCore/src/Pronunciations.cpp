#include "lectorbell/Pronunciations.hpp"

#include "CompiledPronunciations.hpp"

#include <atomic>
#include <memory>

namespace lectorbell::Pronunciations {

namespace {

struct ActiveList {
    std::vector<PronunciationRule> rules;
    detail::CompiledPronunciations compiled;
};

// Written by the settings, read wherever speech is prepared: the whole list is swapped at once.
std::atomic<std::shared_ptr<const ActiveList>>& active() {
    static std::atomic<std::shared_ptr<const ActiveList>> list{
        std::make_shared<const ActiveList>()};
    return list;
}

} // namespace

std::vector<PronunciationRule> rules() {
    return active().load()->rules;
}

void setRules(std::vector<PronunciationRule> rules) {
    auto next = std::make_shared<ActiveList>();
    next->compiled = detail::CompiledPronunciations{rules};
    next->rules = std::move(rules);
    active().store(std::move(next));
}

std::u16string apply(std::u16string_view text) {
    return active().load()->compiled.apply(text);
}

std::u16string apply(std::u16string_view text, const std::vector<PronunciationRule>& rules) {
    return detail::CompiledPronunciations{rules}.apply(text);
}

} // namespace lectorbell::Pronunciations
