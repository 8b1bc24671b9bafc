// The records of a file that a call names.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/result.h"
#include "interchange/file_kind.h"
#include "model/diversity_document.h"
#include "store/file_problem.h"

namespace zorvel::cli {

struct Call;

struct Project {
    std::string file;              // as messages call it
    std::optional<FileKind> kind;  // of a text file; absent if the file is a project
    LeftOut leftOut;               // of a text file
    // Of a table: how it was understood, and what was taken by a rule. Empty for other files.
    std::vector<std::string> tableNotices;
    std::unique_ptr<DiversityDocument> document;
    std::vector<Census> censuses;  // in the file's order; valid while the document lives
    NameList names;                // of the censuses
};

// The records of a project file as it was last saved, even if it is open elsewhere.
FileResult<ProjectRecords> readRecords(const std::string& file);

// Reads a project or a text: as a table or of the kind that the call names, otherwise as a matrix
// or, for an import, of the kind that it seems to be. A kind named for a project is an error.
// Absent if the file cannot be used; standard error then says why.
std::optional<Project> loadProject(const std::string& file, const Call& call);

// The place of the first census of this name (canonically equal), or of the first census if no name
// is given. If no census has the name, the problem lists the closest names, or else the first ones.
// names: at least one.
Result<std::size_t> chooseCensus(const NameList& names, const std::optional<std::string>& wanted);

}  // namespace zorvel::cli
