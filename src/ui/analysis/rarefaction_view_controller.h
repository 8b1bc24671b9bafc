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
#include "ui/analysis/plot_files.h"
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
struct PlotImage;
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
    [[nodiscard]] PlotDrawing figure() const;
    // Shown beside the heading until the next.
    void showSaved(const QString& news);

  public slots:
    // Asks where, and writes the view in the background as a page of PDF. Success is told beside
    // the heading, a failed write in an alert, even if the window has closed meanwhile.
    void savePlot();
    void savePlotTapped() { savePlot(); }
    // The same for the figure as SVG or PNG, once the size is chosen. Nothing if no curve is drawn.
    void saveImage();
    // The same for the table, whatever the confidence level of the preferences. Nothing without
    // data.
    void saveData();
    void saveDataTapped() { saveData(); }
    // The figure as an image, PDF and SVG: the program that pastes takes what it can best use.
    void copyPlot();
    // As tab-separated cells for a spreadsheet, and as the text of the table's file.
    void copyTable();
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
    [[nodiscard]] QString choosePath(const QString& title, const FileType& type);
    void write(const QString& path, const QString& failure, std::function<QByteArray()> bytes);
    void saveImageAs(const PlotImage& image);
    [[nodiscard]] PlotDrawing figure(bool titles) const;

    std::unique_ptr<Ui::RarefactionPage> ui_;
    RarefactionTexts texts_;
    JobQueue& jobs_;
    Panels panels_;
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
