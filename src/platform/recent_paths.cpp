#include "platform/recent_paths.h"

#include <QFileInfo>

#include "platform/settings.h"

namespace zorvel {

namespace {

const char recentKey[] = "recentPaths";

QStringList stored() {
    return setting(recentKey).toStringList();
}

}  // namespace

QStringList RecentPaths::list() const {
    QStringList paths = stored();
    paths.removeIf([](const QString& path) { return !QFileInfo::exists(path); });
    return paths;
}

void RecentPaths::add(const QString& path) {
    const QString absolute = QFileInfo(path).absoluteFilePath();
    QStringList paths = stored();
    paths.removeAll(absolute);
    paths.prepend(absolute);
    storeSetting(recentKey, paths.mid(0, kept));
}

void RecentPaths::clear() {
    removeSetting(recentKey);
}

}  // namespace zorvel
