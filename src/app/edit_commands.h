// Edit > Copy and Select All, on whatever widget has the focus. Main thread.
#pragma once

class QWidget;

namespace zorvel {

// A null or other widget has nothing to copy or select.
bool canCopy(const QWidget* widget);
bool canSelectAll(const QWidget* widget);
void copyFrom(QWidget* widget);
void selectAllOf(QWidget* widget);

}  // namespace zorvel
