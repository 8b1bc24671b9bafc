// Tables on paper: a title, and below it table after table on as many pages as they take, black on
// white whatever the look of the windows. Main thread (fonts).
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>

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
    int rowCount = 0;
    std::function<QStringList(int row)> cells;  // one a column from the first on
};

struct MetricLine;
// A table a heading, each row a caption and a value.
QList<PrintedTable> printedMetrics(const QList<MetricLine>& lines);

struct PrintedSheet {
    QString title;
    QStringList lines;  // below the title; a long one takes several
    QList<PrintedTable> tables;
};

// Where the rows of a table stand.
struct PrintedPart {
    int table = 0;
    int firstRow = 0;
    int rows = 0;
};
// What stands on each page of that height in points, of which the title is on the first. A heading
// and a header stand on the page of the first of their rows, the header again on each further page.
// A page is never without a row, but for a first one that has room for the title alone.
QList<QList<PrintedPart>> pagesOf(const PrintedSheet& sheet, double height);

// Every page has its number and how many there are; those outside of the device's page ranges are
// left out. A text that is wider than its column ends with three dots. False where the device
// cannot be painted on.
bool printSheet(QPagedPaintDevice& device, const PrintedSheet& sheet);

}  // namespace zorvel
