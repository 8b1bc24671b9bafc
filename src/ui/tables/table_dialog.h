// The window that shows how a table would be imported, and lets the user correct it: its first rows
// with the role of each column, the censuses that would be read, and what keeps it from being read.
// Nothing is read on the main thread: each change starts a job that makes a new preview. Owned by
// its parent. Main thread.
#pragma once

#include <QDialog>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

#include "platform/job_queue.h"
#include "ui/tables/table_corrections.h"
#include "ui/tables/table_input.h"
#include "ui/tables/table_preview.h"

class QDialogButtonBox;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QVBoxLayout;

namespace zorvel {

class CensusList;
class SampleView;
class TableDoubts;
class TableOptions;
class TableRemarksList;
class WrappedLabel;

class TableDialog : public QDialog {
    Q_OBJECT
  public:
    // The result of one that is skipped; see offerSkip().
    static constexpr int skipped = 2;

    // name: of the file, or what stands for it.
    TableDialog(const QString& name, std::shared_ptr<const TableInput> input, JobQueue& jobs,
                QWidget* parent);

    ~TableDialog() override;

    // More tables follow, which Cancel leaves out: adds a button that leaves out only this one.
    void offerSkip();

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

  private:
    void addHeading(QVBoxLayout& column, const QString& name);
    void addSheets(QHBoxLayout& line);
    QWidget* makeSample();
    void addButtons(QVBoxLayout& column);

    void showSheet(int sheet);
    void setCorrectable(bool correctable);
    void correct(const TableCorrection& correction);
    // Starts a preview, or waits for the one that runs.
    void update();
    void take(const std::shared_ptr<const TablePreview>& preview);
    void showPreview();
    void showImportButton();
    // What is to be done next gets the focus.
    void moveFocus();
    void foldOptions();
    void goToNextRegion(bool forwards);
    [[nodiscard]] bool canImport() const;
    void import();

    std::shared_ptr<const TableInput> input_;
    std::size_t sheet_;
    JobQueue& jobs_;
    TableCorrections corrections_;
    TableRows others_;
    std::shared_ptr<const TablePreview> preview_;
    // By which corrections are kept: that of the bare guess. Not known before the first preview.
    std::optional<std::string> header_;
    bool running_ = false;   // a job makes a preview
    std::stop_source stop_;  // of that job
    bool outdated_ = false;  // another one is needed after it

    QWidget* heading_ = nullptr;
    QPushButton* optionsButton_ = nullptr;
    TableOptions* options_ = nullptr;
    TableDoubts* doubts_ = nullptr;
    SampleView* sample_ = nullptr;
    QLabel* sampleLabel_ = nullptr;
    CensusList* censuses_ = nullptr;
    WrappedLabel* understood_ = nullptr;
    TableRemarksList* remarks_ = nullptr;
    QDialogButtonBox* buttons_ = nullptr;
    QPushButton* import_ = nullptr;
};

}  // namespace zorvel
