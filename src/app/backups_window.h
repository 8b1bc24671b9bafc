// File > Browse Backups: the backups of one project by date, newest first, any of which can be
// opened as an untitled copy. It shows what there was when it was made; nothing here changes a
// backup. Main thread.
#pragma once

#include <QDialog>
#include <QStringList>

class QPushButton;
class QTreeWidget;

namespace zorvel {

class BackupsWindow : public QDialog {
    Q_OBJECT
  public:
    // paths: newest last.
    BackupsWindow(const QString& displayName, const QStringList& paths, QWidget* parent);

  signals:
    void copyRequested(const QString& path);

  private:
    void fill(const QStringList& paths);
    void openCopy();

    QTreeWidget* list_;
    QPushButton* openButton_;
};

}  // namespace zorvel
