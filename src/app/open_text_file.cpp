#include "app/open_text_file.h"

#include <QFileInfo>
#include <QPointer>
#include <stop_token>
#include <utility>

#include "app/project_windows.h"
#include "platform/file_reading.h"
#include "platform/job_queue.h"
#include "ui/kit/panels.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

namespace {

// "cannot be opened: Permission denied" as a sentence of its own.
QString sentence(const QString& reason) {
    return reason.left(1).toUpper() + reason.mid(1) + '.';
}

// A file that is being read. It is handed over once; if cancelled, at once and without its text,
// and bytes that arrive later are dropped.
struct Reading {
    void showProgress(MainViewController& view) {
        shownIn = &view;
        progress = view.startImportProgress(
            QString("reading %1...").arg(QFileInfo(path).fileName()).toStdString(),
            [this] { cancel(); });
    }

    void cancel() {
        stop.request_stop();
        handOver({path, {}, true});
    }

    void finish(Result<std::string> read) {
        if (!receive) return;
        const QString name = QFileInfo(path).fileName();
        if (read.ok() && !read.value().empty()) {
            return handOver({path, std::move(read).value()});
        }
        if (read.ok()) {
            if (shownIn) shownIn->messageStrip().addMessage(QString("%1 is empty.").arg(name));
        } else {
            alerts.warn(window, QString("“%1” could not be read").arg(name),
                        sentence(QString::fromStdString(read.problem().message)));
        }
        handOver({path, {}});
    }

    void handOver(OpenedText opened) {
        if (shownIn) shownIn->stopProgress(progress);
        const TextReceiver receiver = std::exchange(receive, nullptr);
        if (receiver) receiver(std::move(opened));
    }

    QString path;
    QPointer<MainWindowController> window;
    Alerts& alerts;
    TextReceiver receive;
    std::stop_source stop = {};
    QPointer<MainViewController> shownIn = nullptr;
    MainView::ProgressId progress = 0;
};

}  // namespace

void openTextFile(ProjectWindows& windows, MainWindowController* window, const QString& title,
                  TextReceiver receive) {
    const QPointer<MainWindowController> guard(window);
    const QString path = windows.panels().open.chooseTextFile(window, title);
    if (path.isEmpty()) return receive({{}, {}, true});
    readTextInBackground(windows, guard, path, nullptr, std::move(receive));
}

void readTextInBackground(ProjectWindows& windows, MainWindowController* window,
                          const QString& path, std::shared_ptr<NamedFile> file,
                          TextReceiver receive) {
    const auto reading = std::make_shared<Reading>(
        Reading{path, window, windows.panels().alerts, std::move(receive)});
    if (window != nullptr) reading->showProgress(window->mainView());
    windows.jobs().start(
        &windows,
        [path, file = std::move(file), stop = reading->stop.get_token()]() mutable {
            Result<InputFile> input = file ? file->take() : InputFile::open(encodedPath(path));
            if (!input) return Result<std::string>(input.problem());
            Result<std::string> read = std::move(input).value().text();
            // A large text is released here.
            return stop.stop_requested() ? Result<std::string>(std::string()) : std::move(read);
        },
        [reading](Result<std::string> read) { reading->finish(std::move(read)); });
}

}  // namespace zorvel
