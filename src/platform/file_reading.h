// A file that is to become a document, whatever it holds, and what is said of one that cannot be
// read. Any thread; making a NamedFile waits for the disk.
#pragma once

#include <QString>
#include <optional>
#include <string>
#include <utility>

#include "interchange/parsers.h"
#include "interchange/text_file.h"
#include "platform/file_names.h"
#include "store/file_problem.h"
#include "store/project_file.h"

namespace zorvel {

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

// "NAME could not be read (line 3, cell 7): reason", for a text file.
QString unreadableMessage(const QString& shownName, const std::string& reason,
                          const TextPlace& place = {});

// "NAME: sentence".
QString projectMessage(const QString& shownName, const FileProblem& problem);

}  // namespace zorvel
