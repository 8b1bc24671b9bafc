// Asks the person at the screen on what to print. An interface, so that a test can answer.
#pragma once

#include <QPageLayout>
#include <QPageRanges>
#include <QPagedPaintDevice>
#include <QString>
#include <memory>
#include <optional>

class QWidget;

namespace zorvel {

// A printer, or a PDF file of these pages.
struct PrintTarget {
    std::unique_ptr<QPagedPaintDevice> printer;  // null for a file
    QString path;
    QPageLayout layout;
    QPageRanges pages;  // empty: all
};

class PrintPanel {
  public:
    PrintPanel() = default;
    PrintPanel(const PrintPanel&) = delete;
    PrintPanel& operator=(const PrintPanel&) = delete;
    virtual ~PrintPanel() = default;

    // title: what the printer is told; orientation: what the panel begins with. Absent where it was
    // cancelled. Whether a file there may be replaced has been asked. Waits for the answer.
    virtual std::optional<PrintTarget> choosePrinter(QWidget* parent, const QString& title,
                                                     QPageLayout::Orientation orientation) = 0;
};

}  // namespace zorvel
