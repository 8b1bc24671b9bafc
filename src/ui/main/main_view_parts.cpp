#include "ui/main/main_view_parts.h"

#include <QKeyEvent>
#include <algorithm>
#include <utility>

namespace zorvel {

int RunningWork::start(const QString& text, std::function<void()> cancel, bool isImport) {
    works_.append({++started_, text, std::move(cancel), isImport});
    return started_;
}

void RunningWork::stop(int number) {
    works_.removeIf([number](const Work& work) { return work.number == number; });
}

bool RunningWork::hasImport() const {
    return std::any_of(works_.begin(), works_.end(),
                       [](const Work& work) { return work.isImport; });
}

// Cancelling changes the list.
void RunningWork::cancelImports() const {
    for (const Work& work : QList<Work>(works_)) {
        if (work.isImport && work.cancel) work.cancel();
    }
}

bool RunningWork::hasOther(int number) const {
    return std::any_of(works_.begin(), works_.end(),
                       [number](const Work& work) { return work.number != number; });
}

void SearchField::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Escape:
            if (text().isEmpty()) {
                emit leaveRequested(false);
            } else {
                clear();
            }
            return;
        case Qt::Key_Down:
        case Qt::Key_Return:
        case Qt::Key_Enter:
            emit leaveRequested(true);
            return;
        default:
            QLineEdit::keyPressEvent(event);
    }
}

}  // namespace zorvel
