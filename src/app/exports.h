// The commands that write a project to a text file. The project is exported as it is when the
// command is given, even if it changes or its window closes: the export is prepared in the
// background, then the user is asked for a file, which is written in the background too. Main
// thread.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "base/files.h"
#include "metrics/random_source.h"
#include "model/diversity_document.h"

namespace zorvel {

class MainWindowController;
class ObjectContext;
class ProjectWindows;

class Exports : public QObject {
    Q_OBJECT
  public:
    // The windows must outlive the exports.
    Exports(ProjectWindows& windows, RandomSourceMaker makeRandom);
    ~Exports() override;

    // Censuses by taxa, see writeCensusMatrix(), and the metrics of every census, see
    // buildMetricsTable(). Without a window a console line says so. Each can be cancelled while it
    // is prepared. The strip says what was written, and what happened to equal names; an alert says
    // if a file could not be written.
    void exportCensusMatrix(MainWindowController* window);
    void exportMetrics(MainWindowController* window);
    // All that the project holds, see writeLongTable().
    void exportLongTable(MainWindowController* window);
    // Of every census at the coverage that all reach, see commonCoverageTable().
    void exportDiversityTable(MainWindowController* window);

    // Asks if an export is still being prepared, and cancels it if the user agrees. False if the
    // user does not want to quit.
    bool mayQuit();

  private:
    struct ExportedFile {
        std::function<void(const ByteSink&)> produce;  // owns all that it reads
        std::size_t censuses = 0;
        QString note;  // on values that differ from those of the project; usually empty
    };
    // On a worker thread; absent if stopped.
    using Prepare =
        std::function<std::optional<ExportedFile>(const ObjectContext&, const std::stop_token&)>;
    struct Running {
        QString title;       // of the panel
        QString suggestion;  // of the file's name
        QPointer<MainWindowController> window;
        std::stop_source stop = {};
        MainView::ProgressId progress = 0;
    };
    using RunningExport = std::shared_ptr<Running>;

    static ExportedFile exportedMatrix(const ObjectContext& project);
    static std::optional<ExportedFile> exportedMetrics(const ObjectContext& project,
                                                       const RandomSourceMaker& makeRandom,
                                                       const std::stop_token& stop);
    void start(MainWindowController* window, const QString& title, const QString& what,
               const std::string& whatOnConsole, Prepare prepare);
    void endPreparing(const RunningExport& running);
    void cancel(const RunningExport& running);
    void saveTextFile(const RunningExport& running, const ExportedFile& file);

    ProjectWindows& windows_;
    RandomSourceMaker makeRandom_;
    std::vector<RunningExport> preparing_;
};

}  // namespace zorvel
