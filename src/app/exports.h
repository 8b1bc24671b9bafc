// The commands that write a project to a text file. The project is exported as it is when the
// command is given, even if it changes or its window closes: the export is prepared in the
// background, then the user is asked for a file, which is written in the background too. Main
// thread.
#pragma once

#include <QObject>
#include <memory>
#include <vector>

#include "metrics/random_source.h"

namespace zorvel {

struct ExportedFile;
class MainWindowController;
class ProjectWindows;
struct RunningExport;

class Exports : public QObject {
    Q_OBJECT
  public:
    enum Kind {
        censusMatrix,    // censuses by taxa, see writeCensusMatrix()
        metrics,         // of every census, see buildMetricsTable()
        longTable,       // all that the project holds, see writeLongTable()
        diversityTable,  // of every census at the coverage that all reach, see
                         // commonCoverageTable()
    };

    // The windows must outlive the exports.
    Exports(ProjectWindows& windows, RandomSourceMaker makeRandom);
    ~Exports() override;

    // Without a window a console line says so. The export can be cancelled while it is prepared.
    // The strip says what was written, and what happened to equal names; an alert says if the file
    // could not be written.
    void start(Kind kind, MainWindowController* window);

    // Asks if an export is still being prepared, and cancels it if the user agrees. False if the
    // user does not want to quit.
    bool mayQuit();

  private:
    void endPreparing(const std::shared_ptr<RunningExport>& running);
    void cancel(const std::shared_ptr<RunningExport>& running);
    void saveTextFile(const std::shared_ptr<RunningExport>& running, const ExportedFile& file);

    ProjectWindows& windows_;
    RandomSourceMaker makeRandom_;
    std::vector<std::shared_ptr<RunningExport>> preparing_;
};

}  // namespace zorvel
