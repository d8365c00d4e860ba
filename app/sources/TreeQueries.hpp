#pragma once

#include "platform/AccessibilityElement.hpp"
#include "platform/CancelToken.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace lectorbell::TreeQueries {

enum class StopAt { applicationRole, missingParentOnly };

// The element followed by its parent chain, at most `max` elements. With StopAt::applicationRole
// the chain also ends after the element whose role is "AXApplication". A cancelled lookup stops
// climbing (the chain so far is returned).
std::vector<ElementRef> ancestors(const ElementRef& element, std::size_t max,
                                  StopAt stop = StopAt::applicationRole,
                                  const CancelToken* cancel = nullptr);

// Role and subrole, the present ones joined with "/".
std::string describe(AccessibilityElement& element);

// A password field, by role or subrole.
bool isSecure(AccessibilityElement& element);

// The element that bounds the leaf walk: a landmark, a web area, else the first scroll area
// below the window.
ElementRef contentRoot(const std::vector<ElementRef>& chain);

bool hasRole(AccessibilityElement& element, std::string_view role);

// Whether `element` is one of `list`, by platform identity.
bool containsElement(const std::vector<ElementRef>& list, const AccessibilityElement& element);

} // namespace lectorbell::TreeQueries
