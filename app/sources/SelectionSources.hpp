#pragma once

#include "platform/AccessibilityApp.hpp"
#include "sources/WalkContext.hpp"

#include <optional>
#include <string>

namespace lectorbell::SelectionSources {

// The host part of a Google Docs document address.
inline constexpr std::string_view googleDocsDocument = "docs.google.com/document";

inline constexpr std::string_view googleDocsHint =
    "Google Docs hides highlighted text from reading apps until you turn on its screen reader "
    "support: in the Doc press \u2318\u2325Z (or Tools \u203A Accessibility \u203A Turn on screen "
    "reader support), then also tick \u201CTurn on braille support\u201D in Tools \u203A "
    "Accessibility.";

// The element's selection through text markers, where it offers them.
std::optional<std::u16string> markerSelection(AccessibilityElement& element);

// The selection of the web page that holds the focused element or the element at the point.
std::optional<std::u16string> webPageSelection(AccessibilityApp& app, const ElementRef& focused,
                                               ScreenPoint point, ProcessID pid,
                                               const WalkContext& context);

bool isGoogleDocs(const ElementRef& focused);

// The web area under the pointer.
ElementRef webHost(AccessibilityApp& app, ScreenPoint point);

} // namespace lectorbell::SelectionSources
