#include "ui/main/record_table_view.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QEvent>
#include <QHeaderView>
#include <QItemSelection>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QResizeEvent>
#include <QStringList>
#include <algorithm>

#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"

namespace zorvel {

namespace {

// A view takes long over many separate ranges of a selection.
constexpr qsizetype selectedRangesAtMost = 2000;

// In quotes where the cell would otherwise come apart, or lose quotes of its own.
QString spreadsheetCell(QString text) {
    const bool plain = !text.startsWith('"') && !text.contains('\t') && !text.contains('\n') &&
                       !text.contains('\r');
    return plain ? text : '"' + text.replace('"', "\"\"") + '"';
}

QString storedText(const QModelIndex& cell) {
    const QVariant stored = cell.data(Qt::EditRole);
    return (stored.isValid() ? stored : cell.data(Qt::DisplayRole)).toString();
}

}  // namespace

RecordTableView::RecordTableView(QWidget* parent) : QTableView(parent) {
    setFrameShape(QFrame::NoFrame);
    setShowGrid(false);
    setAlternatingRowColors(true);
    setWordWrap(false);
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(DoubleClicked | EditKeyPressed);
    setTabKeyNavigation(false);
    setHorizontalScrollMode(ScrollPerPixel);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setCornerButtonEnabled(false);
    setSortingEnabled(true);
    verticalHeader()->hide();
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSortIndicatorClearable(true);
    horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    horizontalHeader()->setSectionsMovable(false);
    horizontalHeader()->setMinimumSectionSize(36);
    fitRows();
    connect(horizontalHeader(), &QHeaderView::sectionPressed, this,
            &RecordTableView::commitEditing);
    // What was selected stays in sight in the new order.
    connect(
        horizontalHeader(), &QHeaderView::sortIndicatorChanged, this,
        [this] { scrollTo(currentIndex()); }, Qt::QueuedConnection);
}

void RecordTableView::setEmptyText(const QString& text) {
    emptyText_ = text;
    viewport()->update();
}

void RecordTableView::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    if (model() == nullptr || model()->rowCount() > 0 || emptyText_.isEmpty()) return;
    QPainter painter(viewport());
    painter.setPen(lookColors(palette()).secondary);
    painter.drawText(viewport()->rect().adjusted(16, 16, -16, -16),
                     Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, emptyText_);
}

// The current row stays in sight where it was, for instance when a message takes room below.
void RecordTableView::resizeEvent(QResizeEvent* event) {
    const QRect cell = visualRect(currentIndex());
    const bool wasSeen = cell.top() >= 0 && cell.bottom() < event->oldSize().height();
    QTableView::resizeEvent(event);
    if (wasSeen && currentIndex().isValid()) scrollTo(currentIndex());
}

std::vector<int> RecordTableView::selectedRows() const {
    std::vector<int> rows;
    if (selectionModel() == nullptr) return rows;
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) rows.push_back(row);
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

void RecordTableView::selectRows(const std::vector<int>& rows) {
    QItemSelection selection;
    for (std::size_t i = 0; i < rows.size();) {
        if (selection.size() == selectedRangesAtMost) return selectRows({rows.front()});
        std::size_t last = i;
        while (last + 1 < rows.size() && rows[last + 1] == rows[last] + 1) ++last;
        selection.select(model()->index(rows[i], 0),
                         model()->index(rows[last], model()->columnCount() - 1));
        i = last + 1;
    }
    if (!rows.empty()) {
        const int column = std::max(currentIndex().column(), 0);
        const QModelIndex first = model()->index(rows.front(), column);
        selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
        scrollTo(first);
    }
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void RecordTableView::beginEditing(const QModelIndex& cell) {
    commitEditing();
    setFocus();
    // The view's own setCurrentIndex() would select as the keys that are held say.
    selectionModel()->setCurrentIndex(
        cell, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    scrollTo(cell);
    edit(cell, AllEditTriggers, nullptr);
}

bool RecordTableView::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
    const bool begun = QTableView::edit(index, trigger, event);
    auto* field =
        state() == EditingState ? qobject_cast<TableTextField*>(indexWidget(index)) : nullptr;
    if (field != nullptr && field != opened_) {
        edited_ = index;
        opened_ = field;
        connect(field, &QLineEdit::textEdited, this, &RecordTableView::textTyped);
        editorDidOpen(*field);
    }
    return begun;
}

// Home and End go to the first and last row, not to the first and last cell of a row.
QModelIndex RecordTableView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    if (action == MoveHome || action == MoveEnd) modifiers |= Qt::ControlModifier;
    const int column = currentIndex().isValid() ? currentIndex().column() : 0;
    const QModelIndex reached = QTableView::moveCursor(action, modifiers);
    return action == MoveHome || action == MoveEnd ? reached.siblingAtColumn(column) : reached;
}

void RecordTableView::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
    const QPointer<TableTextField> closing(qobject_cast<TableTextField*>(editor));
    QTableView::closeEditor(editor, hint);
    if (closing.isNull() || closing != opened_) return;
    opened_.clear();
    emit textTyped();
    closing->textDidEndEditing();
}

void RecordTableView::editCell(int row, int column) {
    if (row < 0 || row >= model()->rowCount()) return;
    const QModelIndex cell = column < 0 ? firstEditable(row) : model()->index(row, column);
    if (cell.isValid()) beginEditing(cell);
}

