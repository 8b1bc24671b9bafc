// The content of a project's window: the census table, the species of the selected census, its
// details, and its metrics. It shows the document's records as they change, and changes them by the
// edits of the model alone. Of several selected censuses the topmost feeds the other parts. Main
// thread.
#pragma once

#include <QWidget>
#include <memory>
#include <optional>

#include "model/diversity_document.h"
#include "model/main_view.h"
#include "ui/kit/panels.h"
#include "ui/main/metrics_panel.h"
#include "ui/main/running_work.h"

namespace Ui {
class MainView;
}

namespace zorvel {

class AnalysisCommands;
class CensusTableModel;
class JobQueue;
class MessageStrip;
struct PrintedSheet;
class ProjectWideMetricsWindowController;
class RarefactionWindowController;
class RecordTableView;
class SpeciesTableModel;
class TableColumns;
enum class Analysis;

class MainViewController : public QWidget, public MainView {
    Q_OBJECT
  public:
    // Document, queue and panels must outlive the view.
    MainViewController(DiversityDocument& document, JobQueue& jobs, RandomSourceMaker makeRandom,
                       const Panels& panels, QWidget* parent = nullptr);
    ~MainViewController() override;

    void selectFirstCensus();
    // The topmost of the selected ones.
    [[nodiscard]] std::optional<Census> selectedCensus() const;
    [[nodiscard]] std::vector<Census> selectedCensuses() const;

    TaxonFormatter& taxonFormatter() override { return taxonFormatter_; }

    // Commands; what cannot be done now does nothing. A new record is at the end of its table, with
    // its name open for editing; deleting acts on all that is selected.
    void addCensusRow() override;
    void deleteCensusRows() override;
    void addSpeciesRow() override;
    void deleteSpeciesRows() override;
    [[nodiscard]] bool canDeleteCensus() const;
    // There is a census; adding says so where none is selected.
    [[nodiscard]] bool canAddSpecies() const;
    [[nodiscard]] bool canDeleteSpecies() const;
    // The records concerned are selected and in sight afterwards.
    void undo();
    void redo();

    void copyAllMetrics();
    // The selected census for paper: its metrics, and its species in the order in which they are
    // shown. It holds the records as they stand. Absent, and the strip says why, where none is
    // selected; also where what is being typed cannot be stored.
    [[nodiscard]] std::optional<PrintedSheet> printedCensus();

    // Rows of one of the tables, by way of the clipboard. What is pasted is selected and in sight;
    // the strip says why where nothing could be pasted.
    void cutRows(RecordTableView& table);
    void pasteRows(RecordTableView& table);
    // The search field takes the focus.
    void findSpecies();

    // Stores what is typed in an open editor. False where it cannot be stored: the editor stays
    // open and says why.
    bool commitEditing();
    // The same for all that is typed, before the window goes.
    bool readyToClose();
    // Stores all that is typed, as far as it can be; textRefused() tells of the rest.
    void endEditing();
    // What is typed in open editors as it would be stored now, in a copy of the records; the
    // editors stay as they are.
    void storeDrafts(ObjectContext& copy) const;

    // The indicator turns and the label says what runs: of several works, each of a name of its
    // own, the one that began last. Work that can be cancelled has a button for it.
    void startProgress(const QString& name, const QString& text, std::function<void()> cancel = {});
    void stopProgress(const QString& name);
    // That of imports.
    ProgressId startProgress(std::string_view text, std::function<void()> cancel) override;
    void stopProgress(ProgressId progress) override;
    [[nodiscard]] bool isInProgress() const;
    // Whether work of another name runs.
    [[nodiscard]] bool isInProgressBeside(const QString& name) const;
    // Gives up the work that the label names, where it can be cancelled.
    void cancelProgress();
    // A file is read, or stored, into the project.
    [[nodiscard]] bool isImporting() const { return running_.hasImport(); }
    void cancelImports() { running_.cancelImports(); }

    // The project's name, for the windows of analyses, which bear it from then on.
    void setProjectName(const QString& name);
    // The newest that was opened from here and is still there, or null.
    [[nodiscard]] ProjectWideMetricsWindowController* projectWideMetricsWindowController() const;
    [[nodiscard]] RarefactionWindowController* rarefactionWindowController() const;

    void showMessage(const QString& message);
    // The same for work that is done.
    void showNews(const QString& message);
    [[nodiscard]] MessageStrip& messageStrip();

    // Places of the splitters, to be kept between runs.
    [[nodiscard]] QByteArray saveLayout() const;
    void restoreLayout(const QByteArray& state);

  public slots:
    // Metrics of the selected census; without one the panel keeps what it shows.
    void refreshMetrics();
    // The preferences have changed.
    void updateMetrics() { refreshMetrics(); }
    // That of a text, be it stored, unchanged or given up.
    void editingDidEnd() { refreshMetrics(); }
    // The analyses: see analysis_commands.h.
    void calculateProjectWideMetrics();
    void individualBasedRarefaction();
    void sampleBasedRarefaction();

  signals:
    void openRequested();
    // In any editor, or one has closed.
    void textTyped();
    // Of a text that was not stored although its editor has closed; told in the strip, too.
    void textRefused(const QString& message);
    // Before a window that belongs to no project is shown, which lives on when the project closes:
    // whoever hears of it must close it before queue and panels go.
    void analysisWindowDidOpen(QWidget* opened);

  protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private slots:
    void tableViewSelectionDidChange();
    void filterSpecies(const QString& text);
    void toggleInclude();

  private:
    void setUpCensusTable();
    void setUpSpeciesTable();
    void setUpDetails();
    void setUpSearch();
    void setUpButtons();
    void setUpPullDowns();
    void setUpTexts();
    void hearOfEndsOfEditing();
    void setUpSplitters();
    void keepThroughReset();

    void recordsDidChange(const ChangeSet& changes);
    void shownCensusDidChange(const CensusChange& change);
    void revealChanges(const ChangeSet& changes);
    void selectCensus(RecordId census);
    void learnNames();
    void travel(void (ObjectContext::*step)());

    void showSecondaryTexts();
    void showCensusCount();
    void showSpecies(const std::optional<Census>& census);
    void showSpeciesHeading(const std::optional<Census>& census);
    void showDetails(const std::optional<Census>& census);
    void showSpeciesCount();
    void showRightPage();
    void showProgress();
    void refreshSpeciesControls();
    void runAnalysis(Analysis analysis);

    DiversityDocument& document_;
    std::unique_ptr<Ui::MainView> ui_;
    AnalysisCommands* analyses_;
    CensusTableModel* censusModel_;
    SpeciesTableModel* speciesModel_;
    TableColumns* censusColumns_ = nullptr;
    TableColumns* speciesColumns_ = nullptr;
    RunningWork running_;
    ProgressId lastProgress_ = 0;
    TaxonFormatter taxonFormatter_;
    ObjectContext::ObserverId observer_;
    std::optional<RecordId> shownCensus_;
    bool revealing_ = false;  // the changes come from undo or redo
};

}  // namespace zorvel
