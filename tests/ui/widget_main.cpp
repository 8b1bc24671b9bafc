// Runs the tests inside a QApplication without a display, with the user's folders in a temporary
// place.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>

#include "app/start_up.h"

int main(int argc, char** argv) {
    const QTemporaryDir home;
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"}) {
        qputenv(name, home.path().toUtf8());
    }
    QFile::setPermissions(home.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("XDG_RUNTIME_DIR", home.path().toUtf8());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    ::testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    zorvel::setUpApplication();
    return RUN_ALL_TESTS();
}
