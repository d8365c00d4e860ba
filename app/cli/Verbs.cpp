#include "cli/Verbs.hpp"

namespace lectorbell::cli {

void addVerbs(CLI::App& app, VerbOutcome& outcome) {
    // Each verb adds itself here with its own add<Name>Verb(app, outcome).
    (void)app;
    (void)outcome;
}

} // namespace lectorbell::cli
