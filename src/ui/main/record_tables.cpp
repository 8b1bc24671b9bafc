#include "ui/main/record_tables.h"

#include <QKeyEvent>

namespace zorvel {

namespace {

void tellEnd(QWidget* editor) {
    if (auto* field = qobject_cast<TableTextField*>(editor)) field->textDidEndEditing();
}

}  // namespace

void CensusTableView::editorDidOpen(QWidget* editor) {
    if (auto* field = qobject_cast<CensusTableTextField*>(editor)) {
        connect(field, &CensusTableTextField::censusTextFieldDidEndEditing, this,
                &CensusTableView::censusNameTextFieldEditingDidEnd);
    }
}

void CensusTableView::editorDidClose(QWidget* editor) {
    tellEnd(editor);
}

void CensusTableView::censusNameTextFieldEditingDidEnd(TextMovement movement) {
    const int row = editedCell().row();
    if (row < 0) return;
    switch (movement) {
        case TextMovement::tab:
            return row + 1 < rowCount() ? editCell(row + 1, kNameColumn) : emit addRowRequested();
        case TextMovement::newRow:
            return emit addRowRequested();
        case TextMovement::backtab:
        case TextMovement::up:
            return editCell(row - 1, kNameColumn);
        case TextMovement::down:
            return editCell(row + 1, kNameColumn);
        default:
            return;
    }
}

void SpeciesTableView::editorDidOpen(QWidget* editor) {
    if (auto* field = qobject_cast<SpeciesTableTextField*>(editor)) {
        connect(field, &SpeciesTableTextField::speciesTableTextFieldDidEndEditing, this,
                &SpeciesTableView::speciesTableTextFieldEditingDidEnd);
    }
}

void SpeciesTableView::editorDidClose(QWidget* editor) {
    tellEnd(editor);
}

void SpeciesTableView::speciesTableTextFieldEditingDidEnd(TextMovement movement,
                                                          const QString& identifier) {
    const int row = editedCell().row();
    if (row < 0) return;
    const bool name = identifier == "name";
    const int column = name ? kNameColumn : kAbundanceColumn;
    switch (movement) {
        case TextMovement::tab:
            if (name) return editCell(row, kAbundanceColumn);
            return row + 1 < rowCount() ? editCell(row + 1, kNameColumn) : emit addRowRequested();
        case TextMovement::newRow:
            return emit addRowRequested();
        case TextMovement::backtab:
            return name ? editCell(row - 1, kAbundanceColumn) : editCell(row, kNameColumn);
        case TextMovement::up:
            return editCell(row - 1, column);
        case TextMovement::down:
            return editCell(row + 1, column);
        default:
            return;
    }
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

}  // namespace zorvel
