// Feeds random recognised lines and pointers to the reading order: any input must give a result
// or a ReadingError, never a crash, a hang or an offset outside the text.

#include "lectorbell/ReadingOrderEngine.hpp"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

using namespace lectorbell;

class Input {
public:
    Input(const std::uint8_t* data, std::size_t size)
        : data_(data)
        , size_(size) {}
    bool empty() const { return at_ >= size_; }
    std::uint8_t byte() { return at_ < size_ ? data_[at_++] : 0; }
    // Mostly small coordinates, sometimes the awkward ones.
    double coordinate() {
        switch (byte() % 16) {
        case 0:
            return std::numeric_limits<double>::quiet_NaN();
        case 1:
            return std::numeric_limits<double>::infinity();
        case 2:
            return -50.0 * byte();
        case 3:
            return 0;
        default:
            return 4.0 * byte() + byte() / 16.0;
        }
    }
    std::u16string text() {
        static constexpr char16_t alphabet[] = u"ab .,:1)\u2022-\u2013 \tXyz\U0001F600\u0301";
        std::u16string out;
        for (std::size_t n = byte() % 24; n > 0 && !empty(); --n) {
            out += alphabet[byte() % (sizeof(alphabet) / sizeof(char16_t) - 1)];
        }
        return out;
    }

private:
    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t at_ = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input in{data, size};
    std::vector<OCRLine> lines;
    while (!in.empty() && lines.size() < 64) {
        OCRLine line;
        line.text = in.text();
        line.rect = ScreenRect{in.coordinate(), in.coordinate(), in.coordinate() - 200,
                               static_cast<double>(in.byte() % 40)};
        line.confidence = static_cast<float>(in.byte()) / 200.0F;
        for (std::size_t w = in.byte() % 5; w > 0; --w) {
            OCRWord word;
            word.rect = ScreenRect{in.coordinate(), line.rect.y(), static_cast<double>(in.byte()),
                                   line.rect.height()};
            word.utf16Range = {static_cast<std::int8_t>(in.byte()),
                               static_cast<std::int8_t>(in.byte())};
            line.words.push_back(word);
        }
        lines.push_back(std::move(line));
    }
    const ScreenPoint pointer{in.coordinate(), in.coordinate()};
    auto outcome = ReadingOrderEngine::read(lines, pointer);
    if (const auto* result = std::get_if<OCRReadingResult>(&outcome)) {
        if (result->blocks.empty()) {
            __builtin_trap();
        }
    }
    ReadingOrderEngine::isSingleColumn(lines);
    ReadingOrderEngine::orderedParagraphTexts(lines);
    return 0;
}
