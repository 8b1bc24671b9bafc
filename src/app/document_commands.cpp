#include "app/document_commands.h"

#include <QDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QLocale>
#include <QPointer>
#include <QPushButton>
#include <utility>
#include <vector>

#include "app/project_windows.h"
#include "platform/document.h"
#include "platform/document_controller.h"
#include "platform/file_reading.h"
#include "platform/job_queue.h"
#include "platform/project_writes.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"
#include "ui_backups_window.h"

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

constexpr int pathRole = Qt::UserRole;

void fillBackupsList(QTreeWidget& list, const std::vector<Backup>& backups) {
    list.clear();
    for (const Backup& backup : backups) {
        auto* item =
            new QTreeWidgetItem({QLocale().toString(backup.modified, "d MMM yyyy, HH:mm:ss"),
                                 QLocale().formattedDataSize(backup.size)});
        list.insertTopLevelItem(0, item);  // the newest is last in the list
        item->setData(0, pathRole, backup.path);
        item->setSizeHint(0, QSize(0, list.fontMetrics().height() + 12));
        item->setToolTip(0, shortened(oneLine(QFileInfo(backup.path).completeBaseName()), 100));
        item->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
    }
    if (backups.empty()) new QTreeWidgetItem(&list, {"There is no backup yet"});
    list.setCurrentItem(list.topLevelItem(0));
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

QDialog& showBackups(const QString& displayName, const QString& folder, JobQueue& jobs,
                     QWidget& parent, std::function<void(const QString& path)> open) {
    auto* window = new QDialog(&parent);
    Ui::BackupsWindow ui;
    ui.setupUi(window);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowTitle(
        QString("Backups of %1").arg(asWindowTitle(shortened(displayName, 200))));
    ui.backupsList->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    QPushButton* openButton = ui.buttonBox->addButton("Open Copy", QDialogButtonBox::ActionRole);
    openButton->setObjectName("openCopyButton");
    openButton->setProperty(primaryButtonProperty, true);
    openButton->setDefault(true);
    openButton->setEnabled(false);
    const auto openCopy = [window, list = ui.backupsList, open = std::move(open)] {
        const QTreeWidgetItem* item = list->currentItem();
        const QString path = item != nullptr ? item->data(0, pathRole).toString() : QString();
        if (path.isEmpty()) return;
        open(path);
        window->close();
    };
    QObject::connect(ui.buttonBox, &QDialogButtonBox::rejected, window, &QWidget::close);
    QObject::connect(openButton, &QPushButton::clicked, window, openCopy);
    QObject::connect(ui.backupsList, &QTreeWidget::itemActivated, window, openCopy);
    jobs.start(
        window, [folder] { return backupsIn(folder); },
        [list = ui.backupsList, openButton](const std::vector<Backup>& backups) {
            fillBackupsList(*list, backups);
            openButton->setEnabled(!backups.empty());
        });
    window->show();
    return *window;
}

void browseBackups(MainWindowController& window, ProjectWindows& windows) {
    const QString name = window.document().displayName();
    DocumentController& documents = windows.documents();
    showBackups(name, window.document().backupFolder(), windows.jobs(), window,
                [name, &documents](const QString& path) { documents.openBackup(path, name); });
}

}  // namespace zorvel
