#include "DocumentMarkup.hpp"

#include "MarkupSyntax.hpp"
#include "Paragraphs.hpp"

#include <algorithm>
#include <array>

namespace lectorbell::detail {

namespace {

// A run of prose with no blank line in it is still cut after this many units past the place
// where the caller asked to stop, so a document without paragraphs is read in pieces too.
constexpr std::size_t longestOverrun = std::size_t{32} * 1024;

bool isBlank(std::u16string_view line) {
    return std::all_of(line.begin(), line.end(), isSpaceOrTab);
}

struct FenceLine {
    char16_t mark;
    std::size_t length;
};

// "```lang" or "~~~": three or more of the same mark, for backticks with no backtick after.
std::optional<FenceLine> fenceOpening(std::u16string_view line, bool deepIndentAllowed) {
    const Indent indent = indentOf(line);
    if ((indent.columns > 3 && !deepIndentAllowed) || indent.end >= line.size()) {
        return std::nullopt;
    }
    const char16_t mark = line[indent.end];
    if (mark != u'`' && mark != u'~') {
        return std::nullopt;
    }
    std::size_t end = indent.end;
    while (end < line.size() && line[end] == mark) {
        ++end;
    }
    const std::size_t length = end - indent.end;
    if (length < 3 || (mark == u'`' && line.find(u'`', end) != std::u16string_view::npos)) {
        return std::nullopt;
    }
    return FenceLine{mark, length};
}

bool closesFence(std::u16string_view line, char16_t mark, std::size_t length) {
    std::size_t i = indentOf(line).end;
    const std::size_t start = i;
    while (i < line.size() && line[i] == mark) {
        ++i;
    }
    return i - start >= length && isBlank(line.substr(i));
}

// "- item", "* item", "+ item", "1. item", "2) item".
bool isListItem(std::u16string_view line) {
    std::size_t i = indentOf(line).end;
    auto markEnds = [&](std::size_t at) { return at >= line.size() || isSpaceOrTab(line[at]); };
    if (i < line.size() && (line[i] == u'-' || line[i] == u'*' || line[i] == u'+')) {
        return markEnds(i + 1);
    }
    const std::size_t digits = i;
    while (i < line.size() && i - digits < 10 && line[i] >= u'0' && line[i] <= u'9') {
        ++i;
    }
    return i > digits && i < line.size() && (line[i] == u'.' || line[i] == u')') && markEnds(i + 1);
}

bool indentedAsCode(std::u16string_view run) {
    bool code = true;
    forEachLine(run, true,
                [&](std::u16string_view line) { code = code && indentOf(line).columns >= 4; });
    return code;
}

constexpr std::array<bool, 128> documentHints = [] {
    std::array<bool, 128> hints{};
    for (char16_t c : documentMarkupHints) {
        hints[c] = true;
    }
    return hints;
}();

// Where the line starting at `pos` ends, and where the next one starts.
struct LineBounds {
    std::size_t end;
    std::size_t next;
};
LineBounds lineAt(std::u16string_view text, std::size_t pos) {
    std::size_t end = pos;
    while (end < text.size() && !isLineBreak(text[end])) {
        ++end;
    }
    if (end == text.size()) {
        return {end, end};
    }
    const bool crlf = text[end] == u'\r' && end + 1 < text.size() && text[end + 1] == u'\n';
    return {end, end + (crlf ? 2 : 1)};
}

} // namespace

DocumentReader::DocumentReader(std::u16string_view text, Layout layout)
    : text_(text)
    , layout_(layout)
    , labels_(text) {}

void DocumentReader::noteContentLine(std::u16string_view line) {
    if (isListItem(line)) {
        codeMayFollow_ = false;
    } else if (indentOf(line).columns < 2) {
        codeMayFollow_ = true;
    }
    // A line indented under the lines before it keeps their context.
}

void DocumentReader::flushRun(std::size_t end, std::u16string& out) {
    if (runStart_ == none) {
        return;
    }
    std::u16string_view run = text_.substr(runStart_, end - runStart_);
    runStart_ = none;
    if (runAfterBlank_ && runCodeMayFollow_ && indentedAsCode(run)) {
        out.append(run);
        return;
    }
    appendInlineText(run, labels_, layout_, out);
}

// A comment that starts a line, on that line or over several: silent, with its line breaks
// kept. Comments inside a paragraph are left to the inline reading.
bool DocumentReader::readCommentBlock(std::size_t& pos, std::size_t lineEnd, std::u16string& out) {
    const Indent indent = indentOf(text_.substr(pos, lineEnd - pos));
    const std::size_t start = pos + indent.end;
    if (indent.columns > 3 || text_.substr(start, 4) != u"<!--" || start >= unclosedCommentFrom_) {
        return false;
    }
    const std::size_t close = text_.find(u"-->", start + 4);
    if (close == std::u16string_view::npos) {
        // Nor will any comment that opens later: all of them are read as text.
        unclosedCommentFrom_ = start;
        return false;
    }
    const std::size_t closeEnd = close + 3;
    for (std::size_t i = lineEnd; i < closeEnd; ++i) {
        if (isLineBreak(text_[i])) {
            out += text_[i];
        }
    }
    // What follows the comment on its last line is read as a line of its own.
    pos = closeEnd;
    return true;
}

std::size_t DocumentReader::read(std::size_t from, std::size_t soonest, std::u16string& out) {
    std::size_t pos = from;
    while (pos < text_.size()) {
        const LineBounds bounds = lineAt(text_, pos);
        std::u16string_view line = text_.substr(pos, bounds.end - pos);
        std::u16string_view lineBreak = text_.substr(bounds.end, bounds.next - bounds.end);
        if (fence_) {
            if (closesFence(line, fence_->mark, fence_->length)) {
                out.append(lineBreak);
                fence_.reset();
            } else {
                out.append(text_.substr(pos, bounds.next - pos));
            }
            afterBlank_ = false;
        } else if (isBlank(line)) {
            flushRun(pos, out);
            out.append(text_.substr(pos, bounds.next - pos));
            afterBlank_ = true;
        } else if (std::optional<FenceLine> opening = fenceOpening(line, !codeMayFollow_)) {
            flushRun(pos, out);
            out.append(lineBreak);
            fence_ = Fence{opening->mark, opening->length};
            afterBlank_ = false;
        } else if (runStart_ == none && definitionLabel(line)) {
            out.append(lineBreak);
            afterBlank_ = false;
        } else if (runStart_ == none && readCommentBlock(pos, bounds.end, out)) {
            afterBlank_ = false;
            continue;
        } else {
            if (runStart_ == none) {
                runStart_ = pos;
                runAfterBlank_ = afterBlank_;
                runCodeMayFollow_ = codeMayFollow_;
            }
            noteContentLine(line);
            afterBlank_ = false;
        }
        pos = bounds.next;
        if (pos >= soonest && (pos >= text_.size() || text_[pos] != u'[')) {
            if (runStart_ == none) {
                return pos;
            }
            if (pos - soonest >= longestOverrun) {
                flushRun(pos, out);
                return pos;
            }
        }
    }
    flushRun(text_.size(), out);
    return text_.size();
}

void DocumentReader::skipPlain(std::size_t from, std::size_t to) {
    // Only the last lines matter for what may follow: walk back to the one that settles it.
    bool last = true;
    for (std::size_t end = to; end > from;) {
        std::size_t lineEnd = end;
        if (isLineBreak(text_[lineEnd - 1])) {
            --lineEnd;
            if (text_[lineEnd] == u'\n' && lineEnd > from && text_[lineEnd - 1] == u'\r') {
                --lineEnd;
            }
        }
        std::size_t start = lineEnd;
        while (start > from && !isLineBreak(text_[start - 1])) {
            --start;
        }
        std::u16string_view line = text_.substr(start, lineEnd - start);
        if (last) {
            afterBlank_ = isBlank(line);
            last = false;
        }
        if (!isBlank(line) && (isListItem(line) || indentOf(line).columns < 2)) {
            noteContentLine(line);
            return;
        }
        end = start;
    }
}

std::u16string removeDocumentMarkup(std::u16string_view text, Layout layout) {
    std::u16string out;
    out.reserve(text.size());
    DocumentReader{text, layout}.read(0, text.size(), out);
    return out;
}

bool mayHoldDocumentMarkup(std::u16string_view text) {
    // A table lookup per unit: this runs over every window of plain prose the segmenter reads.
    return std::any_of(text.begin(), text.end(),
                       [](char16_t c) { return c < documentHints.size() && documentHints[c]; });
}

} // namespace lectorbell::detail
