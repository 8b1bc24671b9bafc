// The command that prints what the active window shows: a plot, the metrics of a project, or the
// selected census. Main thread; to a file it is written in the background.
#pragma once

#include <QPageLayout>
#include <QPageRanges>
#include <QPagedPaintDevice>
#include <QString>
#include <memory>
#include <optional>

#include "ui/kit/alerts.h"

namespace zorvel {

class ProjectWindows;

// A printer, or a PDF file of these pages.
struct PrintTarget {
    std::unique_ptr<QPagedPaintDevice> printer;  // null for a file
    QString path;
    QPageLayout layout;
    QPageRanges pages;  // empty: all
};

// Asks what to print on by the desktop's panel; a test can answer in its place.
class PrintPanel : public Panel {
  public:
    // title: what the printer is told; orientation: what the panel begins with. Absent if
    // cancelled. The panel has asked whether an existing file may be replaced. Waits for the
    // answer.
    virtual std::optional<PrintTarget> choosePrinter(QWidget* parent, const QString& title,
                                                     QPageLayout::Orientation orientation);
};

// Prints what a window shows each time that it asks for it. An alert says if printing failed, and
// the strip of a project's window if a file was written. The panel must outlive the windows.
void printOnRequest(ProjectWindows& windows, PrintPanel& panel);

}  // namespace zorvel
