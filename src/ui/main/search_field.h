// The field that filters the species as one types. Escape clears it, and leaves it once it is
// empty; Down and Return go to what was found. Main thread.
#pragma once

#include <QLineEdit>

namespace zorvel {

class SearchField : public QLineEdit {
    Q_OBJECT
  public:
    using QLineEdit::QLineEdit;

  signals:
    // Back to the table; first: to its first row.
    void leaveRequested(bool first);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace zorvel
