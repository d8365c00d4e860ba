#include "platform/linux/tesseract/TesseractRecognizer.hpp"

#include "lectorbell/CoreLog.hpp"
#include "lectorbell/ScreenGeometry.hpp"
#include "lectorbell/Utf8.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <leptonica/allheaders.h>
#include <limits>
#include <tesseract/baseapi.h>
#include <tesseract/ocrclass.h>
#include <tesseract/resultiterator.h>

namespace lectorbell::platform::tesseract {

namespace {

struct PixDeleter {
    void operator()(Pix* pix) const { pixDestroy(&pix); }
};
using PixPtr = std::unique_ptr<Pix, PixDeleter>;

struct TextDeleter {
    void operator()(char* text) const { delete[] text; }
};
using TesseractText = std::unique_ptr<char[], TextDeleter>;

PixPtr pixOf(const PixelBuffer& image) {
    PixPtr pix{
        pixCreate(static_cast<l_int32>(image.width), static_cast<l_int32>(image.height), 32)};
    if (!pix) {
        return nullptr;
    }
    l_uint32* data = pixGetData(pix.get());
    const l_int32 wpl = pixGetWpl(pix.get());
    for (std::int64_t y = 0; y < image.height; ++y) {
        l_uint32* row = data + y * wpl;
        for (std::int64_t x = 0; x < image.width; ++x) {
            const std::uint8_t* p =
                &image.bytes[static_cast<std::size_t>((y * image.width + x) * 4)];
            composeRGBPixel(p[0], p[1], p[2], &row[x]);
        }
    }
    return pix;
}

// A box in image pixels (top-left origin) as screen points, through the same mapping the
// platform recognisers' normalised boxes take.
// The recognised image's size in pixels and the screen area it shows.
struct Frame {
    double width = 0;
    double height = 0;
    ScreenRect area;
};

ScreenRect screenRect(int left, int top, int right, int bottom, const Frame& image) {
    const double w = image.width;
    const double h = image.height;
    const ScreenRect normalised{left / w, 1.0 - bottom / h, (right - left) / w, (bottom - top) / h};
    return GeometryMapper::screenRectFromVisionNormalized(normalised, image.area);
}

// Tesseract's line box hugs the ink, so a line without descenders comes out a fifth lower than
// its neighbours and the gaps between lines vary with the letters, while the reading order
// measures gaps in line heights. Like other recognisers' boxes, the line box here spans the
// type's full height around the baseline: the ink above the baseline (capitals and ascenders,
// about 0.73 em) gives the size; the box runs from 0.95 em above the baseline to 0.25 em below.
void widenToRow(const ::tesseract::ResultIterator& it, int& top, int& bottom) {
    int x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    if (!it.Baseline(::tesseract::RIL_TEXTLINE, &x1, &y1, &x2, &y2)) {
        return;
    }
    const double baseline = (y1 + y2) / 2.0;
    const double capHeight = baseline - top;
    if (!(capHeight > 0) || baseline > bottom + capHeight) {
        return;
    }
    const double em = capHeight / 0.73;
    top = std::min(top, static_cast<int>(std::floor(baseline - 0.95 * em)));
    bottom = std::max(bottom, static_cast<int>(std::ceil(baseline + 0.25 * em)));
}

// The recogniser reads a list bullet as "+", "e", "«" or "¢". A one-character first word that
// is far smaller than the words after it, and not a digit, is a bullet: it is given back as "•"
// so the line reads as a list item.
void restoreBullet(OCRLine& line, const std::vector<ScreenRect>& inks) {
    if (line.words.size() < 2 || inks.size() != line.words.size() ||
        line.words.front().text.size() != 1) {
        return;
    }
    OCRWord& first = line.words.front();
    const char16_t c = first.text.front();
    if (c >= u'0' && c <= u'9') {
        return;
    }
    std::vector<double> heights;
    for (std::size_t i = 1; i < inks.size(); ++i) {
        heights.push_back(inks[i].height());
    }
    const double typical = median(std::move(heights));
    const ScreenRect& box = inks.front();
    if (box.height() <= 0.6 * typical && box.width() <= 1.6 * box.height()) {
        first.text.assign(1, u'\u2022');
        line.text[static_cast<std::size_t>(first.utf16Range.location)] = u'\u2022';
    }
}

std::vector<OCRLine> linesOf(::tesseract::TessBaseAPI& api, const Frame& image) {
    std::vector<OCRLine> lines;
    std::unique_ptr<::tesseract::ResultIterator> it{api.GetIterator()};
    if (!it) {
        return lines;
    }
    using ::tesseract::RIL_TEXTLINE;
    using ::tesseract::RIL_WORD;
    OCRLine* line = nullptr;
    // The words' own boxes, line by line: the bullet test needs the ink's size.
    std::vector<std::vector<ScreenRect>> inks;
    do {
        if (it->Empty(RIL_WORD)) {
            continue;
        }
        int left = 0, top = 0, right = 0, bottom = 0;
        if (it->IsAtBeginningOf(RIL_TEXTLINE) || line == nullptr) {
            it->BoundingBox(RIL_TEXTLINE, &left, &top, &right, &bottom);
            widenToRow(*it, top, bottom);
            lines.push_back({u"",
                             screenRect(left, top, right, bottom, image),
                             it->Confidence(RIL_TEXTLINE) / 100.0F,
                             {}});
            line = &lines.back();
            inks.emplace_back();
        }
        TesseractText utf8{it->GetUTF8Text(RIL_WORD)};
        if (!utf8) {
            continue;
        }
        std::u16string word = decodeUtf8(utf8.get()).text;
        if (word.empty()) {
            continue;
        }
        if (!line->text.empty()) {
            line->text += u' ';
        }
        it->BoundingBox(RIL_WORD, &left, &top, &right, &bottom);
        // A word spans its line's row, so a line cut out of its words at a gutter keeps the
        // row's height.
        const ScreenRect ink = screenRect(left, top, right, bottom, image);
        line->words.push_back(
            {word,
             ScreenRect{ink.x(), line->rect.y(), ink.width(), line->rect.height()},
             {static_cast<std::int64_t>(line->text.size()),
              static_cast<std::int64_t>(word.size())}});
        line->text += word;
        inks.back().push_back(ink);
    } while (it->Next(RIL_WORD));
    for (std::size_t i = 0; i < lines.size(); ++i) {
        restoreBullet(lines[i], inks[i]);
    }
    std::erase_if(lines, [](const OCRLine& l) { return l.text.empty(); });
    return lines;
}

} // namespace

class TesseractRecognizer::Engine {
public:
    explicit Engine(RecognitionMode mode) {
        // Quiet: Tesseract otherwise writes its progress and warnings to standard error.
        ready_ = api_.Init(nullptr, "eng", ::tesseract::OEM_LSTM_ONLY) == 0;
        if (!ready_) {
            return;
        }
        api_.SetVariable("debug_file", "/dev/null");
        if (mode == RecognitionMode::fast) {
            // One uniform block and no second pass for light-on-dark text: lines that run across
            // columns are split again at their gutters by the reading order.
            api_.SetPageSegMode(::tesseract::PSM_SINGLE_BLOCK);
            api_.SetVariable("tessedit_do_invert", "0");
        } else {
            api_.SetPageSegMode(::tesseract::PSM_AUTO);
        }
    }
    ~Engine() { api_.End(); }

