#include "DocumentMarkup.hpp"
#include "MarkupSyntax.hpp"
#include "Paragraphs.hpp"
#include "TextClasses.hpp"
#include "TextTrim.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <unicode/utf16.h>
#include <vector>

namespace lectorbell::detail {

namespace {

// Longer backtick runs never open a code span: it bounds the searches for a closing run that
// fail (one per length) to a fixed number.
constexpr std::size_t longestCodeSpanFence = 16;

// Characters at which the inline scan may find something; everything else is copied in runs.
bool startsInlineMarkup(char16_t c) {
    return c == u'\\' || c == u'`' || c == u'!' || c == u'[' || c == u'<' || c == u'&';
}
bool hintsAtInlineMarkup(char16_t c) {
    return c == u'\\' || c == u'`' || c == u'[' || c == u'<' || c == u'&';
}

struct BracketPair {
    std::size_t open;
    std::size_t close;
    // No other bracket between the two: only such a pair can hold a link label.
    bool innermost;
};

struct CodeSpan {
    std::size_t start;
    std::size_t end;
};

// A link or image whose text is being read: at `close` the scan jumps to `resume`, past the
// destination; an image's text (from `mark` in the output) then stays only if it says something.
struct OpenLink {
    std::size_t close;
    std::size_t resume;
    std::size_t mark;
    bool image;
};

constexpr std::array<std::u16string_view, 5> alertKinds{u"Note", u"Tip", u"Important", u"Warning",
                                                        u"Caution"};

// One pass over a run of prose: brackets are matched first (with a stack, escapes and code spans
// left out), then the text is copied with each construct replaced as it is met. Links nest
// without recursion: their closing brackets are waypoints on the one forward walk.
class InlineScanner {
public:
    InlineScanner(std::u16string_view s, const LinkLabels& labels, Layout layout,
                  std::u16string& out)
        : s_(s)
        , labels_(labels)
        , layout_(layout)
        , out_(out) {}

    void run() {
        findPairsAndCodeSpans();
        while (i_ < s_.size()) {
            if (!open_.empty() && i_ == open_.back().close) {
                finishLink();
                continue;
            }
            switch (s_[i_]) {
            case u'\\':
                readEscape();
                break;
            case u'`':
                readBackticks();
                break;
            case u'!':
                readBang();
                break;
            case u'[':
                readBracket();
                break;
            case u'<':
                readAngle();
                break;
            case u'&':
                readEntity();
                break;
            default:
                copyPlain();
            }
        }
    }

private:
    void findPairsAndCodeSpans() {
        std::vector<std::size_t> openers;
        std::size_t lastBracket = std::u16string_view::npos;
        std::uint32_t unclosedRuns = 0;
        for (std::size_t i = 0; i < s_.size();) {
            const char16_t c = s_[i];
            if (c == u'\\' && i + 1 < s_.size() && isAsciiPunctuation(s_[i + 1])) {
                i += 2;
            } else if (c == u'`') {
                const std::size_t length = backtickRun(i);
                const std::uint32_t bit = std::uint32_t{1} << length;
                if (length <= longestCodeSpanFence && (unclosedRuns & bit) == 0) {
                    if (std::optional<std::size_t> close = closingBacktickRun(i + length, length)) {
                        codeSpans_.push_back({i, *close + length});
                        i = *close + length;
                        continue;
                    }
                    // No run of this length follows, here or at any later opening.
                    unclosedRuns |= bit;
                }
                i += length;
            } else {
                if (c == u'[') {
                    openers.push_back(i);
                    lastBracket = i;
                } else if (c == u']') {
                    if (!openers.empty()) {
                        pairs_.push_back({openers.back(), i, lastBracket == openers.back()});
                        openers.pop_back();
                    }
                    lastBracket = i;
                }
                ++i;
            }
        }
        std::sort(pairs_.begin(), pairs_.end(),
                  [](const BracketPair& a, const BracketPair& b) { return a.open < b.open; });
    }

    std::size_t backtickRun(std::size_t from) const {
        std::size_t end = from;
        while (end < s_.size() && s_[end] == u'`') {
            ++end;
        }
        return end - from;
    }

    std::optional<std::size_t> closingBacktickRun(std::size_t from, std::size_t length) const {
        for (std::size_t j = s_.find(u'`', from); j != std::u16string_view::npos;) {
            const std::size_t run = backtickRun(j);
            if (run == length) {
                return j;
            }
            j = s_.find(u'`', j + run);
        }
        return std::nullopt;
    }

    const BracketPair* pairAt(std::size_t open) const {
        auto it =
            std::lower_bound(pairs_.begin(), pairs_.end(), open,
                             [](const BracketPair& p, std::size_t at) { return p.open < at; });
        return it != pairs_.end() && it->open == open ? &*it : nullptr;
    }

