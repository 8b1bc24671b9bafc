#include "app/document_commands.h"

#include <QFileInfo>
#include <QPointer>
#include <utility>

#include "platform/document.h"
#include "platform/file_reading.h"
#include "ui/kit/panels.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

namespace {

// Empty if cancelled.
QString choosePath(const QString& suggestion, const QPointer<QWidget>& window,
                   const Panels& panels) {
    const QString chosen = panels.save.chooseProjectPath(window, suggestion);
    if (chosen.isEmpty()) return {};
    const QString path = withProjectEnding(chosen);
    return mayReplace(panels.alerts, window, path) ? path : QString();
}

}  // namespace

void saveDocumentAs(Document& document, QWidget* window, const Panels& panels,
                    std::function<void(bool saved)> saved) {
    const QPointer<Document> guard(&document);
    const QPointer<QWidget> parent(window);
    const QString suggestion = document.isUntitled() ? document.displayName() : document.path();
    const QString path = choosePath(suggestion, parent, panels);
    if (path.isEmpty() || !guard) return saved(false);
    Alerts& alerts = panels.alerts;
    document.saveAs(path, [saved = std::move(saved), path, parent,
                           &alerts](const std::optional<FileProblem>& problem) {
        if (problem) {
            alerts.warn(parent, "The project could not be saved",
                        projectMessage(QFileInfo(path).fileName(), *problem));
        }
        saved(!problem);
    });
}

void saveDocument(MainWindowController& window, const Panels& panels) {
    if (window.document().isUntitled()) return saveWindowAs(window, panels);
    if (window.mainView().commitEditing()) window.document().saveSoon();
}

void saveWindowAs(MainWindowController& window, const Panels& panels) {
    if (!window.mainView().commitEditing()) return;
    saveDocumentAs(window.document(), &window, panels);
}

void revertToOpening(MainWindowController& window, const Panels& panels) {
    if (!window.mainView().commitEditing() || !window.document().canRevert()) return;
    const QPointer<MainWindowController> guard(&window);
    const int answer =
        panels.alerts.ask(&window, {QString("Revert “%1” to what it was when it was opened?")
                                        .arg(window.document().displayName()),
                                    "All changes since then are taken back. You can undo this.",
                                    {"Revert", "Cancel"},
                                    0});
    if (answer == 0 && guard) guard->document().revertToOpening();
}

}  // namespace zorvel
