#include "FuzzInput.hpp"
#include "lectorbell/SpeechCleanup.hpp"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace lectorbell;
    std::u16string text = fuzz::unitsOf(data, size);
    SpeechCleanup::clean(text);
    SpeechCleanup::removingReferenceMarkers(text);
    // With the switch off both operations must hand the text back untouched.
    SpeechCleanup::enabled = false;
    bool untouched =
        SpeechCleanup::clean(text) == text && SpeechCleanup::removingReferenceMarkers(text) == text;
    SpeechCleanup::enabled = true;
    if (!untouched) {
        std::abort();
    }
    return 0;
}
