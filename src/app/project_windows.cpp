#include "app/project_windows.h"

#include <QFile>
#include <QFileInfo>
#include <QPoint>
#include <QStringList>
#include <utility>

#include "app/menus.h"
#include "model/text_project.h"
#include "platform/job_queue.h"
#include "ui/kit/open_panel.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

namespace {

// How far a new window stands to the right of and below the one before, in pixels.
constexpr int cascade = 30;

// "line 3, cell 7", as far as it is known.
QString placeText(const TextPlace& place) {
    if (place.line == 0) return {};
    QString line = ProjectWindows::tr("line %1").arg(place.line);
    if (place.cell == 0) return line;
    return line + ProjectWindows::tr(", cell %1").arg(place.cell);
}

QString failureText(const QString& path, const TextProject& project) {
    const QString name = QFileInfo(path).fileName();
    const QString reason = QString::fromStdString(project.failure);
    const QString place = placeText(project.place);
    if (place.isEmpty()) return ProjectWindows::tr("%1 could not be read: %2").arg(name, reason);
    return ProjectWindows::tr("%1 could not be read (%2): %3").arg(name, place, reason);
}

}  // namespace

ProjectWindows::ProjectWindows(JobQueue& jobs, RandomSourceMaker makeRandom, LookChoice& look,
                               OpenPanel& panel)
    : jobs_(jobs), makeRandom_(std::move(makeRandom)), look_(look), panel_(panel) {}

ProjectWindows::~ProjectWindows() {
    for (MainWindowController* window : windows()) delete window;
}

std::vector<MainWindowController*> ProjectWindows::windows() const {
    std::vector<MainWindowController*> open;
    for (const auto& window : windows_) {
        if (window) open.push_back(window);
    }
    return open;
}

MainWindowController& ProjectWindows::openUntitled() {
    const std::vector<MainWindowController*> open = windows();
    auto* window = new MainWindowController(jobs_, makeRandom_);
    window->setAttribute(Qt::WA_DeleteOnClose);
    if (!open.empty()) window->move(open.back()->pos() + QPoint(cascade, cascade));
    windows_.emplace_back(window);
    addMenus(*window, *this, look_);
    connect(&window->mainView(), &MainViewController::openRequested, this,
            [this, window] { chooseFile(*window); });
    connect(window, &MainWindowController::filesDropped, this,
            [this, window](const QStringList& paths) {
                for (const QString& path : paths) openFile(path, window);
            });
    window->show();
    return *window;
}

void ProjectWindows::chooseFile(MainWindowController& window) {
    const QPointer<MainWindowController> guard(&window);
    const QString path = panel_.chooseTextFile(&window);
    if (!path.isEmpty()) openFile(path, guard);
}

void ProjectWindows::openFile(const QString& path, MainWindowController* window) {
    const bool here = window != nullptr && window->isFree();
    MainWindowController& target = here ? *window : openUntitled();
    target.setWindowTitle(QFileInfo(path).fileName());
    target.mainView().startProgress(tr("opening %1...").arg(QFileInfo(path).fileName()));
    jobs_.start(
        &target, [file = QFile::encodeName(path).toStdString()] { return readTextProject(file); },
        [this, &target, path](const TextProject& project) {
            finishOpening(target, path, project);
        });
}

void ProjectWindows::finishOpening(MainWindowController& window, const QString& path,
                                   const TextProject& project) {
    window.mainView().stopProgress();
    if (!project.failure.empty()) {
        window.setWindowTitle(tr("Untitled"));
        window.mainView().showMessage(failureText(path, project));
        return;
    }
    window.document().objectContext().adopt(project.records);
    window.mainView().reloadCensuses();
    window.mainView().selectFirstCensus();
}

}  // namespace zorvel
