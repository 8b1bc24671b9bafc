// zorvel: the desktop program.
#include <QApplication>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "app/application_delegate.h"
#include "app/look_choice.h"
#include "app/printing.h"
#include "app/process.h"
#include "app/project_windows.h"
#include "metrics/random_source.h"
#include "platform/document_controller.h"
#include "platform/job_queue.h"
#include "platform/settings.h"
#include "ui/kit/panels.h"

namespace {

// Help and version need no display, so they are answered before Qt looks for one.
std::optional<int> answerEarly(int argc, char** argv) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i) arguments.append(QString::fromLocal8Bit(argv[i]));
    if (!arguments.contains("--help") && !arguments.contains("-h") &&
        !arguments.contains("--version")) {
        return std::nullopt;
    }
    const auto answer = zorvel::answerCommandLine(arguments);
    if (!answer) return std::nullopt;
    std::fputs(answer->text.toLocal8Bit().constData(), answer->status == 0 ? stdout : stderr);
    return answer->status;
}

}  // namespace

int main(int argc, char** argv) {
    if (const std::optional<int> status = answerEarly(argc, argv)) return *status;
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (const auto answer = zorvel::answerCommandLine(arguments)) {
        std::fputs(answer->text.toLocal8Bit().constData(), stderr);
        return answer->status;
    }
    zorvel::setUpApplication();
    zorvel::SettingsFile settings(zorvel::SettingsFile::userPath());
    zorvel::JobQueue jobs(0, std::chrono::seconds(1));
    zorvel::LookChoice look(application);
    zorvel::OpenPanel openPanel;
    zorvel::SavePanel savePanel;
    zorvel::Alerts alerts;
    zorvel::ColorPanel colors;
    zorvel::LinkOpener links;
    zorvel::PrintPanel printPanel;
    int status = 0;
    int endSignal = 0;
    {
        zorvel::DocumentController documents(jobs, zorvel::DocumentController::userFolders());
        zorvel::ProjectWindows windows(documents, jobs,
                                       [] { return std::make_unique<zorvel::SystemRandom>(); },
                                       look, {openPanel, savePanel, alerts});
        windows.follow(settings);
        zorvel::printOnRequest(windows, printPanel);
        zorvel::AppDelegate delegate(windows, colors, links);
        delegate.applicationDidFinishLaunching(zorvel::filesOf(arguments));
        const zorvel::EndSignals endSignals([&windows] { windows.endAtOnce(); });
        status = QApplication::exec();
        endSignal = endSignals.received();
    }
    // The windows have kept their places when they closed, and files were waited for.
    const bool areSettled = settings.finish(std::chrono::seconds(2));
    const bool stopped = jobs.stop(std::chrono::seconds(2));
    if (endSignal != 0) zorvel::endBySignal(endSignal);
    if (!stopped || !areSettled) std::_Exit(status);
    return status;
}
