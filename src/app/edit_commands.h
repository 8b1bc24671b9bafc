// The Edit menu, on whatever widget has the focus. Main thread.
#pragma once

class QWidget;

namespace zorvel {

// A null or other widget has nothing to copy or select.
bool canCopy(const QWidget* widget);
bool canSelectAll(const QWidget* widget);
void copyFrom(QWidget* widget);
void selectAllOf(QWidget* widget);

// A line or text that is being edited undoes its own typing; the project's steps wait meanwhile.
bool isTextEditor(const QWidget* widget);
bool canUndoIn(const QWidget* editor);
bool canRedoIn(const QWidget* editor);
void undoIn(QWidget* editor);
void redoIn(QWidget* editor);

}  // namespace zorvel
