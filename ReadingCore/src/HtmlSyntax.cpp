#include "MarkupSyntax.hpp"

#include <algorithm>
#include <array>
#include <unicode/utf16.h>

namespace lectorbell::detail {

namespace {

struct Element {
    std::u16string_view name;
    TagKind kind;
};

constexpr TagKind inl = TagKind::inlineElement;
constexpr TagKind blk = TagKind::blockElement;

// The elements READMEs and notes use, by what each leaves in the text. A name not listed is
// not taken for a tag ("vector<int>", "<T>" stay as written).
constexpr auto elements = std::to_array<Element>({
    {u"a", inl},       {u"abbr", inl},       {u"address", blk},
    {u"article", blk}, {u"aside", blk},      {u"audio", inl},
    {u"b", inl},       {u"bdi", inl},        {u"bdo", inl},
    {u"big", inl},     {u"blockquote", blk}, {u"br", TagKind::lineBreak},
    {u"caption", blk}, {u"center", blk},     {u"cite", inl},
    {u"code", inl},    {u"data", inl},       {u"dd", blk},
    {u"del", inl},     {u"details", blk},    {u"dfn", inl},
    {u"div", blk},     {u"dl", blk},         {u"dt", blk},
    {u"em", inl},      {u"figcaption", blk}, {u"figure", blk},
    {u"font", inl},    {u"footer", blk},     {u"h1", blk},
    {u"h2", blk},      {u"h3", blk},         {u"h4", blk},
    {u"h5", blk},      {u"h6", blk},         {u"header", blk},
    {u"hr", blk},      {u"i", inl},          {u"img", TagKind::image},
    {u"ins", inl},     {u"kbd", inl},        {u"li", blk},
    {u"main", blk},    {u"mark", inl},       {u"nav", blk},
    {u"ol", blk},      {u"p", blk},          {u"picture", inl},
    {u"pre", blk},     {u"q", inl},          {u"s", inl},
    {u"samp", inl},    {u"section", blk},    {u"small", inl},
    {u"source", inl},  {u"span", inl},       {u"strike", inl},
    {u"strong", inl},  {u"sub", inl},        {u"summary", blk},
    {u"sup", inl},     {u"table", blk},      {u"tbody", blk},
    {u"td", blk},      {u"tfoot", blk},      {u"th", blk},
    {u"thead", blk},   {u"time", inl},       {u"tr", blk},
    {u"tt", inl},      {u"u", inl},          {u"ul", blk},
    {u"var", inl},     {u"video", inl},      {u"wbr", inl},
});

struct NamedEntity {
    std::u16string_view name;
    char32_t character;
};

// The named entities that turn up in hand-written pages; others are read as written.
constexpr auto namedEntities = std::to_array<NamedEntity>({
    {u"amp", U'&'},         {u"lt", U'<'},          {u"gt", U'>'},          {u"quot", U'"'},
    {u"apos", U'\''},       {u"nbsp", U'\u00A0'},   {u"ensp", U'\u2002'},   {u"emsp", U'\u2003'},
    {u"thinsp", U'\u2009'}, {u"zwnj", U'\u200C'},   {u"zwj", U'\u200D'},    {u"lrm", U'\u200E'},
    {u"rlm", U'\u200F'},    {u"shy", U'\u00AD'},    {u"ndash", U'\u2013'},  {u"mdash", U'\u2014'},
    {u"lsquo", U'\u2018'},  {u"rsquo", U'\u2019'},  {u"sbquo", U'\u201A'},  {u"ldquo", U'\u201C'},
    {u"rdquo", U'\u201D'},  {u"bdquo", U'\u201E'},  {u"laquo", U'\u00AB'},  {u"raquo", U'\u00BB'},
    {u"lsaquo", U'\u2039'}, {u"rsaquo", U'\u203A'}, {u"hellip", U'\u2026'}, {u"bull", U'\u2022'},
    {u"middot", U'\u00B7'}, {u"dagger", U'\u2020'}, {u"Dagger", U'\u2021'}, {u"prime", U'\u2032'},
    {u"Prime", U'\u2033'},  {u"copy", U'\u00A9'},   {u"reg", U'\u00AE'},    {u"trade", U'\u2122'},
    {u"deg", U'\u00B0'},    {u"plusmn", U'\u00B1'}, {u"times", U'\u00D7'},  {u"divide", U'\u00F7'},
    {u"minus", U'\u2212'},  {u"le", U'\u2264'},     {u"ge", U'\u2265'},     {u"ne", U'\u2260'},
    {u"asymp", U'\u2248'},  {u"infin", U'\u221E'},  {u"larr", U'\u2190'},   {u"uarr", U'\u2191'},
    {u"rarr", U'\u2192'},   {u"darr", U'\u2193'},   {u"harr", U'\u2194'},   {u"lArr", U'\u21D0'},
    {u"rArr", U'\u21D2'},   {u"hArr", U'\u21D4'},   {u"euro", U'\u20AC'},   {u"pound", U'\u00A3'},
    {u"yen", U'\u00A5'},    {u"cent", U'\u00A2'},   {u"sect", U'\u00A7'},   {u"para", U'\u00B6'},
    {u"iexcl", U'\u00A1'},  {u"iquest", U'\u00BF'}, {u"frac12", U'\u00BD'}, {u"frac14", U'\u00BC'},
    {u"frac34", U'\u00BE'}, {u"sup1", U'\u00B9'},   {u"sup2", U'\u00B2'},   {u"sup3", U'\u00B3'},
    {u"micro", U'\u00B5'},  {u"check", U'\u2713'},  {u"star", U'\u2606'},   {u"hearts", U'\u2665'},
    {u"aacute", U'\u00E1'}, {u"agrave", U'\u00E0'}, {u"acirc", U'\u00E2'},  {u"auml", U'\u00E4'},
    {u"aring", U'\u00E5'},  {u"ccedil", U'\u00E7'}, {u"eacute", U'\u00E9'}, {u"egrave", U'\u00E8'},
    {u"ecirc", U'\u00EA'},  {u"euml", U'\u00EB'},   {u"iacute", U'\u00ED'}, {u"iuml", U'\u00EF'},
    {u"ntilde", U'\u00F1'}, {u"oacute", U'\u00F3'}, {u"ocirc", U'\u00F4'},  {u"ouml", U'\u00F6'},
    {u"oslash", U'\u00F8'}, {u"uacute", U'\u00FA'}, {u"uuml", U'\u00FC'},   {u"szlig", U'\u00DF'},
    {u"Aacute", U'\u00C1'}, {u"Auml", U'\u00C4'},   {u"Eacute", U'\u00C9'}, {u"Ouml", U'\u00D6'},
    {u"Uuml", U'\u00DC'},   {u"Ccedil", U'\u00C7'}, {u"Ntilde", U'\u00D1'},
});

template <class Entry, std::size_t N>
std::array<Entry, N> sortedByName(std::array<Entry, N> entries) {
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return a.name < b.name; });
    return entries;
}

