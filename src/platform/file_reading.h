// Reads a file that is to become a document, whatever it holds: the slow part of opening, done on a
// background thread. Nothing here is kept between calls.
#pragma once

#include <QString>
#include <memory>
#include <optional>
#include <string>

#include "model/text_project.h"
#include "store/census_block.h"
#include "store/file_problem.h"
#include "store/project_file.h"

namespace zorvel {

struct FileReading {
    // None for a text file.
    std::unique_ptr<ProjectFile> file;
    ProjectRecords records;
    // Why there are no records, for the person, with the file's name; empty where there are.
    QString failure;
    // Of a project file.
    std::optional<FileProblem> problem;
    // The project that this one is the copy aside of; empty where it is none.
    QString asideOf;
    // Of a text file's records.
    LeftOut leftOut;
};

// A project file, or a text file of counts, told apart by their first bytes; what has the ending of
// a project is taken for one. kind: of a text file; guessed where there is none.
FileReading readAnyFile(const QString& path, const ProjectFileOptions& options,
                        std::optional<FileKind> kind = std::nullopt);

// shownName stands before the message of a failure.
FileReading readProjectFile(const QString& path, const QString& shownName,
                            const ProjectFileOptions& options);

// The records alone, of a file that is not to be changed; it is closed again.
FileReading readCopy(const QString& path, const QString& shownName, ProjectFileOptions options);

// "NAME could not be read (line 3, cell 7): reason", for a text file.
QString unreadableMessage(const QString& shownName, const std::string& reason,
                          const TextPlace& place);

// "NAME: sentence".
QString projectMessage(const QString& shownName, const FileProblem& problem);

}  // namespace zorvel
