// Runs the tests inside a QCoreApplication, with the user's folders in a temporary place.
#include <gtest/gtest.h>

#include <QCoreApplication>

#include "tests/support/offscreen_home.h"

int main(int argc, char** argv) {
    const zorvel::OffscreenHome home;
    ::testing::InitGoogleTest(&argc, argv);
    QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName("zorvel");
    QCoreApplication::setApplicationName("zorvel");
    return RUN_ALL_TESTS();
}
