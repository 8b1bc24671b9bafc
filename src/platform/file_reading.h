// Reads a file that is to become a document, whatever it holds: the slow part of opening, done on a
// background thread.
#pragma once

#include <QString>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "interchange/file_kind.h"
#include "interchange/parsers.h"
#include "interchange/text_file.h"
#include "platform/file_names.h"
#include "store/census_block.h"
#include "store/file_problem.h"
#include "store/project_file.h"

namespace zorvel {

struct FileReading {
    // None for a text file.
    std::unique_ptr<ProjectFile> file;
    ProjectRecords records;
    // Why there are no records, for the user, with the file's name; empty if there are.
    QString failure;
    // Of a project file.
    std::optional<FileProblem> problem;
    // The project that this one is the copy aside of; empty if it is none.
    QString asideOf;
    // Of a text file's records.
    LeftOut leftOut;
};

// A file that the user has named. It is opened once: its first bytes tell its kind, and a file that
// is not a project is read on from there.
struct NamedFile {
    explicit NamedFile(const QString& named);
    // The input to read on; opened again if it was released.
    Result<InputFile> take() {
        return input ? std::move(*input) : InputFile::open(encodedPath(path));
    }

    QString path;
    // None for a project, which the store opens itself. May be reset to release it, as for one of
    // many files, which must not all stay open.
    std::optional<Result<InputFile>> input;
    // Absent where there is no such file.
    std::optional<FileIdentity> identity;
    // By its first bytes or its ending.
    bool isProject = false;
};

// A project file or a text file of counts. kind: of a text file; guessed if absent.
FileReading readAnyFile(NamedFile& file, const ProjectFileOptions& options,
                        std::optional<FileKind> kind);

// shownName stands before the message of a failure.
FileReading readProjectFile(const QString& path, const QString& shownName,
                            const ProjectFileOptions& options);

// "NAME could not be read (line 3, cell 7): reason", for a text file.
QString unreadableMessage(const QString& shownName, const std::string& reason,
                          const TextPlace& place = {});

// "NAME: sentence".
QString projectMessage(const QString& shownName, const FileProblem& problem);

}  // namespace zorvel
