#include "ui/main/record_tables.h"

#include <QKeyEvent>

namespace zorvel {

void SpeciesTableView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier) {
        emit includeToggleRequested();
        return;
    }
    RecordTableView::keyPressEvent(event);
}

}  // namespace zorvel
