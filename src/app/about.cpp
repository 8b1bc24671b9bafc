#include "app/about.h"

#include <QApplication>
#include <QIcon>
#include <QMessageBox>
#include <QSysInfo>

namespace zorvel {

void showAbout(QWidget* window) {
    auto* box = new QMessageBox(window);
    box->setObjectName("aboutBox");
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(QObject::tr("About Zorvel"));
    box->setIconPixmap(QApplication::windowIcon().pixmap(64, 64));
    box->setTextFormat(Qt::RichText);
    box->setText(QString("<b>Zorvel %1</b>").arg(QCoreApplication::applicationVersion()));
    box->setInformativeText(
        QObject::tr("Measures the diversity of biological samples, for field ecologists and "
                    "paleontologists.\n\nFree software under the MIT licence. Qt %1.")
            .arg(qVersion()));
    box->setStandardButtons(QMessageBox::Close);
    box->open();
}

}  // namespace zorvel
