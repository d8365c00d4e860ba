// Reads the rendered test pages through the real recogniser and checks the reading order:
// paragraph order and roles exactly, text by character error rate. Also prints how far our
// order and Tesseract's own page order are from the ground truth.

#include "PageTruth.hpp"
#include "lectorbell/ReadingOrderEngine.hpp"
#include "lectorbell/TableReading.hpp"
#include "lectorbell/Utf8.hpp"
#include "lectorbell/VisualSelection.hpp"
#include "platform/linux/tesseract/ImageFile.hpp"
#include "platform/linux/tesseract/TesseractRecognizer.hpp"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <leptonica/allheaders.h>
#include <nlohmann/json.hpp>
#include <tesseract/baseapi.h>

namespace lectorbell {
namespace {

namespace Engine = ReadingOrderEngine;
using nlohmann::json;
using namespace pages;

// The page's text as it appears, top to bottom in reading order, tables cell by cell.
std::u16string visibleTruth(const json& truth) {
    std::u16string text;
    for (const json& paragraph : truth["paragraphs"]) {
        if (paragraph.contains("rows")) {
            for (const TableRow& row : rowsOf(paragraph)) {
                for (const std::u16string& cell : row) {
                    text += cell + u" ";
                }
            }
        } else {
            text += decodeUtf8(paragraph["text"].get<std::string>()).text + u" ";
        }
    }
    return normalised(text);
}

std::u16string visibleOrder(const std::vector<Engine::Block>& blocks) {
    std::u16string text;
    for (const Engine::Block& block : blocks) {
        if (block.tableRows) {
            for (const auto& row : *block.tableRows) {
                for (const Engine::Line& cell : row) {
                    text += cell.text + u" ";
                }
            }
            continue;
        }
        for (const Engine::Paragraph& paragraph : block.paragraphs) {
            text += paragraph.text + u" ";
        }
    }
    return normalised(text);
}

// Tesseract's own reading order: its text output with automatic page layout (PSM 3) or one
// uniform block (PSM 6).
std::u16string tesseractOrder(const std::string& png, int scale, tesseract::PageSegMode mode) {
    tesseract::TessBaseAPI api;
    if (api.Init(nullptr, "eng", tesseract::OEM_LSTM_ONLY) != 0) {
        return {};
    }
    api.SetVariable("debug_file", "/dev/null");
    api.SetPageSegMode(mode);
    Pix* pix = pixRead(png.c_str());
    api.SetImage(pix);
    api.SetSourceResolution(96 * scale);
    std::unique_ptr<char[]> text{api.GetUTF8Text()};
    pixDestroy(&pix);
    api.End();
    return text ? normalised(decodeUtf8(text.get()).text) : std::u16string{};
}

std::string dump(const std::vector<OCRLine>& lines) {
    std::string out;
    for (const OCRLine& line : lines) {
        out += std::to_string(line.rect.x()) + "," + std::to_string(line.rect.y()) + " " +
               std::to_string(line.rect.width()) + "x" + std::to_string(line.rect.height()) + " " +
               std::to_string(line.confidence) + " " + toUtf8(line.text) + "\n";
    }
    return out;
}

struct PageCase {
    std::string page;
    int scale;
};

void PrintTo(const PageCase& c, std::ostream* os) {
    *os << c.page << "@" << c.scale << "x";
}

class OcrPages : public ::testing::TestWithParam<PageCase> {};

TEST_P(OcrPages, ReadInOrder) {
    const auto& [page, scale] = GetParam();
    const std::string png = directory() + "/" + page + "@" + std::to_string(scale) + "x.png";
    auto image = platform::tesseract::readImageFile(png, scale);
    ASSERT_TRUE(std::holds_alternative<PixelBuffer>(image)) << std::get<std::string>(image);
    const PixelBuffer& pixels = std::get<PixelBuffer>(image);
    platform::tesseract::TesseractRecognizer recognizer;
    platform::Recognition recognition =
        recognizer.recognize(pixels, platform::RecognitionMode::accurate, {});
    ASSERT_FALSE(recognition.failure) << recognition.failure->detail;
    const json truth = truthOf(page);

    Engine::Config everything;
    everything.skipSidebars = false;
    const std::vector<Engine::Block> blocks = Engine::layout(recognition.lines, everything);
    std::vector<Expected> got;
    for (const auto& block : blocks) {
        for (const auto& paragraph : block.paragraphs) {
            got.push_back({std::string{rawValue(paragraph.role)}, paragraph.text});
        }
    }
    const std::vector<Expected> expected = expectedParagraphs(truth);
    ASSERT_EQ(got.size(), expected.size()) << dump(recognition.lines);
    for (std::size_t i = 0; i < got.size(); ++i) {
        EXPECT_EQ(got[i].role, expected[i].role)
            << "paragraph " << i << ": " << toUtf8(got[i].text);
        EXPECT_LE(errorRate(got[i].text, expected[i].text), maxCharacterErrorRate)
            << "paragraph " << i << "\n got: " << toUtf8(got[i].text)
            << "\nwant: " << toUtf8(expected[i].text);
    }

    // Side columns are left out of reading by default.
    const std::size_t navigation = static_cast<std::size_t>(
        std::count_if(expected.begin(), expected.end(),
                      [](const Expected& e) { return e.role == "navigation"; }));
    EXPECT_EQ(Engine::orderedParagraphTexts(recognition.lines).size(),
              expected.size() - navigation);

    if (truth.contains("selection")) {
        auto selected = VisualSelection::selectedText(recognition.lines, pixels);
        ASSERT_TRUE(selected);
        EXPECT_EQ(normalised(*selected), decodeUtf8(truth["selection"].get<std::string>()).text);
    } else {
        EXPECT_FALSE(VisualSelection::selectedText(recognition.lines, pixels));
    }

    const std::u16string want = visibleTruth(truth);
    const std::size_t ours = editDistance(visibleOrder(blocks), want);
    const std::size_t theirs = editDistance(tesseractOrder(png, scale, tesseract::PSM_AUTO), want);
    const std::size_t block =
        editDistance(tesseractOrder(png, scale, tesseract::PSM_SINGLE_BLOCK), want);
    std::printf("[order] %s@%dx: edit distance to the truth (%zu characters): ours %zu, "
                "Tesseract's page order %zu (PSM 3), %zu (PSM 6)\n",
                page.c_str(), scale, want.size(), ours, theirs, block);
    if (page == "two-columns" || page == "sidebar") {
        EXPECT_LE(ours, theirs);
    }
}

std::vector<PageCase> allPages() {
    std::vector<PageCase> cases;
    for (const char* page :
         {"one-column", "two-columns", "sidebar", "table", "lists", "selection"}) {
        for (int scale : {1, 2}) {
            cases.push_back({page, scale});
        }
    }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Rendered, OcrPages, ::testing::ValuesIn(allPages()), [](const auto& info) {
    std::string name = info.param.page + "_" + std::to_string(info.param.scale) + "x";
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

} // namespace
} // namespace lectorbell
