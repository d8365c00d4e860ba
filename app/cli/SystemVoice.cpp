#include "cli/SystemVoice.hpp"

#include "lectorbell/ReadingModel.hpp"
#include "platform/linux/SystemLanguages.hpp"

#include <ostream>

namespace lectorbell::cli {

std::unique_ptr<platform::EspeakSynthesizer> openSystemVoice(std::ostream& err) {
    auto synth = std::make_unique<platform::EspeakSynthesizer>(platform::preferredLanguages());
    if (!synth->isAvailable()) {
        err << "lectorbell: " << ReadingError{ReadingError::Kind::speechUnavailable}.userMessage()
            << '\n';
        return nullptr;
    }
    return synth;
}

} // namespace lectorbell::cli
