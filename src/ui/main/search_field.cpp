#include "ui/main/search_field.h"

#include <QKeyEvent>

namespace zorvel {

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
