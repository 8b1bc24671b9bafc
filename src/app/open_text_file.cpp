#include "app/open_text_file.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QPointer>
#include <atomic>
#include <memory>
#include <utility>

#include "app/project_windows.h"
#include "interchange/text_file.h"
#include "platform/file_names.h"
#include "platform/job_queue.h"
#include "ui/kit/panels.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("OpenTextFile", text);
}

// "cannot be opened: Permission denied" as it stands alone.
QString sentence(const QString& reason) {
    return reason.left(1).toUpper() + reason.mid(1) + '.';
}

// Of a file that is being read. What comes of it is handed over once: cancelling does so at once,
// and the bytes that come later find nobody.
struct Reading {
    void showProgress(MainViewController& view) {
        shownIn = &view;
        progress =
            view.startProgress(tr("reading %1...").arg(QFileInfo(path).fileName()).toStdString(),
                               [this] { cancel(); });
    }

    void cancel() {
        *givenUp = true;
        if (cancelled) receive = [this](const std::optional<OpenedText>&) { cancelled(); };
        handOver(std::nullopt);
    }

    void finish(Result<std::string> read) {
        if (!receive) return;
        const QString name = QFileInfo(path).fileName();
        if (read.ok() && !read.value().empty()) {
            return handOver(OpenedText{path, std::move(read).value()});
        }
        if (read.ok()) {
            if (shownIn) shownIn->messageStrip().addMessage(tr("%1 is empty.").arg(name));
        } else {
            alerts.warn(window, tr("“%1” could not be read").arg(name),
                        sentence(QString::fromStdString(read.problem().message)));
        }
        handOver(std::nullopt);
    }

    void handOver(std::optional<OpenedText> text) {
        if (shownIn) shownIn->stopProgress(progress);
        const TextReceiver receiver = std::exchange(receive, nullptr);
        if (receiver) receiver(std::move(text));
    }

    QString path;
    QPointer<MainWindowController> window;
    Alerts& alerts;
    TextReceiver receive;
    std::function<void()> cancelled;
    // Shared with the job: a large text is let go of there.
    std::shared_ptr<std::atomic<bool>> givenUp = std::make_shared<std::atomic<bool>>(false);
    QPointer<MainViewController> shownIn = nullptr;
    MainView::ProgressId progress = 0;
};

}  // namespace

void openTextFile(ProjectWindows& windows, MainWindowController* window, const QString& title,
                  TextReceiver receive, std::function<void()> cancelled) {
    const QPointer<MainWindowController> guard(window);
    const QString path = windows.panels().open.chooseTextFile(window, title);
    if (path.isEmpty()) return cancelled ? cancelled() : receive(std::nullopt);
    readTextInBackground(windows, guard, path, std::move(receive), std::move(cancelled));
}

void readTextInBackground(ProjectWindows& windows, MainWindowController* window,
                          const QString& path, TextReceiver receive,
                          std::function<void()> cancelled) {
    const auto reading = std::make_shared<Reading>(
        Reading{path, window, windows.panels().alerts, std::move(receive), std::move(cancelled)});
    if (window != nullptr) reading->showProgress(window->mainView());
    windows.jobs().start(
        &windows,
        [file = encodedPath(path), givenUp = reading->givenUp] {
            Result<std::string> read = readTextFile(file);
            return *givenUp ? Result<std::string>(std::string()) : std::move(read);
        },
        [reading](Result<std::string> read) { reading->finish(std::move(read)); });
}

}  // namespace zorvel
