// How the windows close, and how the program ends with the last of them.
#include <QApplication>
#include <algorithm>
#include <utility>

#include "app/document_commands.h"
#include "app/exports.h"
#include "app/project_windows.h"
#include "app/quitting.h"
#include "base/console.h"
#include "platform/document_controller.h"
#include "ui/kit/alerts.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

bool ProjectWindows::mayClose(MainWindowController& window) {
    if (!quitting_) {
        const QPointer<MainWindowController> guard(&window);
        if (!window.mainView().readyToClose()) return false;
        const Question question{tr("An import is still running"),
                                tr("If you close the window now, nothing of it is stored."),
                                {tr("Close Anyway"), tr("Cancel")},
                                0};
        if (!mayDropImports({&window}, question) || !askToKeep(window)) return false;
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

// A project that was closed before may still be on its way to the disk.
bool ProjectWindows::mayCloseSecondary(QWidget& window) {
    const QPointer<QWidget> guard(&window);
    return quitting_ || !isLast(window) || (mayEnd() && guard);
}

// While it is settled what was read meanwhile may arrive, which is not to open a window that the
// person would have to close again.
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

bool ProjectWindows::mayDropImports(const std::vector<MainWindowController*>& windows,
                                    const Question& question) {
    const auto importing =
        std::find_if(windows.begin(), windows.end(),
                     [](MainWindowController* window) { return window->mainView().isImporting(); });
    if (importing == windows.end()) return true;
    const QPointer<ProjectWindows> self(this);
    return panels_.alerts.ask(*importing, question) == 0 && self;
}

bool ProjectWindows::isLast(const QWidget& window) const {
    const auto isOther = [&window](const QWidget* each) { return each != &window; };
    const std::vector<MainWindowController*> projects = windows();
    const std::vector<QWidget*> others = secondary_.windows();
    return std::none_of(projects.begin(), projects.end(), isOther) &&
           std::none_of(others.begin(), others.end(), isOther);
}

bool ProjectWindows::askToKeep(MainWindowController& window) {
    Document& document = window.document();
    const bool failing = document.saveState() == Document::SaveState::failed ||
                         document.saveState() == Document::SaveState::stuck;
    const bool unsaved = document.isUntitled() && !document.isUntouched();
    // Of the last window the question at quitting tells.
    if (!unsaved && (!failing || isLast(window))) return true;
    const QString name = document.displayName();
    const Question question =
        unsaved ? Question{tr("Save “%1” before closing?").arg(name),
                           tr("It is not saved as a project file yet. What is discarded is lost."),
                           {tr("Save..."), tr("Discard"), tr("Cancel")},
                           1}
                : Question{tr("The last changes of “%1” could not be written.").arg(name),
                           tr("If the window closes, writing is tried again until the program "
                              "quits; what then is still not written is kept as an untitled "
                              "project."),
                           {tr("Save As..."), tr("Close Anyway"), tr("Cancel")},
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

// After the window has gone, which looks at the document to its end.
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
    const Question question{tr("An import is still running"),
                            tr("If you quit now, nothing of it is stored."),
                            {tr("Quit Anyway"), tr("Cancel")},
                            0};
    if (!mayDropImports(windows(), question) || !mayEnd()) return false;
    for (MainWindowController* window : windows()) window->mainView().cancelImports();
    quitting_ = true;
    for (MainWindowController* window : windows()) window->close();
    secondary_.closeAll();
    QCoreApplication::quit();
    return true;
}

void ProjectWindows::endAtOnce() {
    if (std::exchange(quitting_, true)) return;
    for (MainWindowController* window : windows()) {
        connect(
            &window->mainView(), &MainViewController::textRefused, this,
            [](const QString& message) { writeConsoleLine("WARNING: " + message.toStdString()); });
        window->mainView().endEditing();
    }
    settleAtOnce(documents_, jobs_);
    for (MainWindowController* window : windows()) window->close();
    secondary_.closeAll();
    QCoreApplication::exit();
}

}  // namespace zorvel
