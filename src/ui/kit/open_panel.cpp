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

}  // namespace zorvel
