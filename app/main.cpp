#include "cli/Verbs.hpp"
#include "platform/Platform.hpp"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <iostream>

int main(int argc, char** argv) {
    lectorbell::platform::prepareProcess(argv);
    CLI::App app{"Lectorbell reads aloud the text under the mouse pointer while a key is held.\n"
                 "With no verb it starts the tray application; verbs run one stage on its own.",
                 "lectorbell"};
    app.set_version_flag("--version", std::string{"lectorbell "} + LECTORBELL_VERSION);
    app.require_subcommand(0, 1);

    std::unique_ptr<lectorbell::platform::Platform> platform = lectorbell::platform::makePlatform();
    lectorbell::cli::VerbOutcome outcome;
    lectorbell::cli::addVerbs(app, outcome, *platform);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Help and version end well; anything else was bad input on the command line.
        constexpr int usageError = 2;
        return app.exit(error) == 0 ? 0 : usageError;
    }
    if (app.get_subcommands().empty()) {
        // The tray application is not built yet: until it is, show what the executable offers.
        std::cout << app.help();
        return 0;
    }
    if (outcome.leaveWithoutTeardown) {
        // Qt 6.4's PulseAudio backend stops its mainloop thread from a static destructor while
        // that thread may still be running, which now and then aborts the process after its
        // work is done. Everything of ours is closed by now.
        std::cout.flush();
        std::cerr.flush();
        std::fflush(nullptr);
        std::_Exit(outcome.exitStatus);
    }
    return outcome.exitStatus;
}
