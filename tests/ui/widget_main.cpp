// Runs the tests inside a QApplication without a display, with the user's folders in a temporary
// place.
#include <gtest/gtest.h>

#include <QApplication>

#include "app/application_delegate.h"
#include "tests/support/offscreen_home.h"

int main(int argc, char** argv) {
    const zorvel::OffscreenHome home;
    ::testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    zorvel::setUpApplication();
    return RUN_ALL_TESTS();
}
