#include "ui/main/main_window_controller.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <utility>

#include "platform/file_reading.h"
#include "platform/settings.h"
#include "ui/kit/message_strip.h"
#include "ui/kit/shown_text.h"
#include "ui/kit/window_placement.h"
#include "ui/main/clipboard_rows.h"
#include "ui/main/main_view_controller.h"

namespace zorvel {

namespace {

const char geometryKey[] = "mainWindow/geometry";
const char layoutKey[] = "mainWindow/layout";
const char problemMessage[] = "file";  // name of the message in the strip

QStringList localFiles(const QMimeData& data) {
    QStringList paths;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile()) paths.append(url.toLocalFile());
    }
    return paths;
}

}  // namespace

MainWindowController::MainWindowController(Document& document, JobQueue& jobs,
                                           RandomSourceMaker makeRandom, const Panels& panels)
    : mainView_(new MainViewController(jobs, std::move(makeRandom), panels, this)) {
    setAcceptDrops(true);
    setMinimumSize(780, 420);
    resizeToFit(*this, {1024, 700});
    restoreGeometry(setting(geometryKey).toByteArray());
    setCentralWidget(mainView_);
    mainView_->show();  // otherwise the layout shows it later
    mainView_->restoreLayout(setting(layoutKey).toByteArray());
    connect(mainView_, &MainViewController::textTyped, this, [this] { document_->noteTyping(); });
    showDocument(document);
}

// The view is deleted while the window is still whole: an open editor commits then.
MainWindowController::~MainWindowController() {
    leaveDocument();
    delete mainView_;
}

void MainWindowController::leaveDocument() {
    document_->disconnect(this);
    document_->setDrafts({});
}

void MainWindowController::showDocument(Document& document) {
    if (document_ != nullptr) leaveDocument();
    document_ = &document;
    shownTrouble_.reset();
    mainView_->messageStrip().withdraw(problemMessage);
    connect(document_, &Document::saveStateDidChange, this, [this] {
        showTitle();
        showProblem();
    });
    connect(document_, &Document::backupDidFail, this,
            [this](const QString& message) { mainView_->messageStrip().addMessage(message); });
    document_->setDrafts([this](ObjectContext& copy) { mainView_->storeDrafts(copy); });
    mainView_->showDocument(document.project());
    showTitle();
    showProblem();
}

void MainWindowController::showTitle() {
    // An untitled project may have the name of the file that it came from.
    const QString name = oneLine(document_->displayName());
    const bool saysSo = !document_->isUntitled() || name.startsWith("Untitled");
    setWindowTitle(asWindowTitle(saysSo ? name : QString("%1 (untitled)").arg(name)) + "[*]");
    mainView_->setProjectName(name);
    setWindowFilePath(document_->path());
    setWindowModified(document_->saveState() != Document::SaveState::saved);
}

// A failure to write changes stays in the strip until they are written. If nothing has changed, a
// file that cannot be written is reported once.
void MainWindowController::showProblem() {
    const std::optional<FileProblem> problem = document_->problem();
    if (!problem) {
        shownTrouble_.reset();
        mainView_->messageStrip().withdraw(problemMessage);
        return;
    }
    const Document::SaveState state = document_->saveState();
    const bool holds = state == Document::SaveState::failed || state == Document::SaveState::stuck;
    if (!holds && shownTrouble_ == problem->trouble) return;
    shownTrouble_ = problem->trouble;
    mainView_->messageStrip().setMessage(
        problemMessage,
        (projectMessage(document_->displayName(), *problem) + ' ' + document_->asideNote())
            .trimmed(),
        {"Save As...", [this] { emit saveAsRequested(); }},
        holds ? MessageStrip::Lasting::untilWithdrawn : MessageStrip::Lasting::untilDismissed);
}

void MainWindowController::closeEvent(QCloseEvent* event) {
    if (mayClose_ && !mayClose_()) {
        event->ignore();
        return;
    }
    storeSetting(geometryKey, saveGeometry());
    storeSetting(layoutKey, mainView_->saveLayout());
    QMainWindow::closeEvent(event);
}

void MainWindowController::dragEnterEvent(QDragEnterEvent* event) {
    const QMimeData& dragged = *event->mimeData();
    if (!localFiles(dragged).isEmpty() || mayBeTable(dragged)) event->acceptProposedAction();
}

void MainWindowController::dropEvent(QDropEvent* event) {
    event->acceptProposedAction();
    const QStringList files = localFiles(*event->mimeData());
    if (!files.isEmpty()) return emit filesDropped(files);
    if (const auto text = tableText(*event->mimeData(), 1)) {
        emit mainView_->tableGiven("a dropped table", *text);
    }
}

}  // namespace zorvel
