// The window "Diversity at Equal Coverage": curves of censuses over specimens, coverage or order,
// and a table of all of them at one coverage. It outlives its project. The values are computed in
// the background, the curves before their limits. Main thread.
#pragma once

#include <QString>
#include <QWidget>
#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

#include "ui/analysis/diversity_curves.h"
#include "ui/analysis/plot_export.h"
#include "ui/kit/window_placement.h"

class QKeySequence;
class QPushButton;

namespace Ui {
class DiversityPage;
}

namespace zorvel {

class CoverageTableModel;
class CurvePointsModel;
class JobQueue;

// The project as it was when the command was given.
struct DiversityInputs {
    QString project;                            // its name
    std::vector<DiversitySubject> selected;     // censuses
    std::optional<DiversitySubject> pooled;     // all of them
    std::optional<DiversitySubject> incidence;  // presences over them; absent for fewer than five
};

class DiversityViewController : public QWidget {
    Q_OBJECT
  public:
    static constexpr std::size_t mostCurves = 12;  // that are drawn

    // Queue and panels must outlive the controller.
    DiversityViewController(JobQueue& jobs, const Panels& panels, QWidget* parent = nullptr);
    ~DiversityViewController() override;

    // Once.
    void setInputs(DiversityInputs inputs);
    [[nodiscard]] const QString& subject() const { return inputs_.project; }

    // The plot with titles around it if the preferences say so.
    [[nodiscard]] PlotDrawing figure() const { return export_->figure(); }
    void showSaved(const QString& news);

  public slots:
    // Draws anew at the level that holds now.
    void preferencesDidChange();

  signals:
    void printRequested();

  private:
    enum class Of { selected, pooled, incidence };

    PlotExport::Source exportSource();
    void addCommand(QPushButton& button, const QKeySequence& keys,
                    const std::function<void()>& command);
    [[nodiscard]] std::size_t order() const;
    [[nodiscard]] DiversityAcross across() const;
    [[nodiscard]] bool isIncidence() const;
    [[nodiscard]] std::vector<DiversitySubject> subjects() const;
    void compute();
    void computeErrors();
    void showCurves();
    void showReadout();
    void setCoverage(double coverage);
    void showTable();
    void computeTableErrors();
    void updateSpinner();
    [[nodiscard]] QString widthTitle() const;
    [[nodiscard]] QString heightTitle() const;
    [[nodiscard]] QString placeText(double x) const;
    [[nodiscard]] PlotDrawing drawing(bool titles) const;
    [[nodiscard]] QString tableText(char separator) const;

    std::unique_ptr<Ui::DiversityPage> ui_;
    JobQueue& jobs_;
    DiversityInputs inputs_;
    PlotExport* export_;
    CoverageTableModel* coverages_;
    CurvePointsModel* points_;
    std::shared_ptr<const std::vector<DiversityCurve>> curves_;  // all of them
    std::vector<DiversityCurve> drawn_;                          // the first, with their errors
    std::optional<CommonCoverage> common_;
    double coverage_ = 0;
    bool followsCommon_ = true;
    std::size_t running_ = 0;     // jobs
    std::size_t generation_ = 0;  // of the curves
    std::stop_source stopErrors_;
    std::stop_source stopTableErrors_;
};

class DiversityWindowController : public PlacedWindow {
    Q_OBJECT
  public:
    // Queue and panels must outlive the window.
    DiversityWindowController(JobQueue& jobs, const Panels& panels);

    [[nodiscard]] DiversityViewController& viewController() const { return *viewController_; }

  private:
    DiversityViewController* viewController_;
};

}  // namespace zorvel
