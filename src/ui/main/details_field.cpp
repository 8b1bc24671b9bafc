#include "ui/main/details_field.h"

#include <QEvent>
#include <QKeyEvent>

#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"

namespace zorvel {

DetailsField::DetailsField(QWidget* parent) : QLineEdit(parent) {
    connect(this, &QLineEdit::textEdited, this, [this] { tellProblem({}); });
}

void DetailsField::showStored(const QString& text) {
    if (isTyped()) {
        stored_ = text;
    } else {
        restore(text);
    }
}

void DetailsField::restore(const QString& text) {
    stored_ = text;
    if (text != this->text() || isModified()) setText(text);
    if (!hasFocus()) setCursorPosition(0);
    tellProblem({});
}

void DetailsField::tellProblem(const QString& reason) {
    problem_ = reason;
    setAccessibleDescription(reason);
    if (problemLabel_ == nullptr) return;
    QPalette colors;
    colors.setColor(QPalette::WindowText, lookColors(palette()).problem);
    problemLabel_->setPalette(colors);
    problemLabel_->setText(reason);
    problemLabel_->setVisible(!reason.isEmpty());
    makeRoomForProblem();
}

// A splitter does not ask what height a text needs at its width.
void DetailsField::makeRoomForProblem() {
    if (problemLabel_ == nullptr) return;
    problemLabel_->setMinimumHeight(problem_.isEmpty() ? 0
                                                       : problemLabel_->heightForWidth(width()));
}

void DetailsField::resizeEvent(QResizeEvent* event) {
    QLineEdit::resizeEvent(event);
    makeRoomForProblem();
}

bool DetailsField::event(QEvent* event) {
    if (!isTyped() && isUndoKey(*event)) {
        event->ignore();
        return false;
    }
    return QLineEdit::event(event);
}

void DetailsField::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            emit commitRequested();
            if (problem_.isEmpty()) selectAll();
            return;
        case Qt::Key_Escape:
            restore(stored_);
            selectAll();
            return;
        default:
            QLineEdit::keyPressEvent(event);
    }
}

void DetailsField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    // The field's own context menu is no way out of it.
    if (event->reason() != Qt::PopupFocusReason) emit commitRequested();
}

}  // namespace zorvel
