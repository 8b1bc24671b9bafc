// What a random subsample of a sample is expected to hold, as sums over classes of taxa with equal
// counts. n: the specimens (or censuses) of the sample, m: those of the subsample, drawn without
// replacement; a taxon of count x is in k of the m with the hypergeometric probability
// C(x, k) C(n - x, m - k) / C(n, m). Time does not grow in proportion to n. Pure; any thread.
#pragma once

#include <span>

#include "metrics/abundance.h"

namespace zorvel {

// Of the taxa that the subsample lacks: q(x) = C(n - x, m) / C(n, m) is the chance of one.
struct MissedSums {
    double taxa = 0;    // sum of q(x)
    double counts = 0;  // sum of x q(x)
};

// 1 <= m <= n. What is below e^-46 of a taxon is left out.
MissedSums missedSums(std::span<const AbundanceClass> classes, double n, double m);

// The expected entropy: the sum of E[(K / u) ln(u / K)] over the taxa, u = m total / n, total the
// sum of all counts. 1 <= m <= n.
double expectedEntropy(std::span<const AbundanceClass> classes, double n, double total, double m);

}  // namespace zorvel
