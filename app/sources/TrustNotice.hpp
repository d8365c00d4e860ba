#pragma once

#include "platform/AccessibilityApp.hpp"

#include <optional>
#include <string>

namespace lectorbell {

// What to tell the user after asking for the desktop's accessibility: said once, when the
// switch was actually turned on, naming the applications to restart. Nothing when it was on.
std::optional<std::string> trustNotice(const AccessibilityGrant& grant);

} // namespace lectorbell
