#include "ui/main/record_tables.h"

#include <QEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <algorithm>
#include <numeric>

namespace zorvel {

void CensusTableView::editorDidOpen(TableTextField& field) {
    connect(qobject_cast<CensusTableTextField*>(&field),
            &CensusTableTextField::censusTextFieldDidEndEditing, this,
            &CensusTableView::censusNameTextFieldEditingDidEnd);
}

void CensusTableView::censusNameTextFieldEditingDidEnd(TextMovement movement) {
    goOn(movement, {kNameColumn});
}

void SpeciesTableView::editorDidOpen(TableTextField& field) {
    connect(qobject_cast<SpeciesTableTextField*>(&field),
            &SpeciesTableTextField::speciesTableTextFieldDidEndEditing, this,
            &SpeciesTableView::speciesTableTextFieldEditingDidEnd);
}

void SpeciesTableView::speciesTableTextFieldEditingDidEnd(TextMovement movement,
                                                          const QString& identifier) {
    goOn(movement, {kNameColumn, kAbundanceColumn}, identifier == "name" ? 0 : 1);
}

int SpeciesTableView::columnForTyping(const QString& text) const {
    return text.front().isDigit() ? kAbundanceColumn : kNameColumn;
}

void SpeciesTableView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier) {
        emit includeToggleRequested();
        return;
    }
    RecordTableView::keyPressEvent(event);
}

namespace {
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

void TableColumns::setWidths(const QList<int>& widths) {
    const bool fits = widths.size() == table_.horizontalHeader()->count() &&
                      std::all_of(widths.begin(), widths.end(),
                                  [](int width) { return width > 0 && width <= widest; });
    if (!fits) return;
    chosen_ = widths;
    fill();
}

// The column after the elastic one makes up for it, so that its left edge follows the mouse; any
// other takes its room from the elastic one.
void TableColumns::sectionDidResize(int column, int before, int now) {
    if (filling_) return;
    const QHeaderView* header = table_.horizontalHeader();
    if (column != elastic_) {
        chosen_[column] = now;
    } else if (column + 1 < header->count()) {
        const int width = header->sectionSize(column + 1) + before - now;
        chosen_[column + 1] = std::max(width, header->minimumSectionSize());
    }
    fill();
}

// Of what is too much, the widest of the others gives as much as its heading lets it.
QList<int> TableColumns::fittingWidths() const {
    const QHeaderView* header = table_.horizontalHeader();
    const int room = table_.viewport()->width();
    QList<int> widths = chosen_;
    widths[elastic_] = 0;
    const int others = std::accumulate(widths.begin(), widths.end(), 0);
    const auto broadest =
        static_cast<int>(std::max_element(widths.begin(), widths.end()) - widths.begin());
    const int least = std::max(header->sectionSizeHint(broadest), header->minimumSectionSize());
    const int given = std::clamp(others - room / 2, 0, std::max(widths[broadest] - least, 0));
    widths[broadest] -= given;
    widths[elastic_] = std::max(room - others + given, header->minimumSectionSize());
    return widths;
}

void TableColumns::fill() {
    const QScopedValueRollback guard(filling_, true);
    const QList<int> widths = fittingWidths();
    for (int i = 0; i < static_cast<int>(widths.size()); ++i) {
        table_.horizontalHeader()->resizeSection(i, widths[i]);
    }
}

bool TableColumns::eventFilter(QObject* object, QEvent* event) {
    // A resize during the resize that precedes the first showing is not announced by Qt.
    if (event->type() == QEvent::Resize || event->type() == QEvent::Show) fill();
    return QObject::eventFilter(object, event);
}

}  // namespace zorvel
