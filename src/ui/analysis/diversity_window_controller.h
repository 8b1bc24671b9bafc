// The window "Diversity at Equal Coverage": curves of censuses over specimens, coverage or order,
// and a table of all of them at one coverage. It outlives its project. The values are computed in
// the background, the curves before their limits. Main thread.
#pragma once

#include <QString>
#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

#include "ui/analysis/diversity_curves.h"
#include "ui/analysis/plot_page.h"
#include "ui/kit/window_placement.h"

class QModelIndex;

namespace Ui {
class DiversityPage;
}

namespace zorvel {

class CoverageComputation;
class CoverageTableModel;
class CurvePointsModel;
struct Explanation;

// The project as it was when the command was given.
struct DiversityInputs {
    // What can be compared: a curve per subject.
    struct Group {
        QString title;
        std::vector<DiversitySubject> subjects;
    };
    QString project;  // its name
    std::vector<Group> groups;
};

// What the window shows; order and axis are also kept in the preferences.
struct DiversityChoice {
    std::size_t group = 0;
    std::optional<double> coverage;  // absent: as far as all reach
};

class DiversityViewController final : public PlotPage {
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

  public slots:
    void preferencesDidChange() override;

  signals:
    void choiceDidChange(const DiversityChoice& choice);

  protected:
    [[nodiscard]] QString readout() const override;
    [[nodiscard]] QString tableText(char separator) const override;

  private:
    void addChoices();
    void addExplanations();
    [[nodiscard]] DiversityView view() const;
    [[nodiscard]] double coverage() const;
    void choose(const DiversityChoice& choice);
    void compute();
    void takeCurves(DiversityCurves curves);
    void computeErrors();
    void showCurves();
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

    std::unique_ptr<Ui::DiversityPage> ui_;
    JobQueue& jobs_;
    std::shared_ptr<const DiversityInputs> inputs_;
    DiversityChoice choice_;
    CoverageTableModel* coverages_;
    CurvePointsModel* points_;
    CoverageComputation* computation_;
    DiversityCurves curves_;             // all of them
    std::vector<DiversityCurve> drawn_;  // the first, with their errors
    std::optional<CommonCoverage> common_;
    std::size_t running_ = 0;  // jobs of the curves
    std::stop_source stop_;    // of these jobs
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
