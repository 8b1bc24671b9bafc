// The icons of the program and of its files: one for each size that is installed, drawn at it.
#include <gtest/gtest.h>

#include <QImage>

namespace zorvel {
namespace {

TEST(Icons, HaveTheSizeOfTheirNameAndClearCorners) {
    for (const char* name : {"zorvel", "application-x-zorvel"}) {
        for (const int size : {16, 24, 32, 48, 64, 128, 256}) {
            const QString path =
                QString(ZORVEL_SOURCE_DIR "/packaging/icons/%1-%2.png").arg(name).arg(size);
            const QImage icon(path);
            SCOPED_TRACE(path.toStdString());
            ASSERT_EQ(icon.size(), QSize(size, size));
            EXPECT_LT(qAlpha(icon.pixel(0, 0)), 128);
            EXPECT_EQ(qAlpha(icon.pixel(size / 2, size * 7 / 8)), 255);
        }
    }
}

}  // namespace
}  // namespace zorvel
