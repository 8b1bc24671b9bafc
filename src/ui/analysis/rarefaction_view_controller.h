// One rarefaction curve with the commands that take it out of the program: the content of a window
// that outlives the project that the curve comes from. Main thread.
#pragma once

#include <QString>
#include <QWidget>
#include <functional>
#include <optional>
#include <vector>

#include "metrics/rarefaction.h"
#include "ui/analysis/plot_files.h"
#include "ui/analysis/rarefaction_texts.h"
#include "ui/kit/panels.h"
#include "ui/kit/window_placement.h"

class QBoxLayout;
class QCheckBox;
class QLabel;
class QPushButton;

namespace zorvel {

class ElidedLabel;
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

    // The curve to show, in increasing sample size; before the window appears. subject: the name of
    // the census or project that it is of, shown and suggested as a file name.
    void setRarefactionData(std::vector<Rarefaction> curve, const QString& subject);
    [[nodiscard]] const std::optional<std::vector<Rarefaction>>& rarefactionData() const {
        return rarefactionData_;
    }
    [[nodiscard]] RarefactionView& rarefactionView() { return *rarefactionView_; }
    [[nodiscard]] const QString& subject() const { return subject_; }

    // The plot without the mark of a point, as it is shown at this moment.
    [[nodiscard]] PlotDrawing drawing() const;
    // The same, with titles around it where the preferences say so.
    [[nodiscard]] PlotDrawing figure() const;
    // Beside the heading, until the next.
    void showSaved(const QString& news);

  public slots:
    // Asks where, and writes the view in the background as a page of PDF. That it is there is told
    // beside the heading, a failed write in an alert, even if the window has closed meanwhile.
    void savePlot();
    void savePlotTapped() { savePlot(); }
    // The same for the figure as SVG or PNG, once the size is chosen. Nothing where no curve is
    // drawn.
    void saveImage();
    void saveImageTapped() { saveImage(); }
    // The same for the table, whatever the confidence level of the preferences. Nothing without
    // data.
    void saveData();
    void saveDataTapped() { saveData(); }
    // The figure as an image, PDF and SVG: the program that pastes takes what it can best use.
    void copyPlot();
    // Cells parted by tabs, for a spreadsheet, and the text of the table's file beside them.
    void copyTable();
    // Draws anew and tells of the level that holds now.
    void preferencesDidChange();

  signals:
    // The figure is to be put on paper.
    void printRequested();

  protected:
    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    void viewWillAppear();
    [[nodiscard]] QBoxLayout* headingRows();
    [[nodiscard]] QBoxLayout* readoutRow();
    [[nodiscard]] QBoxLayout* buttonRow();
    QPushButton* addButton(QBoxLayout& row, const char* name, const QString& title,
                           const QKeySequence& keys, void (RarefactionViewController::*command)());
    void showTexts();
    void showReadout();
    [[nodiscard]] QString fileNameFor(const QString& what) const;
    [[nodiscard]] QString choosePath(const QString& title, const FileType& type);
    void write(const QString& path, const QString& failure, std::function<QByteArray()> bytes);
    void saveImageAs(const PlotImage& image);
    [[nodiscard]] bool isDrawn() const;
    [[nodiscard]] PlotDrawing figure(bool titles) const;

    RarefactionKind kind_;
    RarefactionTexts texts_;
    JobQueue& jobs_;
    Panels panels_;
    std::optional<std::vector<Rarefaction>> rarefactionData_;
    QString subject_;
    RarefactionView* rarefactionView_;
    QLabel* heading_ = nullptr;
    QLabel* summary_ = nullptr;
    QLabel* absence_ = nullptr;
    QLabel* readout_ = nullptr;
    ElidedLabel* saved_ = nullptr;
    QCheckBox* titlesBox_ = nullptr;
    QPushButton* saveImageButton_ = nullptr;
    bool hasAppeared_ = false;
};

// The window of one curve. It belongs to whoever makes it, and to no project.
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
