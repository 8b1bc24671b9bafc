// How cells of the tables are edited and painted: the line edits for the name of a census and for
// the name or the abundance of a taxon, and the delegates that open them. Return, Tab, the arrows
// up and down, Insert and Ctrl+Return commit; Escape reverts. A text that cannot be stored keeps
// the field open, which says why; if the focus leaves it, the text is dropped. The table decides
// which cell comes next. Main thread.
#pragma once

#include <QLineEdit>
#include <QStyledItemDelegate>
#include <functional>

#include "model/taxon_formatter.h"

namespace zorvel {

// What ended an edit, which decides the cell that comes next.
enum class TextMovement {
    other,  // the focus left, or the record was deleted
    returnKey,
    tab,
    backtab,
    up,
    down,
    cancel,
    newRow,
};

class TableTextField : public QLineEdit {
    Q_OBJECT
  public:
    explicit TableTextField(QWidget* parent);

    // Why the typed text cannot be stored, a sentence; empty if it can.
    [[nodiscard]] virtual QString problem() const { return {}; }
    // Without a proposed completion.
    [[nodiscard]] virtual QString typedText() const { return text(); }
    // Whether the field itself has something to undo or redo; otherwise those keys are the
    // window's.
    [[nodiscard]] bool canUndoOrRedo() const { return isUndoAvailable() || isRedoAvailable(); }
    // Under the field, until the user types on.
    void tellProblem();

    // Called before the field closes; without it the movement is "other".
    void setMovement(TextMovement movement) { movement_ = movement; }
    // The field has closed and its text is stored: emits the signal of its kind.
    virtual void textDidEndEditing() = 0;

  protected:
    [[nodiscard]] TextMovement movement() const { return movement_; }
    bool event(QEvent* event) override;

  private:
    TextMovement movement_ = TextMovement::other;
};

class CensusTableTextField : public TableTextField {
    Q_OBJECT
  public:
    explicit CensusTableTextField(QWidget* parent);
    void textDidEndEditing() override { emit censusTextFieldDidEndEditing(movement()); }

  signals:
    void censusTextFieldDidEndEditing(TextMovement movement);
};

class SpeciesTableTextField : public TableTextField {
    Q_OBJECT
  public:
    // identifier: of the column, "name" or "abundance".
    SpeciesTableTextField(const QString& identifier, QWidget* parent);
    void textDidEndEditing() override {
        emit speciesTableTextFieldDidEndEditing(movement(), identifier_);
    }

    // Completes what is typed or pasted by key at the end of the text. The completion is selected,
    // so that typing on replaces it. Deleting, cutting, undo, redo and composing complete nothing.
    // The formatter must outlive the field.
    void setFormatter(const TaxonFormatter& formatter) { formatter_ = &formatter; }
    [[nodiscard]] QString problem() const override;
    [[nodiscard]] QString typedText() const override;

  signals:
    void speciesTableTextFieldDidEndEditing(TextMovement movement, const QString& identifier);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;

  private:
    // The text and its selection in bytes.
    struct Typed {
        std::string text;
        TextRange selection;
    };
    [[nodiscard]] Typed typed() const;
    void completeAfter(const Typed& before);

    QString identifier_;
    const TaxonFormatter* formatter_ = nullptr;
    QString completed_;  // the text after the last completion
};

// Opens such a field over a cell. Shared by the cells of a table.
class TextFieldDelegate : public QStyledItemDelegate {
    Q_OBJECT
  public:
    using FieldMaker = std::function<TableTextField*(QWidget* parent)>;
    TextFieldDelegate(FieldMaker makeField, QObject* parent);

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    // Typed text stays, even if the record changes.
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;

  signals:
    // The text was not stored, and its field is about to close; the reason is a sentence.
    void textRefused(const QString& text, const QString& reason) const;

  protected:
    // Dimmed cells take the quieter colours.
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    FieldMaker makeField_;
};

// Adds a faint bar for the abundance's share of the largest one of the census.
class AbundanceDelegate : public TextFieldDelegate {
    Q_OBJECT
  public:
    explicit AbundanceDelegate(QObject* parent);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};

}  // namespace zorvel
