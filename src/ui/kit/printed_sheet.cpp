#include "ui/kit/printed_sheet.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPageRanges>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QTextLayout>
#include <algorithm>
#include <utility>

#include "ui/kit/metric_sheet.h"
#include "ui/kit/shown_text.h"

namespace zorvel {

namespace {

// In points.
constexpr double titleHeight = 26;
constexpr double lineHeight = 14;
constexpr double headingHeight = 32;
constexpr double headerHeight = 18;
constexpr double rowHeight = 15;
constexpr double footerHeight = 26;
constexpr double columnGap = 12;
constexpr double titleSize = 16;
constexpr double headingSize = 11;
constexpr double textSize = 9;
constexpr double smallSize = 8;

constexpr qsizetype longestText = 300;  // characters that are laid out

const QColor quiet(0x55, 0x55, 0x55);
const QColor rule(0xBB, 0xBB, 0xBB);

bool hasHeader(const PrintedTable& table) {
    return std::any_of(table.columns.begin(), table.columns.end(),
                       [](const PrintedColumn& column) { return !column.title.isEmpty(); });
}

// Of what stands above the rows of a part.
double headHeight(const PrintedTable& table, int firstRow) {
    const bool headed = firstRow == 0 && !table.heading.isEmpty();
    return (headed ? headingHeight : 0) + (hasHeader(table) ? headerHeight : 0);
}

}  // namespace

QList<PrintedTable> printedMetrics(const QList<MetricLine>& lines) {
    QList<PrintedTable> tables;
    for (const MetricLine& line : lines) {
        if (tables.isEmpty() || !line.heading.isEmpty()) {
            // The last column is empty, so that a value stands near its caption.
            tables.append({line.heading, {{{}, 3, false}, {{}, 1, true}, {{}, 4, false}}, {}});
        }
        tables.back().rows.append({line.caption, line.text});
    }
    return tables;
}

QList<QList<PrintedPart>> pagesOf(const PrintedSheet& sheet, double height) {
    const double room = height - footerHeight;
    QList<QList<PrintedPart>> pages(1);
    double used = titleHeight + lineHeight * static_cast<double>(sheet.lines.size());
    for (int number = 0; number < sheet.tables.size(); ++number) {
        const PrintedTable& table = sheet.tables[number];
        const auto rowCount = static_cast<int>(table.rows.size());
        for (int row = 0; row < rowCount;) {
            const double left = room - used - headHeight(table, row);
            // The first page may have room only for its title.
            const bool fits = left >= rowHeight || (used == 0 && pages.back().isEmpty());
            if (!fits) {
                pages.emplace_back();
                used = 0;
                continue;
            }
            const int rows = std::clamp(static_cast<int>(left / rowHeight), 1, rowCount - row);
            pages.back().append({number, row, rows});
            used += headHeight(table, row) + rowHeight * rows;
            row += rows;
        }
    }
    return pages;
}

namespace {

class SheetPainter {
  public:
    SheetPainter(QPagedPaintDevice& device, PrintedSheet sheet)
        : device_(device), sheet_(std::move(sheet)), unit_(device.logicalDpiY() / 72.0) {}

    bool print() {
        if (!painter_.begin(&device_)) return false;
        wrapLines();
        const QList<QList<PrintedPart>> pages = pagesOf(sheet_, device_.height() / unit_);
        const QPageRanges ranges = device_.pageRanges();
        bool printed = true;
        bool isFirst = true;
        for (int page = 1; page <= pages.size() && printed; ++page) {
            if (!ranges.isEmpty() && !ranges.contains(page)) continue;
            if (!std::exchange(isFirst, false)) printed = device_.newPage();
            drawPage(pages[page - 1], page, static_cast<int>(pages.size()));
        }
        return painter_.end() && printed;
    }

  private:
    void setFont(double size, bool bold, const QColor& color) {
        QFont font = QApplication::font();
        font.setPixelSize(std::max(1, qRound(size * unit_)));
        font.setBold(bold);
        painter_.setFont(font);
        painter_.setPen(color);
    }
    [[nodiscard]] double width() const { return device_.width(); }

