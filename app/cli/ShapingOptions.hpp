#pragma once

#include <CLI/CLI.hpp>
#include <iosfwd>
#include <string>

namespace lectorbell::cli {

// The speech shaping switches that several verbs share.
struct ShapingOptions {
    bool noCleanup = false;
    std::string rulesPath;
};

// Adds --no-cleanup and --rules RULES.json.
void addShapingOptions(CLI::App& verb, ShapingOptions& options);
// Sets the process-wide cleanup switch and pronunciation rules; false (after an error line on
// `err`) when the rules file cannot be read or parsed.
bool applyShapingOptions(const ShapingOptions& options, std::ostream& err);

} // namespace lectorbell::cli
