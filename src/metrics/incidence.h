// Presence and absence of taxa over the censuses of a project, and the richness that they suggest
// (Chao2). Pure functions, safe on any thread.
//
// T is the number of censuses, Y_j the number of censuses with taxon j, Q_k the number of taxa with
// Y = k. A matrix without rows counts as T = 0 without taxa; a row shorter than the first counts as
// filled up with zeros, and cells beyond the first row's length are left out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "metrics/counts.h"
#include "metrics/sparse_counts.h"

namespace zorvel {

// All that sample-based rarefaction needs of a project.
struct IncidenceSummary {
    std::int64_t censuses = 0;    // T
    std::int64_t taxonNames = 0;  // every name of the project, one without any specimen included
    std::vector<std::int64_t> frequencyCounts = {0};  // Q_0 .. Q_T: T + 1 entries

    // Q_k; 0 for a k that no taxon can have.
    [[nodiscard]] std::int64_t taxaIn(std::int64_t k) const {
        const bool inside = k >= 0 && k < static_cast<std::int64_t>(frequencyCounts.size());
        return inside ? frequencyCounts[static_cast<std::size_t>(k)] : 0;
    }
};

// Cells of 2 or more become 1; all others stay as they are.
CountsMatrix incidenceMatrix(const CountsMatrix& matrix);

// The column sums of an incidence matrix: Y_j, one a column of the first row.
std::vector<std::int64_t> incidenceFrequencies(const CountsMatrix& incidence);

// Q_0 .. Q_T of a counts matrix.
std::vector<std::int64_t> incidenceFrequencyCounts(const CountsMatrix& matrix);

IncidenceSummary summariseIncidence(const CountsMatrix& matrix);
IncidenceSummary summariseIncidence(const SparseCounts& counts);

// Chao2, classic form (Chao 1987) with the factor (T - 1) / T:
//     S + ((T - 1) / T) Q_1^2 / (2 Q_2),
// S counting every taxon name, so that a name found in no census raises it by one. The
// bias-corrected form, with Q_1 (Q_1 - 1) / (2 (Q_2 + 1)), differs. 0 for fewer than two censuses;
// without a taxon found exactly twice +infinity, or NaN if none is found once either.
double chaoTwo(const CountsMatrix& matrix);
double chaoTwo(const SparseCounts& counts);
double chaoTwo(const IncidenceSummary& summary);

}  // namespace zorvel
