#include "ui/main/main_window_controller.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QSettings>
#include <QUrl>
#include <utility>

#include "ui/main/main_view_controller.h"

namespace zorvel {

namespace {

const char geometryKey[] = "mainWindow/geometry";
const char layoutKey[] = "mainWindow/layout";

QStringList localFiles(const QMimeData& data) {
    QStringList paths;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile()) paths.append(url.toLocalFile());
    }
    return paths;
}

}  // namespace

MainWindowController::MainWindowController(JobQueue& jobs, RandomSourceMaker makeRandom)
    : mainView_(new MainViewController(document_, jobs, std::move(makeRandom), this)) {
    setCentralWidget(mainView_);
    setWindowTitle(tr("Untitled"));
    setAcceptDrops(true);
    setMinimumSize(800, 480);
    resize(1024, 700);
    const QSettings settings;
    restoreGeometry(settings.value(geometryKey).toByteArray());
    mainView_->restoreLayout(settings.value(layoutKey).toByteArray());
}

bool MainWindowController::isFree() const {
    return document_.objectContext().censusCount() == 0 && !mainView_->isInProgress();
}

void MainWindowController::closeEvent(QCloseEvent* event) {
    QSettings settings;
    settings.setValue(geometryKey, saveGeometry());
    settings.setValue(layoutKey, mainView_->saveLayout());
    QMainWindow::closeEvent(event);
}

void MainWindowController::dragEnterEvent(QDragEnterEvent* event) {
    if (!localFiles(*event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void MainWindowController::dropEvent(QDropEvent* event) {
    event->acceptProposedAction();
    emit filesDropped(localFiles(*event->mimeData()));
}

}  // namespace zorvel
