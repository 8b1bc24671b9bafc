#include "ui/main/table_cells.h"

#include <QAbstractItemModel>
#include <QGuiApplication>
#include <QInputMethod>
#include <QKeyEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <QToolTip>
#include <algorithm>
#include <optional>
#include <utility>

#include "model/typed_values.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"
#include "ui/main/ordered_table_model.h"
#include "ui/main/species_table_model.h"

namespace zorvel {

namespace {

// In pixels.
constexpr int numberRoom = 76;    // at the right end, kept free of the bar
constexpr double leastRoom = 24;  // for the longest bar
constexpr double barHeight = 8;

std::optional<TextMovement> movementOf(const QKeyEvent& key) {
    const Qt::KeyboardModifiers modifiers = key.modifiers() & ~Qt::KeypadModifier;
    switch (key.key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return modifiers == Qt::ControlModifier ? TextMovement::newRow
                                                    : TextMovement::returnKey;
        case Qt::Key_Tab:
            return modifiers == Qt::ShiftModifier ? TextMovement::backtab : TextMovement::tab;
        case Qt::Key_Backtab:
            return TextMovement::backtab;
        case Qt::Key_Escape:
            return TextMovement::cancel;
        default:
            break;
    }
    if (modifiers != Qt::NoModifier) return std::nullopt;
    if (key.key() == Qt::Key_Up) return TextMovement::up;
    if (key.key() == Qt::Key_Down) return TextMovement::down;
    if (key.key() == Qt::Key_Insert) return TextMovement::newRow;
    return std::nullopt;
}

// The view has stored the text and opened the next field when this returns, so that no key gets
// lost.
void endEditing(TextFieldDelegate& delegate, TableTextField& field, TextMovement movement) {
    if (movement == TextMovement::cancel) {
        field.setMovement(movement);
        emit delegate.closeEditor(&field, QAbstractItemDelegate::RevertModelCache);
        return;
    }
    QGuiApplication::inputMethod()->commit();
    if (!field.problem().isEmpty()) {
        field.tellProblem();
        return;
    }
    field.setMovement(movement);
    emit delegate.commitData(&field);
    emit delegate.closeEditor(&field, QAbstractItemDelegate::NoHint);
}

// Ctrl+E, which moves to the end of a line on some desktops, adds a species after the one being
// typed.
bool isAddSpeciesKey(const QEvent& event) {
    if (event.type() != QEvent::ShortcutOverride) return false;
    const auto& key = static_cast<const QKeyEvent&>(event);
    return key.key() == Qt::Key_E && key.modifiers() == Qt::ControlModifier;
}

}  // namespace

TableTextField::TableTextField(QWidget* parent) : QLineEdit(parent) {
    setAutoFillBackground(true);
    connect(this, &QLineEdit::textEdited, this, [this] {
        QToolTip::hideText();
        setAccessibleDescription({});
    });
}

void TableTextField::tellProblem() {
    const QString reason = problem();
    setAccessibleDescription(reason);
    QToolTip::showText(mapToGlobal(QPoint(0, height() / 2)), reason, this);
}

// Keys that the window takes are left to it.
bool TableTextField::event(QEvent* event) {
    if (isAddSpeciesKey(*event) || (!canUndoOrRedo() && isUndoKey(*event))) {
        event->ignore();
        return true;
    }
    return QLineEdit::event(event);
}

CensusTableTextField::CensusTableTextField(QWidget* parent) : TableTextField(parent) {
    setAccessibleName("Name of the census");
}

SpeciesTableTextField::SpeciesTableTextField(const QString& identifier, QWidget* parent)
    : TableTextField(parent), identifier_(identifier) {
    const bool name = identifier == "name";
    setAccessibleName(name ? "Name of the species" : "Abundance");
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

// Inserts the completion, which keeps the field's own undo.
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

QString SpeciesTableTextField::problem() const {
    if (identifier_ != "abundance" || !isModified()) return {};
    const auto abundance = parseTypedAbundance(text().toStdString());
    return abundance ? QString() : QString(abundance.problem());
}

QString SpeciesTableTextField::typedText() const {
    const bool proposed =
        hasSelectedText() && text() == completed_ && selectionEnd() == text().size();
    return proposed ? text().left(selectionStart()) : text();
}

TextFieldDelegate::TextFieldDelegate(FieldMaker makeField, QObject* parent)
    : QStyledItemDelegate(parent), makeField_(std::move(makeField)) {}

QWidget* TextFieldDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                         const QModelIndex& /*index*/) const {
    return makeField_(parent);
}

void TextFieldDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
    auto* field = qobject_cast<TableTextField*>(editor);
    if (field == nullptr || field->isModified()) return;
    const QString text = index.data(Qt::EditRole).toString();
    if (field->text() != text) field->setText(text);
}

void TextFieldDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                     const QModelIndex& index) const {
    const auto* field = qobject_cast<TableTextField*>(editor);
    if (field == nullptr || !field->isModified()) return;
    const QString reason = field->problem();
    if (reason.isEmpty()) {
        model->setData(index, field->text(), Qt::EditRole);
    } else {
        emit textRefused(field->text(), reason);
    }
}

void TextFieldDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                             const QModelIndex& /*index*/) const {
    editor->setGeometry(option.rect);
}

void TextFieldDelegate::initStyleOption(QStyleOptionViewItem* option,
                                        const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    if (!index.data(OrderedTableModel::dimmedRole).toBool()) return;
    const LookColors& colors = lookColors(option->palette);
    option->palette.setColor(QPalette::Text, colors.secondary);
    option->palette.setColor(QPalette::HighlightedText, colors.secondary);
    option->palette.setColor(QPalette::Active, QPalette::HighlightedText,
                             colors.selectionSecondary);
}

bool TextFieldDelegate::eventFilter(QObject* object, QEvent* event) {
    auto* field = qobject_cast<TableTextField*>(object);
    if (field != nullptr && event->type() == QEvent::KeyPress) {
        if (const auto movement = movementOf(*static_cast<QKeyEvent*>(event))) {
            endEditing(*this, *field, *movement);
            return true;
        }
    }
    return QStyledItemDelegate::eventFilter(object, event);
}

AbundanceDelegate::AbundanceDelegate(QObject* parent)
    : TextFieldDelegate(
          [](QWidget* table) { return new SpeciesTableTextField("abundance", table); }, parent) {}

void AbundanceDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const {
    QStyledItemDelegate::paint(painter, option, index);
    const double share = index.data(SpeciesTableModel::shareRole).toDouble();
    const double room = option.rect.width() - numberRoom - 12;
    const QString number = index.data(Qt::DisplayRole).toString();
    if (share <= 0 || room < leastRoom ||
        option.fontMetrics.horizontalAdvance(number) > numberRoom - 16)
        return;

    const LookColors& colors = lookColors(option.palette);
    const bool strong =
        (option.state & QStyle::State_Selected) != 0 && (option.state & QStyle::State_Active) != 0;
    QColor fill = strong ? colors.selectionText : colors.bar;
    if (strong) fill.setAlphaF(0.35F);
    const double width = std::max(2.0, room * share);
    const QRectF bar(option.rect.x() + 12, option.rect.center().y() - barHeight / 2 + 0.5, width,
                     barHeight);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(fill);
    painter->drawRoundedRect(bar, 2, 2);
    painter->restore();
}

}  // namespace zorvel
