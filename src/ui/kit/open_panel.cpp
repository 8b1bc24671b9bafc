#include "ui/kit/open_panel.h"

#include <QFileDialog>
#include <QFileInfo>

namespace zorvel {

QStringList DesktopOpenPanel::chooseFiles(QWidget* parent) {
    const QString filter =
        QFileDialog::tr("Projects and text files (*.zorvel *.txt *.csv);;All files (*)");
    QStringList paths =
        QFileDialog::getOpenFileNames(parent, QFileDialog::tr("Open"), folder_, filter);
    if (!paths.isEmpty()) folder_ = QFileInfo(paths.front()).path();
    return paths;
}

QString DesktopOpenPanel::chooseTextFile(QWidget* parent) {
    const QString filter = QFileDialog::tr("Text files (*.txt *.csv)");
    QString path = QFileDialog::getOpenFileName(parent, QFileDialog::tr("Import"), folder_, filter);
    if (!path.isEmpty()) folder_ = QFileInfo(path).path();
    return path;
}

}  // namespace zorvel
