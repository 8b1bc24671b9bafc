#include "ui/main/table_text_fields.h"

#include <QKeyEvent>
#include <QSignalBlocker>
#include <QToolTip>

#include "ui/kit/shown_text.h"

namespace zorvel {

TableTextField::TableTextField(QWidget* parent) : QLineEdit(parent) {
    setAutoFillBackground(true);
    connect(this, &QLineEdit::textEdited, this, [this] {
        QToolTip::hideText();
        setAccessibleDescription({});
    });
}

QString TableTextField::problem() const {
    return check_ && isModified() ? check_(text()) : QString();
}

void TableTextField::tellProblem() {
    const QString reason = problem();
    setAccessibleDescription(reason);
    QToolTip::showText(mapToGlobal(QPoint(0, height() / 2)), reason, this);
}

// Where Ctrl+E is a key of text lines, too, for the way to their end, it is the window's all the
// same: another species follows the one that is being typed.
bool TableTextField::event(QEvent* event) {
    if (!canTravel() && isUndoKey(*event)) {
        event->ignore();
        return true;
    }
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_E && key->modifiers() == Qt::ControlModifier) {
            event->ignore();
            return true;
        }
    }
    return QLineEdit::event(event);
}

CensusTableTextField::CensusTableTextField(QWidget* parent) : TableTextField(parent) {
    setAccessibleName(tr("Name of the census"));
}

SpeciesTableTextField::SpeciesTableTextField(const QString& identifier, QWidget* parent)
    : TableTextField(parent), identifier_(identifier) {
    const bool name = identifier == "name";
    setAccessibleName(name ? tr("Name of the species") : tr("Abundance"));
    if (!name) setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

void SpeciesTableTextField::keyPressEvent(QKeyEvent* event) {
    if (!isTypedText(*event) && !event->matches(QKeySequence::Paste)) {
        TableTextField::keyPressEvent(event);
        return;
    }
    const Typed before = typed();
    TableTextField::keyPressEvent(event);
    completeAfter(before);
}

void SpeciesTableTextField::inputMethodEvent(QInputMethodEvent* event) {
    const bool ended = !event->commitString().isEmpty() && event->preeditString().isEmpty();
    const Typed before = typed();
    TableTextField::inputMethodEvent(event);
    if (ended) completeAfter(before);
}

SpeciesTableTextField::Typed SpeciesTableTextField::typed() const {
    const auto bytesBefore = [text = text()](int place) {
        return static_cast<std::size_t>(QStringView(text).left(place).toUtf8().size());
    };
    Typed typed{text().toStdString(), {}};
    if (hasSelectedText()) {
        typed.selection.location = bytesBefore(selectionStart());
        typed.selection.length = bytesBefore(selectionEnd()) - typed.selection.location;
    } else {
        typed.selection.location = bytesBefore(cursorPosition());
    }
    return typed;
}

// The tail is inserted, which leaves the field's own undo as it is.
void SpeciesTableTextField::completeAfter(const Typed& before) {
    auto [partial, selection] = typed();
    if (formatter_ == nullptr || partial == before.text) return;
    std::optional<TextRange> proposed = selection;
    if (formatter_->isPartialStringValid(partial, proposed, before.text, before.selection)) return;
    const QString tail = QString::fromStdString(partial.substr(proposed->location));
    const int caret = cursorPosition();
    if (caret + tail.size() > maxLength()) return;
    const QSignalBlocker blocker(this);
    insert(tail);
    setSelection(caret, static_cast<int>(tail.size()));
    completed_ = text();
}

QString SpeciesTableTextField::typedText() const {
    const bool proposed =
        hasSelectedText() && text() == completed_ && selectionEnd() == text().size();
    return proposed ? text().left(selectionStart()) : text();
}

}  // namespace zorvel
