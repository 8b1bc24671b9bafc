// The Edit menu, on whatever widget has the focus. Main thread.
#pragma once

class QWidget;

namespace zorvel {

// A null or other widget has nothing to copy or select.
bool canCopy(const QWidget* widget);
bool canSelectAll(const QWidget* widget);
void copyFrom(QWidget* widget);
// A table's rows, or the selected part of a text that can be edited.
bool canCut(const QWidget* widget);
void cutFrom(QWidget* widget);
bool canPaste(const QWidget* widget);
void pasteInto(QWidget* widget);
void deleteFrom(QWidget* widget);
void selectAllOf(QWidget* widget);

// A line or text that is being edited undoes its own typing; the project's steps wait meanwhile. A
// cell of a table or a detail of a record does so only while there is typing in it.
bool isTextEditor(const QWidget* widget);
bool canUndoIn(const QWidget* editor);
bool canRedoIn(const QWidget* editor);
void undoIn(QWidget* editor);
void redoIn(QWidget* editor);

}  // namespace zorvel
