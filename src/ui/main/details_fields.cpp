#include "ui/main/details_fields.h"

#include <QEvent>
#include <QKeyEvent>
#include <QTextDocument>

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
    problemLabel_->setForegroundRole(problemText);
    problemLabel_->setText(reason);
    problemLabel_->setVisible(!reason.isEmpty());
    makeRoomForProblem();
}

// A splitter does not ask for the height that a text needs at its width.
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
    // Opening the field's context menu does not commit.
    if (event->reason() != Qt::PopupFocusReason) emit commitRequested();
}

namespace {
constexpr qsizetype longestNotes = 20'000;  // characters
}  // namespace

DetailsNotes::DetailsNotes(QWidget* parent) : QPlainTextEdit(parent) {
    setTabChangesFocus(true);
    document()->setDocumentMargin(4);
    setFrameStyle(frameStyle());  // lets the style draw the frame of a multi-line text
}

bool DetailsNotes::isTyped() const {
    return whole_ && document()->isModified() && typedText() != shown_;
}

QString DetailsNotes::typedText() const {
    QString text = document()->toRawText();
    text.replace(QChar::ParagraphSeparator, '\n');
    return text;
}

void DetailsNotes::showStored(const std::optional<SharedText>& notes) {
    // If they are shown already, the editor keeps its cursor and its undo.
    if (stored_ == notes && !document()->isModified()) return;
    if (isTyped()) {
        stored_ = notes;
    } else {
        restore(notes);
    }
}

void DetailsNotes::restore(const std::optional<SharedText>& notes) {
    stored_ = notes;
    // Enough bytes for that many characters and one more.
    const std::string_view all = notes ? notes->view() : std::string_view();
    const std::string_view start = all.substr(0, 4 * (longestNotes + 1));
    const QString text = QString::fromUtf8(start.data(), static_cast<qsizetype>(start.size()));
    whole_ = start.size() == all.size() && text.size() <= longestNotes;
    setPlainText(shortened(text, longestNotes));
    shown_ = typedText();
    document()->setModified(false);
    setReadOnly(!whole_);
}

bool DetailsNotes::event(QEvent* event) {
    if (!isTyped() && isUndoKey(*event)) {
        event->ignore();
        return false;
    }
    return QPlainTextEdit::event(event);
}

void DetailsNotes::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && event->modifiers().testFlag(Qt::ControlModifier)) {
        emit commitRequested();
    } else if (event->key() == Qt::Key_Escape) {
        if (isTyped()) restore(stored_);
    } else {
        QPlainTextEdit::keyPressEvent(event);
    }
}

void DetailsNotes::focusInEvent(QFocusEvent* event) {
    QPlainTextEdit::focusInEvent(event);
    update();  // the frame shows the focus
}

void DetailsNotes::focusOutEvent(QFocusEvent* event) {
    QPlainTextEdit::focusOutEvent(event);
    update();
    // Opening the editor's context menu does not commit.
    if (event->reason() != Qt::PopupFocusReason) emit commitRequested();
}

}  // namespace zorvel
