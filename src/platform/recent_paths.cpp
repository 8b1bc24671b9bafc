#include "platform/recent_paths.h"

#include <QFileInfo>

#include "platform/settings.h"

namespace zorvel {

namespace {

const char recentKey[] = "recentPaths";

}  // namespace

QStringList RecentPaths::stored() const {
    return setting(recentKey).toStringList();
}

QStringList RecentPaths::list() const {
    QStringList paths = stored();
    paths.removeIf([this](const QString& path) { return missing_.contains(path); });
    return paths;
}

void RecentPaths::add(const QString& path) {
    const QString absolute = QFileInfo(path).absoluteFilePath();
    QStringList paths = stored();
    paths.removeAll(absolute);
    paths.prepend(absolute);
    missing_.removeAll(absolute);
    storeSetting(recentKey, paths.mid(0, kept));
}

void RecentPaths::clear() {
    removeSetting(recentKey);
}

QStringList missingAmong(QStringList paths) {
    paths.removeIf([](const QString& path) { return QFileInfo::exists(path); });
    return paths;
}

}  // namespace zorvel
