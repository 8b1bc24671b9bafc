// The backups of projects: one folder per project with files "NAME DATE TIME.zorvel". The newest
// ten of each name are kept, so that the backups of a copy do not replace those of the project. Any
// thread.
#pragma once

#include <QDateTime>
#include <QString>
#include <optional>
#include <vector>

#include "platform/project_writes.h"
#include "store/file_problem.h"

namespace zorvel {

inline constexpr int backupsKept = 10;

struct Backup {
    QString path;  // absolute
    QString displayName;
    QString time;
    int number = 1;  // of those of one second
    QDateTime modified;
    qint64 size = 0;
};

// A copy of the file as it is on the disk now; then the oldest of that name are deleted.
std::optional<FileProblem> makeBackup(ProjectFile& file, const BackupOrder& order);

// Under every name that the project has had, oldest first; folder: that of the project. Waits for
// the disk.
std::vector<Backup> backupsIn(const QString& folder);

}  // namespace zorvel
