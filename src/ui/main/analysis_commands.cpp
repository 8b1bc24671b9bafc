#include "ui/main/analysis_commands.h"

#include "ui/kit/alerts.h"
#include "ui/kit/message_strip.h"
#include "ui/main/main_view_controller.h"

namespace zorvel {

namespace {

std::size_t fewestCensuses(Analysis analysis) {
    switch (analysis) {
        case Analysis::projectWideMetrics:
            return 3;
        case Analysis::individualBasedRarefaction:
            return 1;
        case Analysis::sampleBasedRarefaction:
            break;
    }
    return 5;
}

}  // namespace

AnalysisCommands::AnalysisCommands(MainViewController& view, Alerts& alerts)
    : QObject(&view), view_(view), alerts_(alerts) {}

void AnalysisCommands::run(Analysis analysis, std::size_t censuses) {
    if (censuses >= fewestCensuses(analysis)) return open(analysis);
    QString reason;
    switch (analysis) {
        case Analysis::projectWideMetrics:
            reason = tr("Must have at least three censuses to calculate project-wide metrics");
            break;
        case Analysis::individualBasedRarefaction:
            reason = tr("Must have at least one census to calculate individual-based rarefaction");
            break;
        case Analysis::sampleBasedRarefaction:
            reason = tr("Must have at least five censuses to calculate sample-based rarefaction");
            break;
    }
    alerts_.warn(view_.window(), tr("Too few censuses"), reason);
}

// The windows are not there yet: the strip says so, and by which command the numbers can be had.
void AnalysisCommands::open(Analysis analysis) {
    QString message;
    switch (analysis) {
        case Analysis::projectWideMetrics:
            message =
                tr("The window of the project-wide metrics comes with the next version. The "
                   "command \u201czorvel-cli project\u201d computes them today.");
            break;
        case Analysis::individualBasedRarefaction:
            if (!view_.selectedCensus()) return;
            message =
                tr("The window of the rarefaction curve comes with the next version. The "
                   "command \u201czorvel-cli rarefaction\u201d computes it today.");
            break;
        case Analysis::sampleBasedRarefaction:
            message =
                tr("The window of the rarefaction curve comes with the next version. The "
                   "command \u201czorvel-cli rarefaction --samples\u201d computes it today.");
            break;
    }
    view_.messageStrip().setMessage("analysis", message);
}

}  // namespace zorvel
