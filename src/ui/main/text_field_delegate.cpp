#include "ui/main/text_field_delegate.h"

#include <QAbstractItemModel>
#include <QGuiApplication>
#include <QInputMethod>
#include <QKeyEvent>
#include <optional>
#include <utility>

#include "ui/kit/look.h"
#include "ui/main/ordered_table_model.h"
#include "ui/main/table_text_fields.h"

namespace zorvel {

namespace {

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

// The view stores, closes and goes on before this returns, so that the next key, however soon it
// comes, finds the next field.
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

}  // namespace

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

}  // namespace zorvel
