// What is done to the file of an open project, one thing at a time, all on the thread that writes:
// a write, the making of a new file, a move to another place, the end. Plain values go in and come
// out. Writing thread, but for factsOf().
#pragma once

#include <QString>
#include <memory>
#include <optional>
#include <string>

#include "store/file_problem.h"
#include "store/object_context.h"
#include "store/project_file.h"

namespace zorvel {

// The open file of a document; none until an untitled project is first written. The main thread
// holds on to it but never looks inside: only the writing thread does, and closes it.
struct FileHolder {
    std::unique_ptr<ProjectFile> file;
};

// What the main thread knows of the file.
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
    // Where the file is made, with its folder, if there is none yet.
    QString untitledPath;
    // Made of the file as it is, before it is written.
    std::optional<BackupOrder> backup;
    ProjectFileOptions options;
};

struct MoveOrder {
    std::shared_ptr<FileHolder> holder;
    std::shared_ptr<const ObjectContext> state;
    QString path;
    // Deleted once the new file is safe, if the project is still there; empty for nothing.
    QString deleteOldAt;
    ProjectFileOptions options;
};

struct WriteOutcome {
    std::optional<FileProblem> problem;
    // Of a file that is new.
    std::optional<FileFacts> facts;
    std::optional<FileProblem> backupProblem;
};

WriteOutcome writeProject(const WriteOrder& order);

// The same for a copy in the folder of untitled projects, of the project of that path, which the
// copy remembers from its making to its deletion; empty for none.
WriteOutcome writeAside(const WriteOrder& order, const QString& projectPath);
// The project whose copy lies at that path; empty where it is no such copy. Any thread.
QString projectOfAside(const QString& path);

// Makes a new file of the state, in place of one of that path, and lets go of the one so far. After
// a problem the project is still in the file so far; but one that is itself to be replaced is let
// go of first.
WriteOutcome moveProject(const MoveOrder& order);

// Lets go of the file, and deletes it if it is the one of that path, and what the copy remembers.
void closeProject(FileHolder& holder, const std::string& deleteAt);

// With the folders above it; nothing where it is there already.
std::optional<FileProblem> makeFolder(const QString& folder);

}  // namespace zorvel