template <class Entry, std::size_t N>
const Entry* findByName(const std::array<Entry, N>& sorted, std::u16string_view name) {
    auto it = std::lower_bound(sorted.begin(), sorted.end(), name,
                               [](const Entry& e, std::u16string_view n) { return e.name < n; });
    return it != sorted.end() && it->name == name ? &*it : nullptr;
}

bool isAsciiLetter(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}
bool isAsciiDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}
bool isAsciiAlphanumeric(char16_t c) {
    return isAsciiLetter(c) || isAsciiDigit(c);
}
char16_t asciiLower(char16_t c) {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c - u'A' + u'a') : c;
}
bool isHtmlSpace(char16_t c) {
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\f';
}
void skipHtmlSpace(std::u16string_view s, std::size_t& i) {
    while (i < s.size() && isHtmlSpace(s[i])) {
        ++i;
    }
}

std::optional<TagKind> elementKind(std::u16string_view name) {
    static const auto sorted = sortedByName(elements);
    constexpr std::size_t longestName = 10;
    if (name.size() > longestName) {
        return std::nullopt;
    }
    std::array<char16_t, longestName> lower{};
    std::transform(name.begin(), name.end(), lower.begin(), asciiLower);
    const Element* found = findByName(sorted, std::u16string_view{lower.data(), name.size()});
    return found ? std::optional{found->kind} : std::nullopt;
}

