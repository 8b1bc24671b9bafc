// What the writing thread does with the file of an open project: write it, make a new one, move to
// another path, close. Orders and outcomes are plain values. Writing thread, except where a comment
// says otherwise.
#pragma once

#include <QDateTime>
#include <QString>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "store/file_problem.h"
#include "store/object_context.h"
#include "store/project_file.h"

namespace zorvel {

// The open file of a document; none until an untitled project is first written. The main thread
// keeps the holder alive; only the writing thread uses and closes the file.
struct FileHolder {
    std::unique_ptr<ProjectFile> file;
};

// What the main thread knows about the file. Any thread.
struct FileFacts {
    QString path;
    FileIdentity identity;
    QString projectId;
    std::optional<FileProblem> whyNotWritable;
};
FileFacts factsOf(const ProjectFile& file);

struct BackupOrder {
    QString folder;  // of all backups
    QString displayName;
};

struct WriteOrder {
    std::shared_ptr<FileHolder> holder;
    std::shared_ptr<const ObjectContext> state;
    ProjectFileOptions options;
    // Where an untitled file and its folder are made if there is none yet; a move deletes it when
    // the new file is safe, if it is still the project's file.
    QString untitledPath;
    // Made before the file is written; not by a move.
    std::optional<BackupOrder> backup = std::nullopt;
};

struct WriteOutcome {
    std::optional<FileProblem> problem;
    // Of a new file.
    std::optional<FileFacts> facts;
    std::optional<FileProblem> backupProblem;
};

WriteOutcome writeProject(const WriteOrder& order);

// The same for a copy in the folder of untitled projects. A link beside the copy leads to the
// project of that path, until the copy is deleted; empty for none.
WriteOutcome writeAside(const WriteOrder& order, const QString& projectPath);
// The project whose copy is at that path; empty if it is no such copy. Any thread.
QString projectOfAside(const QString& path);

// Makes a new file of the state at the path, replacing one that is there, and closes the old file.
// On a problem the old file stays the project's; only if it is itself to be replaced, it is closed
// first.
WriteOutcome moveProject(const WriteOrder& order, const QString& path);

// Closes the file, and deletes it and the link beside it if it is the file of that path.
void closeProject(FileHolder& holder, const std::string& deleteAt);

// A backup: a file "NAME DATE TIME.zorvel" in the folder of its project. The newest ten of each
// name are kept, so that the backups of a copy do not replace those of the project.
struct Backup {
    QString path;  // absolute
    QString displayName;
    QString time;
    int number = 1;  // of those of one second
    QDateTime modified;
    qint64 size = 0;
};

// Under every name that the project has had, oldest first; folder: that of the project. Waits for
// the disk. Any thread.
std::vector<Backup> backupsIn(const QString& folder);

}  // namespace zorvel
