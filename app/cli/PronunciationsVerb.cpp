// `lectorbell pronunciations list|add WORD SAYAS|remove WORD|import FILE|export [FILE]|
// refresh-shared [--force]`: the user's own pronunciation fixes, and the shared ones.

#include "cli/Stores.hpp"
#include "cli/VerbSupport.hpp"
#include "cli/Verbs.hpp"
#include "coordinator/Feedback.hpp"
#include "coordinator/PronunciationList.hpp"
#include "coordinator/ReadingSettings.hpp"
#include "lectorbell/Utf8.hpp"

#include <QFile>
#include <QSaveFile>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

namespace lectorbell::cli {

namespace {

using coordinator::Feedback;
using coordinator::ReadingSettings;
namespace List = coordinator::PronunciationList;

// A rules file larger than this is not a list of fixes.
constexpr qint64 largestImport = 64LL * 1024 * 1024;

struct PronunciationArgs {
    bool json = false;
    bool shared = false;
    bool force = false;
    std::string word;
    std::string sayAs;
    std::string path;
};

int listRules(platform::Platform& platform, const PronunciationArgs& args) {
    Stores stores = makeStores(platform);
    ReadingSettings settings{*stores.settings};
    const std::vector<PronunciationRule>& rules =
        args.shared ? settings.sharedPronunciations() : settings.pronunciations();
    if (args.json) {
        std::cout << nlohmann::ordered_json::parse(encodePronunciationRules(rules)).dump(2) << '\n';
        return 0;
    }
    if (rules.empty()) {
        std::cout << (args.shared ? "No shared fixes.\n" : "No pronunciation fixes.\n");
    }
    for (const PronunciationRule& rule : rules) {
        std::cout << toUtf8(rule.word) << " → " << toUtf8(rule.sayAs) << '\n';
    }
    return 0;
}

// Offers a new fix to everyone when the user chose to share, waiting for the server's answer.
void share(ReadingSettings& settings, platform::SettingsStore& store,
           const PronunciationRule& rule) {
    if (!settings.sharePronunciations()) {
        return;
    }
    Feedback feedback{store, coordinator::feedbackServer(), LECTORBELL_VERSION};
    if (!feedback.available()) {
        return;
    }
    waitFor<bool>([&](std::function<void(bool)> done) { feedback.suggest(rule, std::move(done)); });
}

int addRule(platform::Platform& platform, const PronunciationArgs& args) {
    if (args.word.empty() || args.sayAs.empty()) {
        return refuse("pronunciations add: give the word and what to say, e.g. SQL sequel");
    }
    PronunciationRule rule{Uuid::random(), fromUtf8(args.word), fromUtf8(args.sayAs)};
    if (std::optional<std::string> why = List::whyRefused(rule)) {
        return refuse("pronunciations add: " + *why);
    }
    Stores stores = makeStores(platform);
    ReadingSettings settings{*stores.settings};
    std::vector<PronunciationRule> rules = settings.pronunciations();
    const std::size_t before = rules.size();
    List::Placement placement = List::put(rules, rule);
    if (placement == List::Placement::added && before >= List::mostRules) {
        return refuse("pronunciations add: the list already holds " +
                      std::to_string(List::mostRules) + " fixes");
    }
    settings.setPronunciations(std::move(rules));
    std::cout << (placement == List::Placement::added ? "Added " : "Replaced ") << args.word
              << " → " << args.sayAs << '\n';
    share(settings, *stores.settings, rule);
    return 0;
}

int removeRule(platform::Platform& platform, const PronunciationArgs& args) {
    if (args.word.empty()) {
        return refuse("pronunciations remove: give the word");
    }
    Stores stores = makeStores(platform);
    ReadingSettings settings{*stores.settings};
    std::vector<PronunciationRule> rules = settings.pronunciations();
    if (List::remove(rules, fromUtf8(args.word)) == 0) {
        std::cerr << "lectorbell: no fix for " << args.word << '\n';
        return exitFailed;
    }
    settings.setPronunciations(std::move(rules));
    std::cout << "Removed " << args.word << '\n';
    return 0;
}

int importRules(platform::Platform& platform, const PronunciationArgs& args) {
    if (args.path.empty()) {
        return refuse("pronunciations import: give the file to import");
    }
    QFile file{QString::fromStdString(args.path)};
    if (!file.open(QIODevice::ReadOnly)) {
        return refuse("pronunciations import: cannot read " + args.path);
    }
    if (file.size() > largestImport) {
        return refuse("pronunciations import: " + args.path +
                      " is too large to be a list of fixes");
    }
    QByteArray bytes = file.readAll();
    Stores stores = makeStores(platform);
    ReadingSettings settings{*stores.settings};
    std::vector<PronunciationRule> rules = settings.pronunciations();
    std::string whyNot;
    std::optional<List::ImportReport> report = List::import(
        rules, std::string_view{bytes.constData(), static_cast<std::size_t>(bytes.size())},
        &whyNot);
    if (!report) {
        return refuse("pronunciations import: " + args.path + " is " + whyNot +
                      R"(; expected a JSON array of {"word", "sayAs"})");
    }
    settings.setPronunciations(std::move(rules));
    std::size_t refused = report->refused.size() + report->refusedAsFull;
    std::cout << "Added " << report->added << ", replaced " << report->replaced << ", refused "
              << refused << ".\n";
    for (const List::Refusal& refusal : report->refused) {
        std::cout << "  rule " << refusal.index << ": " << refusal.reason << '\n';
    }
    if (report->refusedAsFull > 0) {
        std::cout << "  " << report->refusedAsFull << " new words from rule "
                  << report->firstRefusedAsFull << " on: the list already holds " << List::mostRules
                  << " fixes\n";
    }
    return 0;
}

int exportRules(platform::Platform& platform, const PronunciationArgs& args) {
    Stores stores = makeStores(platform);
    ReadingSettings settings{*stores.settings};
    std::string json =
        nlohmann::ordered_json::parse(encodePronunciationRules(settings.pronunciations())).dump(2) +
        "\n";
    if (args.path.empty() || args.path == "-") {
        std::cout << json;
        return 0;
    }
    QSaveFile file{QString::fromStdString(args.path)};
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(json.data(), static_cast<qint64>(json.size())) < 0 || !file.commit()) {
        std::cerr << "lectorbell: cannot write " << args.path << '\n';
        return exitFailed;
    }
    std::cout << "Exported " << settings.pronunciations().size() << " fixes to " << args.path
              << '\n';
    return 0;
}

int refreshShared(platform::Platform& platform, bool force) {
    qtApplication();
    Stores stores = makeStores(platform);
    ReadingSettings settings{*stores.settings};
    Feedback feedback{*stores.settings, coordinator::feedbackServer(), LECTORBELL_VERSION};
    using Outcome = Feedback::RefreshResult::Outcome;
    Feedback::RefreshResult result =
        waitFor<Feedback::RefreshResult>([&](std::function<void(Feedback::RefreshResult)> done) {
            feedback.refreshShared(settings, force, std::move(done));
        });
    switch (result.outcome) {
    case Outcome::notConfigured:
        std::cerr << "lectorbell: shared fixes aren't available yet\n";
        return exitFailed;
    case Outcome::upToDate:
        std::cout << "Shared fixes were fetched less than a day ago (" << result.rules
                  << " fixes); --force fetches them again.\n";
        return 0;
    case Outcome::fetched:
        std::cout << "Fetched " << result.rules << " shared fixes.\n";
        return 0;
    case Outcome::failed:
        std::cerr << "lectorbell: couldn't fetch the shared fixes (" << result.problem
                  << "); the previous ones are kept\n";
        return exitFailed;
    }
    return exitFailed;
}

} // namespace

void addPronunciationsVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform) {
    auto args = std::make_shared<PronunciationArgs>();
    CLI::App* verb = app.add_subcommand("pronunciations", "Your pronunciation fixes");
    verb->require_subcommand(1);

    CLI::App* list = verb->add_subcommand("list", "List your fixes");
    list->add_flag("--json", args->json, "Print them as the JSON list that export writes");
    list->add_flag("--shared", args->shared, "List the fixes shared by other listeners instead");
    list->callback(
        [args, &outcome, &platform] { outcome.exitStatus = listRules(platform, *args); });

    CLI::App* add = verb->add_subcommand("add", "Say WORD as SAYAS (replaces a fix for WORD)");
    add->add_option("word", args->word, "The word as written");
    add->add_option("sayAs", args->sayAs, "What the voice says instead");
    add->callback([args, &outcome, &platform] { outcome.exitStatus = addRule(platform, *args); });

    CLI::App* remove = verb->add_subcommand("remove", "Remove the fix for WORD");
    remove->add_option("word", args->word, "The word as written");
    remove->callback(
        [args, &outcome, &platform] { outcome.exitStatus = removeRule(platform, *args); });

    CLI::App* import = verb->add_subcommand("import", "Add the fixes of a JSON list");
    import->add_option("file", args->path, R"(A JSON array of {"word", "sayAs"})");
    import->callback([args, &outcome, &platform] { outcome.exitStatus = importRules(platform, *args);
});

CLI::App* exported = verb->add_subcommand("export", "Write your fixes as a JSON list");
exported->add_option("file", args->path, "Where to write them (standard output by default)");
exported->callback([args, &outcome, &platform] {
    outcome.exitStatus = exportRules(platform, *args);
});

CLI::App* refresh = verb->add_subcommand(
    "refresh-shared", "Fetch the fixes shared by other listeners (at most once a day)");
refresh->add_flag("--force", args->force, "Fetch even when fetched less than a day ago");
refresh->callback([args, &outcome, &platform] {
    outcome.exitStatus = refreshShared(platform, args->force);
});
} // namespace lectorbell::cli

} // namespace lectorbell::cli
