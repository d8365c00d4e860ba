#include "sources/ScreenReader.hpp"

#include "lectorbell/CoreLog.hpp"
#include "lectorbell/Diagnostics.hpp"
#include "lectorbell/ScreenBands.hpp"
#include "lectorbell/TextSegmenter.hpp"

#include <algorithm>
#include <string>
#include <utility>

namespace lectorbell::sources {

namespace {

// How far a band edge may move to reach a gap between lines.
constexpr double edgeReach = 30;

std::int64_t since(std::uint64_t start) {
    return static_cast<std::int64_t>((monotonicUptimeNanoseconds() - start) / 1'000'000);
}

// A paragraph that runs on past the band's bottom edge would be spoken as two blocks, with a
// pause in the middle of a sentence. Unless it is the only one, it is left to the rest, which
// then starts at its top.
void leaveCutParagraphToRest(BandReading& reading) {
    std::vector<ReadingBlock>& blocks = reading.result.blocks;
    if (blocks.size() < 2 || !blocks.back().bounds) {
        return;
    }
    const ScreenRect last = *blocks.back().bounds;
    // Closer to the edge than a gap between paragraphs: the band's edge cut it.
    const bool reachesEdge = reading.band.maxY() - last.maxY() < 12;
    const std::u16string& text = blocks.back().text;
    const bool endsSentence =
        !text.empty() &&
        TextSegmenter::isTerminalPunctuation(std::u16string_view{text}.substr(text.size() - 1));
    if (reachesEdge && !endsSentence) {
        reading.band = ScreenRect{reading.band.minX(), reading.band.minY(), reading.band.width(),
                                  std::max(last.minY() - 1 - reading.band.minY(), 0.0)};
        blocks.pop_back();
    }
}

// The one log line of a cancelled screen reading.
Cancelled cancelledAt(const char* stage) {
    coreLog("ocr", std::string{"ocr: cancelled "} + stage);
    return {};
}

} // namespace

ScreenReader::LinesOutcome ScreenReader::linesOf(std::shared_ptr<const PixelBuffer> image,
                                                 bool fast, std::optional<double> titleBarBottom,
                                                 const CancelToken& cancel) {
    ScreenOutcome outcome = ocr_.recognizeText(std::move(image), fast, false, cancel).get();
    if (auto* error = std::get_if<ReadingError>(&outcome)) {
        return *error;
    }
    if (std::holds_alternative<Cancelled>(outcome)) {
        return Cancelled{};
    }
    // Title bar and window controls are not part of what the person reads.
    return ReadingOrderEngine::removingInterfaceText(std::get<ScreenRecognition>(outcome).lines, {},
                                                     titleBarBottom);
}

BandOutcome ScreenReader::readBand(const platform::TargetWindow& window, ScreenPoint pointer,
                                   const CancelToken& cancel) {
    if (cancel.cancelled()) {
        return cancelledAt("before the capture");
    }
    BandReading reading;
    reading.titleBarBottom = window.titleBarBottom;
    std::uint64_t start = monotonicUptimeNanoseconds();
    std::variant<PixelBuffer, ReadingError> captured = ocr_.capture(window, std::nullopt);
    if (auto* error = std::get_if<ReadingError>(&captured)) {
        return *error;
    }
    reading.image = std::make_shared<const PixelBuffer>(std::move(std::get<PixelBuffer>(captured)));
    reading.captureMS = since(start);
    const PixelBuffer& image = *reading.image;

    ScreenRect nominal{image.area.minX(), pointer.y - bandAbove, image.area.width(),
                       bandAbove + bandBelow};
    reading.band = ScreenBands::snapToLineGaps(image, nominal, edgeReach);
    std::optional<PixelBuffer> bandImage = ScreenBands::cropped(image, reading.band);

    start = monotonicUptimeNanoseconds();
    std::vector<OCRLine> lines;
    if (bandImage) {
        LinesOutcome band = linesOf(std::make_shared<const PixelBuffer>(std::move(*bandImage)),
                                    true, reading.titleBarBottom, cancel);
        if (auto* error = std::get_if<ReadingError>(&band)) {
            return *error;
        }
        if (std::holds_alternative<Cancelled>(band)) {
            return cancelledAt("in the band");
        }
        lines = std::move(std::get<std::vector<OCRLine>>(band));
    }
    reading.bandMS = since(start);
    if (cancel.cancelled()) {
        return cancelledAt("after the band");
    }

    start = monotonicUptimeNanoseconds();
    if (!lines.empty() && ReadingOrderEngine::isSingleColumn(lines)) {
        ReadingOrderEngine::ReadOutcome outcome = ReadingOrderEngine::read(lines, pointer);
        if (auto* result = std::get_if<OCRReadingResult>(&outcome)) {
            reading.result = std::move(*result);
            leaveCutParagraphToRest(reading);
            reading.layoutMS = since(start);
            return reading;
        }
    }
    // Columns, or nothing readable at the pointer within the band: read the whole window at once.
    coreLog("ocr", "ocr: band not readable alone; reading the whole window");
    reading.wholeWindow = true;
    reading.band = image.area;
    LinesOutcome all = linesOf(reading.image, false, reading.titleBarBottom, cancel);
    if (auto* error = std::get_if<ReadingError>(&all)) {
        return *error;
    }
    if (std::holds_alternative<Cancelled>(all)) {
        return cancelledAt("in the whole window");
    }
    ReadingOrderEngine::ReadOutcome outcome =
        ReadingOrderEngine::read(std::get<std::vector<OCRLine>>(all), pointer);
    reading.layoutMS = since(start);
    if (auto* error = std::get_if<ReadingError>(&outcome)) {
        return *error;
    }
    reading.result = std::move(std::get<OCRReadingResult>(outcome));
    return reading;
}

RestOutcome ScreenReader::readRest(const BandReading& band, const CancelToken& cancel) {
    if (band.wholeWindow || !band.image) {
        return std::vector<ReadingBlock>{};
    }
    if (cancel.cancelled()) {
        return cancelledAt("before the rest");
    }
    const ScreenRect& area = band.image->area;
    ScreenRect below{area.minX(), band.band.maxY(), area.width(), area.maxY() - band.band.maxY()};
    std::optional<PixelBuffer> rest = ScreenBands::cropped(*band.image, below);
    if (!rest) {
        return std::vector<ReadingBlock>{};
    }
    LinesOutcome lines = linesOf(std::make_shared<const PixelBuffer>(std::move(*rest)), false,
                                 band.titleBarBottom, cancel);
    if (auto* error = std::get_if<ReadingError>(&lines)) {
        return *error;
    }
    if (std::holds_alternative<Cancelled>(lines)) {
        return cancelledAt("in the rest");
    }
    // Only what lies below the band is new; a line that straddles its edge was read with it.
    std::vector<OCRLine> added;
    for (OCRLine& line : std::get<std::vector<OCRLine>>(lines)) {
        if (line.rect.midY() >= band.band.maxY()) {
            added.push_back(std::move(line));
        }
    }
    std::vector<ReadingBlock> blocks = ReadingOrderEngine::orderedBlocks(added);
    coreLog("ocr",
            "ocr: appended " + std::to_string(blocks.size()) + " more blocks below the first band");
    return blocks;
}

} // namespace lectorbell::sources
