#include "platform/linux/atspi/CodePointText.hpp"

#include "lectorbell/Utf8.hpp"

#include <algorithm>

namespace lectorbell::platform::atspi {

CodePointText::CodePointText(std::string_view utf8)
    : utf16_(decodeUtf8(utf8).text) {
    bool astral = std::any_of(utf16_.begin(), utf16_.end(),
                              [](char16_t c) { return c >= 0xD800 && c <= 0xDFFF; });
    if (!astral) {
        return;
    }
    for (std::size_t i = 0; i < utf16_.size(); ++i) {
        starts_.push_back(static_cast<std::int64_t>(i));
        bool pair = utf16_[i] >= 0xD800 && utf16_[i] <= 0xDBFF && i + 1 < utf16_.size() &&
                    utf16_[i + 1] >= 0xDC00 && utf16_[i + 1] <= 0xDFFF;
        if (pair) {
            ++i;
        }
    }
    starts_.push_back(static_cast<std::int64_t>(utf16_.size()));
}

std::int64_t CodePointText::codePointCount() const {
    return starts_.empty() ? static_cast<std::int64_t>(utf16_.size())
                           : static_cast<std::int64_t>(starts_.size()) - 1;
}

std::int64_t CodePointText::utf16Offset(std::int64_t codePoint) const {
    codePoint = std::clamp<std::int64_t>(codePoint, 0, codePointCount());
    return starts_.empty() ? codePoint : starts_[static_cast<std::size_t>(codePoint)];
}

std::int64_t CodePointText::codePointOffset(std::int64_t utf16) const {
    utf16 = std::clamp<std::int64_t>(utf16, 0, static_cast<std::int64_t>(utf16_.size()));
    if (starts_.empty()) {
        return utf16;
    }
    auto after = std::upper_bound(starts_.begin(), starts_.end(), utf16);
    return static_cast<std::int64_t>(after - starts_.begin()) - 1;
}

} // namespace lectorbell::platform::atspi
