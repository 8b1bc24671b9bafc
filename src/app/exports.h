// The commands that write a project to a text file. What is exported is the project as it stands
// when the command is given, whatever becomes of it and of its window: the export is prepared in
// the background, then the person is asked for a file, which is written in the background too.
// Main thread.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "app/exported_files.h"
#include "metrics/random_source.h"

namespace zorvel {

class MainViewController;
class MainWindowController;
class ObjectContext;
class ProjectWindows;

class Exports : public QObject {
    Q_OBJECT
  public:
    // The windows must outlive the exports.
    Exports(ProjectWindows& windows, RandomSourceMaker makeRandom);
    ~Exports() override;

    // See exported_files.h. Without a window a console line says that there is none. Each can be
    // cancelled while it is prepared. The strip tells what was written, and what became of equal
    // names; an alert tells of a file that could not be written.
    void exportCensusMatrix(MainWindowController* window);
    void exportMetrics(MainWindowController* window);

    // False where the person wants to stay because an export that is still prepared would be lost.
    // Otherwise none is prepared any more.
    bool mayQuit();

  private:
    using Cancelled = std::atomic<bool>;
    using Prepare =
        std::function<std::optional<ExportedFile>(const ObjectContext&, const Cancelled&)>;

    struct Running {
        // Shared with the job.
        std::shared_ptr<Cancelled> cancelled = std::make_shared<Cancelled>(false);
        QString name;        // of its progress
        QString title;       // of the panel
        QString suggestion;  // of the file's name
        QPointer<MainWindowController> window;
        QPointer<MainViewController> view;  // that shows the progress
    };
    using RunningExport = std::shared_ptr<Running>;

    void start(MainWindowController& window, const QString& title, const QString& progress,
               const QString& what, Prepare prepare);
    // Its preparation has come to an end, one way or the other.
    void end(const RunningExport& running);
    void cancel(const RunningExport& running);
    void saveTextFile(const RunningExport& running, const ExportedFile& file);
    void fileDidEnd(const RunningExport& running, const QString& message);

    ProjectWindows& windows_;
    RandomSourceMaker makeRandom_;
    std::vector<RunningExport> preparing_;
    int started_ = 0;
};

}  // namespace zorvel
