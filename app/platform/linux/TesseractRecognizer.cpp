#include "platform/linux/TesseractRecognizer.hpp"

#include "lectorbell/CoreLog.hpp"
#include "lectorbell/ScreenGeometry.hpp"
#include "lectorbell/Utf8.hpp"

#include <chrono>
#include <leptonica/allheaders.h>
#include <tesseract/baseapi.h>
#include <tesseract/resultiterator.h>

namespace lectorbell::platform {

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
ScreenRect screenRect(int left, int top, int right, int bottom, const PixelBuffer& image) {
    const auto w = static_cast<double>(image.width);
    const auto h = static_cast<double>(image.height);
    const ScreenRect normalised{left / w, 1.0 - bottom / h, (right - left) / w, (bottom - top) / h};
    return GeometryMapper::screenRectFromVisionNormalized(normalised, image.area);
}

std::vector<OCRLine> linesOf(tesseract::TessBaseAPI& api, const PixelBuffer& image) {
    std::vector<OCRLine> lines;
    std::unique_ptr<tesseract::ResultIterator> it{api.GetIterator()};
    if (!it) {
        return lines;
    }
    using tesseract::RIL_TEXTLINE;
    using tesseract::RIL_WORD;
    OCRLine* line = nullptr;
    do {
        if (it->Empty(RIL_WORD)) {
            continue;
        }
        int left = 0, top = 0, right = 0, bottom = 0;
        if (it->IsAtBeginningOf(RIL_TEXTLINE) || line == nullptr) {
            it->BoundingBox(RIL_TEXTLINE, &left, &top, &right, &bottom);
            lines.push_back({u"",
                             screenRect(left, top, right, bottom, image),
                             it->Confidence(RIL_TEXTLINE) / 100.0F,
                             {}});
            line = &lines.back();
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
        line->words.push_back({word,
                               screenRect(left, top, right, bottom, image),
                               {static_cast<std::int64_t>(line->text.size()),
                                static_cast<std::int64_t>(word.size())}});
        line->text += word;
    } while (it->Next(RIL_WORD));
    std::erase_if(lines, [](const OCRLine& l) { return l.text.empty(); });
    return lines;
}

} // namespace

class TesseractRecognizer::Engine {
public:
    explicit Engine(RecognitionMode mode) {
        // Quiet: Tesseract otherwise writes its progress and warnings to standard error.
        ready_ = api_.Init(nullptr, "eng", tesseract::OEM_LSTM_ONLY) == 0;
        if (!ready_) {
            return;
        }
        api_.SetVariable("debug_file", "/dev/null");
        if (mode == RecognitionMode::fast) {
            // One uniform block and no second pass for light-on-dark text: lines that run across
            // columns are split again at their gutters by the reading order.
            api_.SetPageSegMode(tesseract::PSM_SINGLE_BLOCK);
            api_.SetVariable("tessedit_do_invert", "0");
        } else {
            api_.SetPageSegMode(tesseract::PSM_AUTO);
        }
    }
    ~Engine() { api_.End(); }

    bool ready() const { return ready_; }

    std::vector<OCRLine> recognize(Pix* pix, const PixelBuffer& image) {
        api_.SetImage(pix);
        // Screen pixels: about 96 per inch at one pixel per point.
        const double pixelsPerPoint = static_cast<double>(image.width) / image.area.width();
        api_.SetSourceResolution(static_cast<int>(96 * pixelsPerPoint + 0.5));
        std::vector<OCRLine> lines;
        if (api_.Recognize(nullptr) == 0) {
            lines = linesOf(api_, image);
        }
        api_.Clear();
        return lines;
    }

private:
    tesseract::TessBaseAPI api_;
    bool ready_ = false;
};

TesseractRecognizer::TesseractRecognizer() = default;
TesseractRecognizer::~TesseractRecognizer() = default;

Recognition TesseractRecognizer::recognize(const PixelBuffer& image, RecognitionMode mode) {
    if (!image.isWellFormed() || !(image.area.width() > 0) || !(image.area.height() > 0)) {
        return {{}, "the image has no pixels or its size does not match its data"};
    }
    std::unique_ptr<Engine>& engine = mode == RecognitionMode::fast ? fast_ : accurate_;
    if (!engine) {
        const auto started = std::chrono::steady_clock::now();
        engine = std::make_unique<Engine>(mode);
        const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now() - started);
        coreLog("lectorbell.ocr", "recognizer: init " + std::to_string(ms.count()) + " ms");
    }
    if (!engine->ready()) {
        engine.reset();
        return {{}, "Tesseract could not load its English language data (tesseract-ocr-eng)"};
    }
    PixPtr pix = pixOf(image);
    if (!pix) {
        return {{}, "the image is too large to recognise"};
    }
    const auto started = std::chrono::steady_clock::now();
    std::vector<OCRLine> lines = engine->recognize(pix.get(), image);
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - started);
    coreLog("lectorbell.ocr",
            "recognize: " + std::to_string(image.width) + "x" + std::to_string(image.height) +
                " px, " + (mode == RecognitionMode::fast ? "fast" : "accurate") + ", " +
                std::to_string(lines.size()) + " lines, " + std::to_string(ms.count()) + " ms");
    return {std::move(lines), std::nullopt};
}

} // namespace lectorbell::platform
