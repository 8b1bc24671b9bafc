#include "app/start_up.h"

#include <QApplication>
#include <QGuiApplication>
#include <QIcon>

#include "metrics/rarefaction.h"
#include "platform/preferences.h"

namespace zorvel {

void setUpApplication() {
    QCoreApplication::setOrganizationName("zorvel");
    QCoreApplication::setApplicationName("zorvel");
    QCoreApplication::setApplicationVersion(ZORVEL_VERSION);
    QGuiApplication::setApplicationDisplayName("Zorvel");
    QGuiApplication::setDesktopFileName("zorvel");
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128, 256}) {
        icon.addFile(QString(":/zorvel/zorvel-%1.png").arg(size), QSize(size, size));
    }
    QApplication::setWindowIcon(icon);
    Preferences().initializePreferences();
    sharedCalculator();
}

}  // namespace zorvel
