// The records of a file that a call names.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "interchange/file_kind.h"
#include "model/diversity_document.h"

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

// Reads the file: a project by what it was last saved with, whoever has it open, and the file stays
// as it is; text as a table or by its kind, as the call says, or where it says neither by the kind
// that otherwise() takes it for. A kind named for a project is a problem, as it is for text of
// another kind. Absent where the file cannot be used: standard error says why.
std::optional<Project> loadProject(const std::string& file, const Call& call,
                                   FileKind (*otherwise)(std::string_view text));

// The place of the first census of this name (canonically equal), or of the first census if no name
// is given. If no census has the name, the problem lists the closest names, or else the first ones.
// names: at least one.
Result<std::size_t> chooseCensus(const NameList& names, const std::optional<std::string>& wanted);

}  // namespace zorvel::cli
