#include "DocumentMarkup.hpp"
#include "FuzzInput.hpp"
#include "lectorbell/SpeechCleanup.hpp"
#include "lectorbell/TextSegmenter.hpp"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace lectorbell;
    std::u16string text = fuzz::unitsOf(data, size);
    SpeechCleanup::clean(text);
    SpeechCleanup::removingReferenceMarkers(text);
    TextSegmenter::chunksForBlock(text, 0, 64);
    // Reading markdown and HTML only ever removes or shortens: links to their text, tags to
    // nothing or a break, entities to their character.
    for (auto layout : {detail::Layout::lines, detail::Layout::flat}) {
        if (detail::removeDocumentMarkup(text, layout).size() > text.size()) {
            std::abort();
        }
    }
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
