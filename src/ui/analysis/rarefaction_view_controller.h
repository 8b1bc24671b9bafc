// One rarefaction curve with the commands that take it out of the program, and the window that
// shows it, which outlives the project that the curve comes from. Main thread.
#pragma once

#include <QString>
#include <memory>
#include <optional>
#include <vector>

#include "metrics/rarefaction.h"
#include "ui/analysis/plot_page.h"
#include "ui/kit/window_placement.h"

namespace Ui {
class RarefactionPage;
}

namespace zorvel {

class RarefactionView;

enum class RarefactionKind { individualBased, sampleBased };

class RarefactionViewController final : public PlotPage {
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

  public slots:
    void savePlotTapped() { savePlot(); }
    void saveData() { saveTable(); }
    void saveDataTapped() { saveData(); }
    void preferencesDidChange() override;

  protected:
    [[nodiscard]] QString readout() const override;
    [[nodiscard]] QString tableText(char separator) const override;
    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    void showTexts();

    std::unique_ptr<Ui::RarefactionPage> ui_;
    RarefactionKind kind_;
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
