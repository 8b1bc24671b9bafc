#include "ui/main/text_field_delegate.h"

#include <QAbstractItemModel>
#include <QKeyEvent>
#include <utility>

#include "ui/main/table_text_fields.h"

namespace zorvel {

namespace {

bool isCommitKey(const QEvent& event) {
    if (event.type() != QEvent::KeyPress) return false;
    switch (static_cast<const QKeyEvent&>(event).key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
            return true;
        default:
            return false;
    }
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

bool TextFieldDelegate::eventFilter(QObject* object, QEvent* event) {
    auto* field = qobject_cast<TableTextField*>(object);
    if (field == nullptr || !isCommitKey(*event)) {
        return QStyledItemDelegate::eventFilter(object, event);
    }
    if (field->problem().isEmpty()) {
        emit commitData(field);
        emit closeEditor(field, NoHint);
    } else {
        field->tellProblem();
    }
    return true;
}

}  // namespace zorvel
