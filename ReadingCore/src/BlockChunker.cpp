#include "DocumentMarkup.hpp"
#include "Paragraphs.hpp"
#include "lectorbell/SpeechCleanup.hpp"
#include "lectorbell/TextSegmenter.hpp"

namespace lectorbell {

namespace {

// Text is cleaned of reference marks in windows of about this many units, each ending at a line
// feed that is not followed by "[" (so no mark, nor the space before one, straddles two windows).
constexpr std::size_t windowUnits = std::size_t{16} * 1024;

std::size_t windowEnd(std::u16string_view text, std::size_t from) {
    std::size_t i = from + windowUnits;
    while (i < text.size()) {
        std::size_t lf = text.find(u'\n', i);
        if (lf == std::u16string_view::npos || lf + 1 >= text.size()) {
            break;
        }
        if (text[lf + 1] != u'[') {
            return lf + 1;
        }
        i = lf + 1;
    }
    return text.size();
}

} // namespace

BlockChunker::BlockChunker(std::u16string_view text, std::int64_t blockIndex, std::int64_t maxUTF16)
    : text_(text)
    , blockIndex_(blockIndex)
    , maxUTF16_(maxUTF16) {}

BlockChunker::BlockChunker(BlockChunker&&) noexcept = default;
BlockChunker& BlockChunker::operator=(BlockChunker&&) noexcept = default;
BlockChunker::~BlockChunker() = default;

// The next window of the text as a reader sees it: markdown and HTML are read here, on whole
// lines, where code blocks and link definitions can still be told apart. A window without any
// sign of markup is taken as it is.
std::u16string BlockChunker::readDocument() {
    const std::size_t from = consumed_;
    const std::size_t plainEnd = windowEnd(text_, from);
    std::u16string_view plain = text_.substr(from, plainEnd - from);
    const bool readMarkup = SpeechCleanup::enabled.load(std::memory_order_relaxed);
    if (!readMarkup ||
        ((!reader_ || !reader_->inCodeFence()) && !detail::mayHoldDocumentMarkup(plain))) {
        if (reader_) {
            reader_->skipPlain(from, plainEnd);
        }
        consumed_ = plainEnd;
        return std::u16string{plain};
    }
    if (!reader_) {
        reader_ = std::make_unique<detail::DocumentReader>(text_, detail::Layout::lines);
    }
    std::u16string window;
    window.reserve(plain.size());
    consumed_ = reader_->read(from, from + windowUnits, window);
    return window;
}

bool BlockChunker::readWindow() {
    if (consumed_ >= text_.size() && !hasOpenParagraph_) {
        return false;
    }
    paragraphs_.clear();
    paragraphIndex_ = 0;
    // The paragraph builder's state carries over between windows.
    detail::ParagraphBuilder builder;
    if (hasOpenParagraph_) {
        builder.addLine(openParagraph_, paragraphs_);
        hasOpenParagraph_ = false;
    }
    if (consumed_ >= text_.size()) {
        builder.finish(paragraphs_);
        return true;
    }
    std::u16string window = readDocument();
    bool last = consumed_ == text_.size();
    window = SpeechCleanup::removingReferenceMarkers(window);
    detail::forEachLine(window, !last,
                        [&](std::u16string_view line) { builder.addLine(line, paragraphs_); });
    if (last) {
        builder.finish(paragraphs_);
    } else {
        hasOpenParagraph_ = builder.takeOpen(openParagraph_);
    }
    return true;
}

bool BlockChunker::appendNext(std::vector<SpeechChunk>& out) {
    for (;;) {
        while (paragraphIndex_ < paragraphs_.size()) {
            const std::u16string& paragraph = paragraphs_[paragraphIndex_++];
            std::size_t before = out.size();
            for (const std::u16string& sentence : TextSegmenter::sentences(paragraph)) {
                for (std::u16string& piece : TextSegmenter::splitLong(sentence, maxUTF16_)) {
                    std::u16string spoken =
                        detail::speechNormalized(piece, detail::DocumentMarkup::removed);
                    if (!spoken.empty()) {
                        out.push_back({std::move(piece), std::move(spoken), blockIndex_});
                    }
                }
            }
            if (out.size() > before) {
                return true;
            }
        }
        if (!readWindow()) {
            return false;
        }
    }
}

namespace TextSegmenter {

std::vector<SpeechChunk> chunksForBlock(std::u16string_view text, std::int64_t blockIndex,
                                        std::int64_t maxUTF16) {
    std::vector<SpeechChunk> result;
    BlockChunker chunker{text, blockIndex, maxUTF16};
    while (chunker.appendNext(result)) {
    }
    return result;
}

std::vector<SpeechChunk> chunks(const std::vector<ReadingBlock>& blocks, std::int64_t maxUTF16) {
    std::vector<SpeechChunk> result;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        std::vector<SpeechChunk> blockChunks =
            chunksForBlock(blocks[i].text, static_cast<std::int64_t>(i), maxUTF16);
        result.insert(result.end(), std::make_move_iterator(blockChunks.begin()),
                      std::make_move_iterator(blockChunks.end()));
    }
    return result;
}

} // namespace TextSegmenter

} // namespace lectorbell
