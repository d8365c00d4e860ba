#include "cli/Verbs.hpp"

namespace lectorbell::cli {

void addVerbs(CLI::App& app, VerbOutcome& outcome) {
    addChunksVerb(app, outcome);
    addSentencesVerb(app, outcome);
    addShapeVerb(app, outcome);
    addGestureVerb(app, outcome);
    addReadVerb(app, outcome);
    addVoicesVerb(app, outcome);
    addPaceVerb(app, outcome);
    addProbeVerb(app, outcome);
    addOcrVerb(app, outcome);
    addAccessibilityVerb(app, outcome);
    addSettingsVerb(app, outcome);
    addQueueVerb(app, outcome);
    addHistoryVerb(app, outcome);
    addKeyVerb(app, outcome);
    addPronunciationsVerb(app, outcome);
    addReportVerb(app, outcome);
}

} // namespace lectorbell::cli