    // So that each takes one line.
    void wrapLines() {
        setFont(textSize, false, quiet);
        QStringList wrapped;
        for (const QString& text : sheet_.lines) {
            QTextLayout layout(text.simplified(), painter_.font(), &device_);
            layout.beginLayout();
            for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
                line.setLineWidth(width());
                wrapped.append(layout.text().mid(line.textStart(), line.textLength()));
            }
            layout.endLayout();
        }
        sheet_.lines = wrapped;
    }

    void drawText(const QRectF& place, Qt::Alignment alignment, const QString& text) {
        const QFontMetricsF metrics(painter_.font(), &device_);
        const QString line = shortened(text, longestText).simplified();
        painter_.drawText(place, alignment | Qt::AlignVCenter | Qt::TextSingleLine,
                          metrics.elidedText(line, Qt::ElideRight, place.width()));
    }
    // Over the whole width, `height` points high.
    void drawLine(double height, const QString& text) {
        drawText({0, y_, width(), height * unit_}, Qt::AlignLeft, text);
        y_ += height * unit_;
    }
    void drawRule() {
        painter_.setPen(QPen(rule, 0.5 * unit_));
        painter_.drawLine(QPointF(0, y_), QPointF(width(), y_));
    }

    void drawPage(const QList<PrintedPart>& parts, int page, int pages) {
        y_ = 0;
        if (page == 1) drawTitle();
        for (const PrintedPart& part : parts) drawPart(part);
        y_ = device_.height() - footerHeight / 2 * unit_;
        setFont(smallSize, false, quiet);
        const QRectF foot(0, y_, width(), footerHeight / 2 * unit_);
        const QString number = QString("Page %1 of %2").arg(page).arg(pages);
        const double numberWidth =
            QFontMetricsF(painter_.font(), &device_).horizontalAdvance(number) + columnGap * unit_;
        drawText(foot, Qt::AlignRight, number);
        if (page > 1) drawText(foot.adjusted(0, 0, -numberWidth, 0), Qt::AlignLeft, sheet_.title);
    }

    void drawTitle() {
        setFont(titleSize, true, Qt::black);
        drawLine(titleHeight, sheet_.title);
        setFont(textSize, false, quiet);
        for (const QString& line : sheet_.lines) drawLine(lineHeight, line);
    }

    void drawPart(const PrintedPart& part) {
        const PrintedTable& table = sheet_.tables[part.table];
        if (part.firstRow == 0 && !table.heading.isEmpty()) {
            setFont(headingSize, true, Qt::black);
            y_ += headingHeight / 3 * unit_;
            drawLine(headingHeight * 2 / 3, table.heading);
        }
        if (hasHeader(table)) {
            QStringList titles;
            for (const PrintedColumn& column : table.columns) titles.append(column.title);
            setFont(textSize, true, Qt::black);
            drawCells(table, titles, headerHeight);
        }
        for (int row = 0; row < part.rows; ++row) {
            drawRule();
            setFont(textSize, false, Qt::black);
            drawCells(table, table.rows[part.firstRow + row], rowHeight);
        }
        drawRule();
    }

    void drawCells(const PrintedTable& table, const QStringList& cells, double height) {
        double shares = 0;
        for (const PrintedColumn& column : table.columns) shares += column.share;
        const double gap = columnGap * unit_;
        const double room = width() - gap * static_cast<double>(table.columns.size() - 1);
        double x = 0;
        for (int i = 0; i < table.columns.size(); ++i) {
            const double cellWidth = room * table.columns[i].share / shares;
            drawText({x, y_, cellWidth, height * unit_},
                     table.columns[i].isNumber ? Qt::AlignRight : Qt::AlignLeft, cells.value(i));
            x += cellWidth + gap;
        }
        y_ += height * unit_;
    }

    QPagedPaintDevice& device_;
    PrintedSheet sheet_;
    double unit_;  // pixels per point
    QPainter painter_;
    double y_ = 0;
};

}  // namespace

bool printSheet(QPagedPaintDevice& device, const PrintedSheet& sheet) {
    return SheetPainter(device, sheet).print();
}

}  // namespace zorvel
