// Puts censuses into a project as an import does, without a window and jobs.
#pragma once

#include <vector>

#include "model/edits.h"
#include "model/import.h"

namespace zorvel {

// All of them, in order, as one step of undo.
inline void importCensuses(ObjectContext& context, const std::vector<MockCensus>& censuses) {
    std::size_t records = censuses.size();
    for (const MockCensus& census : censuses) records += census.taxa.size();
    const auto batch = context.newBatch(records);
    for (const MockCensus& census : censuses) storeCensus(*batch, census);
    const UndoStep step(context, "Import");
    context.insertCensuses(*batch);
}

}  // namespace zorvel
