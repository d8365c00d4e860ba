#include "cli/Verbs.hpp"

namespace lectorbell::cli {

void addVerbs(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform) {
    addChunksVerb(app, outcome);
    addSentencesVerb(app, outcome);
    addShapeVerb(app, outcome);
    addGestureVerb(app, outcome);
    addReadVerb(app, outcome, platform);
    addVoicesVerb(app, outcome, platform);
    addPaceVerb(app, outcome, platform);
    addProbeVerb(app, outcome, platform);
    addOcrVerb(app, outcome, platform);
    addAccessibilityVerb(app, outcome, platform);
    addSettingsVerb(app, outcome, platform);
    addQueueVerb(app, outcome, platform);
    addHistoryVerb(app, outcome, platform);
    addKeyVerb(app, outcome, platform);
    addPronunciationsVerb(app, outcome, platform);
    addReportVerb(app, outcome, platform);
}

} // namespace lectorbell::cli
