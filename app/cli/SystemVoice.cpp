#include "cli/SystemVoice.hpp"

#include "lectorbell/ReadingModel.hpp"
#include "platform/Platform.hpp"

#include <ostream>

namespace lectorbell::cli {

std::unique_ptr<platform::PlatformSynthesizer> openSystemVoice(platform::Platform& platform,
                                                               std::ostream& err) {
    std::unique_ptr<platform::PlatformSynthesizer> synth = platform.systemSynthesizer();
    if (!synth) {
        err << "lectorbell: " << ReadingError{ReadingError::Kind::speechUnavailable}.userMessage()
            << '\n';
    }
    return synth;
}

} // namespace lectorbell::cli
