#pragma once

// Markdown and HTML as people keep them in notes and READMEs, reduced to the text a reader sees
// on the rendered page: a link becomes its text, an image its description when it has one, an
// HTML tag its content, an entity its character, an escaped mark the mark itself. Fence lines
// and link definitions are silent; code is left exactly as written. Every pass is a hand-written
// scan, linear in the text, so no input can make it backtrack. Internal to ReadingCore.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

namespace lectorbell::detail {

// What an HTML block element leaves between the texts on either side: line and paragraph
// breaks where the text is still to be cut into paragraphs, one space where it is not.
enum class Layout { lines, flat };

// The normalised labels of a text's link reference definitions ("[label]: destination"),
// collected from the whole text the first time one is asked for: a definition may come after
// its links, but many texts never ask.
class LinkLabels {
public:
    // The text is not copied: it must outlive the labels.
    explicit LinkLabels(std::u16string_view text)
        : text_(text) {}
    // Whether a label as written between brackets names a definition.
    bool contains(std::u16string_view written) const;

private:
    std::u16string_view text_;
    mutable std::optional<std::unordered_set<std::u16string>> labels_;
};

// The label of a definition line, normalised, or no value when the line is not a definition.
std::optional<std::u16string> definitionLabel(std::u16string_view line);

// Appends the visible text of a run of prose lines (no code blocks in it).
void appendInlineText(std::u16string_view run, const LinkLabels& labels, Layout layout,
                      std::u16string& out);

// An image description that says nothing a listener needs: empty, a file name, or only words
// such as "image", "badge" or "logo".
bool isSilentImageText(std::u16string_view description);

// Reads a text line by line, a stretch at a time, carrying open code fences from one stretch to
// the next, so a long document can be read in pieces.
class DocumentReader {
public:
    // The text is not copied: it must outlive the reader.
    DocumentReader(std::u16string_view text, Layout layout);

    // Appends the visible text of whole lines from `from` on and returns where it stopped: at
    // the end of the first line at or after `soonest` that ends between two blocks (or inside
    // a code block), not before a line starting with "[", or at the end of the text.
    std::size_t read(std::size_t from, std::size_t soonest, std::u16string& out);
    // Takes note of lines from `from` to `to` that were read elsewhere, with no markup in them.
    void skipPlain(std::size_t from, std::size_t to);
    bool inCodeFence() const { return fence_.has_value(); }

private:
    struct Fence {
        char16_t mark;
        std::size_t length;
    };
    void flushRun(std::size_t end, std::u16string& out);
    // Reads an HTML comment that starts the line at `pos` up to its end, and moves `pos` there;
    // false when the line starts no comment that closes.
    bool readCommentBlock(std::size_t& pos, std::size_t lineEnd, std::u16string& out);
    void noteContentLine(std::u16string_view line);

    std::u16string_view text_;
    Layout layout_;
    LinkLabels labels_;
    std::optional<Fence> fence_;
    static constexpr std::size_t none = std::u16string_view::npos;
    std::size_t runStart_ = none;
    bool runAfterBlank_ = true;
    bool afterBlank_ = true;
    // The last content line leaves room for an indented code block after a blank line: it was
    // neither a list item nor indented under one.
    bool codeMayFollow_ = true;
    bool runCodeMayFollow_ = true;
    // An HTML comment opened at or after this offset never closes.
    std::size_t unclosedCommentFrom_ = none;
};

// The whole text read at once.
std::u16string removeDocumentMarkup(std::u16string_view text, Layout layout);

// The characters that may start document markup: links and images, tags, entities, escapes,
// code spans and fences.
inline constexpr std::u16string_view documentMarkupHints = u"[<&\\`~";

// Whether a text holds one of those characters. Plain prose answers false after one scan.
bool mayHoldDocumentMarkup(std::u16string_view text);

// The speech cleanup of SpeechCleanup::clean, told whether document markup may still be in the
// text or was already removed by the segmenter (which reads the whole block first, where code
// blocks and link definitions can be seen).
enum class DocumentMarkup { present, removed };
std::u16string cleanForSpeech(std::u16string_view text, DocumentMarkup markup);
std::u16string speechNormalized(std::u16string_view text, DocumentMarkup markup);

} // namespace lectorbell::detail
