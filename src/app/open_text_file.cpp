#include "app/open_text_file.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QPointer>
#include <utility>

#include "app/project_windows.h"
#include "interchange/text_file.h"
#include "platform/job_queue.h"
#include "platform/project_writes.h"
#include "ui/kit/alerts.h"
#include "ui/kit/open_panel.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("OpenTextFile", text);
}

using Window = QPointer<MainWindowController>;

// Each reading has a name of its own in the main view.
QString newProgressName() {
    static int last = 0;
    return QString("reading %1").arg(++last);
}

void handOver(Result<std::string> read, const QString& path, const Window& window, Alerts& alerts,
              const TextReceiver& receive) {
    const QString name = QFileInfo(path).fileName();
    if (!read.ok()) {
        alerts.warn(window, tr("“%1” could not be read").arg(name),
                    tr("The file is %1.").arg(QString::fromStdString(read.problem().message)));
        return receive(std::nullopt);
    }
    if (read.value().empty()) {
        if (window) window->mainView().showMessage(tr("%1 is empty.").arg(name));
        return receive(std::nullopt);
    }
    receive(OpenedText{path, std::move(read).value()});
}

}  // namespace

void openTextFile(ProjectWindows& windows, MainWindowController* window, TextReceiver receive) {
    const Window guard(window);
    const QString path = windows.panels().open.chooseTextFile(window);
    if (path.isEmpty()) return receive(std::nullopt);
    readTextInBackground(windows, guard, path, std::move(receive));
}

void readTextInBackground(ProjectWindows& windows, MainWindowController* window,
                          const QString& path, TextReceiver receive) {
    const QString progress = newProgressName();
    if (window != nullptr) {
        window->mainView().startProgress(progress,
                                         tr("reading %1...").arg(QFileInfo(path).fileName()));
    }
    windows.jobs().start(
        &windows, [file = encodedPath(path)] { return readTextFile(file); },
        [=, guard = Window(window), receive = std::move(receive),
         &alerts = windows.panels().alerts](Result<std::string> read) {
            if (guard) guard->mainView().stopProgress(progress);
            handOver(std::move(read), path, guard, alerts, receive);
        });
}

}  // namespace zorvel
