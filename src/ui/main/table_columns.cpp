#include "ui/main/table_columns.h"

#include <QEvent>
#include <QHeaderView>
#include <QScopedValueRollback>
#include <QTableView>
#include <algorithm>

namespace zorvel {

namespace {
constexpr int narrowestElastic = 60;
constexpr int widest = 2000;
}  // namespace

TableColumns::TableColumns(QTableView& table, int elasticColumn, const QList<int>& widths)
    : QObject(&table), table_(table), elastic_(elasticColumn) {
    QHeaderView* header = table.horizontalHeader();
    header->setSectionResizeMode(QHeaderView::Interactive);
    header->setStretchLastSection(false);
    connect(header, &QHeaderView::sectionResized, this, &TableColumns::sectionDidResize);
    table.viewport()->installEventFilter(this);
    setWidths(widths);
}

QList<int> TableColumns::widths() const {
    QList<int> widths;
    for (int i = 0; i < table_.horizontalHeader()->count(); ++i) {
        widths.append(table_.horizontalHeader()->sectionSize(i));
    }
    return widths;
}

void TableColumns::setWidths(const QList<int>& widths) {
    QHeaderView* header = table_.horizontalHeader();
    const bool fits = widths.size() == header->count() &&
                      std::all_of(widths.begin(), widths.end(),
                                  [](int width) { return width > 0 && width <= widest; });
    if (!fits) return;
    {
        const QScopedValueRollback guard(filling_, true);
        for (int i = 0; i < header->count(); ++i) header->resizeSection(i, widths[i]);
    }
    fill();
}

// The column after the elastic one makes up for it, so that its left edge follows the mouse; any
// other takes its room from the elastic one.
void TableColumns::sectionDidResize(int column, int before, int now) {
    if (filling_) return;
    QHeaderView* header = table_.horizontalHeader();
    if (column == elastic_ && column + 1 < header->count()) {
        const QScopedValueRollback guard(filling_, true);
        const int width = header->sectionSize(column + 1) + before - now;
        header->resizeSection(column + 1, std::max(width, header->minimumSectionSize()));
    }
    fill();
}

void TableColumns::fill() {
    const QScopedValueRollback guard(filling_, true);
    QHeaderView* header = table_.horizontalHeader();
    int others = 0;
    for (int i = 0; i < header->count(); ++i) {
        if (i != elastic_) others += header->sectionSize(i);
    }
    const int room = table_.viewport()->width() - others;
    header->resizeSection(elastic_, std::max(room, narrowestElastic));
}

bool TableColumns::eventFilter(QObject* object, QEvent* event) {
    // A resize during the resize that precedes the first showing is not announced by Qt.
    if (event->type() == QEvent::Resize || event->type() == QEvent::Show) fill();
    return QObject::eventFilter(object, event);
}

}  // namespace zorvel
