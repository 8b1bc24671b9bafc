// The window of File > Browse Backups.
#include <QDialog>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <utility>
#include <vector>

#include "app/document_commands.h"
#include "app/project_windows.h"
#include "platform/document_controller.h"
#include "platform/job_queue.h"
#include "platform/project_writes.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

namespace {

constexpr int pathRole = Qt::UserRole;

QTreeWidget* newBackupsList(QWidget* parent) {
    auto* list = new QTreeWidget(parent);
    list->setObjectName("backupsList");
    list->setAccessibleName("Backups");
    list->setHeaderLabels({"Date", "Size"});
    list->headerItem()->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setAlternatingRowColors(true);
    list->header()->setStretchLastSection(false);
    list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    new QTreeWidgetItem(list, {"Looking for backups..."});
    return list;
}

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

QDialog& showBackups(const QString& displayName, const QString& folder, JobQueue& jobs,
                     QWidget& parent, std::function<void(const QString& path)> open) {
    auto* window = new QDialog(&parent);
    window->setObjectName("backupsWindow");
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowTitle(
        QString("Backups of %1").arg(asWindowTitle(shortened(displayName, 200))));
    window->resize(460, 340);
    QTreeWidget* list = newBackupsList(window);
    auto* text = new QLabel(
        "A backup is made before the first change after a project was "
        "opened. A copy opens as an untitled project.",
        window);
    text->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(window);
    QPushButton* openButton = buttons->addButton("Open Copy", QDialogButtonBox::ActionRole);
    openButton->setObjectName("openCopyButton");
    openButton->setProperty(primaryButtonProperty, true);
    openButton->setDefault(true);
    openButton->setEnabled(false);
    buttons->addButton(QDialogButtonBox::Close);
    auto* column = new QVBoxLayout(window);
    column->setContentsMargins(12, 12, 12, 12);
    column->addWidget(text);
    column->addWidget(list, 1);
    column->addWidget(buttons);
    const auto openCopy = [window, list, open = std::move(open)] {
        const QTreeWidgetItem* item = list->currentItem();
        const QString path = item != nullptr ? item->data(0, pathRole).toString() : QString();
        if (path.isEmpty()) return;
        open(path);
        window->close();
    };
    QObject::connect(buttons, &QDialogButtonBox::rejected, window, &QWidget::close);
    QObject::connect(openButton, &QPushButton::clicked, window, openCopy);
    QObject::connect(list, &QTreeWidget::itemActivated, window, openCopy);
    jobs.start(
        window, [folder] { return backupsIn(folder); },
        [list, openButton](const std::vector<Backup>& backups) {
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
