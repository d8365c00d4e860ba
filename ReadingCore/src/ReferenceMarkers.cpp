#include "ReferenceMarkers.hpp"

namespace lectorbell::detail {

namespace {

constexpr const char* owner = "ReadingCore/SpeechCleanup";

} // namespace

const RegexRewrite& referenceMarkerRewrite() {
    static const RegexRewrite rewrite{
        compileConstantPattern(
            uR"(\[(?:\d{1,3}(?:[,–-]\d{1,3})*|[a-z]|citation needed|edit|note \d+|clarification needed)\])",
            UREGEX_CASE_INSENSITIVE, owner),
        icu::UnicodeString{}, "citationMarks"};
    return rewrite;
}

const RegexRewrite& spacedReferenceMarkerRewrite() {
    static const RegexRewrite rewrite{
        compileConstantPattern(
            uR"(\s?\[(?:\d{1,3}(?:[,–-]\d{1,3})*|[a-z]|citation needed|edit|note \d+|clarification needed)\])",
            UREGEX_CASE_INSENSITIVE, owner),
        icu::UnicodeString{}, "referenceMarkers"};
    return rewrite;
}

std::u16string removeReferenceMarkers(std::u16string_view text) {
    if (text.find(u'[') == std::u16string_view::npos || !fitsIcu(text)) {
        return std::u16string{text};
    }
    icu::UnicodeString working{readOnlyAlias(text)};
    if (!rewriteAll(working, spacedReferenceMarkerRewrite(), owner)) {
        return std::u16string{text};
    }
    return toU16(working);
}

} // namespace lectorbell::detail
