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

#include "ui/kit/value_field.h"
#include "ui/main/details_view.h"
#include "ui/main/record_table_view.h"
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

// Calls act with the line or text editor that the widget is, if it is one.
template <class Act>
void withEditor(QWidget* widget, Act act) {
    if (auto* line = qobject_cast<QLineEdit*>(widget)) act(*line);
    if (auto* text = qobject_cast<QPlainTextEdit*>(widget)) act(*text);
}

bool isEditable(const QWidget* widget) {
    if (const auto* line = qobject_cast<const QLineEdit*>(widget)) return !line->isReadOnly();
    const auto* text = qobject_cast<const QPlainTextEdit*>(widget);
    return text != nullptr && !text->isReadOnly();
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
    withEditor(widget, [](auto& editor) { editor.cut(); });
}

bool canPaste(const QWidget* widget) {
    return qobject_cast<const RecordTableView*>(widget) != nullptr || isEditable(widget);
}

void pasteInto(QWidget* widget) {
    if (!canPaste(widget)) return;
    if (auto* table = qobject_cast<RecordTableView*>(widget)) emit table->pasteRequested();
    withEditor(widget, [](auto& editor) { editor.paste(); });
}

void deleteFrom(QWidget* widget) {
    if (!canCut(widget)) return;
    if (auto* table = qobject_cast<RecordTableView*>(widget)) emit table->deleteRequested();
    if (auto* line = qobject_cast<QLineEdit*>(widget)) line->del();
    if (auto* text = qobject_cast<QPlainTextEdit*>(widget)) text->textCursor().removeSelectedText();
}

void selectAllOf(QWidget* widget) {
    if (auto* table = qobject_cast<RecordTableView*>(widget)) table->selectAll();
    if (auto* label = qobject_cast<QLabel*>(widget)) label->setSelection(0, shownLength(*label));
    withEditor(widget, [](auto& editor) { editor.selectAll(); });
}

bool isTextEditor(const QWidget* widget) {
    if (const auto* field = qobject_cast<const DetailsField*>(widget)) return field->isTyped();
    if (const auto* notes = qobject_cast<const DetailsNotes*>(widget)) return notes->isTyped();
    if (const auto* cell = qobject_cast<const TableTextField*>(widget))
        return cell->canUndoOrRedo();
    return isEditable(widget);
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
    withEditor(editor, [](auto& each) { each.undo(); });
}

void redoIn(QWidget* editor) {
    withEditor(editor, [](auto& each) { each.redo(); });
}

}  // namespace zorvel
