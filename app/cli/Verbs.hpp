#pragma once

#include <CLI/CLI.hpp>

namespace lectorbell::platform {
class Platform;
}

namespace lectorbell::cli {

// Set by the verb that ran: the process's exit status.
struct VerbOutcome {
    int exitStatus = 0;
    // The verb played through the sound device: the process must leave without running static
    // destructors (see main).
    bool leaveWithoutTeardown = false;
};

// Registers every command-line verb as a subcommand of the application.
// Verbs that reach the system get its adapters from `platform`, which outlives the parse.
void addVerbs(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform);

void addChunksVerb(CLI::App& app, VerbOutcome& outcome);
void addSentencesVerb(CLI::App& app, VerbOutcome& outcome);
void addShapeVerb(CLI::App& app, VerbOutcome& outcome);
void addGestureVerb(CLI::App& app, VerbOutcome& outcome);
void addReadVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform);
void addVoicesVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform);
void addPaceVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform);
void addProbeVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform);
void addOcrVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform);
void addAccessibilityVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform);
void addSettingsVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform);
void addQueueVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform);
void addHistoryVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform);
void addKeyVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform);
void addPronunciationsVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform);
void addReportVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform);

} // namespace lectorbell::cli
