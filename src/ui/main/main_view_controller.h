// The content of a project's window: the census table, the species of the selected census, its
// details, and its metrics. It follows the document's records, and changes them by edits of the
// model. If several censuses are selected, the topmost is shown in the other parts. Owned by its
// window. Main thread.
#pragma once

#include <QList>
#include <QPointer>
#include <QWidget>
#include <array>
#include <functional>
#include <memory>
#include <optional>

#include "model/diversity_document.h"
#include "ui/analysis/diversity_window_controller.h"
#include "ui/analysis/project_wide_metrics_window_controller.h"
#include "ui/analysis/rarefaction_view_controller.h"
#include "ui/kit/message_strip.h"
#include "ui/kit/panels.h"
#include "ui/main/metrics_panel.h"

namespace Ui {
class MainView;
}

namespace zorvel {

class CensusTableModel;
class JobQueue;
class OrderedTableModel;
struct PrintedSheet;
class RecordTableView;
class SpeciesTableModel;
class TableColumns;

class MainViewController : public QWidget, public MainView {
    Q_OBJECT
  public:
    // Queue and panels must outlive the view and the windows that it opens.
    MainViewController(JobQueue& jobs, RandomSourceMaker makeRandom, const Panels& panels,
                       QWidget* parent = nullptr);
    ~MainViewController() override;

    // Shows this project instead of the one before, if any; both must live until this returns, and
    // the new one until the view or the next call. Messages and the names known for completion
    // stay.
    void showDocument(DiversityDocument& document);

    // The topmost of the selected ones.
    [[nodiscard]] std::optional<Census> selectedCensus() const;
    [[nodiscard]] std::vector<Census> selectedCensuses() const;

    TaxonFormatter& taxonFormatter() override { return taxonFormatter_; }

    // Commands; one that is not possible now does nothing. A new record is at the end of its table,
    // with its name open for editing; deleting acts on all selected rows.
    void addCensusRow() override;
    void deleteCensusRows() override;
    void addSpeciesRow() override;
    void deleteSpeciesRows() override;
    [[nodiscard]] bool canDeleteCensus() const;
    // There is a census; if none is selected, adding a species says so.
    [[nodiscard]] bool canAddSpecies() const;
    [[nodiscard]] bool canDeleteSpecies() const;
    // The changed records are selected and in sight afterwards.
    void undo() { undoOrRedo(&ObjectContext::undo); }
    void redo() { undoOrRedo(&ObjectContext::redo); }

    void copyAllMetrics();
    // The selected census for paper: its metrics, and its species in the order shown. A copy of the
    // records. Absent if what is being typed cannot be stored or if none is selected, which the
    // strip then says.
    [[nodiscard]] std::optional<PrintedSheet> printedCensus();

    // Rows of one of the tables, to and from the clipboard. What is pasted is selected and in
    // sight; the strip says why if nothing could be pasted.
    void cutRows(RecordTableView& table);
    void pasteRows(RecordTableView& table);
    // A text of several columns, wherever the focus is.
    void pasteTable();
    // The search field takes the focus.
    void findSpecies();

    // Stores what is typed in an open cell. False if it cannot be stored: the cell stays open and
    // says why.
    bool commitEditing();
    // The same for all that is typed, before the window closes.
    bool readyToClose();
    // Stores all that is typed, as far as possible; textRefused() tells of the rest.
    void endEditing();
    // Stores what is typed in open editors in a copy of the records; the editors stay as they are.
    void storeDrafts(ObjectContext& copy) const;

    // Shows that work runs: of several works, the text of the one started last. Work that can be
    // cancelled has a button for it. isImport: it changes the project, and nothing of it is stored
    // if it is cancelled. Returns the number of the work, never 0.
    ProgressId startProgress(const QString& text, std::function<void()> cancel = {},
                             bool isImport = false);
    ProgressId startImportProgress(const std::string& text, std::function<void()> cancel) override;
    // Does nothing if the work does not run.
    void stopProgress(ProgressId progress) override;
    [[nodiscard]] bool isInProgress() const { return !works_.isEmpty(); }
    [[nodiscard]] bool isInProgressBeside(ProgressId progress) const;
    // Cancels the work whose text is shown, if that is possible.
    void cancelProgress();
    // A file is read, or stored, into the project.
    [[nodiscard]] bool isImporting() const;
    void cancelImports();

