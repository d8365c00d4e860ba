#pragma once

#include <string>
#include <vector>

namespace lectorbell::platform::espeak {

// The user's preferred languages as BCP-47 tags, most preferred first (from LANGUAGE, LC_ALL,
// LC_MESSAGES and LANG, through QLocale); empty for the "C" and "POSIX" locales.
std::vector<std::string> preferredLanguages();

} // namespace lectorbell::platform::espeak
