#include "platform/linux/tesseract/OpenMPEnvironment.hpp"

#include "lectorbell/CoreLog.hpp"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

namespace lectorbell::platform::tesseract {

void ensureOpenMPThreadLimit(char** argv) {
    if (std::getenv("OMP_THREAD_LIMIT") != nullptr) {
        return;
    }
    if (setenv("OMP_THREAD_LIMIT", "1", 1) != 0) {
        coreLog("ocr", std::string{"openmp: cannot set the thread limit: "} + std::strerror(errno));
        return;
    }
    execv("/proc/self/exe", argv);
    coreLog("ocr",
            std::string{"openmp: re-run with a thread limit failed: "} + std::strerror(errno));
}

} // namespace lectorbell::platform::tesseract
