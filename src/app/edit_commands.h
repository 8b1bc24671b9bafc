// The commands of the Edit menu, for the widget that has the focus. Main thread.
#pragma once

class QWidget;

namespace zorvel {

// False for null and for other kinds of widgets.
bool canCopy(const QWidget* widget);
bool canSelectAll(const QWidget* widget);
void copyFrom(QWidget* widget);
// Rows of a table, or the selected part of an editable text.
bool canCut(const QWidget* widget);
void cutFrom(QWidget* widget);
bool canPaste(const QWidget* widget);
void pasteInto(QWidget* widget);
void deleteFrom(QWidget* widget);
void selectAllOf(QWidget* widget);

// Whether undo and redo act on the widget's own text instead of the project. For a cell of a table
// or a detail of a census that is so only while it has typed text.
bool isTextEditor(const QWidget* widget);
bool canUndoIn(const QWidget* editor);
bool canRedoIn(const QWidget* editor);
void undoIn(QWidget* editor);
void redoIn(QWidget* editor);

}  // namespace zorvel
