#pragma once

// Paragraph building from hard-wrapped lines, usable a line at a time. Internal to ReadingCore.

#include <string>
#include <string_view>
#include <vector>

namespace lectorbell::detail {

// Calls visit(line) for every line of the text, split at LF, VT, FF, CR, CR LF, U+0085, U+2028
// and U+2029, empty lines kept. With dropFinalEmpty, a text that ends in a newline gives no
// empty line after it (for texts fed in pieces that end at line breaks).
template <class Visit>
void forEachLine(std::u16string_view text, bool dropFinalEmpty, Visit visit);

class ParagraphBuilder {
public:
    // Adds one line (untrimmed); completed paragraphs are appended to out.
    void addLine(std::u16string_view line, std::vector<std::u16string>& out);
    void finish(std::vector<std::u16string>& out);
    // Moves the unfinished paragraph out; false when there is none.
    bool takeOpen(std::u16string& paragraph);

private:
    void flush(std::vector<std::u16string>& out);

    std::u16string current_;
    bool hasCurrent_ = false;
};

inline bool isLineBreak(char16_t c) {
    return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

template <class Visit>
void forEachLine(std::u16string_view text, bool dropFinalEmpty, Visit visit) {
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!isLineBreak(text[i])) {
            continue;
        }
        visit(text.substr(start, i - start));
        if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') {
            ++i;
        }
        start = i + 1;
    }
    if (start < text.size() || !dropFinalEmpty) {
        visit(text.substr(start));
    }
}

} // namespace lectorbell::detail
