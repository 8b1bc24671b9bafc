#include "app/edit_commands.h"

#include <QApplication>
#include <QClipboard>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextDocumentFragment>

#include "ui/kit/record_table_view.h"
#include "ui/kit/value_field.h"
#include "ui/main/details_view.h"
#include "ui/main/table_cells.h"

namespace zorvel {

namespace {

// The length of a label's text in characters, without tags.
int shownLength(const QLabel& label) {
    if (label.textFormat() != Qt::RichText) return static_cast<int>(label.text().size());
    return static_cast<int>(QTextDocumentFragment::fromHtml(label.text()).toPlainText().size());
}

// With line feeds for the characters by which Qt separates paragraphs and table cells.
QString plainLines(QString text) {
    for (const char16_t mark : {u'\ufdd0', u'\ufdd1', u'\u2028', u'\u2029'})
        text.replace(mark, '\n');
    return text.trimmed();
}

}  // namespace

bool canCopy(const QWidget* widget) {
    if (const auto* table = qobject_cast<const RecordTableView*>(widget)) {
        return table->selectionModel() != nullptr && table->selectionModel()->hasSelection();
    }
    if (const auto* value = qobject_cast<const ValueField*>(widget))
        return !value->text().isEmpty();
    if (const auto* line = qobject_cast<const QLineEdit*>(widget)) return line->hasSelectedText();
    if (const auto* label = qobject_cast<const QLabel*>(widget)) return label->hasSelectedText();
    if (const auto* text = qobject_cast<const QPlainTextEdit*>(widget)) {
        return text->textCursor().hasSelection();
    }
    return false;
}

bool canSelectAll(const QWidget* widget) {
    if (const auto* table = qobject_cast<const RecordTableView*>(widget)) {
        return table->model() != nullptr && table->model()->rowCount() > 0;
    }
    if (const auto* line = qobject_cast<const QLineEdit*>(widget)) return !line->text().isEmpty();
    if (const auto* label = qobject_cast<const QLabel*>(widget)) return !label->text().isEmpty();
    if (const auto* text = qobject_cast<const QPlainTextEdit*>(widget)) {
        return !text->document()->isEmpty();
    }
    return false;
}

void copyFrom(QWidget* widget) {
    if (!canCopy(widget)) return;
    if (auto* table = qobject_cast<RecordTableView*>(widget)) table->copySelection();
    if (auto* value = qobject_cast<ValueField*>(widget)) return value->copyValue();
    if (auto* line = qobject_cast<QLineEdit*>(widget)) line->copy();
    if (auto* text = qobject_cast<QPlainTextEdit*>(widget)) text->copy();
    if (auto* label = qobject_cast<QLabel*>(widget)) {
        QApplication::clipboard()->setText(plainLines(label->selectedText()));
    }
}

bool canCut(const QWidget* widget) {
    const bool rows = qobject_cast<const RecordTableView*>(widget) != nullptr;
    return canCopy(widget) && (rows || canPaste(widget));
}

void cutFrom(QWidget* widget) {
    if (!canCut(widget)) return;
    if (auto* table = qobject_cast<RecordTableView*>(widget)) emit table->cutRequested();
    if (auto* line = qobject_cast<QLineEdit*>(widget)) line->cut();
    if (auto* text = qobject_cast<QPlainTextEdit*>(widget)) text->cut();
}

bool canPaste(const QWidget* widget) {
    if (qobject_cast<const RecordTableView*>(widget) != nullptr) return true;
    if (const auto* line = qobject_cast<const QLineEdit*>(widget)) return !line->isReadOnly();
    const auto* text = qobject_cast<const QPlainTextEdit*>(widget);
    return text != nullptr && !text->isReadOnly();
}

void pasteInto(QWidget* widget) {
    if (!canPaste(widget)) return;
    if (auto* table = qobject_cast<RecordTableView*>(widget)) emit table->pasteRequested();
    if (auto* line = qobject_cast<QLineEdit*>(widget)) line->paste();
    if (auto* text = qobject_cast<QPlainTextEdit*>(widget)) text->paste();
}

void deleteFrom(QWidget* widget) {
    if (!canCut(widget)) return;
    if (auto* table = qobject_cast<RecordTableView*>(widget)) emit table->deleteRequested();
    if (auto* line = qobject_cast<QLineEdit*>(widget)) line->del();
    if (auto* text = qobject_cast<QPlainTextEdit*>(widget)) text->textCursor().removeSelectedText();
}

void selectAllOf(QWidget* widget) {
    if (auto* table = qobject_cast<RecordTableView*>(widget)) table->selectAll();
    if (auto* line = qobject_cast<QLineEdit*>(widget)) line->selectAll();
    if (auto* text = qobject_cast<QPlainTextEdit*>(widget)) text->selectAll();
    if (auto* label = qobject_cast<QLabel*>(widget)) {
        label->setSelection(0, shownLength(*label));
    }
}

bool isTextEditor(const QWidget* widget) {
    if (const auto* field = qobject_cast<const DetailsField*>(widget)) return field->isTyped();
    if (const auto* notes = qobject_cast<const DetailsNotes*>(widget)) return notes->isTyped();
    if (const auto* cell = qobject_cast<const TableTextField*>(widget))
        return cell->canUndoOrRedo();
    if (const auto* line = qobject_cast<const QLineEdit*>(widget)) return !line->isReadOnly();
    const auto* text = qobject_cast<const QPlainTextEdit*>(widget);
    return text != nullptr && !text->isReadOnly() &&
           text->textInteractionFlags().testFlag(Qt::TextEditable);
}

bool canUndoIn(const QWidget* editor) {
    if (const auto* line = qobject_cast<const QLineEdit*>(editor)) return line->isUndoAvailable();
    const auto* text = qobject_cast<const QPlainTextEdit*>(editor);
    return text != nullptr && text->document()->isUndoAvailable();
}

bool canRedoIn(const QWidget* editor) {
    if (const auto* line = qobject_cast<const QLineEdit*>(editor)) return line->isRedoAvailable();
    const auto* text = qobject_cast<const QPlainTextEdit*>(editor);
    return text != nullptr && text->document()->isRedoAvailable();
}

void undoIn(QWidget* editor) {
    if (auto* line = qobject_cast<QLineEdit*>(editor)) line->undo();
    if (auto* text = qobject_cast<QPlainTextEdit*>(editor)) text->undo();
}

void redoIn(QWidget* editor) {
    if (auto* line = qobject_cast<QLineEdit*>(editor)) line->redo();
    if (auto* text = qobject_cast<QPlainTextEdit*>(editor)) text->redo();
}

}  // namespace zorvel
