#include "app/exports.h"

#include <QFileInfo>
#include <algorithm>
#include <utility>

#include "app/project_windows.h"
#include "base/console.h"
#include "platform/document.h"
#include "platform/file_names.h"
#include "platform/job_queue.h"
#include "ui/kit/message_strip.h"
#include "ui/kit/panels.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

namespace {

QString exportedMessage(const ExportedFile& file, const QString& name) {
    const QString message =
        file.censuses == 1
            ? Exports::tr("Exported one census to %1.").arg(name)
            : Exports::tr("Exported %L1 censuses to %2.").arg(qulonglong{file.censuses}).arg(name);
    return file.note.isEmpty() ? message : message + ' ' + file.note;
}

}  // namespace

Exports::Exports(ProjectWindows& windows, RandomSourceMaker makeRandom)
    : windows_(windows), makeRandom_(std::move(makeRandom)) {}

Exports::~Exports() {
    for (const RunningExport& running : preparing_) *running->cancelled = true;
}

void Exports::exportCensusMatrix(MainWindowController* window) {
    if (window == nullptr) {
        return writeConsoleLine(
            "WARNING: Could not obtain document/window/view for census matrix export");
    }
    start(*window, tr("Export Census Matrix"), tr("preparing census matrix export..."),
          tr("census matrix"),
          [](const ObjectContext& project, const Cancelled&) { return exportedMatrix(project); });
}

void Exports::exportMetrics(MainWindowController* window) {
    if (window == nullptr) {
        return writeConsoleLine(
            "WARNING: Could not obtain document/window/view for metrics matrix export");
    }
    start(*window, tr("Export Metrics"), tr("preparing metrics export..."), tr("metrics"),
          [makeRandom = makeRandom_](const ObjectContext& project, const Cancelled& cancelled) {
              return exportedMetrics(project, makeRandom, cancelled);
          });
}

void Exports::start(MainWindowController& window, const QString& title, const QString& progress,
                    const QString& what, Prepare prepare) {
    MainViewController& view = window.mainView();
    if (!view.commitEditing()) return;
    const auto running = std::make_shared<Running>();
    running->name = QStringLiteral("export %1").arg(++started_);
    running->title = title;
    running->suggestion = asFileName(window.document().displayName()) + ' ' + what;
    running->window = &window;
    running->view = &view;
    preparing_.push_back(running);
    view.startProgress(running->name, progress, [self = QPointer<Exports>(this), running] {
        if (self) self->cancel(running);
    });
    windows_.jobs().start(
        this,
        [prepare = std::move(prepare), cancelled = running->cancelled,
         project = window.document().project().objectContext().frozenCopy()] {
            return prepare(*project, *cancelled);
        },
        [this, running](const std::optional<ExportedFile>& file) {
            if (*running->cancelled || !file) return;
            end(running);
            saveTextFile(running, *file);
        });
}

void Exports::end(const RunningExport& running) {
    preparing_.erase(std::remove(preparing_.begin(), preparing_.end(), running), preparing_.end());
    if (running->view) running->view->stopProgress(running->name);
}

void Exports::cancel(const RunningExport& running) {
    *running->cancelled = true;
    end(running);
}

bool Exports::mayQuit() {
    if (preparing_.empty()) return true;
    const QPointer<Exports> self(this);
    const int answer = windows_.panels().alerts.ask(preparing_.back()->window,
                                                    {tr("An export is still being prepared"),
                                                     tr("If you quit now, no file is written."),
                                                     {tr("Quit Anyway"), tr("Cancel")},
                                                     0});
    if (!self || answer != 0) return false;
    for (const RunningExport& running : std::vector(preparing_)) cancel(running);
    return true;
}

void Exports::saveTextFile(const RunningExport& running, const ExportedFile& file) {
    const QPointer<Exports> self(this);
    const QString path =
        windows_.panels().save.chooseFile(running->window, running->title, running->suggestion,
                                          {{tr("Comma-separated table"), ".csv"}});
    if (!self || path.isEmpty()) return;
    const QString name = QFileInfo(path).fileName();
    if (running->view) running->view->startProgress(running->name, tr("writing %1...").arg(name));
    const QString message = exportedMessage(file, name);
    writeInBackground(windows_.jobs(), windows_.panels().alerts, running->window, path,
                      tr("“%1” could not be written").arg(name), file.produce,
                      [self, running, message](bool there) {
                          if (self) self->fileDidEnd(running, there ? message : QString());
                      });
}

void Exports::fileDidEnd(const RunningExport& running, const QString& message) {
    if (running->view) running->view->stopProgress(running->name);
    if (message.isEmpty()) return;
    windows_.tell(running->window, message, MessageStrip::Tone::news);
}

}  // namespace zorvel
