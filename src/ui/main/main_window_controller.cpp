#include "ui/main/main_window_controller.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <memory>
#include <utility>

#include "platform/file_reading.h"
#include "platform/settings.h"
#include "ui/kit/message_strip.h"
#include "ui/kit/shown_text.h"
#include "ui/kit/window_placement.h"
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
    : jobs_(jobs), makeRandom_(std::move(makeRandom)), panels_(panels) {
    setAcceptDrops(true);
    setMinimumSize(780, 420);
    resizeToFit(*this, {1024, 700});
    restoreGeometry(setting(geometryKey).toByteArray());
    setDocument(document);
    mainView_->restoreLayout(setting(layoutKey).toByteArray());
}

// The view goes while the window is still whole: an editor that is open commits as it goes.
MainWindowController::~MainWindowController() {
    leaveDocument();
    delete mainView_;
}

void MainWindowController::leaveDocument() {
    document_->disconnect(this);
    document_->setDrafts({});
}

void MainWindowController::showDocument(Document& document) {
    const QByteArray layout = mainView_->saveLayout();
    leaveDocument();
    mainView_->messageStrip().withdraw(problemMessage);
    const std::unique_ptr<MainViewController> earlier(mainView_);
    setDocument(document);
    mainView_->messageStrip().takeMessages(earlier->messageStrip());
    mainView_->taxonFormatter().addTaxonNames(earlier->taxonFormatter().taxonNames());
    mainView_->restoreLayout(layout);
    emit documentDidChange();
}

void MainWindowController::setDocument(Document& document) {
    document_ = &document;
    shownTrouble_.reset();
    document.project().makeWindowControllers([&] {
        mainView_ = new MainViewController(document.project(), jobs_, makeRandom_, panels_, this);
        return mainView_;
    });
    setCentralWidget(mainView_);
    mainView_->show();  // the layout would do so in a moment
    connect(mainView_, &MainViewController::openRequested, this,
            &MainWindowController::openRequested);
    connect(mainView_, &MainViewController::analysisWindowDidOpen, this,
            &MainWindowController::analysisWindowDidOpen);
    connect(document_, &Document::displayNameDidChange, this, &MainWindowController::showTitle);
    connect(document_, &Document::saveStateDidChange, this, [this] {
        showTitle();
        showProblem();
    });
    connect(document_, &Document::backupDidFail, mainView_, &MainViewController::showMessage);
    document_->setDrafts([view = mainView_](ObjectContext& copy) { view->storeDrafts(copy); });
    connect(mainView_, &MainViewController::textTyped, document_, &Document::noteTyping);
    showTitle();
    showProblem();
    mainView_->selectFirstCensus();
}

void MainWindowController::showTitle() {
    // An untitled project may bear the name of the file that it came from.
    const QString name = oneLine(document_->displayName());
    const bool saysSo = !document_->isUntitled() || name.startsWith(tr("Untitled"));
    setWindowTitle(asWindowTitle(saysSo ? name : tr("%1 (untitled)").arg(name)) + "[*]");
    mainView_->setProjectName(name);
    setWindowFilePath(document_->path());
    setWindowModified(document_->saveState() != Document::SaveState::saved);
}

// Changes that cannot be written stand in the strip until they are. That a file cannot be written
// is told once as long as nothing in it has changed.
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
        {tr("Save As..."), [this] { emit saveAsRequested(); }},
        holds ? MessageStrip::Lasting::untilWithdrawn : MessageStrip::Lasting::untilDismissed);
}

void MainWindowController::keepPlaces() {
    storeSetting(geometryKey, saveGeometry());
    storeSetting(layoutKey, mainView_->saveLayout());
}

void MainWindowController::closeEvent(QCloseEvent* event) {
    if (mayClose_ && !mayClose_()) {
        event->ignore();
        return;
    }
    keepPlaces();
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
