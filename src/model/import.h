// From the text of a file of any kind to the records of a project.
#pragma once

#include <string_view>
#include <vector>

#include "interchange/file_kind.h"
#include "interchange/import_records.h"
#include "model/diversity_document.h"

namespace zorvel {

// The parser of the kind; a list and a single census give one record.
Parsed<std::vector<MockCensus>> parseFile(FileKind kind, std::string_view text);

// All of them in one step of undo, see importCensuses().
void storeCensuses(DiversityDocument& document, const std::vector<MockCensus>& censuses);

}  // namespace zorvel
