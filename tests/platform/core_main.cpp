// Runs the tests inside a QCoreApplication, with the user's folders in a temporary place.
#include <gtest/gtest.h>

#include <QByteArray>
#include <QCoreApplication>
#include <QTemporaryDir>

int main(int argc, char** argv) {
    const QTemporaryDir home;
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"}) {
        qputenv(name, home.path().toUtf8());
    }
    ::testing::InitGoogleTest(&argc, argv);
    QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName("zorvel");
    QCoreApplication::setApplicationName("zorvel");
    return RUN_ALL_TESTS();
}
