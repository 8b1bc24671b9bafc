// Reads a text file of any kind into the records of a new project, ready to be adopted by a context
// that is empty. One call does all the slow part of opening a file; it owns nothing and may run on
// any thread.
#pragma once

#include <optional>
#include <string>

#include "interchange/file_kind.h"
#include "interchange/import_records.h"
#include "store/census_block.h"

namespace zorvel {

struct TextProject {
    ProjectRecords records;
    // Why there are none, in words for the person at the screen; empty where the file was read.
    std::string failure;
    TextPlace place;  // of the failure, as far as it is known
    LeftOut leftOut;  // of the records
};

// Whether it is a regular file that begins as a project does. Nothing else is looked into: the
// bytes of a pipe come once.
bool holdsProject(const std::string& path);

// Of that kind, or of the one that it seems to be. Writes to the console what the parser says and,
// on failure, the import's own line after it.
TextProject readTextProject(const std::string& path, std::optional<FileKind> kind = std::nullopt);

}  // namespace zorvel
