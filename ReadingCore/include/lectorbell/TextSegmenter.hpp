#pragma once

#include "lectorbell/ReadingModel.hpp"
#include "lectorbell/UTF16Text.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lectorbell {

namespace detail {
class DocumentReader;
} // namespace detail

// One unit of speech.
struct SpeechChunk {
    // As it stands in the source (trimmed): for display, progress matching and history.
    std::u16string text;
    // What the speech engine is given; never empty.
    std::u16string spokenText;
    // Index of the block the chunk came from.
    std::int64_t blockIndex = 0;

    friend bool operator==(const SpeechChunk&, const SpeechChunk&) = default;
};

// Turns block text into the chunks a speech engine speaks: paragraphs rebuilt from wrapped lines,
// sentences, long sentences cut at natural pauses, and each piece's spoken form.
namespace TextSegmenter {

// The characters that end a paragraph line (all single UTF-16 units). Shared with the reading
// order engine and the accessibility source, which build paragraphs the same way.
inline constexpr std::u16string_view terminalPunctuation = u".!?:;\u2026\"\u201D\u2019)]";
bool isTerminalPunctuation(std::u16string_view character);

// The size limit of a chunk in a reading session, in UTF-16 units.
inline constexpr std::int64_t defaultMaxUTF16 = 320;
// The shortest head when the first chunk is cut early.
inline constexpr std::int64_t leadingMinUTF16 = 12;

std::vector<std::u16string> paragraphs(std::u16string_view text);
std::u16string joinWrappedLines(std::u16string_view a, std::u16string_view b);
bool endsWithAbbreviation(std::u16string_view s);
std::vector<UTF16Range> sentenceRanges(std::u16string_view text);
std::vector<std::u16string> sentences(std::u16string_view text);
// The sentences with the untrimmed range each was cut from.
struct Sentence {
    UTF16Range range;
    std::u16string text;
};
std::vector<Sentence> sentencesWithRanges(std::u16string_view text);
std::vector<std::u16string> splitLong(std::u16string_view text, std::int64_t maxUTF16);
std::u16string speechNormalized(std::u16string_view text);
std::vector<SpeechChunk> chunksForBlock(std::u16string_view text, std::int64_t blockIndex,
                                        std::int64_t maxUTF16);
// Every block is chunked, whatever its role; block i gets blockIndex i.
std::vector<SpeechChunk> chunks(const std::vector<ReadingBlock>& blocks, std::int64_t maxUTF16);
// The chunk cut at its first pause mark between minUTF16 and maxUTF16, so speech can start on a
// short piece; the chunk alone when there is no such cut.
std::vector<SpeechChunk> splitLeading(const SpeechChunk& chunk, std::int64_t maxUTF16,
                                      std::int64_t minUTF16);

} // namespace TextSegmenter

// Produces one block's chunks a paragraph at a time, so a long block starts speaking before the
// rest of it is segmented. Yields exactly what chunksForBlock returns, in order.
class BlockChunker {
public:
    // The text is not copied: it must outlive the chunker.
    BlockChunker(std::u16string_view text, std::int64_t blockIndex, std::int64_t maxUTF16);
    BlockChunker(BlockChunker&&) noexcept;
    BlockChunker& operator=(BlockChunker&&) noexcept;
    ~BlockChunker();

    // Appends the chunks of the next paragraph that gives any; false once the block is done.
    bool appendNext(std::vector<SpeechChunk>& out);

private:
    bool readWindow();
    std::u16string readDocument();

    std::u16string_view text_;
    std::int64_t blockIndex_;
    std::int64_t maxUTF16_;
    std::size_t consumed_ = 0;
    // Paragraphs built but not yet chunked, in order, from paragraphIndex_ on.
    std::vector<std::u16string> paragraphs_;
    std::size_t paragraphIndex_ = 0;
    std::u16string openParagraph_;
    bool hasOpenParagraph_ = false;
    // Made when the first window with markdown or HTML in it is read.
    std::unique_ptr<detail::DocumentReader> reader_;
};

} // namespace lectorbell
