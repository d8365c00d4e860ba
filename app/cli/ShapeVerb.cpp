#include "cli/ShapingOptions.hpp"
#include "cli/VerbIO.hpp"
#include "cli/Verbs.hpp"
#include "lectorbell/NumberSpeech.hpp"
#include "lectorbell/Pronunciations.hpp"
#include "lectorbell/SpeechCleanup.hpp"
#include "lectorbell/Utf8.hpp"

#include <iostream>
#include <memory>

namespace lectorbell::cli {

namespace {

struct ShapeOptions {
    ShapingOptions shaping;
    std::string input = "-";
};

std::u16string shaped(std::u16string_view line) {
    std::u16string text = SpeechCleanup::clean(line);
    text = NumberSpeech::normalize(text);
    return Pronunciations::apply(text);
}

int runShape(const ShapeOptions& options) {
    if (!applyShapingOptions(options.shaping, std::cerr)) {
        return 2;
    }
    std::optional<std::u16string> text = readTextInput(options.input, std::cerr);
    if (!text) {
        return 1;
    }
    std::u16string_view rest = *text;
    std::string out;
    while (!rest.empty()) {
        std::size_t end = std::min(rest.find(u'\n'), rest.size());
        std::u16string_view line = rest.substr(0, end);
        if (line.ends_with(u'\r')) {
            line.remove_suffix(1);
        }
        out.append(toUtf8(shaped(line))).push_back('\n');
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    std::cout << out << std::flush;
    return 0;
}

} // namespace

void addShapeVerb(CLI::App& app, VerbOutcome& outcome) {
    auto options = std::make_shared<ShapeOptions>();
    CLI::App* verb = app.add_subcommand(
        "shape", "Print each line of a text as it will be spoken: cleanup, numbers in words, "
                 "then pronunciation rules");
    addShapingOptions(*verb, options->shaping);
    verb->add_option("FILE", options->input, "UTF-8 text, or - for standard input");
    verb->callback([options, &outcome] { outcome.exitStatus = runShape(*options); });
}

} // namespace lectorbell::cli
