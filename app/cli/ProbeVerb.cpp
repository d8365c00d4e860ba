#include "cli/ProbeOutput.hpp"
#include "cli/VerbIO.hpp"
#include "cli/Verbs.hpp"
#include "platform/Platform.hpp"
#include "sources/SerialQueue.hpp"

#include <iostream>

namespace lectorbell::cli {

namespace {

struct ProbeOptions {
    std::string at;
    bool quick = false;
    bool selection = false;
    bool json = false;
};

// Runs on the extractor's worker thread: the accessibility client lives there.
ProbeReport probe(platform::Platform& platform, ScreenPoint point, const ProbeOptions& options) {
    ProbeReport report;
    auto started = std::chrono::steady_clock::now();
    WalkContext context{steadyClock(),
                        [&report](std::string_view line) { report.trace.emplace_back(line); }};
    std::unique_ptr<AccessibilityDesktop> accessibility = platform.accessibilityDesktop();
    AccessibilityDesktop& desktop = *accessibility;
    AccessibilityExtractor extractor{desktop, ExtractorConfig{}, context};
    if (!desktop.isTrusted()) {
        report.cursor.error = ReadingError{ReadingError::Kind::accessibilityPermissionNeeded};
        if (platform.toolkitAccessibilityEnabled() == false) {
            report.notice = "accessibility is off for apps: `lectorbell accessibility --enable` "
                            "turns it on";
        }
    } else if (options.selection) {
        std::optional<ProcessID> front = desktop.frontmostProcess();
        if (!front) {
            front = desktop.processAt(point);
        }
        report.pid = front;
        report.selection = extractor.observeSelection(front.value_or(0), point);
        report.decision = SelectionPolicy::decide(report.selection->observation);
    } else if (std::optional<ProcessID> pid = desktop.processAt(point)) {
        report.pid = pid;
        report.cursor = extractor.extractAtCursor(*pid, point, options.quick);
        if (!report.cursor.result && !report.cursor.error) {
            report.notice = platform.startNotice(desktop, *pid);
        }
    } else {
        report.cursor.error = ReadingError{ReadingError::Kind::noExternalWindow};
    }
    report.milliseconds =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - started)
            .count();
    return report;
}

int runProbe(platform::Platform& platform, const ProbeOptions& options) {
    std::optional<ScreenPoint> point = parsePoint(options.at);
    if (!point) {
        std::cerr << "lectorbell probe: --at takes X,Y in screen points, e.g. --at 120,340\n";
        return 2;
    }
    SerialQueue queue;
    ProbeReport report = queue.submit([&] { return probe(platform, *point, options); }).get();
    if (options.json) {
        printProbeJson(report, std::cout);
    } else {
        printProbeText(report, std::cout);
    }
    bool refused =
        report.decision ? report.decision->error().has_value() : report.cursor.error.has_value();
    if (refused) {
        return 3;
    }
    return report.selection || report.cursor.result ? 0 : 1;
}

} // namespace

void addProbeVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform) {
    auto options = std::make_shared<ProbeOptions>();
    CLI::App* verb = app.add_subcommand(
        "probe", "Print the accessibility text at a screen point, as a reading would start it");
    verb->add_option("--at", options->at, "The screen point X,Y (global, top-left origin)")
        ->required();
    verb->add_flag("--quick", options->quick, "Use the quick walk of the first answer");
    verb->add_flag("--selection", options->selection,
                   "Print the selection seen in the frontmost application and the decision");
    verb->add_flag("--json", options->json, "Print one JSON object");
    verb->callback(
        [options, &outcome, &platform] { outcome.exitStatus = runProbe(platform, *options); });
}

} // namespace lectorbell::cli
