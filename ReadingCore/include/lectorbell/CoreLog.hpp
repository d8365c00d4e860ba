#pragma once

#include <functional>
#include <string_view>

namespace lectorbell {

// Where the reading core's log lines go. Lines carry metadata only (sizes, counts, rule names),
// never the text being read. The application routes them into its own logging; until it does,
// they go to standard error.
using CoreLogSink = std::function<void(std::string_view category, std::string_view message)>;

// Replaces the process-wide sink; an empty function restores the standard-error default.
void setCoreLogSink(CoreLogSink sink);

// Writes one line through the current sink. Safe from any thread.
void coreLog(std::string_view category, std::string_view message);

} // namespace lectorbell
