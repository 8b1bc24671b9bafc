// The analyses that have windows of their own: how many censuses each needs, what the person reads
// when there are fewer, and the opening of the window. Main thread.
#pragma once

#include <QObject>
#include <QString>
#include <cstddef>

namespace zorvel {

class Alerts;
class MainViewController;

enum class Analysis { projectWideMetrics, individualBasedRarefaction, sampleBasedRarefaction };

class AnalysisCommands : public QObject {
    Q_OBJECT
  public:
    // Both must outlive the commands.
    AnalysisCommands(MainViewController& view, Alerts& alerts);

    // A warning tells of too few censuses. Individual-based rarefaction is that of the selected
    // census, and does nothing without one.
    void run(Analysis analysis, std::size_t censuses);

  private:
    void open(Analysis analysis);

    MainViewController& view_;
    Alerts& alerts_;
};

}  // namespace zorvel
