#include "platform/backups.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>

#include "platform/file_names.h"
#include "store/replacement_file.h"

namespace zorvel {

namespace {

const QString timeFormat = QStringLiteral("yyyy-MM-dd HH.mm.ss");

// By time first, whatever the name.
bool isOlder(const Backup& a, const Backup& b) {
    if (a.time != b.time) return a.time < b.time;
    if (a.modified != b.modified) return a.modified < b.modified;
    return a.number < b.number;
}

QString freePath(const QString& folder, const QString& stem) {
    QString path = folder + "/" + stem + projectEnding;
    for (int number = 2; QFileInfo::exists(path); ++number) {
        path = folder + "/" + stem + QString(" (%1)").arg(number) + projectEnding;
    }
    return path;
}

// The backup just made stays: after the clock was set back it seems the oldest.
void prune(const QString& folder, const QString& displayName, const QString& made) {
    std::vector<Backup> backups = backupsIn(folder);
    const auto isNoneOfThem = [&](const Backup& backup) {
        return backup.displayName != displayName || backup.path == made;
    };
    backups.erase(std::remove_if(backups.begin(), backups.end(), isNoneOfThem), backups.end());
    constexpr std::size_t others = backupsKept - 1;
    for (std::size_t i = 0; i + others < backups.size(); ++i) QFile::remove(backups[i].path);
}

}  // namespace

std::optional<FileProblem> makeBackup(ProjectFile& file, const BackupOrder& order) {
    const QString folder = order.folder + "/" + QString::fromStdString(file.projectId());
    if (auto problem = makeFolder(folder)) return problem;
    const QString name = asFileName(order.displayName);
    const QString path =
        freePath(folder, name + " " + QDateTime::currentDateTime().toString(timeFormat));
    if (auto problem = file.copyTo(encodedPath(path))) return problem;
    prune(folder, name, QFileInfo(path).absoluteFilePath());
    removeUnfinishedFiles(encodedPath(folder));
    return std::nullopt;
}

std::vector<Backup> backupsIn(const QString& folder) {
    static const QRegularExpression form(
        "\\A(.+) (\\d{4}-\\d\\d-\\d\\d \\d\\d\\.\\d\\d\\.\\d\\d)(?: \\((\\d+)\\))?\\.zorvel\\z",
        QRegularExpression::DotMatchesEverythingOption);
    std::vector<Backup> backups;
    if (folder.isEmpty()) return backups;
    for (const QFileInfo& file : QDir(folder).entryInfoList(QDir::Files)) {
        const QRegularExpressionMatch match = form.match(file.fileName());
        if (!match.hasMatch()) continue;
        const int number = match.captured(3).isEmpty() ? 1 : match.captured(3).toInt();
        backups.push_back({file.absoluteFilePath(), match.captured(1), match.captured(2), number,
                           file.lastModified(), file.size()});
    }
    std::sort(backups.begin(), backups.end(), isOlder);
    return backups;
}

}  // namespace zorvel