// An attribute value after "=": quoted, or a run without spaces, quotes, "=", "<", ">" or "`".
std::optional<std::u16string_view> attributeValue(std::u16string_view s, std::size_t& i) {
    if (i >= s.size()) {
        return std::nullopt;
    }
    if (s[i] == u'"' || s[i] == u'\'') {
        std::size_t close = s.find(s[i], i + 1);
        if (close == std::u16string_view::npos) {
            return std::nullopt;
        }
        std::u16string_view value = s.substr(i + 1, close - i - 1);
        i = close + 1;
        return value;
    }
    std::size_t start = i;
    while (i < s.size() && !isHtmlSpace(s[i]) && s[i] != u'"' && s[i] != u'\'' && s[i] != u'=' &&
           s[i] != u'<' && s[i] != u'>' && s[i] != u'`') {
        ++i;
    }
    if (i == start) {
        return std::nullopt;
    }
    return s.substr(start, i - start);
}

// Attributes that HTML writes without a value.
bool isBooleanAttribute(std::u16string_view name) {
    static constexpr std::array<std::u16string_view, 12> names{
        u"async",  u"autoplay", u"checked", u"controls", u"defer",    u"disabled",
        u"hidden", u"loop",     u"muted",   u"open",     u"readonly", u"selected"};
    return std::any_of(names.begin(), names.end(),
                       [&](std::u16string_view n) { return equalsIgnoringAsciiCase(name, n); });
}

bool startsAttributeName(char16_t c) {
    return isAsciiLetter(c) || c == u'_' || c == u':';
}
bool continuesAttributeName(char16_t c) {
    return isAsciiAlphanumeric(c) || c == u'_' || c == u'.' || c == u':' || c == u'-';
}

// The attributes and the end of an opening tag, from just after its name.
std::optional<std::size_t> openingTagEnd(std::u16string_view s, std::size_t i, HtmlTag& tag) {
    for (;;) {
        const std::size_t spaceStart = i;
        skipHtmlSpace(s, i);
        if (i < s.size() && s[i] == u'>') {
            return i + 1;
        }
        if (i + 1 < s.size() && s[i] == u'/' && s[i + 1] == u'>') {
            return i + 2;
        }
        if (i == spaceStart || i >= s.size() || !startsAttributeName(s[i])) {
            return std::nullopt;
        }
        const std::size_t nameStart = i;
        while (i < s.size() && continuesAttributeName(s[i])) {
            ++i;
        }
        std::u16string_view name = s.substr(nameStart, i - nameStart);
        std::size_t j = i;
        skipHtmlSpace(s, j);
        if (j >= s.size() || s[j] != u'=') {
            // Words in prose ("a<b and c>d") are not taken for attributes without values.
            if (!isBooleanAttribute(name)) {
                return std::nullopt;
            }
        } else {
            ++j;
            skipHtmlSpace(s, j);
            std::optional<std::u16string_view> value = attributeValue(s, j);
            if (!value) {
                return std::nullopt;
            }
            if (tag.kind == TagKind::image && equalsIgnoringAsciiCase(name, u"alt")) {
                tag.alt = *value;
            }
            i = j;
        }
    }
}

void appendScalar(char32_t c, std::u16string& out) {
    if (c <= 0xFFFF) {
        out += static_cast<char16_t>(c);
    } else {
        out += static_cast<char16_t>(U16_LEAD(c));
        out += static_cast<char16_t>(U16_TRAIL(c));
    }
}

std::optional<std::size_t> numericEntityEnd(std::u16string_view s, std::size_t i,
                                            std::u16string& out) {
    const bool hex = i < s.size() && (s[i] == u'x' || s[i] == u'X');
    i += hex ? 1 : 0;
    const std::size_t maxDigits = hex ? 6 : 7;
    const std::size_t start = i;
    char32_t value = 0;
    for (; i < s.size() && i - start < maxDigits; ++i) {
        char16_t c = s[i];
        int digit = isAsciiDigit(c)                 ? c - u'0'
                    : hex && c >= u'a' && c <= u'f' ? c - u'a' + 10
                    : hex && c >= u'A' && c <= u'F' ? c - u'A' + 10
                                                    : -1;
        if (digit < 0) {
            break;
        }
        value = value * (hex ? 16 : 10) + static_cast<char32_t>(digit);
    }
    if (i == start || i >= s.size() || s[i] != u';') {
        return std::nullopt;
    }
    const bool valid = value != 0 && value <= 0x10FFFF && !U_IS_SURROGATE(value);
    appendScalar(valid ? value : U'\uFFFD', out);
    return i + 1;
}

} // namespace

