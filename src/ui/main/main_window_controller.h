// The window of one project: its title, the messages about its file, and the main view; no more.
// The document belongs to the document controller; another may take its place. Menus, and the
// answers to what is asked for, come from whoever makes the window. Main thread.
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
    // Document, queue and panels must outlive the window. Size, and places of the splitters, are
    // those of the window closed last.
    MainWindowController(Document& document, JobQueue& jobs, RandomSourceMaker makeRandom,
                         const Panels& panels);
    ~MainWindowController() override;

    [[nodiscard]] Document& document() { return *document_; }
    [[nodiscard]] MainViewController& mainView() { return *mainView_; }
    // In place of the one that is shown, which must live until this returns. Messages and the names
    // that are known for completion stay.
    void showDocument(Document& document);

    // Asked each time that the window is to close; false keeps it open.
    void setCloseQuestion(std::function<bool()> mayClose) { mayClose_ = std::move(mayClose); }
    // Size and places, for the next window.
    void keepPlaces();

  signals:
    void openRequested();
    void saveAsRequested();
    void filesDropped(const QStringList& paths);
    void documentDidChange();
    // Before it is shown: a window that lives on when this one closes, see main_view_controller.h.
    void analysisWindowDidOpen(QWidget* opened);

  protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void setDocument(Document& document);
    void leaveDocument();
    void showTitle();
    void showProblem();

    Document* document_ = nullptr;
    JobQueue& jobs_;
    RandomSourceMaker makeRandom_;
    Panels panels_;
    MainViewController* mainView_ = nullptr;
    std::optional<FileTrouble> shownTrouble_;
    std::function<bool()> mayClose_;
};

}  // namespace zorvel
