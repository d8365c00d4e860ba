#include "cli/ShapingOptions.hpp"

#include "lectorbell/Pronunciations.hpp"
#include "lectorbell/SpeechCleanup.hpp"

#include <fstream>
#include <iterator>
#include <ostream>

namespace lectorbell::cli {

void addShapingOptions(CLI::App& verb, ShapingOptions& options) {
    verb.add_flag("--no-cleanup", options.noCleanup,
                  "Keep symbols, emoji and formatting marks (cleanup switch off)");
    verb.add_option("--rules", options.rulesPath,
                    "Pronunciation rules: a JSON array of {\"id\", \"word\", \"sayAs\"}");
}

bool applyShapingOptions(const ShapingOptions& options, std::ostream& err) {
    SpeechCleanup::enabled = !options.noCleanup;
    if (options.rulesPath.empty()) {
        return true;
    }
    std::ifstream file{options.rulesPath, std::ios::binary};
    if (!file) {
        err << "lectorbell: cannot read rules file " << options.rulesPath << '\n';
        return false;
    }
    std::string json{std::istreambuf_iterator<char>{file}, std::istreambuf_iterator<char>{}};
    std::string whyNot;
    auto rules = decodePronunciationRules(json, &whyNot);
    if (!rules) {
        err << "lectorbell: invalid rules file " << options.rulesPath << ": " << whyNot << '\n';
        return false;
    }
    Pronunciations::setRules(std::move(*rules));
    return true;
}

} // namespace lectorbell::cli