    // Nothing may be skipped past the closing bracket of the link being read.
    std::size_t limit() const { return open_.empty() ? s_.size() : open_.back().close; }

    std::u16string_view inside(const BracketPair& pair) const {
        return s_.substr(pair.open + 1, pair.close - pair.open - 1);
    }

    // Where an inline, full, collapsed or shortcut reference link that starts with this pair
    // ends, or no value when the pair is only brackets. Brackets shaped like a citation mark
    // ("[1]", "[b]") are taken for one without looking for a definition.
    std::optional<std::size_t> linkEnd(const BracketPair& pair) const {
        const std::size_t next = pair.close + 1;
        if (next < s_.size() && s_[next] == u'(') {
            if (std::optional<std::size_t> end = inlineLinkEnd(s_, next)) {
                return end;
            }
        }
        if (pair.innermost && looksLikeCitationMark(inside(pair))) {
            return std::nullopt;
        }
        if (next < s_.size() && s_[next] == u'[') {
            const BracketPair* reference = pairAt(next);
            if (reference != nullptr && reference->innermost) {
                std::u16string_view label = inside(*reference);
                if (label.empty() && pair.innermost) {
                    label = inside(pair);
                }
                if (!label.empty() && labels_.contains(label)) {
                    return reference->close + 1;
                }
                return std::nullopt;
            }
        }
        if (pair.innermost && labels_.contains(inside(pair))) {
            return next;
        }
        return std::nullopt;
    }

    bool startLink(std::size_t open, bool image) {
        const BracketPair* pair = pairAt(open);
        if (pair == nullptr || pair->close >= limit()) {
            return false;
        }
        std::optional<std::size_t> end = linkEnd(*pair);
        if (!end || *end > limit()) {
            return false;
        }
        joinLineStartingWith(image ? open - 1 : open);
        open_.push_back({pair->close, *end, out_.size(), image});
        return true;
    }

    // A line of a paragraph that starts with a link goes on from the line before, as on the
    // rendered page, unless that line is a heading, a table row or a rule. Without this the
    // paragraph rules would end a sentence before any link whose text starts in upper case.
    void joinLineStartingWith(std::size_t at) {
        if (layout_ != Layout::lines) {
            return;
        }
        std::size_t start = at;
        while (start > 0 && isSpaceOrTab(s_[start - 1])) {
            --start;
        }
        if (start == 0 || !isLineBreak(s_[start - 1])) {
            return;
        }
        std::size_t previousEnd = start - 1;
        if (s_[previousEnd] == u'\n' && previousEnd > 0 && s_[previousEnd - 1] == u'\r') {
            --previousEnd;
        }
        std::size_t previousStart = previousEnd;
        while (previousStart > 0 && !isLineBreak(s_[previousStart - 1])) {
            --previousStart;
        }
        if (!goesOnIntoNextLine(s_.substr(previousStart, previousEnd - previousStart))) {
            return;
        }
        std::size_t k = out_.size();
        while (k > 0 && isSpaceOrTab(out_[k - 1])) {
            --k;
        }
        if (k == 0 || !isLineBreak(out_[k - 1])) {
            return;
        }
        if (out_[k - 1] == u'\n' && k >= 2 && out_[k - 2] == u'\r') {
            out_[k - 2] = u' ';
        }
        out_[k - 1] = u' ';
    }

    void finishLink() {
        const OpenLink link = open_.back();
        open_.pop_back();
        if (link.image && isSilentImageText(std::u16string_view{out_}.substr(link.mark))) {
            out_.resize(link.mark);
        }
        i_ = link.resume;
    }

    // A quote block's "[!NOTE]" mark, read as its word.
    bool readAlert() {
        const BracketPair* pair = pairAt(i_);
        if (pair == nullptr || !pair->innermost || pair->close >= limit()) {
            return false;
        }
        std::u16string_view text = inside(*pair);
        if (text.empty() || text[0] != u'!') {
            return false;
        }
        for (std::u16string_view kind : alertKinds) {
            if (equalsIgnoringAsciiCase(text.substr(1), kind)) {
                out_.append(kind);
                i_ = pair->close + 1;
                return true;
            }
        }
        return false;
    }

    void readBracket() {
        if (startLink(i_, false)) {
            ++i_;
        } else if (!readAlert()) {
            out_ += u'[';
            ++i_;
        }
    }

    void readBang() {
        if (i_ + 1 < s_.size() && s_[i_ + 1] == u'[' && startLink(i_ + 1, true)) {
            i_ += 2;
        } else {
            out_ += u'!';
            ++i_;
        }
    }

