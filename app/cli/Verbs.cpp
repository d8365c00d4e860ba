#include "cli/Verbs.hpp"

namespace lectorbell::cli {

void addVerbs(CLI::App& app, VerbOutcome& outcome) {
    // Each verb adds itself here with its own add<Name>Verb(app, outcome).
    addGestureVerb(app, outcome);
}

} // namespace lectorbell::cli
