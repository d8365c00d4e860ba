#pragma once

#include "lectorbell/ReadingOrderEngine.hpp"
#include "sources/ScreenOCR.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace lectorbell::sources {

// The first, quick part of reading a window's pixels: the band around the pointer.
struct BandReading {
    OCRReadingResult result;
    // The band that was recognised; the whole window when the band could not be read alone.
    ScreenRect band;
    bool wholeWindow = false;
    // The one capture of the window, kept for the rest of it.
    std::shared_ptr<const PixelBuffer> image;
    std::optional<double> titleBarBottom;
    std::int64_t captureMS = 0;
    std::int64_t bandMS = 0;
    std::int64_t layoutMS = 0;
};

using BandOutcome = std::variant<BandReading, ReadingError, Cancelled>;
using RestOutcome = std::variant<std::vector<ReadingBlock>, ReadingError, Cancelled>;

// Reads a window band-first: one capture, the band around the pointer recognised fast so speech
// starts soon, then the rest of the window below the band. The cancel token is checked between
// the steps and inside recognition; a cancelled reading ends with Cancelled and one log line.
class ScreenReader {
public:
    explicit ScreenReader(ScreenOCR& ocr)
        : ocr_(ocr) {}

    // Points above and below the pointer that the band spans before its edges are moved to the
    // gaps between lines.
    static constexpr double bandAbove = 40;
    static constexpr double bandBelow = 100;

    BandOutcome readBand(const platform::TargetWindow& window, ScreenPoint pointer,
                         const CancelToken& cancel = {});
    // The blocks of the lines below the band, in reading order (none after a whole-window read).
    RestOutcome readRest(const BandReading& band, const CancelToken& cancel = {});

private:
    using LinesOutcome = std::variant<std::vector<OCRLine>, ReadingError, Cancelled>;
    LinesOutcome linesOf(std::shared_ptr<const PixelBuffer> image, bool fast,
                         std::optional<double> titleBarBottom, const CancelToken& cancel);
    ScreenOCR& ocr_;
};

} // namespace lectorbell::sources
