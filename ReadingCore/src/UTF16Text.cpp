#include "lectorbell/UTF16Text.hpp"

#include "GraphemeBreaks.hpp"

#include <algorithm>

namespace lectorbell::UTF16Text {

namespace {

std::int64_t length(std::u16string_view s) {
    return static_cast<std::int64_t>(s.size());
}

} // namespace

std::int64_t snapDown(std::int64_t i, std::u16string_view s) {
    if (i < 1) {
        return 0;
    }
    if (i >= length(s)) {
        return length(s);
    }
    return detail::graphemeStartAtOrBefore(s, i);
}

std::int64_t snapUp(std::int64_t i, std::u16string_view s) {
    if (i < 1) {
        return 0;
    }
    if (i >= length(s)) {
        return length(s);
    }
    return detail::graphemeEndAtOrAfter(s, i);
}

std::optional<UTF16Range> clamp(UTF16Range range, std::int64_t n) {
    if (range.location < 0 || range.location == UTF16Range::notFound || range.length < 0 || n < 0) {
        return std::nullopt;
    }
    std::int64_t start = std::min(range.location, n);
    std::int64_t end = 0;
    if (__builtin_add_overflow(range.location, range.length, &end) || end > n) {
        end = n;
    }
    return UTF16Range{start, std::max<std::int64_t>(end - start, 0)};
}

std::optional<std::u16string> substring(std::u16string_view s, UTF16Range range) {
    std::optional<UTF16Range> clamped = clamp(range, length(s));
    if (!clamped) {
        return std::nullopt;
    }
    std::int64_t start = snapDown(clamped->location, s);
    std::int64_t end = snapUp(clamped->end(), s);
    if (end < start) {
        return std::nullopt;
    }
    return std::u16string{
        s.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start))};
}

std::int64_t index(std::u16string_view s, std::int64_t utf16Offset) {
    return snapDown(utf16Offset, s);
}

std::u16string suffix(std::u16string_view s, std::int64_t fromUTF16) {
    return std::u16string{s.substr(static_cast<std::size_t>(index(s, fromUTF16)))};
}

} // namespace lectorbell::UTF16Text
