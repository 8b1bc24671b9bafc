// The content of a window with one plot: the plot on its paper, what is read out of it, and the
// commands that take it and its table out of the program. It may outlive its project. Main thread.
#pragma once

#include <QByteArray>
#include <QString>
#include <QWidget>
#include <functional>
#include <optional>

#include "platform/preferences.h"
#include "ui/analysis/plot_files.h"
#include "ui/analysis/rarefaction_plot.h"
#include "ui/kit/panels.h"

namespace zorvel {

class JobQueue;
class PlotView;

class PlotPage : public QWidget {
    Q_OBJECT
  public:
    // Queue and panels must outlive the page.
    PlotPage(JobQueue& jobs, const Panels& panels, QWidget* parent);

    // The name of its census or project; may be empty.
    [[nodiscard]] const QString& subject() const { return subject_; }
    // The plot as it is shown, without the mark of a point.
    [[nodiscard]] PlotDrawing drawing() const;
    // The same, with titles around it if the preferences say so.
    [[nodiscard]] PlotDrawing figure() const;
    // Shown beside the heading until the next.
    void showSaved(const QString& news);

  public slots:
    // Asks where, and writes the plot in the background as a page of PDF. A failed write is told in
    // an alert, even if the window has closed meanwhile.
    void savePlot();
    // The same for the figure as SVG or PNG, once the size is chosen. Nothing if no curve is drawn.
    void saveImage();
    // The same for the table, whatever is drawn. Nothing without one.
    void saveTable();
    // The figure as an image, PDF and SVG: the program that pastes takes what it can best use.
    void copyPlot();
    // As tab-separated cells for a spreadsheet, and as the text of the table's file.
    void copyTable();
    // Draws anew, at the level that holds now.
    virtual void preferencesDidChange() = 0;

  signals:
    void printRequested();

  protected:
    static constexpr qsizetype longestSubject = 120;  // characters that are shown

    // Of the preferences; absent if they name none that is in use.
    static std::optional<ConfidenceLevel> levelNow();

    struct Kind {
        QString title;     // "Rarefaction curve"
        QString fileName;  // "rarefaction"
        QString table;     // "Rarefaction Table"
    };
    // Once the form of the page is set up. The form has the widgets of a plot by the names that are
    // used here.
    void addPlot(const Kind& kind);
    void setSubject(const QString& subject) { subject_ = subject; }
    // When the plot has changed.
    void showPlot();

    // Of the marked point, or else a hint.
    [[nodiscard]] virtual QString readout() const = 0;
    // As text, with commas or tabs between the cells; empty: there is none.
    [[nodiscard]] virtual QString tableText(char separator) const = 0;

  private:
    void showReadout();
    [[nodiscard]] PlotDrawing figure(bool titles) const;
    [[nodiscard]] QString choosePath(const QString& title, const FileType& type);
    void write(const QString& path, const QString& failure, std::function<QByteArray()> bytes);
    void saveImageAs(const PlotImage& image);

    JobQueue& jobs_;
    Panels panels_;
    Kind kind_;
    QString subject_;
    PlotView* view_ = nullptr;
};

}  // namespace zorvel
