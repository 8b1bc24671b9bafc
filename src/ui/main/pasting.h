// Puts rows that were copied from a spreadsheet into a project: all of them, as one step of undo,
// or none and a sentence that says why. The text may be anything at all. Main thread.
#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "store/object_context.h"

namespace zorvel {

struct PasteOutcome {
    std::vector<RecordId> records;  // the new ones, ascending
    QString problem;                // empty where there are records
};

// Names and abundances, at the end of the census.
PasteOutcome pasteSpeciesRows(ObjectContext& context, const std::optional<Census>& census,
                              const QString& text);
// Names, each a new census at the end of the project.
PasteOutcome pasteCensusRows(ObjectContext& context, const QString& text);

}  // namespace zorvel
