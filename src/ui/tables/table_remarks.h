// The problems of a table, which keep it from being imported, with commands that settle them, and
// what is taken by a rule rather than by its letter. Main thread.
#pragma once

#include <QWidget>
#include <memory>

#include "ui/tables/table_corrections.h"
#include "ui/tables/table_preview.h"

class QLabel;
class QListWidget;
class QPushButton;

namespace zorvel {

class TableRemarksList : public QWidget {
    Q_OBJECT
  public:
    explicit TableRemarksList(QWidget* parent = nullptr);

    // Hidden where there is nothing to say.
    void showPreview(std::shared_ptr<const TablePreview> preview);

  signals:
    void corrected(const zorvel::TableCorrection& correction);
    // Its cell is to be shown. activated: by Return or a double click, and not only by a click.
    void problemChosen(const zorvel::TableRemark& problem, bool activated);

  private:
    // Of the problem that is current in the list; none of another line.
    [[nodiscard]] const TableRemark* currentProblem() const;
    void choose(bool activated);
    void correctCurrent(void (*correct)(TableCorrections& corrections, const TableRemark& problem));
    void showCommands();

    std::shared_ptr<const TablePreview> preview_;
    QLabel* label_;
    QListWidget* list_;
    QPushButton* leaveOutRow_;
    QPushButton* ignoreColumn_;
    QPushButton* takeAsZero_;
};

}  // namespace zorvel
