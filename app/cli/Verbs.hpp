#pragma once

#include <CLI/CLI.hpp>

namespace lectorbell::cli {

// Set by the verb that ran: the process's exit status.
struct VerbOutcome {
    int exitStatus = 0;
    // The verb played through the sound device: the process must leave without running static
    // destructors (see main).
    bool leaveWithoutTeardown = false;
};

// Registers every command-line verb as a subcommand of the application.
void addVerbs(CLI::App& app, VerbOutcome& outcome);

void addChunksVerb(CLI::App& app, VerbOutcome& outcome);
void addSentencesVerb(CLI::App& app, VerbOutcome& outcome);
void addShapeVerb(CLI::App& app, VerbOutcome& outcome);
void addGestureVerb(CLI::App& app, VerbOutcome& outcome);
void addReadVerb(CLI::App& app, VerbOutcome& outcome);
void addVoicesVerb(CLI::App& app, VerbOutcome& outcome);
void addPaceVerb(CLI::App& app, VerbOutcome& outcome);
void addProbeVerb(CLI::App& app, VerbOutcome& outcome);
void addOcrVerb(CLI::App& app, VerbOutcome& outcome);
void addAccessibilityVerb(CLI::App& app, VerbOutcome& outcome);
void addSettingsVerb(CLI::App& app, VerbOutcome& outcome);
void addQueueVerb(CLI::App& app, VerbOutcome& outcome);
void addHistoryVerb(CLI::App& app, VerbOutcome& outcome);
void addKeyVerb(CLI::App& app, VerbOutcome& outcome);
void addPronunciationsVerb(CLI::App& app, VerbOutcome& outcome);
void addReportVerb(CLI::App& app, VerbOutcome& outcome);

} // namespace lectorbell::cli
