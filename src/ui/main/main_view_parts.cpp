#include "ui/main/main_view_parts.h"

#include <QKeyEvent>
#include <algorithm>
#include <utility>

namespace zorvel {

QList<RunningWork::Work>::iterator RunningWork::find(const QString& name) {
    return std::find_if(works_.begin(), works_.end(),
                        [&name](const Work& work) { return work.name == name; });
}

void RunningWork::start(const QString& name, const QString& text, std::function<void()> cancel,
                        bool isImport) {
    const auto found = find(name);
    Work& work = found == works_.end() ? works_.emplace_back() : *found;
    work = {name, text, std::move(cancel), isImport};
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

bool RunningWork::hasOther(const QString& name) const {
    return std::any_of(works_.begin(), works_.end(),
                       [&name](const Work& work) { return work.name != name; });
}

void RunningWork::stop(const QString& name) {
    const auto found = find(name);
    if (found != works_.end()) works_.erase(found);
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