std::optional<HtmlTag> htmlTagAt(std::u16string_view s, std::size_t at) {
    std::size_t i = at + 1;
    const bool closing = i < s.size() && s[i] == u'/';
    i += closing ? 1 : 0;
    const std::size_t nameStart = i;
    if (i >= s.size() || !isAsciiLetter(s[i])) {
        return std::nullopt;
    }
    while (i < s.size() && (isAsciiAlphanumeric(s[i]) || s[i] == u'-')) {
        ++i;
    }
    std::optional<TagKind> kind = elementKind(s.substr(nameStart, i - nameStart));
    if (!kind) {
        return std::nullopt;
    }
    HtmlTag tag{0, *kind, {}};
    if (closing) {
        skipHtmlSpace(s, i);
        if (i >= s.size() || s[i] != u'>') {
            return std::nullopt;
        }
        // A closing image tag has nothing to describe.
        tag.kind = *kind == TagKind::image ? TagKind::inlineElement : *kind;
        tag.end = i + 1;
        return tag;
    }
    std::optional<std::size_t> end = openingTagEnd(s, i, tag);
    if (!end) {
        return std::nullopt;
    }
    tag.end = *end;
    return tag;
}

std::optional<std::size_t> autolinkEnd(std::u16string_view s, std::size_t at) {
    std::size_t i = at + 1;
    // "<scheme:anything but spaces and angle brackets>", the scheme 2 to 32 characters long.
    if (i < s.size() && isAsciiLetter(s[i])) {
        std::size_t j = i + 1;
        while (j < s.size() && j - i < 32 &&
               (isAsciiAlphanumeric(s[j]) || s[j] == u'+' || s[j] == u'.' || s[j] == u'-')) {
            ++j;
        }
        if (j - i >= 2 && j < s.size() && s[j] == u':') {
            for (++j; j < s.size() && s[j] > u' ' && s[j] != u'<' && s[j] != u'>'; ++j) {
            }
            if (j < s.size() && s[j] == u'>') {
                return j + 1;
            }
        }
    }
    // "<name@host.example>".
    constexpr std::u16string_view localExtras = u".!#$%&'*+/=?^_`{|}~-";
    std::size_t j = i;
    while (j < s.size() &&
           (isAsciiAlphanumeric(s[j]) || localExtras.find(s[j]) != localExtras.npos)) {
        ++j;
    }
    if (j == i || j >= s.size() || s[j] != u'@') {
        return std::nullopt;
    }
    const std::size_t host = ++j;
    while (j < s.size() && (isAsciiAlphanumeric(s[j]) || s[j] == u'-' || s[j] == u'.')) {
        ++j;
    }
    if (j == host || j >= s.size() || s[j] != u'>') {
        return std::nullopt;
    }
    return j + 1;
}

std::optional<std::size_t> appendEntity(std::u16string_view s, std::size_t at,
                                        std::u16string& out) {
    std::size_t i = at + 1;
    if (i < s.size() && s[i] == u'#') {
        return numericEntityEnd(s, i + 1, out);
    }
    static const auto sorted = sortedByName(namedEntities);
    constexpr std::size_t longestName = 32;
    const std::size_t start = i;
    while (i < s.size() && i - start < longestName && isAsciiAlphanumeric(s[i])) {
        ++i;
    }
    if (i == start || i >= s.size() || s[i] != u';') {
        return std::nullopt;
    }
    const NamedEntity* entity = findByName(sorted, s.substr(start, i - start));
    if (entity == nullptr) {
        return std::nullopt;
    }
    appendScalar(entity->character, out);
    return i + 1;
}

std::u16string decodeEntities(std::u16string_view s) {
    std::u16string out;
    out.reserve(s.size());
    for (std::size_t i = 0; i < s.size();) {
        std::optional<std::size_t> end = s[i] == u'&' ? appendEntity(s, i, out) : std::nullopt;
        if (end) {
            i = *end;
        } else {
            out += s[i++];
        }
    }
    return out;
}

} // namespace lectorbell::detail
