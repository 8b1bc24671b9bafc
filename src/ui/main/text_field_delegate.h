// Puts a text field over a cell to edit it. Return, Tab, the arrows up and down, Insert and
// Ctrl+Return commit, Escape reverts, and so does a text that cannot be stored once the focus
// leaves it; until then the field stays open and says why. Where the person goes from there is the
// table's matter. Shared by the cells of a table. Main thread.
#pragma once

#include <QStyledItemDelegate>
#include <functional>

namespace zorvel {

class TableTextField;

class TextFieldDelegate : public QStyledItemDelegate {
    Q_OBJECT
  public:
    using FieldMaker = std::function<TableTextField*(QWidget* parent)>;
    TextFieldDelegate(FieldMaker makeField, QObject* parent);

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    // What was typed stays, whatever becomes of the record meanwhile.
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;

  signals:
    // The text was not stored, and its field is about to close; the reason is a sentence.
    void textRefused(const QString& text, const QString& reason) const;

  protected:
    // What is dimmed takes the quieter colours.
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    FieldMaker makeField_;
};

}  // namespace zorvel
