// The window of one project: it owns the project and holds the main view, no more. Menus come from
// whoever makes the window. Main thread.
#pragma once

#include <QMainWindow>

#include "model/diversity_document.h"
#include "ui/main/metrics_panel.h"

namespace zorvel {

class JobQueue;
class MainViewController;

class MainWindowController : public QMainWindow {
    Q_OBJECT
  public:
    // The queue must outlive the window. Size, and places of the splitters, are those of the window
    // closed last.
    MainWindowController(JobQueue& jobs, RandomSourceMaker makeRandom);

    [[nodiscard]] DiversityDocument& document() { return document_; }
    [[nodiscard]] MainViewController& mainView() { return *mainView_; }
    // Nothing in it, and nothing on its way: an opened file may take its place.
    [[nodiscard]] bool isFree() const;

  signals:
    void filesDropped(const QStringList& paths);

  protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    DiversityDocument document_;
    MainViewController* mainView_;
};

}  // namespace zorvel
