#include "cli/VerbSupport.hpp"

#include <iostream>

namespace lectorbell::cli {

int refuse(std::string_view message) {
    std::cerr << "lectorbell: " << message << '\n';
    return exitBadInput;
}

QCoreApplication& qtApplication() {
    if (QCoreApplication* existing = QCoreApplication::instance()) {
        return *existing;
    }
    static int argc = 1;
    static char name[] = "lectorbell";
    static char* argv[] = {name, nullptr};
    static QCoreApplication application{argc, argv};
    return application;
}

} // namespace lectorbell::cli
