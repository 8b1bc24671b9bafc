// One rarefaction curve with the commands that take it out of the program, and the window that
// shows it, which outlives the project that the curve comes from. Main thread.
#pragma once

#include <QString>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "metrics/rarefaction.h"
#include "ui/analysis/plot_export.h"
#include "ui/analysis/rarefaction_texts.h"
#include "ui/kit/panels.h"
#include "ui/kit/window_placement.h"

class QKeySequence;
class QPushButton;

namespace Ui {
class RarefactionPage;
}

namespace zorvel {

class JobQueue;
class RarefactionView;

class RarefactionViewController : public QWidget {
    Q_OBJECT
  public:
    // Queue and panels must outlive the controller.
    RarefactionViewController(RarefactionKind kind, JobQueue& jobs, const Panels& panels,
                              QWidget* parent = nullptr);
    ~RarefactionViewController() override;

    // The curve to show, in increasing sample size. subject: the name of its census or project,
    // shown and suggested as a file name.
    void setRarefactionData(std::vector<Rarefaction> curve, const QString& subject);
    [[nodiscard]] const std::optional<std::vector<Rarefaction>>& rarefactionData() const;
    [[nodiscard]] RarefactionView& rarefactionView() const;
    [[nodiscard]] const QString& subject() const { return subject_; }

    // The plot as it is shown, without the mark of a point.
    [[nodiscard]] PlotDrawing drawing() const;
    // The same, with titles around it if the preferences say so.
    [[nodiscard]] PlotDrawing figure() const { return export_->figure(); }
    // Shown beside the heading until the next.
    void showSaved(const QString& news);

  public slots:
    // As PlotExport does them: the plot, and the table whatever the confidence level of the
    // preferences.
    void savePlot() { export_->savePlot(); }
    void savePlotTapped() { savePlot(); }
    void saveImage() { export_->saveImage(); }
    void saveData() { export_->saveTable(); }
    void saveDataTapped() { saveData(); }
    void copyPlot() { export_->copyPlot(); }
    void copyTable() { export_->copyTable(); }
    // Draws anew, and tells of the level that holds now.
    void preferencesDidChange();

  signals:
    void printRequested();

  protected:
    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    void addCommand(QPushButton& button, const QKeySequence& keys,
                    void (RarefactionViewController::*command)());
    void showTexts();
    void showReadout();
    PlotExport::Source exportSource();
    [[nodiscard]] PlotDrawing figure(bool titles) const;

    std::unique_ptr<Ui::RarefactionPage> ui_;
    RarefactionTexts texts_;
    PlotExport* export_;
    QString subject_;
};

// The window of one curve. Owned by its maker, not by a project.
class RarefactionWindowController : public PlacedWindow {
    Q_OBJECT
  public:
    // Queue and panels must outlive the window.
    RarefactionWindowController(RarefactionKind kind, JobQueue& jobs, const Panels& panels);

    [[nodiscard]] RarefactionViewController& viewController() const { return *viewController_; }

  private:
    RarefactionViewController* viewController_;
};

}  // namespace zorvel
