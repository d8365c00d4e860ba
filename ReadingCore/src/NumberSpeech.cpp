#include "lectorbell/NumberSpeech.hpp"

#include "Characters.hpp"
#include "GuardedRegex.hpp"

#include <vector>

namespace lectorbell::NumberSpeech {

namespace {

using detail::RegexRewrite;

// The table reader owns the number rules, so a broken pattern is reported under its name.
constexpr const char* owner = "ReadingCore/TableReading";

RegexRewrite rewrite(std::u16string_view pattern, std::u16string_view replacement, const char* name,
                     int line = __builtin_LINE()) {
    return RegexRewrite{detail::compileConstantPattern(pattern, 0, owner, line),
                        detail::readOnlyAlias(replacement), name};
}

const std::vector<RegexRewrite>& rules() {
    static const std::vector<RegexRewrite> list = [] {
        std::vector<RegexRewrite> r;
        r.push_back(rewrite(uR"((?<![\w.,])[−\-–](?=\d))", u"minus ", "minusSign"));
        r.push_back(rewrite(uR"((?<=\d)\s?[–—]\s?(?=\d))", u" to ", "range"));
        r.push_back(rewrite(uR"(±\s?)", u"plus or minus ", "plusMinus"));
        r.push_back(rewrite(uR"((\d)\s?K\b)", u"$1 thousand", "thousands"));
        r.push_back(rewrite(uR"((\d)\s?M\b)", u"$1 million", "millions"));
        r.push_back(rewrite(uR"((\d)\s?(?:B|bn)\b)", u"$1 billion", "billions"));
        r.push_back(rewrite(uR"((?<![\w])\((\d[\d,.]*)\)(?![\w]))", u"minus $1", "accounting"));
        return r;
    }();
    return list;
}

bool hasNumber(std::u16string_view text) {
    // An ASCII digit after ASCII starts a character of its own; only past the first non-ASCII
    // unit do characters need the full walk.
    std::size_t i = 0;
    for (; i < text.size() && text[i] < 128; ++i) {
        if (text[i] >= u'0' && text[i] <= u'9') {
            return true;
        }
    }
    if (i == text.size()) {
        return false;
    }
    std::u16string_view rest = text.substr(detail::asciiRunHandover(text, i));
    bool none = detail::forEachCharacter(rest, [](std::u16string_view character, std::size_t) {
        char16_t c = character[0];
        if (c < 128) {
            return !(c >= u'0' && c <= u'9');
        }
        return !detail::isNumberScalar(detail::firstScalar(character));
    });
    return !none;
}

} // namespace

std::u16string normalize(std::u16string_view text) {
    if (!hasNumber(text) || !detail::fitsIcu(text)) {
        return std::u16string{text};
    }
    icu::UnicodeString working = detail::readOnlyAlias(text);
    for (const RegexRewrite& rule : rules()) {
        detail::rewriteAll(working, rule, owner);
    }
    return detail::toU16(working);
}

} // namespace lectorbell::NumberSpeech
