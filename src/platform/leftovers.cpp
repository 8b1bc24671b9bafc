#include "platform/leftovers.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace zorvel {

void deleteLeftovers(const QString& folder) {
    const QDateTime yesterday = QDateTime::currentDateTime().addDays(-1);
    const QStringList names{".zorvel-*.tmp", ".zorvel-*.tmp-journal"};
    for (const QFileInfo& file : QDir(folder).entryInfoList(names, QDir::Files | QDir::Hidden)) {
        if (file.lastModified() < yesterday) QFile::remove(file.absoluteFilePath());
    }
}

}  // namespace zorvel
