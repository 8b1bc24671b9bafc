// The window that shows how a table would be imported, and lets the user correct it: its first rows
// with the role of each column, the censuses that would be read, and what keeps it from being read.
// Nothing is read on the main thread: each change starts a job that makes a new preview. Owned by
// its parent. Main thread.
#pragma once

#include <QDialog>
#include <QList>
#include <memory>
#include <optional>

#include "platform/job_queue.h"
#include "ui/tables/table_corrections.h"
#include "ui/tables/table_input.h"
#include "ui/tables/table_options.h"
#include "ui/tables/table_preview.h"

class QHBoxLayout;
class QLabel;
class QListWidget;
class QPushButton;
class QTableView;
class QTableWidget;
class QVBoxLayout;

namespace zorvel {

class ElidedLabel;
class RoleHeader;
class SampleModel;
class WrappedLabel;

class TableDialog : public QDialog {
    Q_OBJECT
  public:
    // name: of the file, or what stands for it.
    TableDialog(const QString& name, std::shared_ptr<const TableInput> input, JobQueue& jobs,
                QWidget* parent);

    // What is to be read, and how, once it is accepted.
    [[nodiscard]] const std::shared_ptr<const TableSource>& source() const {
        return input_->sheets[sheet_].rows;
    }
    [[nodiscard]] const TableReading& reading() const { return preview_->reading; }
    // Shows rows beyond the first in which the import has found problems.
    void showFound(TableRows rows);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void addParts(const QString& name);
    void addSheets(QHBoxLayout& line);
    QWidget* makeSample();
    QWidget* makeCensuses();
    void addRemarks(QVBoxLayout& column);
    void addButtons(QVBoxLayout& column);

    void showSheet(int sheet);
    void correct(const TableCorrection& correction);
    // Starts a preview, or waits for the one that runs.
    void update();
    void take(const std::shared_ptr<const TablePreview>& preview);
    void showPreview();
    void showDoubts();
    void showCensuses();
    void showRemarks();
    void showRemarkCommands();
    void showImportButton();
    void fitColumns();
    void foldOptions();

    // Of the problem that is current in the list; none of another line.
    [[nodiscard]] const TableRemark* currentProblem() const;
    void jumpToProblem();
    void goToNextRegion(bool forwards);
    [[nodiscard]] bool canImport() const;
    void import();

    std::shared_ptr<const TableInput> input_;
    std::size_t sheet_;
    JobQueue& jobs_;
    TableCorrections corrections_;
    TableRows others_;
    std::shared_ptr<const TablePreview> preview_;
    std::optional<std::string> header_;  // by which corrections are kept; of the bare guess
    bool running_ = false;               // a job makes a preview
    bool outdated_ = false;              // another one is needed after it

    ElidedLabel* name_ = nullptr;
    QPushButton* optionsButton_ = nullptr;
    TableOptions* options_ = nullptr;
    QTableView* sample_ = nullptr;
    SampleModel* model_ = nullptr;
    RoleHeader* roles_ = nullptr;
    QLabel* sampleLabel_ = nullptr;
    QLabel* censusesLabel_ = nullptr;
    QTableWidget* censuses_ = nullptr;
    WrappedLabel* understood_ = nullptr;
    QWidget* doubts_ = nullptr;
    QWidget* remarksPart_ = nullptr;
    QLabel* remarksLabel_ = nullptr;
    QListWidget* remarks_ = nullptr;
    QPushButton* leaveOutRow_ = nullptr;
    QPushButton* leaveOutColumn_ = nullptr;
    QPushButton* takeAsZero_ = nullptr;
    QPushButton* import_ = nullptr;
};

}  // namespace zorvel
