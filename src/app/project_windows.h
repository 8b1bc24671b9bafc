// The open projects, a window each, and the opening of files into them. It owns the windows until
// they are closed. Main thread.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <vector>

#include "ui/main/metrics_panel.h"

namespace zorvel {

class JobQueue;
class LookChoice;
class MainWindowController;
class OpenPanel;
struct TextProject;

class ProjectWindows : public QObject {
    Q_OBJECT
  public:
    // All must outlive the windows.
    ProjectWindows(JobQueue& jobs, RandomSourceMaker makeRandom, LookChoice& look,
                   OpenPanel& panel);
    ~ProjectWindows() override;

    // An empty project in a window of its own, shown.
    MainWindowController& openUntitled();

    // Reads the file in the background. It goes into the window that is given if that is free, into
    // a new one otherwise; a file that cannot be read leaves its window empty, with a message.
    void openFile(const QString& path, MainWindowController* window = nullptr);

    // Asks for a file and opens it.
    void chooseFile(MainWindowController& window);

    [[nodiscard]] std::vector<MainWindowController*> windows() const;

  private:
    void finishOpening(MainWindowController& window, const QString& path,
                       const TextProject& project);

    JobQueue& jobs_;
    RandomSourceMaker makeRandom_;
    LookChoice& look_;
    OpenPanel& panel_;
    std::vector<QPointer<MainWindowController>> windows_;
};

}  // namespace zorvel
