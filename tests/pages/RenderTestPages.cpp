// Renders the test pages at 1x and 2x as PNG files, each with its ground truth beside it:
//   render-test-pages OUTPUT_DIR
// writes <name>@1x.png, <name>@2x.png and <name>.truth.json. Text is drawn with DejaVu Sans from
// fonts-dejavu-core, so every machine renders the same pixels.

#include "PageLayouts.hpp"

#include <QDir>
#include <QFile>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>
#include <cstdio>
#include <map>

namespace lectorbell::pages {

namespace {

const QColor selectionColour{179, 215, 255};
const QColor textColour{20, 20, 20};

QFont fontFor(const QString& family, const Item& item) {
    QFont font{family};
    font.setPixelSize(item.pixelSize);
    font.setBold(item.bold);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

double lineHeightOf(const Item& item) {
    return item.pixelSize * 1.45;
}

// Greedy word wrap at the item's width.
std::vector<QStringList> wrap(const Item& item, const QFontMetricsF& metrics) {
    std::vector<QStringList> lines;
    QStringList current;
    for (const QString& word : item.text.split(' ', Qt::SkipEmptyParts)) {
        QStringList candidate = current;
        candidate << word;
        if (!current.isEmpty() && metrics.horizontalAdvance(candidate.join(' ')) > item.width) {
            lines.push_back(current);
            current = QStringList{word};
        } else {
            current = candidate;
        }
    }
    if (!current.isEmpty()) {
        lines.push_back(current);
    }
    return lines;
}

// Draws a text item from `top`; returns its bottom.
double drawText(QPainter& painter, const QString& family, const Item& item, double top) {
    QFont font = fontFor(family, item);
    QFontMetricsF metrics{font};
    painter.setFont(font);
    const double lineHeight = lineHeightOf(item);
    int wordIndex = 0;
    double y = top;
    for (const QStringList& words : wrap(item, metrics)) {
        const double baseline = y + (lineHeight + metrics.ascent() - metrics.descent()) / 2;
        double x = item.x;
        for (int k = 0; k < words.size(); ++k, ++wordIndex) {
            const double advance = metrics.horizontalAdvance(words[k]);
            const double space = metrics.horizontalAdvance(' ');
            if (wordIndex >= item.selectFrom && wordIndex <= item.selectTo) {
                // Highlight the word and the space after it when the next word is highlighted too.
                bool joined = wordIndex < item.selectTo && k + 1 < words.size();
                painter.fillRect(QRectF{x, y + 1, advance + (joined ? space : 0), lineHeight - 2},
                                 selectionColour);
            }
            x += advance + space;
        }
        painter.setPen(textColour);
        painter.drawText(QPointF{item.x, baseline}, words.join(' '));
        y += lineHeight;
    }
    return y;
}

double drawTable(QPainter& painter, const QString& family, const Item& item, double top) {
    double y = top;
    for (std::size_t r = 0; r < item.rows.size(); ++r) {
        Item cellStyle = item;
        cellStyle.bold = r == 0;
        QFont font = fontFor(family, cellStyle);
        QFontMetricsF metrics{font};
        painter.setFont(font);
        painter.setPen(textColour);
        const double rowHeight = lineHeightOf(item) + 8;
        const double baseline = y + (rowHeight + metrics.ascent() - metrics.descent()) / 2;
        for (qsizetype c = 0; c < item.rows[r].size(); ++c) {
            const TableColumn& column = item.columns[static_cast<std::size_t>(c)];
            const QString& cell = item.rows[r][c];
            const double x = column.rightAligned
                                 ? column.x + column.width - metrics.horizontalAdvance(cell)
                                 : column.x;
            painter.drawText(QPointF{x, baseline}, cell);
        }
        y += rowHeight;
    }
    return y;
}

QImage render(const Page& page, const QString& family, int scale) {
    QImage image{page.width * scale, page.height * scale, QImage::Format_RGB32};
    image.fill(Qt::white);
    QPainter painter{&image};
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.scale(scale, scale);
    std::map<int, double> bottoms; // by flow: where the previous item ended
    for (const Item& item : page.items) {
        double top = item.top;
        if (top < 0) {
            top = bottoms[item.flow] + item.gapBefore;
        }
        bottoms[item.flow] = item.rows.empty() ? drawText(painter, family, item, top)
                                               : drawTable(painter, family, item, top);
    }
    return image;
}

QJsonObject truthOf(const Page& page) {
    QJsonArray paragraphs;
    for (const Item& item : page.items) {
        QJsonObject paragraph{{"role", item.role}};
        if (item.rows.empty()) {
            paragraph["text"] = item.text;
        } else {
            QJsonArray rows;
            for (const QStringList& row : item.rows) {
                rows.append(QJsonArray::fromStringList(row));
            }
            paragraph["rows"] = rows;
        }
        paragraphs.append(paragraph);
    }
    QJsonObject truth{{"page", page.name},
                      {"width", page.width},
                      {"height", page.height},
                      {"paragraphs", paragraphs}};
    if (!page.selection.isEmpty()) {
        truth["selection"] = page.selection;
    }
    return truth;
}

// Inputs the recogniser must refuse or find empty: a blank page, an empty file, a PNG cut short.
bool writeBadImages(const QDir& out) {
    QImage blank{400, 200, QImage::Format_RGB32};
    blank.fill(Qt::white);
    if (!blank.save(out.filePath("blank.png"), "PNG")) {
        return false;
    }
    QFile whole{out.filePath("one-column@1x.png")};
    QFile empty{out.filePath("empty.png")};
    QFile truncated{out.filePath("truncated.png")};
    if (!whole.open(QIODevice::ReadOnly) || !empty.open(QIODevice::WriteOnly) ||
        !truncated.open(QIODevice::WriteOnly)) {
        return false;
    }
    const QByteArray bytes = whole.readAll();
    return truncated.write(bytes.left(bytes.size() / 2)) >= 0;
}

} // namespace

} // namespace lectorbell::pages

int main(int argc, char** argv) {
    using namespace lectorbell::pages;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app{argc, argv};
    if (argc != 2) {
        std::fprintf(stderr, "usage: render-test-pages OUTPUT_DIR\n");
        return 2;
    }
    const QString fontPath = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
    const int fontId = QFontDatabase::addApplicationFont(fontPath);
    QFontDatabase::addApplicationFont("/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf");
    if (fontId < 0) {
        std::fprintf(stderr, "render-test-pages: %s is missing (install fonts-dejavu-core)\n",
                     qPrintable(fontPath));
        return 1;
    }
    const QString family = QFontDatabase::applicationFontFamilies(fontId).value(0);
    QDir out{QString::fromLocal8Bit(argv[1])};
    if (!out.mkpath(".")) {
        std::fprintf(stderr, "render-test-pages: cannot create %s\n", argv[1]);
        return 1;
    }
    std::vector<Page> pages = testPages();
    for (const Page& page : benchmarkPages()) {
        pages.push_back(page);
    }
    for (const Page& page : pages) {
        for (int scale : {1, 2}) {
            QString path = out.filePath(QString{"%1@%2x.png"}.arg(page.name).arg(scale));
            if (!render(page, family, scale).save(path, "PNG")) {
                std::fprintf(stderr, "render-test-pages: cannot write %s\n", qPrintable(path));
                return 1;
            }
        }
        if (page.items.empty() || page.name == "band" || page.name == "window") {
            continue;
        }
        QFile truth{out.filePath(page.name + ".truth.json")};
        if (!truth.open(QIODevice::WriteOnly) ||
            truth.write(QJsonDocument{truthOf(page)}.toJson()) < 0) {
            std::fprintf(stderr, "render-test-pages: cannot write %s\n",
                         qPrintable(truth.fileName()));
            return 1;
        }
    }
    return writeBadImages(out) ? 0 : 1;
}
