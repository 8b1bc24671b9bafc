// The backups of projects: a folder a project, in it files "NAME DATE TIME.zorvel". The newest ten
// of a name are kept, so that of two copies of a project neither crowds out the other. Any thread.
#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "platform/project_writes.h"
#include "store/file_problem.h"

namespace zorvel {

inline constexpr int backupsKept = 10;

// A copy of the file as it is on the disk now; then the oldest of that name are deleted.
std::optional<FileProblem> makeBackup(ProjectFile& file, const BackupOrder& order);

// Absolute paths, oldest first, of every name that the project has had.
QStringList backupsOf(const QString& folder, const QString& projectId);

}  // namespace zorvel
