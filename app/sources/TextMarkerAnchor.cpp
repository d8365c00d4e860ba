#include "sources/TextMarkerAnchor.hpp"

#include "lectorbell/Utf8.hpp"
#include "sources/TextSpace.hpp"
#include "sources/TreeQueries.hpp"

namespace lectorbell {

namespace {

constexpr std::size_t wordsCompared = 3;
constexpr std::size_t excerptUTF16 = 40;

// The first `count` whitespace-separated words of the text, joined by single spaces.
std::u16string leadingWords(std::u16string_view text, std::size_t count) {
    std::u16string words;
    std::size_t taken = 0;
    std::size_t i = 0;
    while (i < text.size() && taken < count) {
        while (i < text.size() && TextSpace::isSpace(text[i])) {
            ++i;
        }
        std::size_t start = i;
        while (i < text.size() && !TextSpace::isSpace(text[i])) {
            ++i;
        }
        if (i > start) {
            if (!words.empty()) {
                words += u' ';
            }
            words.append(text.substr(start, i - start));
            ++taken;
        }
    }
    return words;
}

} // namespace

std::optional<std::int64_t> alignStream(std::u16string_view leafText, std::u16string_view stream) {
    // Fewer words when the leaf ends soon after the pointed character.
    for (std::size_t count = wordsCompared; count >= 1; --count) {
        std::u16string words = leadingWords(stream, count);
        if (words.empty()) {
            return std::nullopt;
        }
        for (std::size_t at = 0; at < leafText.size(); ++at) {
            if (leadingWords(leafText.substr(at), count) == words &&
                (at == 0 || TextSpace::isSpace(leafText[at - 1]) ||
                 !TextSpace::isSpace(leafText[at]))) {
                std::size_t skip = at;
                while (skip < leafText.size() && TextSpace::isSpace(leafText[skip])) {
                    ++skip;
                }
                return static_cast<std::int64_t>(skip);
            }
        }
    }
    return std::nullopt;
}

std::optional<std::int64_t> textMarkerOffset(std::u16string_view leafText,
                                             const std::vector<ElementRef>& chain,
                                             ScreenPoint point, const WalkContext& context) {
    ElementRef webArea;
    for (const ElementRef& element : chain) {
        if (TreeQueries::hasRole(*element, "AXWebArea")) {
            webArea = element;
            break;
        }
    }
    std::set<std::string> queries;
    if (webArea) {
        queries = webArea->parameterizedNames();
    }
    bool position = queries.contains("AXTextMarkerForPosition");
    if (!position || !queries.contains("AXStringForTextMarkerRange")) {
        context.trace(std::string{"markers: not advertised (position="} +
                      (position ? "true" : "false") + ")");
        return std::nullopt;
    }
    AXAnswer<TextMarker> start = webArea->textMarkerForPosition(point);
    if (!start) {
        context.trace("markers: no marker at point");
        return std::nullopt;
    }
    AXAnswer<TextMarker> end = webArea->endTextMarker();
    if (!end) {
        context.trace("markers: no AXEndTextMarker");
        return std::nullopt;
    }
    bool unordered = queries.contains("AXTextMarkerRangeForUnorderedTextMarkers");
    AXAnswer<TextMarkerRange> range = webArea->textMarkerRange(*start, *end, unordered);
    if (!range) {
        context.trace("markers: range creation failed");
        return std::nullopt;
    }
    AXAnswer<std::u16string> stream = webArea->stringForTextMarkerRange(*range);
    if (!stream) {
        context.trace("markers: no string for range");
        return std::nullopt;
    }
    std::optional<std::int64_t> aligned = alignStream(leafText, *stream);
    context.trace("markers: stream " + std::to_string(stream->size()) +
                  " chars, aligned=" + (aligned ? std::to_string(*aligned) : std::string{"none"}));
    if (context.devLogExcerpts) {
        context.trace("markers excerpt: stream=\"" + toUtf8(stream->substr(0, excerptUTF16)) +
                      "\"");
    }
    return aligned;
}

} // namespace lectorbell
