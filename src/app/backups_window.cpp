#include "app/backups_window.h"

#include <QDialogButtonBox>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "platform/job_queue.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"

namespace zorvel {

namespace {
constexpr int pathRole = Qt::UserRole;
}

BackupsWindow::BackupsWindow(const QString& displayName, const QString& folder, JobQueue& jobs,
                             QWidget* parent)
    : QDialog(parent), list_(new QTreeWidget(this)) {
    setObjectName("backupsWindow");
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QString("Backups of %1").arg(asWindowTitle(shortened(displayName, 200))));
    resize(460, 340);
    auto* text = new QLabel(
        "A backup is made before the first change after a project was "
        "opened. A copy opens as an untitled project.",
        this);
    text->setWordWrap(true);
    list_->setObjectName("backupsList");
    list_->setAccessibleName("Backups");
    list_->setHeaderLabels({"Date", "Size"});
    list_->headerItem()->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->setAlternatingRowColors(true);
    list_->header()->setStretchLastSection(false);
    list_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    auto* buttons = new QDialogButtonBox(this);
    openButton_ = buttons->addButton("Open Copy", QDialogButtonBox::ActionRole);
    openButton_->setObjectName("openCopyButton");
    openButton_->setProperty(primaryButtonProperty, true);
    openButton_->setDefault(true);
    buttons->addButton(QDialogButtonBox::Close);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(12, 12, 12, 12);
    column->addWidget(text);
    column->addWidget(list_, 1);
    column->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::rejected, this, &QWidget::close);
    connect(openButton_, &QPushButton::clicked, this, &BackupsWindow::openCopy);
    connect(list_, &QTreeWidget::itemActivated, this, &BackupsWindow::openCopy);
    new QTreeWidgetItem(list_, {"Looking for backups..."});
    openButton_->setEnabled(false);
    jobs.start(
        this, [folder] { return backupsIn(folder); },
        [this](const std::vector<Backup>& backups) { fill(backups); });
}

void BackupsWindow::fill(const std::vector<Backup>& backups) {
    list_->clear();
    for (const Backup& backup : backups) {
        auto* item =
            new QTreeWidgetItem({QLocale().toString(backup.modified, "d MMM yyyy, HH:mm:ss"),
                                 QLocale().formattedDataSize(backup.size)});
        list_->insertTopLevelItem(0, item);  // the newest is last in the list
        item->setData(0, pathRole, backup.path);
        item->setSizeHint(0, QSize(0, fontMetrics().height() + 12));
        item->setToolTip(0, shortened(oneLine(QFileInfo(backup.path).completeBaseName()), 100));
        item->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
    }
    if (backups.empty()) new QTreeWidgetItem(list_, {"There is no backup yet"});
    list_->setCurrentItem(list_->topLevelItem(0));
    openButton_->setEnabled(!backups.empty());
}

void BackupsWindow::openCopy() {
    const QTreeWidgetItem* item = list_->currentItem();
    const QString path = item != nullptr ? item->data(0, pathRole).toString() : QString();
    if (path.isEmpty()) return;
    emit copyRequested(path);
    close();
}

}  // namespace zorvel
