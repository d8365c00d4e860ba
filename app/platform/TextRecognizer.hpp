#pragma once

#include "lectorbell/OCRRecords.hpp"
#include "lectorbell/PixelBuffer.hpp"

#include <optional>
#include <string>
#include <vector>

namespace lectorbell::platform {

// Fast is for a band around the pointer that must speak soon; accurate for the rest of a window.
enum class RecognitionMode { fast, accurate };

struct Recognition {
    // In the recogniser's order, boxes in screen points; empty when no text was found.
    std::vector<OCRLine> lines;
    // Why recognition could not run (no language data, an unusable image); none otherwise.
    std::optional<std::string> failure;
};

// On-device text recognition of a captured image. The image's `area` is the screen rectangle it
// shows: boxes are mapped into it. An instance keeps its initialised engines between calls and is
// used by one thread at a time (one per worker).
class TextRecognizer {
public:
    virtual ~TextRecognizer();
    virtual Recognition recognize(const PixelBuffer& image, RecognitionMode mode) = 0;
};

} // namespace lectorbell::platform