void RecordTableView::goOn(TextMovement movement, const QList<int>& columns, qsizetype place) {
    const int row = edited_.row();
    if (row < 0) return;
    switch (movement) {
        case TextMovement::tab:
            if (place + 1 < columns.size()) return editCell(row, columns[place + 1]);
            if (row + 1 < model()->rowCount()) return editCell(row + 1, columns.front());
            return emit addRowRequested();
        case TextMovement::newRow:
            return emit addRowRequested();
        case TextMovement::backtab:
            return place > 0 ? editCell(row, columns[place - 1])
                             : editCell(row - 1, columns.back());
        case TextMovement::up:
            return editCell(row - 1, columns[place]);
        case TextMovement::down:
            return editCell(row + 1, columns[place]);
        default:
            return;
    }
}

QModelIndex RecordTableView::firstEditable(int row) const {
    for (int column = 0; column < model()->columnCount(); ++column) {
        const QModelIndex cell = model()->index(row, column);
        if ((cell.flags() & Qt::ItemIsEditable) != 0) return cell;
    }
    return {};
}

TableTextField* RecordTableView::openEditor() const {
    const bool isOpen = edited_.isValid() && state() == EditingState;
    return isOpen ? qobject_cast<TableTextField*>(indexWidget(edited_)) : nullptr;
}

void RecordTableView::commitEditing() {
    QWidget* editor = openEditor();
    if (editor == nullptr) return;
    commitData(editor);
    if (editor == openEditor()) closeEditor(editor, QAbstractItemDelegate::NoHint);
}

void RecordTableView::revertEditing() {
    if (QWidget* editor = openEditor()) {
        closeEditor(editor, QAbstractItemDelegate::RevertModelCache);
    }
}

// The view would otherwise make a neighbour current first, and commit the editor as it leaves.
void RecordTableView::rowsAboutToBeRemoved(const QModelIndex& parent, int first, int last) {
    if (edited_.isValid() && edited_.row() >= first && edited_.row() <= last) revertEditing();
    QTableView::rowsAboutToBeRemoved(parent, first, last);
}

QString RecordTableView::selectedText() const {
    QStringList lines;
    for (const int row : selectedRows()) {
        QStringList cells;
        for (int column = 0; column < model()->columnCount(); ++column) {
            const QModelIndex cell = model()->index(row, column);
            if (cell.data(Qt::DisplayRole).isValid()) {
                cells.append(spreadsheetCell(storedText(cell)));
            }
        }
        lines.append(cells.join('\t'));
    }
    return lines.join('\n');
}

bool RecordTableView::copySelection() {
    QModelIndexList cells;
    for (const int row : selectedRows()) cells.append(model()->index(row, 0));
    if (cells.isEmpty()) return false;
    QMimeData* copy = model()->mimeData(cells);
    if (copy == nullptr) {
        emit copyRefused();
        return false;
    }
    copy->setText(selectedText());
    QApplication::clipboard()->setMimeData(copy);
    return true;
}

void RecordTableView::initViewItemOption(QStyleOptionViewItem* option) const {
    QTableView::initViewItemOption(option);
    option->decorationPosition = QStyleOptionViewItem::Right;
    option->decorationSize = {14, 14};
    option->state.setFlag(QStyle::State_Active, hasFocus() && isActiveWindow());
}

void RecordTableView::keyPressEvent(QKeyEvent* event) {
    if (handleCommandKey(*event)) return;
    if (isTypedText(*event) && event->key() != Qt::Key_Space) {
        typeIntoRow(event);
    } else {
        QTableView::keyPressEvent(event);
    }
}

bool RecordTableView::handleCommandKey(const QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    const bool enter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if (event.matches(QKeySequence::Copy)) {
        copySelection();
    } else if (event.key() == Qt::Key_Delete || event.key() == Qt::Key_Backspace) {
        emit deleteRequested();
    } else if ((enter && modifiers == Qt::ControlModifier) ||
               (event.key() == Qt::Key_Insert && modifiers == Qt::NoModifier)) {
        emit addRowRequested();
    } else if (enter || event.key() == Qt::Key_F2) {
        editByKey();
    } else {
        return false;
    }
    return true;
}

// The current cell, or the first of its row that can be edited.
void RecordTableView::editByKey() {
    const QModelIndex cell = currentIndex();
    if (!cell.isValid()) return;
    const bool editable = (cell.flags() & Qt::ItemIsEditable) != 0;
    editCell(cell.row(), editable ? cell.column() : -1);
}

// The field opens with its text selected, so that the key replaces it.
void RecordTableView::typeIntoRow(QKeyEvent* event) {
    if (!currentIndex().isValid() || !selectionModel()->isSelected(currentIndex())) return;
    editCell(currentIndex().row(), columnForTyping(event->text()));
    if (QWidget* editor = openEditor()) QCoreApplication::sendEvent(editor, event);
}

void RecordTableView::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) fitRows();
}

void RecordTableView::contextMenuEvent(QContextMenuEvent* event) {
    QMenu menu(this);
    const bool any = selectionModel() != nullptr && selectionModel()->hasSelection();
    const auto add = [&](const QString& title, auto command, QKeySequence::StandardKey key,
                         bool enabled) {
        QAction* action = menu.addAction(title, this, command);
        action->setShortcut(key);
        action->setEnabled(enabled);
    };
    add("Cu&t", &RecordTableView::cutRequested, QKeySequence::Cut, any);
    add("&Copy", &RecordTableView::copySelection, QKeySequence::Copy, any);
    add("&Paste", &RecordTableView::pasteRequested, QKeySequence::Paste, true);
    add("&Delete", &RecordTableView::deleteRequested, QKeySequence::Delete, any);
    menu.addSeparator();
    add("Select &All", &RecordTableView::selectAll, QKeySequence::SelectAll, true);
    menu.exec(event->globalPos());
}

void RecordTableView::fitRows() {
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 12);
}

}  // namespace zorvel
