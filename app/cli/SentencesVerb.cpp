#include "cli/VerbIO.hpp"
#include "cli/Verbs.hpp"
#include "lectorbell/TextSegmenter.hpp"
#include "lectorbell/Utf8.hpp"

#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

namespace lectorbell::cli {

namespace {

int runSentences(const std::string& input) {
    std::optional<std::u16string> text = readTextInput(input, std::cerr);
    if (!text) {
        return 1;
    }
    for (const TextSegmenter::Sentence& sentence : TextSegmenter::sentencesWithRanges(*text)) {
        std::cout << jsonLine({{"start", sentence.range.location},
                               {"length", sentence.range.length},
                               {"text", toUtf8(sentence.text)}})
                  << '\n';
    }
    return 0;
}

} // namespace

void addSentencesVerb(CLI::App& app, VerbOutcome& outcome) {
    auto input = std::make_shared<std::string>("-");
    CLI::App* verb = app.add_subcommand("sentences", "Print the sentences of a text (JSON Lines)");
    verb->add_option("FILE", *input, "UTF-8 text, or - for standard input");
    verb->callback([input, &outcome] { outcome.exitStatus = runSentences(*input); });
}

} // namespace lectorbell::cli
