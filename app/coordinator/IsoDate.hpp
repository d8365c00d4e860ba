#pragma once

#include "lectorbell/ListeningStats.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace lectorbell::coordinator {

// Dates in stored data: ISO 8601 in UTC with milliseconds, "2026-03-07T10:15:00.250Z".
std::string isoDate(Date date);
// That form, with or without the milliseconds; no value for anything else.
std::optional<Date> parseIsoDate(std::string_view text);

} // namespace lectorbell::coordinator
