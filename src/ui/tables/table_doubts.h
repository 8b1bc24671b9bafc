// The questions about a table that the user must answer, one after the other, each with a button
// for every answer. Main thread.
#pragma once

#include <QWidget>

#include "ui/tables/table_corrections.h"
#include "ui/tables/table_preview.h"

class QHBoxLayout;

namespace zorvel {

class TableDoubts : public QWidget {
    Q_OBJECT
  public:
    explicit TableDoubts(QWidget* parent = nullptr);

    // The first of them; hidden without any.
    void showPreview(const TablePreview& preview);
    // To the first answer.
    void takeFocus();

  signals:
    void corrected(const zorvel::TableCorrection& correction);

  private:
    QHBoxLayout* line_;
};

}  // namespace zorvel
