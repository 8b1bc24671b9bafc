// The window of one project: its title, the messages about its file, and the main view. The
// document belongs to the document controller. Menus and the handling of the signals come from
// ProjectWindows. Main thread.
#pragma once

#include <QMainWindow>
#include <functional>
#include <optional>

#include "platform/document.h"
#include "ui/kit/panels.h"
#include "ui/main/metrics_panel.h"

namespace zorvel {

class JobQueue;
class MainViewController;

class MainWindowController : public QMainWindow {
    Q_OBJECT
  public:
    // Document, queue and panels must outlive the window. Its size and the places of its splitters
    // are those of the window closed last.
    MainWindowController(Document& document, JobQueue& jobs, RandomSourceMaker makeRandom,
                         const Panels& panels);
    ~MainWindowController() override;

    [[nodiscard]] Document& document() { return *document_; }
    [[nodiscard]] MainViewController& mainView() { return *mainView_; }
    // Instead of the document shown, which must live until this returns.
    void showDocument(Document& document);

    // Called each time the window is to close; false keeps it open.
    void setCloseQuestion(std::function<bool()> mayClose) { mayClose_ = std::move(mayClose); }

  signals:
    void saveAsRequested();
    void filesDropped(const QStringList& paths);

  protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void leaveDocument();
    void showTitle();
    void showProblem();

    Document* document_ = nullptr;
    MainViewController* mainView_;
    std::optional<FileTrouble> shownTrouble_;
    std::function<bool()> mayClose_;
};

}  // namespace zorvel
