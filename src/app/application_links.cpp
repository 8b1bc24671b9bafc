#include "app/application_links.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

namespace zorvel {

namespace {

QString besideProgram(const char* relative) {
    return QDir::cleanPath(QCoreApplication::applicationDirPath() + '/' + relative);
}

}  // namespace

QString helpAddress() {
    if (QString address = ZORVEL_HELP_URL; !address.isEmpty()) return address;
    const QString built = besideProgram("../help/index.html");
    const QString page =
        QFileInfo::exists(built) ? built : besideProgram(ZORVEL_INSTALLED_HELP "/index.html");
    return QUrl::fromLocalFile(page).toString(QUrl::FullyEncoded);
}

QString websiteAddress() {
    return ZORVEL_WEBSITE;
}

QString supportMailAddress() {
    return QString("mailto:%1?%2&%3")
        .arg(ZORVEL_SUPPORT_ADDRESS, "SUBJECT=Zorvel%20for%20Mac%20support", "BODY=");
}

}  // namespace zorvel
