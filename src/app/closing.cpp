// How the windows close, and how the program ends with the last of them: what is still being
// written is waited for, and what could not be written is asked about.
#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QLabel>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <utility>

#include "app/document_commands.h"
#include "app/exports.h"
#include "app/project_windows.h"
#include "base/console.h"
#include "platform/document_controller.h"
#include "platform/file_reading.h"
#include "platform/job_queue.h"
#include "ui/kit/alerts.h"
#include "ui/kit/shown_text.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds noticeDelay{500};
constexpr milliseconds longestWait{10'000};
constexpr milliseconds eventInterval{100};  // the windows are repainted this often

std::unique_ptr<QLabel> showNotice() {
    auto notice = std::make_unique<QLabel>("Saving the last changes...");
    notice->setObjectName("savingNotice");
    notice->setWindowFlags(Qt::SplashScreen | Qt::WindowStaysOnTopHint);
    notice->setMargin(24);
    notice->show();
    return notice;
}

// Waits at most ten seconds for projects and for the files that jobs write, with a notice on the
// screen after half a second. Returns the documents whose last changes are not on the disk.
std::vector<Document*> waitForWrites(DocumentController& documents, JobQueue& jobs) {
    bool filesAreWritten = jobs.finishWrites(noticeDelay);
    std::vector<Document*> unsafe = documents.finish(noticeDelay);
    QElapsedTimer timer;
    timer.start();
    std::unique_ptr<QLabel> notice;
    // A failed write is not waited for.
    const auto isBeingWritten = [](const Document* document) { return !document->problem(); };
    while ((!filesAreWritten || std::any_of(unsafe.begin(), unsafe.end(), isBeingWritten)) &&
           timer.elapsed() < (longestWait - noticeDelay).count()) {
        if (!notice) notice = showNotice();
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        filesAreWritten = jobs.finishWrites(eventInterval);
        unsafe = documents.finish(eventInterval);
    }
    return unsafe;
}

// Waits until it is saved or saving has failed.
bool saveElsewhere(Document& document, const Panels& panels) {
    QEventLoop loop;
    const QPointer<QEventLoop> waiting(&loop);
    const auto outcome = std::make_shared<std::optional<bool>>();
    saveDocumentAs(document, nullptr, panels, [=](bool saved) {
        *outcome = saved;
        if (waiting) waiting->quit();
    });
    if (!outcome->has_value()) {
        QTimer::singleShot(longestWait, &loop, &QEventLoop::quit);
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    return outcome->value_or(false);
}

enum class Answer { saveAs, quitAnyway, cancel };

Answer askAbout(const Document& document, const Panels& panels) {
    const std::optional<FileProblem> problem = document.problem();
    const QString reason = problem ? oneLine(projectMessage(document.displayName(), *problem))
                                   : "The disk has not answered in time.";
    return static_cast<Answer>(panels.alerts.ask(
        nullptr,
        {QString("The last changes to “%1” could not be saved").arg(document.displayName()),
         reason + "\n\n" +
             (document.isKeptAside()
                  ? "If you quit now, they are kept in a copy that opens at the next "
                    "start."
                  : "If you quit now, they may be lost."),
         {"Save As...", "Quit Anyway", "Cancel"},
         1}));
}

// An export, or a saved plot.
bool mayGiveUpFiles(JobQueue& jobs, const Panels& panels) {
    if (jobs.finishWrites(milliseconds(0))) return true;
    return panels.alerts.ask(nullptr, {"A file is still being written",
                                       "If you quit now, the old file is kept.",
                                       {"Quit Anyway", "Cancel"},
                                       0}) == 0;
}

// Asks about each document whose last changes are not on the disk, except discarded: save it
// elsewhere, quit anyway, or not quit. False if the user cancels.
bool settleBeforeQuitting(DocumentController& documents, JobQueue& jobs, const Panels& panels,
                          const Document* discarded) {
    std::vector<QPointer<Document>> unsafe;
    for (Document* document : waitForWrites(documents, jobs)) {
        if (document != discarded) unsafe.emplace_back(document);
    }
    for (const QPointer<Document>& document : unsafe) {
        if (!document) continue;
        const Answer answer = askAbout(*document, panels);
        if (answer == Answer::cancel) return false;
        if (answer == Answer::saveAs && document && !saveElsewhere(*document, panels)) return false;
    }
    return mayGiveUpFiles(jobs, panels);
}

}  // namespace

bool ProjectWindows::mayClose(MainWindowController& window) {
    if (!quitting_) {
        const QPointer<MainWindowController> guard(&window);
        if (!window.mainView().readyToClose()) return false;
        if (!mayDropImports({&window}, false) || !askToKeep(window)) return false;
        const bool discards = std::count(discarded_.begin(), discarded_.end(), &window.document());
        if (isLast(window) && !mayEnd(discards ? &window.document() : nullptr)) {
            discarded_.clear();
            return false;
        }
        if (!guard) return false;
        window.mainView().cancelImports();
    }
    connect(&window, &QObject::destroyed, this,
            [this, document = QPointer<Document>(&window.document())] { letGo(document); });
    return true;
}

bool ProjectWindows::eventFilter(QObject* watched, QEvent* event) {
    auto* window = qobject_cast<QWidget*>(watched);
    if (event->type() == QEvent::Close && window != nullptr && !quitting_ && isLast(*window)) {
        // A project that was closed before may still be on its way to the disk.
        const QPointer<QWidget> guard(window);
        if (!mayEnd() || !guard) {
            event->ignore();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

// A file may be read while the questions are open. It gets no window then, which the user would
// have to close again.
bool ProjectWindows::mayEnd(const Document* discarded) {
    if (!exports_->mayQuit()) return false;
    settling_ = true;
    const bool ends = settleBeforeQuitting(documents_, jobs_, panels_, discarded);
    settling_ = false;
    for (const Arrival& arrival : std::exchange(arrivals_, {})) {
        if (arrival.document == nullptr) continue;
        if (ends) {
            documents_.close(*arrival.document);
        } else {
            documentDidOpen(*arrival.document, arrival.path);
        }
    }
    return ends;
}

bool ProjectWindows::mayDropImports(const std::vector<MainWindowController*>& windows, bool quits) {
    const auto importing =
        std::find_if(windows.begin(), windows.end(),
                     [](MainWindowController* window) { return window->mainView().isImporting(); });
    if (importing == windows.end()) return true;
    const QPointer<ProjectWindows> self(this);
    const QString end = quits ? "quit" : "close the window";
    const Question question{"An import is still running",
                            QString("If you %1 now, nothing of it is stored.").arg(end),
                            {quits ? "Quit Anyway" : "Close Anyway", "Cancel"},
                            0};
    return panels_.alerts.ask(*importing, question) == 0 && self;
}

bool ProjectWindows::isLast(const QWidget& window) const {
    const auto isOther = [&window](const QWidget* each) { return each != &window; };
    const std::vector<QWidget*> shown = shownWindows();
    return std::none_of(shown.begin(), shown.end(), isOther);
}

bool ProjectWindows::askToKeep(MainWindowController& window) {
    Document& document = window.document();
    const bool failing = document.saveState() == Document::SaveState::failed ||
                         document.saveState() == Document::SaveState::stuck;
    const bool unsaved = document.isUntitled() && !document.isUntouched();
    // For the last window, the questions of quitting say so.
    if (!unsaved && (!failing || isLast(window))) return true;
    const QString name = document.displayName();
    const Question question =
        unsaved ? Question{QString("Save “%1” before closing?").arg(name),
                           "It is not saved as a project file yet. What is discarded is lost.",
                           {"Save...", "Discard", "Cancel"},
                           1}
                : Question{QString("The last changes of “%1” could not be written.").arg(name),
                           "If the window closes, writing is tried again until the program "
                           "quits; what then is still not written is kept as an untitled "
                           "project.",
                           {"Save As...", "Close Anyway", "Cancel"},
                           1};
    const QPointer<MainWindowController> guard(&window);
    const int answer = panels_.alerts.ask(&window, question);
    if (!guard) return false;
    if (unsaved && answer == 1) discarded_.emplace_back(&document);
    if (answer == 0) {
        saveDocumentAs(document, &window, panels_, [guard](bool saved) {
            if (saved && guard) guard->close();
        });
    }
    return answer == 1;
}

// Called after the window is deleted, which uses the document until then.
void ProjectWindows::letGo(Document* document) {
    if (document == nullptr) return;
    const auto found = std::find(discarded_.begin(), discarded_.end(), document);
    if (found == discarded_.end()) {
        documents_.close(*document);
    } else {
        discarded_.erase(found);
        documents_.discard(*document);
    }
}

bool ProjectWindows::quit() {
    if (quitting_) return true;
    for (MainWindowController* window : windows()) {
        if (!window->mainView().readyToClose()) return false;
    }
    if (!mayDropImports(windows(), true) || !mayEnd()) return false;
    for (MainWindowController* window : windows()) window->mainView().cancelImports();
    quitting_ = true;
    closeAll();
    QCoreApplication::quit();
    return true;
}

void ProjectWindows::closeAll() {
    for (QWidget* window : shownWindows()) window->close();
}

void ProjectWindows::endAtOnce() {
    if (std::exchange(quitting_, true)) return;
    for (MainWindowController* window : windows()) {
        connect(
            &window->mainView(), &MainViewController::textRefused, this,
            [](const QString& message) { writeConsoleLine("WARNING: " + message.toStdString()); });
        window->mainView().endEditing();
    }
    waitForWrites(documents_, jobs_);
    closeAll();
    QCoreApplication::exit();
}

}  // namespace zorvel
