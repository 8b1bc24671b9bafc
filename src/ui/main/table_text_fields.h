// The editors of table cells: a line for a census's name, and one for the name or the abundance of
// a taxon. A field may know how to tell what is wrong with its text, and says when and how its
// editing has ended; a name is completed as it is typed. Owned by the table. Main thread.
#pragma once

#include <QLineEdit>
#include <functional>

#include "model/taxon_formatter.h"

namespace zorvel {

// What ended an edit, and so where the person goes next.
enum class TextMovement {
    other,  // the focus left, or the record has gone
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
    // Why the text cannot be stored, a sentence; empty where it can.
    using Check = std::function<QString(const QString& text)>;

    explicit TableTextField(QWidget* parent);

    void setCheck(Check check) { check_ = std::move(check); }
    // Of a text that was typed; what stood there before is never wrong.
    [[nodiscard]] QString problem() const;
    // Without what is only proposed.
    [[nodiscard]] virtual QString typedText() const { return text(); }
    // There is something in the field itself to be undone or done again; where there is not, the
    // keys for that are the window's.
    [[nodiscard]] bool canTravel() const { return isUndoAvailable() || isRedoAvailable(); }
    // Under the field, until the person types on.
    void tellProblem();

    // Before the field closes, by whoever closes it; otherwise the movement is another one.
    void setMovement(TextMovement movement) { movement_ = movement; }
    // The field has closed and what it held is stored: tells so, with its movement.
    virtual void textDidEndEditing() = 0;

  protected:
    [[nodiscard]] TextMovement movement() const { return movement_; }
    bool event(QEvent* event) override;

  private:
    Check check_;
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

    // Completes what is typed at the end of the text, and what is pasted there by key; the
    // completion is selected, so that typing on replaces it. What is deleted, cut, undone, done
    // again or still being composed is left alone. The formatter must outlive the field.
    void setFormatter(const TaxonFormatter& formatter) { formatter_ = &formatter; }
    [[nodiscard]] QString typedText() const override;

  signals:
    void speciesTableTextFieldDidEndEditing(TextMovement movement, const QString& identifier);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;

  private:
    // A text as the formatter measures it.
    struct Typed {
        std::string text;
        TextRange selection;
    };
    [[nodiscard]] Typed typed() const;
    void completeAfter(const Typed& before);

    QString identifier_;
    const TaxonFormatter* formatter_ = nullptr;
    QString completed_;  // the text as it was completed last
};

}  // namespace zorvel
