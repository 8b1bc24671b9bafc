// The ways in which a plot and its table leave the program: saved as PDF, image or text in the
// background, and copied. Main thread.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <functional>

#include "platform/preferences.h"
#include "ui/analysis/plot_files.h"
#include "ui/kit/panels.h"

namespace zorvel {

class JobQueue;

class PlotExport : public QObject {
    Q_OBJECT
  public:
    struct Source {
        std::function<bool()> isDrawable;
        // With titles around it if they are wanted and it is drawable.
        std::function<PlotDrawing(bool titles)> drawing;
        std::function<QByteArray()> table;  // comma-separated; empty: there is none
        std::function<QString()> cells;     // the same, tab-separated
        std::function<QString()> fileName;  // suggested, without its ending
        QString tableTitle;                 // of the panel that asks where to save the table
    };
    // Queue, panels and what the source refers to must outlive it. owner: the window of the plot
    // or a part of it.
    PlotExport(Source source, JobQueue& jobs, const Panels& panels, QWidget& owner);

    // With titles if the preferences say so.
    [[nodiscard]] PlotDrawing figure() const;

    // Asks where, and writes the plot in the background as a page of PDF. Success is told by
    // saved(), a failed write in an alert, even if the window has closed meanwhile.
    void savePlot();
    // The same for the figure as SVG or PNG, once the size is chosen. Nothing if no curve is drawn.
    void saveImage();
    // The same for the table. Nothing without one.
    void saveTable();
    // The figure as an image, PDF and SVG: the program that pastes takes what it can best use.
    void copyPlot();
    // As tab-separated cells for a spreadsheet, and as the text of the table's file.
    void copyTable();

  signals:
    // A sentence without its full stop.
    void saved(const QString& news);
    // The preferences of images have changed.
    void imageChosen();

  private:
    [[nodiscard]] QString choosePath(const QString& title, const FileType& type);
    void write(const QString& path, const QString& failure, std::function<QByteArray()> bytes);
    void saveImageAs(const PlotImage& image);

    Source source_;
    JobQueue& jobs_;
    Panels panels_;
    QWidget& owner_;
};

}  // namespace zorvel