    void readEscape() {
        if (i_ + 1 < limit() && isAsciiPunctuation(s_[i_ + 1])) {
            out_ += s_[i_ + 1];
            i_ += 2;
        } else if (i_ + 1 < s_.size() && isLineBreak(s_[i_ + 1])) {
            // A backslash that marks a hard line break.
            ++i_;
        } else {
            out_ += u'\\';
            ++i_;
        }
    }

    void readBackticks() {
        while (nextCodeSpan_ < codeSpans_.size() && codeSpans_[nextCodeSpan_].start < i_) {
            ++nextCodeSpan_;
        }
        if (nextCodeSpan_ < codeSpans_.size() && codeSpans_[nextCodeSpan_].start == i_ &&
            codeSpans_[nextCodeSpan_].end <= limit()) {
            // Code is read as written, backticks and all; later cleanup drops the backticks.
            const std::size_t end = codeSpans_[nextCodeSpan_++].end;
            out_.append(s_.substr(i_, end - i_));
            i_ = end;
            return;
        }
        const std::size_t length = backtickRun(i_);
        out_.append(s_.substr(i_, length));
        i_ += length;
    }

    std::optional<std::size_t> commentEnd() {
        if (i_ >= unclosedCommentFrom_) {
            return std::nullopt;
        }
        if (commentClose_ == std::u16string_view::npos || commentClose_ < i_ + 4) {
            commentClose_ = s_.find(u"-->", i_ + 4);
            if (commentClose_ == std::u16string_view::npos) {
                unclosedCommentFrom_ = i_;
                return std::nullopt;
            }
        }
        return commentClose_ + 3;
    }

    void appendTag(const HtmlTag& tag) {
        const bool lines = layout_ == Layout::lines;
        switch (tag.kind) {
        case TagKind::inlineElement:
            break;
        case TagKind::lineBreak:
            out_ += lines ? u'\n' : u' ';
            break;
        case TagKind::blockElement:
            out_.append(lines ? u"\n\n" : u" ");
            break;
        case TagKind::image:
            if (std::u16string alt = decodeEntities(tag.alt); !isSilentImageText(alt)) {
                out_.append(alt);
            }
            break;
        }
    }

    void readAngle() {
        const std::size_t end = limit();
        if (s_.substr(i_, 4) == u"<!--") {
            if (std::optional<std::size_t> close = commentEnd(); close && *close <= end) {
                i_ = *close;
                return;
            }
        } else if (std::optional<std::size_t> link = autolinkEnd(s_, i_); link && *link <= end) {
            // The address itself, which the link rule then reads as "link to" its host.
            out_.append(s_.substr(i_ + 1, *link - i_ - 2));
            i_ = *link;
            return;
        } else if (std::optional<HtmlTag> tag = htmlTagAt(s_, i_); tag && tag->end <= end) {
            appendTag(*tag);
            i_ = tag->end;
            return;
        }
        out_ += u'<';
        ++i_;
    }

    void readEntity() {
        if (std::optional<std::size_t> end = appendEntity(s_, i_, out_)) {
            i_ = *end;
        } else {
            out_ += u'&';
            ++i_;
        }
    }

    void copyPlain() {
        const std::size_t end = limit();
        std::size_t j = i_ + 1;
        while (j < end && !startsInlineMarkup(s_[j])) {
            ++j;
        }
        if (layout_ == Layout::lines && !open_.empty()) {
            appendPhrase(s_.substr(i_, j - i_));
        } else {
            out_.append(s_.substr(i_, j - i_));
        }
        i_ = j;
    }

    // A link's text wrapped over lines is one phrase: each line break and the indentation after
    // it become one space.
    void appendPhrase(std::u16string_view text) {
        for (std::size_t k = 0; k < text.size(); ++k) {
            if (!isLineBreak(text[k])) {
                out_ += text[k];
                continue;
            }
            out_ += u' ';
            while (k + 1 < text.size() && (isLineBreak(text[k + 1]) || isSpaceOrTab(text[k + 1]))) {
                ++k;
            }
        }
    }

    std::u16string_view s_;
    const LinkLabels& labels_;
    Layout layout_;
    std::u16string& out_;
    std::size_t i_ = 0;
    std::vector<BracketPair> pairs_;
    std::vector<CodeSpan> codeSpans_;
    std::size_t nextCodeSpan_ = 0;
    std::vector<OpenLink> open_;
    std::size_t commentClose_ = std::u16string_view::npos;
    std::size_t unclosedCommentFrom_ = std::u16string_view::npos;
};

} // namespace

void appendInlineText(std::u16string_view run, const LinkLabels& labels, Layout layout,
                      std::u16string& out) {
    if (std::none_of(run.begin(), run.end(), hintsAtInlineMarkup)) {
        out.append(run);
        return;
    }
    InlineScanner{run, labels, layout, out}.run();
}

} // namespace lectorbell::detail
