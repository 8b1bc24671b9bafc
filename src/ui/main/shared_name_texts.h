// What the program says of records that share their name, or have none: which, and what the
// analyses then do with them. Main thread, but for the notes.
#pragma once

#include <QIcon>
#include <QString>

#include "ui/main/shared_names.h"

namespace zorvel {

struct SparseCountsResult;

// Of one species or one census among those of its name, a sentence each.
QString sharedSpeciesReason();
QString sharedCensusReason();

// The line above the species table; empty where no name is shared.
QString sharedSpeciesLine(const SharedNames& names);

// What equal and missing names made of the records of a whole project in the census matrix, in
// sentences; empty where nothing. Any thread.
QString matrixNote(const SparseCountsResult& counts);
// The same with what it means to the analyses.
QString mergedNamesNote(const SparseCountsResult& counts);

// The quiet mark beside such a name.
const QIcon& sharedNameIcon();

}  // namespace zorvel