    bool ready() const { return ready_; }

    // The lines, or why recognition stopped before the end.
    Recognition recognize(Pix* pix, const ScreenRect& area, const RecognitionLimits& limits) {
        api_.SetImage(pix);
        const Frame image{static_cast<double>(pixGetWidth(pix)),
                          static_cast<double>(pixGetHeight(pix)), area};
        // Screen pixels: about 96 per inch at one pixel per point.
        const double pixelsPerPoint = image.width / area.width();
        api_.SetSourceResolution(static_cast<int>(std::lround(96 * pixelsPerPoint)));
        // Tesseract asks between words whether to go on.
        ::tesseract::ETEXT_DESC monitor;
        monitor.cancel = [](void* limits, int /*words*/) {
            return static_cast<const RecognitionLimits*>(limits)->cancel.cancelled();
        };
        monitor.cancel_this = const_cast<RecognitionLimits*>(&limits);
        if (limits.deadline) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(
                *limits.deadline - std::chrono::steady_clock::now());
            // Zero would mean no deadline at all.
            monitor.set_deadline_msecs(static_cast<std::int32_t>(std::max<std::int64_t>(
                1,
                std::min<std::int64_t>(left.count(), std::numeric_limits<std::int32_t>::max()))));
        }
        Recognition result;
        const bool finished = api_.Recognize(&monitor) == 0;
        if (limits.cancel.cancelled()) {
            result.failure =
                RecognitionFailure{RecognitionFailure::Kind::cancelled, "cancelled", {}};
        } else if (!finished && limits.pastDeadline()) {
            result.failure =
                RecognitionFailure{RecognitionFailure::Kind::deadlinePassed, "deadline passed", {}};
        } else if (finished) {
            result.lines = linesOf(api_, image);
        }
        api_.Clear();
        return result;
    }

private:
    ::tesseract::TessBaseAPI api_;
    bool ready_ = false;
};

