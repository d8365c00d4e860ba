// `lectorbell report --problem RAW [--note TEXT] [--include-sentence]`: sends an anonymous problem
// report about the last reading to the maker's server.

#include "cli/Stores.hpp"
#include "cli/VerbSupport.hpp"
#include "cli/Verbs.hpp"
#include "coordinator/Feedback.hpp"

#include <iostream>
#include <memory>

namespace lectorbell::cli {

namespace {

using coordinator::Feedback;

struct ReportArgs {
    std::string problem;
    std::string note;
    bool includeSentence = false;
};

std::string problemList() {
    std::string list;
    for (coordinator::FeedbackProblem problem : coordinator::allFeedbackProblems) {
        list += (list.empty() ? "" : ", ") + std::string{rawValue(problem)};
    }
    return list;
}

int sendReport(platform::Platform& platform, const ReportArgs& args) {
    std::optional<coordinator::FeedbackProblem> problem =
        coordinator::feedbackProblemFromRawValue(args.problem);
    if (!problem) {
        return refuse("report: --problem takes one of " + problemList());
    }
    qtApplication();
    Stores stores = makeStores(platform);
    Feedback feedback{*stores.settings, coordinator::feedbackServer(), LECTORBELL_VERSION};
    // Readings from the command line are not tracked: the report says so.
    coordinator::LastReading reading;
    reading.date = std::chrono::system_clock::now();
    reading.appName = "Command line";
    reading.mode = "mouse";
    reading.origin = "command line";
    std::string body = feedback.reportBody(reading, *problem, args.note, args.includeSentence);
    Feedback::SendResult result =
        waitFor<Feedback::SendResult>([&](std::function<void(Feedback::SendResult)> done) {
            feedback.send(body, std::move(done));
        });
    if (!result.sent) {
        std::cerr << "lectorbell: " << result.message << '\n';
        return exitFailed;
    }
    std::cout << result.message << '\n';
    return 0;
}

} // namespace

void addReportVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform) {
    auto args = std::make_shared<ReportArgs>();
    CLI::App* verb = app.add_subcommand(
        "report", "Send an anonymous report about a problem with the last reading");
    verb->add_option("--problem", args->problem, "What went wrong: " + problemList());
    verb->add_option("--note", args->note, "Anything else (optional)");
    verb->add_flag("--include-sentence", args->includeSentence,
                   "Include the first sentence it read");
    verb->callback(
        [args, &outcome, &platform] { outcome.exitStatus = sendReport(platform, *args); });
}

} // namespace lectorbell::cli
