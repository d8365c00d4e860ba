#pragma once

#include "lectorbell/ListeningStats.hpp"

#include <optional>
#include <string>

namespace lectorbell::coordinator {

// What a problem report tells about the last reading.
struct LastReading {
    Date date;
    std::string appName;
    std::optional<std::string> bundleID;
    // "highlight" when the payload came from a selection, "mouse" otherwise.
    std::string mode = "mouse";
    // How the text was found.
    std::string origin;
    std::optional<std::string> firstSentence;
    std::optional<std::string> site;
};

} // namespace lectorbell::coordinator
