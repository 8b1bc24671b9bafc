// Tables on paper: a title, and below it table after table on as many pages as they take, black on
// white whatever the look of the windows. Main thread (fonts).
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class QPagedPaintDevice;

namespace zorvel {

struct PrintedColumn {
    QString title;          // a table whose columns have none has no header
    double share = 1;       // of the width of the page, beside those of the others
    bool isNumber = false;  // stands on the right
};

struct PrintedTable {
    QString heading;  // above the table; may be empty
    QList<PrintedColumn> columns;
    QList<QStringList> rows;  // of each row the cells, from the first column on
};

struct MetricLine;
// One table per heading; each row is a caption and a value.
QList<PrintedTable> printedMetrics(const QList<MetricLine>& lines);

struct PrintedSheet {
    QString title;
    QStringList lines;  // below the title; a long one takes several
    QList<PrintedTable> tables;
};

// Consecutive rows of a table on one page.
struct PrintedPart {
    int table = 0;
    int firstRow = 0;
    int rows = 0;
};
// The parts on each page of that height in points; the title is on the first page. A heading is on
// the page of its first row, a header on every page of its table. Every page has a row, except a
// first page that has room only for the title.
QList<QList<PrintedPart>> pagesOf(const PrintedSheet& sheet, double height);

// Every page has its number and how many there are; those outside of the device's page ranges are
// left out. A text that is wider than its column ends with three dots. False if the device cannot
// be painted on.
bool printSheet(QPagedPaintDevice& device, const PrintedSheet& sheet);

}  // namespace zorvel