TesseractRecognizer::TesseractRecognizer() = default;
TesseractRecognizer::~TesseractRecognizer() = default;

Recognition TesseractRecognizer::recognize(const PixelBuffer& image, RecognitionMode mode,
                                           const RecognitionLimits& limits) {
    using Kind = RecognitionFailure::Kind;
    if (!image.isWellFormed() || !(image.area.width() > 0) || !(image.area.height() > 0)) {
        return {{},
                RecognitionFailure{Kind::unusableImage,
                                   "the image has no pixels or its size does not match its data",
                                   {}}};
    }
    if (limits.cancel.cancelled()) {
        return {{}, RecognitionFailure{Kind::cancelled, "cancelled before it started", {}}};
    }
    std::unique_ptr<Engine>& engine = mode == RecognitionMode::fast ? fast_ : accurate_;
    if (!engine) {
        const auto started = std::chrono::steady_clock::now();
        engine = std::make_unique<Engine>(mode);
        const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now() - started);
        coreLog("ocr", "recognizer: init " + std::to_string(ms.count()) + " ms");
    }
    if (!engine->ready()) {
        engine.reset();
        return {{},
                RecognitionFailure{Kind::engineUnavailable,
                                   "Tesseract could not load its English language data",
                                   std::string{languagePackage}}};
    }
    PixPtr pix = pixOf(image);
    // A fast pass reads a 2x capture at half size: text at one pixel per point still reads
    // cleanly, and recognition costs about half as much.
    const double pixelsPerPoint = static_cast<double>(image.width) / image.area.width();
    if (pix && mode == RecognitionMode::fast && pixelsPerPoint >= 1.8) {
        pix.reset(pixScaleAreaMap2(pix.get()));
    }
    if (!pix) {
        return {{},
                RecognitionFailure{Kind::unusableImage, "the image is too large to recognise", {}}};
    }
    const auto started = std::chrono::steady_clock::now();
    Recognition result = engine->recognize(pix.get(), image.area, limits);
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - started);
    coreLog("ocr", "recognize: " + std::to_string(image.width) + "x" +
                       std::to_string(image.height) + " px, " +
                       (mode == RecognitionMode::fast ? "fast" : "accurate") + ", " +
                       (result.failure ? result.failure->detail
                                       : std::to_string(result.lines.size()) + " lines") +
                       ", " + std::to_string(ms.count()) + " ms");
    return result;
}

} // namespace lectorbell::platform::tesseract
