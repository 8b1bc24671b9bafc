// What the project-wide metrics are computed from, as it was when the command was given. A plain
// value.
#pragma once

#include <QString>
#include <optional>

#include "metrics/counts.h"
#include "metrics/sparse_counts.h"

namespace zorvel {

struct ProjectWideInputs {
    std::optional<CountsVector> countsVector;  // pooled: one entry a taxon name
    std::optional<SparseCounts> countsMatrix;  // a row a census, a column a taxon name
    QString project;                           // its name
    QString note;  // what was merged because of equal names, in sentences; mostly empty
};

}  // namespace zorvel
