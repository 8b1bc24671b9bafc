#include "ui/main/details_notes.h"

#include <QKeyEvent>
#include <QTextDocument>

#include "ui/kit/shown_text.h"

namespace zorvel {

namespace {
constexpr qsizetype longestNotes = 20'000;  // characters
}  // namespace

DetailsNotes::DetailsNotes(QWidget* parent) : QPlainTextEdit(parent) {
    setTabChangesFocus(true);
    document()->setDocumentMargin(4);
    setFrameStyle(frameStyle());  // asks the style for the frame of a text of several lines
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
    // An editor that shows them already keeps its place and its undo.
    if (stored_ == notes && !document()->isModified()) return;
    if (isTyped()) {
        stored_ = notes;
    } else {
        restore(notes);
    }
}

void DetailsNotes::restore(const std::optional<SharedText>& notes) {
    stored_ = notes;
    // Bytes enough for that many characters and one more, whatever they are.
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
    update();  // the frame tells of the focus
}

void DetailsNotes::focusOutEvent(QFocusEvent* event) {
    QPlainTextEdit::focusOutEvent(event);
    update();
    // The editor's own context menu is no way out of it.
    if (event->reason() != Qt::PopupFocusReason) emit commitRequested();
}

}  // namespace zorvel
