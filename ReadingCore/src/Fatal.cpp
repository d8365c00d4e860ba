#include "lectorbell/Fatal.hpp"

#include <cstdio>
#include <cstdlib>

namespace lectorbell {

void fatalError(const char* reason) {
    std::fprintf(stderr, "lectorbell: fatal: %s\n", reason);
    std::fflush(stderr);
    std::abort();
}

} // namespace lectorbell
