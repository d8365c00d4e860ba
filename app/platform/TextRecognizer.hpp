#pragma once

#include "lectorbell/OCRRecords.hpp"
#include "lectorbell/PixelBuffer.hpp"
#include "platform/CancelToken.hpp"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace lectorbell::platform {

// Fast is for a band around the pointer that must speak soon; accurate for the rest of a window.
enum class RecognitionMode { fast, accurate };

// When a recognition must stop early: it is no longer wanted, or it has run out of time.
struct RecognitionLimits {
    CancelToken cancel;
    // No deadline when absent.
    std::optional<std::chrono::steady_clock::time_point> deadline;

    bool pastDeadline() const { return deadline && std::chrono::steady_clock::now() >= *deadline; }
};

// Why recognition gave no lines.
struct RecognitionFailure {
    enum class Kind {
        // The engine cannot start on this system (its language data is not installed).
        engineUnavailable,
        // The image has no pixels, does not match its size or is too large.
        unusableImage,
        // Stopped because it was cancelled.
        cancelled,
        // Stopped because its deadline passed.
        deadlinePassed,
    };
    Kind kind = Kind::unusableImage;
    // Metadata for the log: never recognised text.
    std::string detail;
    // For engineUnavailable: the package that provides what is missing, named to the user.
    std::string missingPackage;
};

struct Recognition {
    // In the recogniser's order, boxes in screen points; empty when no text was found.
    std::vector<OCRLine> lines;
    // Why recognition could not run or did not finish; none otherwise.
    std::optional<RecognitionFailure> failure;
};

// On-device text recognition of a captured image. The image's `area` is the screen rectangle it
// shows: boxes are mapped into it. An instance keeps its initialised engines between calls and is
// used by one thread at a time (one per worker). Recognition checks its limits as it goes and
// gives up with the matching failure once one is reached.
class TextRecognizer {
public:
    virtual ~TextRecognizer();
    virtual Recognition recognize(const PixelBuffer& image, RecognitionMode mode,
                                  const RecognitionLimits& limits) = 0;
};

} // namespace lectorbell::platform
