// File > Browse Backups: the backups that a project has when the window opens, newest first. Any
// can be opened as an untitled copy; none is changed. Main thread.
#pragma once

#include <QDialog>
#include <QString>
#include <vector>

#include "platform/project_writes.h"

class QPushButton;
class QTreeWidget;

namespace zorvel {

class JobQueue;

class BackupsWindow : public QDialog {
    Q_OBJECT
  public:
    // folder: of the project's backups. The queue must outlive the window.
    BackupsWindow(const QString& displayName, const QString& folder, JobQueue& jobs,
                  QWidget* parent);

  signals:
    void copyRequested(const QString& path);

  private:
    void fill(const std::vector<Backup>& backups);
    void openCopy();

    QTreeWidget* list_;
    QPushButton* openButton_;
};

}  // namespace zorvel
