#include "sources/TreeQueries.hpp"

#include "sources/AXVocabulary.hpp"

namespace lectorbell::TreeQueries {

std::vector<ElementRef> ancestors(const ElementRef& element, std::size_t max, StopAt stop,
                                  const CancelToken* cancel) {
    std::vector<ElementRef> chain;
    ElementRef current = element;
    while (current && chain.size() < max && !(cancel && cancel->cancelled())) {
        chain.push_back(current);
        if (stop == StopAt::applicationRole && hasRole(*current, "AXApplication")) {
            break;
        }
        AXAnswer<ElementRef> parent = current->parent();
        if (!parent || !*parent) {
            break;
        }
        current = *parent;
    }
    return chain;
}

std::string describe(AccessibilityElement& element) {
    AXAnswer<std::string> role = element.role();
    AXAnswer<std::string> subrole = element.subrole();
    std::string text = role ? *role : std::string{};
    if (subrole && !subrole->empty()) {
        text += text.empty() ? *subrole : "/" + *subrole;
    }
    return text;
}

bool isSecure(AccessibilityElement& element) {
    AXAnswer<std::string> role = element.role();
    if (role && *role == AXVocabulary::secureTextField) {
        return true;
    }
    AXAnswer<std::string> subrole = element.subrole();
    return subrole && *subrole == AXVocabulary::secureTextField;
}

ElementRef contentRoot(const std::vector<ElementRef>& chain) {
    ElementRef fallback;
    for (const ElementRef& element : chain) {
        std::optional<std::string> role = element->role().optional();
        std::optional<std::string> subrole = element->subrole().optional();
        if (AXVocabulary::contains(AXVocabulary::landmarkRoots, subrole) || role == "AXWebArea") {
            return element;
        }
        if (role == "AXScrollArea" && !fallback) {
            fallback = element;
        }
        if (role == "AXWindow") {
            return fallback;
        }
    }
    return fallback;
}

bool hasRole(AccessibilityElement& element, std::string_view role) {
    AXAnswer<std::string> answer = element.role();
    return answer && *answer == role;
}

bool containsElement(const std::vector<ElementRef>& list, const AccessibilityElement& element) {
    for (const ElementRef& candidate : list) {
        if (candidate->isSame(element)) {
            return true;
        }
    }
    return false;
}

} // namespace lectorbell::TreeQueries
