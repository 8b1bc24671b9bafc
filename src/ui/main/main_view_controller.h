// The content of a project's window: the census table, the species of the selected census, its
// details, and its metrics. It reads the document's records and changes none. Of several selected
// censuses the topmost feeds the other parts. Main thread.
#pragma once

#include <QWidget>
#include <memory>
#include <optional>

#include "model/diversity_document.h"
#include "ui/main/metrics_panel.h"

namespace Ui {
class MainView;
}

namespace zorvel {

class CensusTableModel;
class JobQueue;
class SpeciesTableModel;

class MainViewController : public QWidget {
    Q_OBJECT
  public:
    // Document and queue must outlive the view.
    MainViewController(const DiversityDocument& document, JobQueue& jobs,
                       RandomSourceMaker makeRandom, QWidget* parent = nullptr);
    ~MainViewController() override;

    // Shows the records as they stand now; without a census, the page that says what to do first.
    void reloadCensuses();
    void selectFirstCensus();
    // The topmost of the selected ones.
    [[nodiscard]] std::optional<Census> selectedCensus() const;

    // The indicator turns and the label says what runs.
    void startProgress(const QString& text);
    void stopProgress();
    [[nodiscard]] bool isInProgress() const;

    void showMessage(const QString& message);

    // Places of the splitters, to be kept between runs.
    [[nodiscard]] QByteArray saveLayout() const;
    void restoreLayout(const QByteArray& state);

  public slots:
    // Metrics of the selected census; without one the panel keeps what it shows.
    void refreshMetrics();
    // The preferences have changed.
    void updateMetrics() { refreshMetrics(); }

  signals:
    void openRequested();

  protected:
    void changeEvent(QEvent* event) override;

  private slots:
    void tableViewSelectionDidChange();
    void filterSpecies(const QString& text);

  private:
    void setUpTables();
    void setUpTexts();
    void showSecondaryTexts();
    void showSpecies(const std::optional<Census>& census);
    void showDetails(const std::optional<Census>& census);
    void showSpeciesCount();
    void showRightPage();

    const DiversityDocument& document_;
    std::unique_ptr<Ui::MainView> ui_;
    CensusTableModel* censusModel_;
    SpeciesTableModel* speciesModel_;
    std::optional<RecordId> shownCensus_;
};

}  // namespace zorvel
