#include "ui/kit/open_panel.h"

#include <QFileDialog>

#include "ui/kit/panel_folder.h"

namespace zorvel {

QStringList DesktopOpenPanel::chooseFiles(QWidget* parent) {
    const QString filter =
        QFileDialog::tr("Projects and text files (*.zorvel *.txt *.csv);;All files (*)");
    QStringList paths = QFileDialog::getOpenFileNames(
        parent, QFileDialog::tr("Open Projects or Text Files"), panelFolder(parent), filter);
    if (!paths.isEmpty()) rememberPanelFolder(paths.front());
    return paths;
}

QString DesktopOpenPanel::chooseTextFile(QWidget* parent, const QString& title) {
    const QString filter = QFileDialog::tr("Text files (*.txt *.csv);;All files (*)");
    QString path = QFileDialog::getOpenFileName(parent, title, panelFolder(parent), filter);
    if (!path.isEmpty()) rememberPanelFolder(path);
    return path;
}

}  // namespace zorvel
