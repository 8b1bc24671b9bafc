// What the main window says of records that share their name: which, and what the analyses then do
// with them. Main thread.
#pragma once

#include <QIcon>
#include <QString>

#include "ui/main/shared_names.h"

namespace zorvel {

// Of one species or one census among those of its name, a sentence each.
QString sharedSpeciesReason();
QString sharedCensusReason();

// The line above the species table; empty where no name is shared.
QString sharedSpeciesLine(const SharedNames& names);

// The quiet mark beside such a name.
const QIcon& sharedNameIcon();

}  // namespace zorvel
