// The window "Diversity at Equal Coverage": curves of censuses over specimens, coverage or order,
// and a table of all of them at one coverage. It outlives its project. The values are computed in
// the background, the curves before their limits. Main thread.
#pragma once

#include <QPointer>
#include <QString>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

#include "ui/analysis/diversity_curves.h"
#include "ui/analysis/plot_export.h"
#include "ui/kit/popover.h"
#include "ui/kit/window_placement.h"

class QKeySequence;
class QModelIndex;
class QPushButton;

namespace Ui {
class DiversityPage;
}

namespace zorvel {

class CoverageComputation;
class CoverageTableModel;
class CurvePointsModel;
class JobQueue;
struct Explanation;

// The project as it was when the command was given.
struct DiversityInputs {
    QString project;                            // its name
    std::vector<DiversitySubject> selected;     // censuses
    bool isAll = false;                         // selected are all, since none is selected
    std::optional<DiversitySubject> pooled;     // all of them
    std::optional<DiversitySubject> incidence;  // presences over them; absent for fewer than five
};

// What the window shows; order and axis are also kept in the preferences.
struct DiversityChoice {
    enum class Of { selected, pooled, incidence };
    Of of = Of::selected;
    std::optional<double> coverage;  // absent: as far as all reach
};

class DiversityViewController : public QWidget {
    Q_OBJECT
  public:
    static constexpr std::size_t mostCurves = 12;  // that are drawn

    // Queue and panels must outlive the controller. choice: with which the window begins, as far as
    // the inputs allow.
    DiversityViewController(JobQueue& jobs, const Panels& panels, const DiversityChoice& choice,
                            QWidget* parent = nullptr);
    ~DiversityViewController() override;

    // Once.
    void setInputs(DiversityInputs inputs);
    [[nodiscard]] const QString& subject() const { return project_; }

    // The plot with titles around it if the preferences say so.
    [[nodiscard]] PlotDrawing figure() const { return export_->figure(); }
    void showSaved(const QString& news);

  public slots:
    // Draws anew at the level that holds now.
    void preferencesDidChange();

  signals:
    void printRequested();
    void choiceDidChange(const DiversityChoice& choice);

  private:
    using Curves = std::shared_ptr<const std::vector<DiversityCurve>>;

    void addChoices();
    void addCommands();
    void addExplanations();
    void addCommand(QPushButton& button, const QKeySequence& keys,
                    const std::function<void()>& command);
    PlotExport::Source exportSource();
    [[nodiscard]] DiversityView view() const;
    void choose(const DiversityChoice& choice);
    void compute();
    void takeCurves(Curves curves);
    void computeErrors();
    void showCurves();
    void showReadout();
    void showCoverage();
    void showRunning();
    void hideEmptyRemarks();
    void fitColumns(bool mayShrink);
    void copyCells() const;
    void showMenu(const QPoint& place);
    void explain(const Explanation& explanation, const QWidget& of, const QRect& place);
    void explainPlot(std::optional<std::size_t> curve);
    void explainMarked();
    void explainCommon();
    void explainCell(const QModelIndex& cell);
    [[nodiscard]] PlotDrawing drawing(bool titles) const;
    [[nodiscard]] QString tableText(char separator) const;

    std::unique_ptr<Ui::DiversityPage> ui_;
    JobQueue& jobs_;
    QString project_;
    std::shared_ptr<const DiversityInputs> inputs_;
    DiversityChoice choice_;
    PlotExport* export_;
    CoverageTableModel* coverages_;
    CurvePointsModel* points_;
    CoverageComputation* computation_;
    QPointer<Popover> popover_;
    Curves curves_;                      // all of them
    std::vector<DiversityCurve> drawn_;  // the first, with their errors
    std::optional<CommonCoverage> common_;
    double coverage_ = 0;
    std::size_t running_ = 0;  // jobs of the curves
    std::size_t generation_ = 0;
    std::stop_source stopErrors_;
};

class DiversityWindowController : public PlacedWindow {
    Q_OBJECT
  public:
    // Queue and panels must outlive the window.
    DiversityWindowController(JobQueue& jobs, const Panels& panels, const DiversityChoice& choice);

    [[nodiscard]] DiversityViewController& viewController() const { return *viewController_; }

  private:
    DiversityViewController* viewController_;
};

}  // namespace zorvel