    // The project's name, for the windows of analyses opened from now on.
    void setProjectName(const QString& name) { projectName_ = name; }
    // The last one opened from here that still exists, or null.
    [[nodiscard]] ProjectWideMetricsWindowController* projectWideMetricsWindowController() const {
        return projectWideMetricsWindowController_;
    }
    [[nodiscard]] RarefactionWindowController* rarefactionWindowController() const {
        return rarefactionWindowController_;
    }
    [[nodiscard]] DiversityWindowController* diversityWindowController() const {
        return diversityWindowController_;
    }

    [[nodiscard]] MessageStrip& messageStrip();

    // Places of the splitters and columns, to be kept between runs.
    [[nodiscard]] QByteArray saveLayout() const;
    void restoreLayout(const QByteArray& state);

  public slots:
    // Metrics of the selected census; without one the panel keeps what it shows.
    void refreshMetrics();
    // The preferences have changed, or a field has ended its editing.
    void updateMetrics() { refreshMetrics(); }
    void editingDidEnd() { refreshMetrics(); }
    // The analyses, each of the records as they are at the command: its job has a frozen copy, or
    // the counts. A warning tells of too few censuses. The project-wide window opens at once and
    // fills later, whatever happens to the project; a curve that is finished after the project was
    // closed is dropped.
    void calculateProjectWideMetrics();
    // Of the selected census; nothing without one.
    void individualBasedRarefaction();
    void sampleBasedRarefaction();
    // Of the selected censuses, or of all where none is selected. The window opens at once.
    void diversityAtEqualCoverage();

  signals:
    void openRequested();
    // A text of more columns than a table takes, pasted or dropped. name: what it came from.
    void tableGiven(const QString& name, const QString& text);
    // In any editor, or one has closed.
    void textTyped();
    // A text was not stored although its editor has closed; the strip says so, too.
    void textRefused(const QString& message);
    // Before a window that belongs to no project is shown. It may outlive this view: the receiver
    // must close it before queue and panels are deleted.
    void analysisWindowDidOpen(QWidget* opened);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    // Of the search field.
    bool eventFilter(QObject* object, QEvent* event) override;

  private slots:
    void tableViewSelectionDidChange();
    void filterSpecies(const QString& text);
    void toggleInclude();

  private:
    struct RunningWork {
        ProgressId number = 0;
        QString text;
        std::function<void()> cancel;
        bool isImport = false;
    };

    void setUpCensusTable();
    void setUpSpeciesTable();
    void setUpDetails();
    void setUpSearch();
    void setUpButtons();
    void setUpPullDowns();
    void setUpTexts();
    void keepThroughReset(RecordTableView* table, OrderedTableModel* model);

    [[nodiscard]] std::array<RecordTableView*, 2> tables() const;
    [[nodiscard]] ObjectContext& context() const { return document_->objectContext(); }
    void leaveDocument();
    void recordsDidChange(const ChangeSet& changes);
    void shownCensusDidChange(const CensusChange& change);
    void revealChanges(const ChangeSet& changes);
    void learnNames();
    void undoOrRedo(void (ObjectContext::*step)());

    void showCensusCount();
    void showSpeciesHeading(const std::optional<Census>& census);
    void showSpeciesCount();
    void showRightPage();
    void showProgress();
    [[nodiscard]] bool canCancelProgress() const;
    void refreshSpeciesControls();
    void openWindow(QWidget* window);
    // work returns the inputs of the window, on a worker thread.
    template <class Window, class Work>
    void openAndFill(Window* window, const QString& progressText, Work work);
    bool canAnalyse(std::size_t fewestCensuses, const QString& refusal);
    void startRarefaction(RarefactionKind kind, const QString& subject,
                          std::function<std::vector<Rarefaction>()> work);

    JobQueue& jobs_;
    RandomSourceMaker makeRandom_;
    Panels panels_;
    DiversityDocument* document_ = nullptr;
    std::unique_ptr<Ui::MainView> ui_;
    CensusTableModel* censusModel_;
    SpeciesTableModel* speciesModel_;
    TableColumns* censusColumns_ = nullptr;
    TableColumns* speciesColumns_ = nullptr;
    QList<RunningWork> works_;
    int worksStarted_ = 0;
    TaxonFormatter taxonFormatter_;
    ObjectContext::ObserverId observer_ = {};
    std::optional<RecordId> shownCensus_;
    bool revealing_ = false;  // the changes are those of undo or redo
    QString projectName_;
    QPointer<ProjectWideMetricsWindowController> projectWideMetricsWindowController_;
    QPointer<RarefactionWindowController> rarefactionWindowController_;
    QPointer<DiversityWindowController> diversityWindowController_;
    DiversityChoice diversityChoice_;  // of the last window, for the next
};

}  // namespace zorvel
