#pragma once

#include "sources/AccessibilityExtractor.hpp"

#include <iosfwd>
#include <string>
#include <vector>

namespace lectorbell::cli {

// What one probe found, for printing.
struct ProbeReport {
    std::optional<ProcessID> pid;
    CursorOutcome cursor;
    std::optional<SelectionLookup> selection;
    std::optional<SelectionDecision> decision;
    // Why nothing could be read, when the application itself is the reason.
    std::optional<std::string> notice;
    std::vector<std::string> trace;
    double milliseconds = 0;
};

void printProbeText(const ProbeReport& report, std::ostream& out);
void printProbeJson(const ProbeReport& report, std::ostream& out);

} // namespace lectorbell::cli
