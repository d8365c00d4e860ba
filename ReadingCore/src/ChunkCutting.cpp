#include "DocumentMarkup.hpp"
#include "GraphemeBreaks.hpp"
#include "TextClasses.hpp"
#include "TextTrim.hpp"
#include "lectorbell/NumberSpeech.hpp"
#include "lectorbell/Pronunciations.hpp"
#include "lectorbell/TextSegmenter.hpp"

#include <array>
#include <optional>
#include <unicode/utf16.h>

namespace lectorbell::TextSegmenter {

namespace {

std::int64_t length(std::u16string_view s) {
    return static_cast<std::int64_t>(s.size());
}

std::u16string_view slice(std::u16string_view s, std::int64_t from, std::int64_t to) {
    return s.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from));
}

// The cut after the highest-priority pause mark (followed by a space) that lies past a third of
// the limit; a later mark of lower priority does not win over it.
std::optional<std::int64_t> pauseMarkCut(std::u16string_view text, std::int64_t m) {
    static constexpr std::array<char16_t, 5> marks{u';', u':', u',', u'\u2014', u'\u2013'};
    if (m < 2) {
        return std::nullopt;
    }
    std::u16string_view window = text.substr(0, static_cast<std::size_t>(m));
    for (char16_t mark : marks) {
        const char16_t pair[] = {mark, u' '};
        std::size_t found = window.rfind(std::u16string_view{pair, 2});
        if (found != std::u16string_view::npos && static_cast<std::int64_t>(found) > m / 3) {
            return static_cast<std::int64_t>(found) + 1;
        }
    }
    return std::nullopt;
}

std::optional<std::int64_t> lastSpaceCut(std::u16string_view text, std::int64_t m) {
    if (m < 1) {
        return std::nullopt;
    }
    std::size_t found = text.substr(0, static_cast<std::size_t>(m)).find_last_of(u" \t");
    if (found == std::u16string_view::npos || found == 0) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(found);
}

bool isBullet(char16_t c) {
    return c == u'\u2022' || c == u'\u25AA' || c == u'\u25E6' || c == u'\u25CF' || c == u'\u2023' ||
           c == u'\u2219';
}

bool isInvisible(char32_t c) {
    return c == 0x00AD || c == 0x200B || c == 0xFEFF;
}

// Chunk texts come from the segmenter, which has already read their document markup.
SpeechChunk chunkOf(std::u16string_view text, std::int64_t blockIndex) {
    return SpeechChunk{std::u16string{text},
                       detail::speechNormalized(text, detail::DocumentMarkup::removed), blockIndex};
}

} // namespace

std::vector<std::u16string> splitLong(std::u16string_view text, std::int64_t maxUTF16) {
    const std::int64_t m = maxUTF16;
    std::vector<std::u16string> pieces;
    std::u16string_view rest = text;
    while (length(rest) > m) {
        std::int64_t cut = pauseMarkCut(rest, m).value_or(
            lastSpaceCut(rest, m).value_or(UTF16Text::snapDown(m, rest)));
        // A space or mark can sit inside a character ("\u0601 " is one): cutting there would
        // leave the rest where it was, for ever.
        cut = UTF16Text::snapDown(cut, rest);
        if (cut <= 0) {
            cut = length(rest) < 2 ? length(rest) : UTF16Text::snapUp(1, rest);
        }
        std::u16string_view piece = detail::trimSpacesAndTabs(slice(rest, 0, cut));
        if (!piece.empty()) {
            pieces.emplace_back(piece);
        }
        rest = detail::trimSpacesAndTabs(
            rest.substr(static_cast<std::size_t>(UTF16Text::index(rest, cut))));
    }
    if (!rest.empty()) {
        pieces.emplace_back(rest);
    }
    return pieces;
}

std::u16string speechNormalized(std::u16string_view text) {
    return detail::speechNormalized(text, detail::DocumentMarkup::present);
}

} // namespace lectorbell::TextSegmenter

namespace lectorbell::detail {

std::u16string speechNormalized(std::u16string_view text, DocumentMarkup markup) {
    std::u16string collapsed;
    collapsed.reserve(text.size());
    bool lastWasSpace = false;
    for (std::size_t i = 0; i < text.size();) {
        char32_t c = detail::scalarAt(text, i);
        std::size_t width = U16_LENGTH(c);
        if (TextSegmenter::isInvisible(c)) {
            // Dropped outright: neither text nor a word break.
        } else if (detail::isWhitespaceOrNewline(c)) {
            if (!lastWasSpace && !collapsed.empty()) {
                collapsed += u' ';
                lastWasSpace = true;
            }
        } else {
            collapsed.append(text.substr(i, width));
            lastWasSpace = false;
        }
        i += width;
    }
    std::u16string spoken = cleanForSpeech(trimSpacesAndTabs(collapsed), markup);
    spoken = NumberSpeech::normalize(spoken);
    spoken = Pronunciations::apply(spoken);
    std::u16string_view result = spoken;
    while (!result.empty() && TextSegmenter::isBullet(result.front())) {
        result = trimSpacesAndTabs(result.substr(1));
    }
    return std::u16string{result};
}

} // namespace lectorbell::detail

namespace lectorbell::TextSegmenter {

std::vector<SpeechChunk> splitLeading(const SpeechChunk& chunk, std::int64_t maxUTF16,
                                      std::int64_t minUTF16) {
    static constexpr std::array<std::u16string_view, 5> marks{u", ", u"; ", u": ", u" \u2014 ",
                                                              u" \u2013 "};
    std::u16string_view text = chunk.text;
    const std::int64_t total = length(text);
    if (maxUTF16 >= total) {
        return {chunk};
    }
    const std::int64_t from = std::max<std::int64_t>(minUTF16, 0);
    const std::int64_t to = std::min(total, maxUTF16);
    std::optional<std::int64_t> cut;
    if (from < to) {
        std::u16string_view window = slice(text, from, to);
        for (std::u16string_view mark : marks) {
            std::size_t found = window.find(mark);
            if (found != std::u16string_view::npos) {
                std::int64_t end = from + static_cast<std::int64_t>(found + mark.size());
                cut = cut ? std::min(*cut, end) : end;
            }
        }
    }
    if (!cut || *cut >= total - minUTF16) {
        return {chunk};
    }
    SpeechChunk head = chunkOf(detail::trimSpacesAndTabs(slice(text, 0, *cut)), chunk.blockIndex);
    SpeechChunk tail =
        chunkOf(detail::trimSpacesAndTabs(slice(text, *cut, total)), chunk.blockIndex);
    // A head or tail with nothing to say would leave a silent utterance: keep the chunk whole.
    if (head.spokenText.empty() || tail.spokenText.empty()) {
        return {chunk};
    }
    return {std::move(head), std::move(tail)};
}

} // namespace lectorbell::TextSegmenter
