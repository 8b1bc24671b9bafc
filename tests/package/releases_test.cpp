// The places that name the release agree with the program.
#include <gtest/gtest.h>

#include <QDateTime>
#include <QFile>
#include <QRegularExpression>

namespace zorvel {
namespace {

// The first match of the pattern's group in the file.
QString firstIn(const QString& path, const QString& pattern) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return "no file " + path;
    const QRegularExpression expression(pattern, QRegularExpression::MultilineOption);
    return expression.match(QString::fromUtf8(file.readAll())).captured(1);
}

TEST(Releases, AreThatOfTheProgramWithOneDate) {
    const QString changelog = ZORVEL_SOURCE_DIR "/packaging/debian/changelog";
    EXPECT_EQ(firstIn(changelog, "^zorvel \\((.*)\\) "), ZORVEL_VERSION);
    EXPECT_EQ(firstIn(ZORVEL_METAINFO, "<release version=\"(.*?)\""), ZORVEL_VERSION);
    const QDateTime released =
        QDateTime::fromString(firstIn(changelog, "^ -- .*>  (.*)$"), Qt::RFC2822Date);
    EXPECT_EQ(firstIn(ZORVEL_METAINFO, "<release .* date=\"(.*?)\""),
              released.date().toString(Qt::ISODate));
}

}  // namespace
}  // namespace zorvel
