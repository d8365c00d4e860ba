#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace lectorbell::platform::atspi {

// Text as AT-SPI gives it (UTF-8, offsets in code points) held as UTF-16, with the conversion
// between the two kinds of offset.
class CodePointText {
public:
    CodePointText() = default;
    explicit CodePointText(std::string_view utf8);

    const std::u16string& utf16() const { return utf16_; }
    std::int64_t codePointCount() const;
    // Both clamp into the text; a UTF-16 offset inside a surrogate pair maps to its code point.
    std::int64_t utf16Offset(std::int64_t codePoint) const;
    std::int64_t codePointOffset(std::int64_t utf16) const;

private:
    std::u16string utf16_;
    // UTF-16 offset of each code point and of the end; empty when the two offsets agree (no
    // character outside the Basic Multilingual Plane), which is the common case.
    std::vector<std::int64_t> starts_;
};

} // namespace lectorbell::platform::atspi
