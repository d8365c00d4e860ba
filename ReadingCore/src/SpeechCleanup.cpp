#include "lectorbell/SpeechCleanup.hpp"

#include "DocumentMarkup.hpp"
#include "GuardedRegex.hpp"
#include "ReferenceMarkers.hpp"
#include "SymbolFilter.hpp"

#include <array>
#include <vector>

namespace lectorbell::SpeechCleanup {

std::atomic<bool> enabled{true};

namespace {

using detail::compileConstantPattern;
using detail::RegexRewrite;

constexpr const char* owner = "ReadingCore/SpeechCleanup";

RegexRewrite rewrite(std::u16string_view pattern, uint32_t flags, std::u16string_view replacement,
                     const char* name, int line = __builtin_LINE()) {
    return RegexRewrite{compileConstantPattern(pattern, flags, owner, line),
                        detail::readOnlyAlias(replacement), name};
}

// Links first (so their paths cannot look like markup), then markdown and wiki marks, in order.
const std::vector<RegexRewrite>& markupRewrites() {
    static const std::vector<RegexRewrite> rules = [] {
        constexpr uint32_t lines = UREGEX_MULTILINE;
        std::vector<RegexRewrite> r;
        r.push_back(rewrite(uR"(https?://(?:www\.)?([^/\s?#]+)[^\s]*)", UREGEX_CASE_INSENSITIVE,
                            u"link to $1", "links"));
        r.push_back(rewrite(uR"(\*\*(.+?)\*\*)", 0, u"$1", "boldAsterisks"));
        r.push_back(rewrite(uR"(__(.+?)__)", 0, u"$1", "boldUnderscores"));
        r.push_back(rewrite(uR"((?<![\w*])\*(?=\S)([^*\n]+?)(?<=\S)\*(?![\w*]))", 0, u"$1",
                            "italicAsterisks"));
        r.push_back(rewrite(uR"(^\s{0,3}#{1,6}\s+)", lines, u"", "headingMarks"));
        r.push_back(rewrite(uR"(^\s{0,3}>\s+)", lines, u"", "quoteMarks"));
        r.push_back(rewrite(uR"(^\s{0,3}[-*+]\s+(?=\S))", lines, u"", "listBullets"));
        r.push_back(rewrite(uR"(([^\w\s.])\1{2,})", 0, u" ", "repeatedSymbols"));
        return r;
    }();
    return rules;
}

const RegexRewrite& identifierUnderscores() {
    static const RegexRewrite rule =
        rewrite(uR"((?<=[\p{L}\p{N}])_(?=[\p{L}\p{N}]))", 0, u" ", "identifierUnderscores");
    return rule;
}

const RegexRewrite& pipeCells() {
    static const RegexRewrite rule = rewrite(uR"(\s*\|\s*)", 0, u", ", "pipeTable");
    return rule;
}

// After the symbol filter: tidy the spacing and separators it and the markup rules leave.
const std::vector<RegexRewrite>& spacingRewrites() {
    static const std::vector<RegexRewrite> rules = [] {
        std::vector<RegexRewrite> r;
        r.push_back(rewrite(uR"(\s+([,.;:!?]))", 0, u"$1", "spaceBeforePunctuation"));
        r.push_back(rewrite(uR"(([,;:])(?:\s*[,;:])+)", 0, u"$1", "separatorRuns"));
        r.push_back(rewrite(uR"(^[\s,;:]+|\s+$)", 0, u"", "trimEnds"));
        r.push_back(rewrite(uR"(\s{2,})", 0, u" ", "whitespaceRuns"));
        return r;
    }();
    return rules;
}

bool isPipeTrimmed(char16_t c) {
    return c == u'|' || c == u' ' || c == u'\t';
}

// A markdown table row "| a | b |" reads "a, b". Trims the whole text, not each line.
void readPipeTable(icu::UnicodeString& text) {
    std::u16string_view view = detail::viewOf(text);
    std::size_t start = 0;
    std::size_t end = view.size();
    while (start < end && isPipeTrimmed(view[start])) {
        ++start;
    }
    while (end > start && isPipeTrimmed(view[end - 1])) {
        --end;
    }
    text = icu::UnicodeString(text, static_cast<int32_t>(start), static_cast<int32_t>(end - start));
    detail::rewriteAll(text, pipeCells(), owner);
}

// The rules from links on, for a text that needs them.
std::u16string applyRules(std::u16string_view text) {
    icu::UnicodeString working = detail::readOnlyAlias(text);
    for (const RegexRewrite& rule : markupRewrites()) {
        detail::rewriteAll(working, rule, owner);
    }
    detail::rewriteAll(working, detail::referenceMarkerRewrite(), owner);
    detail::rewriteAll(working, identifierUnderscores(), owner);
    if (detail::countPipes(detail::viewOf(working)) > 1) {
        readPipeTable(working);
    }
    std::u16string filtered = detail::filterSymbols(detail::viewOf(working));
    working = detail::copyOf(filtered);
    for (const RegexRewrite& rule : spacingRewrites()) {
        detail::rewriteAll(working, rule, owner);
    }
    return detail::toU16(working);
}

} // namespace

std::u16string clean(std::u16string_view text) {
    return detail::cleanForSpeech(text, detail::DocumentMarkup::present);
}

std::u16string removingReferenceMarkers(std::u16string_view text) {
    if (!enabled.load(std::memory_order_relaxed)) {
        return std::u16string{text};
    }
    return detail::removeReferenceMarkers(text);
}

} // namespace lectorbell::SpeechCleanup

namespace lectorbell::detail {

std::u16string cleanForSpeech(std::u16string_view text, DocumentMarkup markup) {
    if (!SpeechCleanup::enabled.load(std::memory_order_relaxed) || text.empty() ||
        !mayNeedCleanup(text) || !fitsIcu(text)) {
        return std::u16string{text};
    }
    const CleanupNeeds needs = cleanupNeeds(text);
    if (markup == DocumentMarkup::present && needs.documentMarkup) {
        // Markdown and HTML first, so that no address inside a markdown link is read as a link.
        std::u16string visible = removeDocumentMarkup(text, Layout::flat);
        if (visible == text && !needs.attention) {
            return visible;
        }
        // The rules also tidy the spacing that removed markup leaves behind.
        return SpeechCleanup::applyRules(visible);
    }
    if (!needs.attention) {
        return std::u16string{text};
    }
    return SpeechCleanup::applyRules(text);
}

} // namespace lectorbell::detail
