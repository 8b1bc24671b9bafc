// The two tables of the main window, with the columns that their editing goes through. Main thread.
#pragma once

#include "ui/kit/record_table_view.h"

namespace zorvel {

class CensusTableView : public RecordTableView {
    Q_OBJECT
  public:
    // The first cell of a row that can be edited.
    static constexpr int kNameColumn = -1;

    using RecordTableView::RecordTableView;
};

class SpeciesTableView : public RecordTableView {
    Q_OBJECT
  public:
    static constexpr int kNameColumn = 1;
    static constexpr int kAbundanceColumn = 2;

    using RecordTableView::RecordTableView;

  signals:
    // The space bar: the marks of all selected rows change at once.
    void includeToggleRequested();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace zorvel
