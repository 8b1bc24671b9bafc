// The editors of table cells: a line for a census's name, and one for the name or the abundance of
// a taxon. A field may know how to tell what is wrong with its text. Owned by the table. Main
// thread.
#pragma once

#include <QLineEdit>
#include <functional>

namespace zorvel {

class TableTextField : public QLineEdit {
    Q_OBJECT
  public:
    // Why the text cannot be stored, a sentence; empty where it can.
    using Check = std::function<QString(const QString& text)>;

    explicit TableTextField(QWidget* parent);

    void setCheck(Check check) { check_ = std::move(check); }
    // Of a text that was typed; what stood there before is never wrong.
    [[nodiscard]] QString problem() const;
    // Under the field, until the person types on.
    void tellProblem();

  private:
    Check check_;
};

class CensusTableTextField : public TableTextField {
    Q_OBJECT
  public:
    explicit CensusTableTextField(QWidget* parent);
};

class SpeciesTableTextField : public TableTextField {
    Q_OBJECT
  public:
    // identifier: of the column, "name" or "abundance".
    SpeciesTableTextField(const QString& identifier, QWidget* parent);
    [[nodiscard]] const QString& identifier() const { return identifier_; }

  private:
    QString identifier_;
};

}  // namespace zorvel
