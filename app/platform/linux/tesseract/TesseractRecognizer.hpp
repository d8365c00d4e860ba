#pragma once

#include "platform/TextRecognizer.hpp"

#include <memory>
#include <string_view>

namespace lectorbell::platform::tesseract {

// Tesseract 5 with the system's English LSTM data. Each mode has its own engine, initialised on
// first use (75–170 ms) and kept. Tesseract's OpenMP threads only help when OMP_THREAD_LIMIT=1
// is set before the process starts; the executable sees to that.
class TesseractRecognizer final : public TextRecognizer {
public:
    // The Debian package of the language data the engine loads.
    static constexpr std::string_view languagePackage = "tesseract-ocr-eng";

    TesseractRecognizer();
    ~TesseractRecognizer() override;
    TesseractRecognizer(const TesseractRecognizer&) = delete;
    TesseractRecognizer& operator=(const TesseractRecognizer&) = delete;

    // Stops between words once the limits are reached (layout analysis before the first word runs
    // to its end).
    Recognition recognize(const PixelBuffer& image, RecognitionMode mode,
                          const RecognitionLimits& limits) override;

private:
    class Engine;
    std::unique_ptr<Engine> fast_;
    std::unique_ptr<Engine> accurate_;
};

} // namespace lectorbell::platform::tesseract
