#include "ui/kit/open_panel.h"

#include <QFileDialog>
#include <QFileInfo>

namespace zorvel {

QString DesktopOpenPanel::chooseTextFile(QWidget* parent) {
    const QString filter = QFileDialog::tr("Text files (*.txt *.csv)");
    QString path = QFileDialog::getOpenFileName(parent, QFileDialog::tr("Open"), folder_, filter);
    if (!path.isEmpty()) folder_ = QFileInfo(path).path();
    return path;
}

}  // namespace zorvel
