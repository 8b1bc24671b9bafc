// The censuses that a table would give, the first of them, with their species and individuals. Main
// thread.
#pragma once

#include <QWidget>

#include "ui/tables/table_preview.h"

class QLabel;
class QTableWidget;

namespace zorvel {

class CensusList : public QWidget {
    Q_OBJECT
  public:
    explicit CensusList(QWidget* parent = nullptr);

    void showPreview(const TablePreview& preview);

  private:
    QLabel* label_;
    QTableWidget* table_;
};

}  // namespace zorvel
