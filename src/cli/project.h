// The records of the file that a call names.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/call.h"
#include "model/diversity_document.h"

namespace zorvel::cli {

struct Project {
    std::string file;  // as messages call it
    std::unique_ptr<DiversityDocument> document;
    std::vector<Census> censuses;  // in the file's order; valid while the document lives
    NameList names;                // of the censuses
};

// Reads, decodes and parses the file. Absent where it cannot be used: standard error says why.
std::optional<Project> loadProject(const Call& call);

}  // namespace zorvel::cli
