// Diversity metrics of one counts vector: pure functions, safe on any thread. Degenerate input
// gives 0, NaN or infinity by the formula, as each comment states; formatMetric shows NaN and
// infinity as a dash.
//
// S is the number of taxa present, N the number of individuals, p_i the share of taxon i, f1 and f2
// the numbers of taxa with one and with two specimens; logarithms are natural.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "metrics/counts.h"

namespace zorvel {

// N: the sum of all entries, those below 1 included. Saturates at the 64-bit limits.
std::int64_t individuals(CountsView counts);

// S: the number of entries that are at least 1.
std::int64_t richness(CountsView counts);

// p_i = entry / sum of the present entries, for each present entry in order; empty without one.
std::vector<double> proportions(CountsView counts);

double shannonH(CountsView counts);
double fisherAlpha(CountsView counts);
double pielouJ(CountsView counts);
double simpsonD(CountsView counts);
double buzasE(CountsView counts);
double chaoOne(CountsView counts);
double chaoClassic(CountsView counts);

// All metrics of one vector from one pass over it; each field equals the function of its name.
struct CensusMetrics {
    std::int64_t individuals = 0;
    std::int64_t richness = 0;
    double chaoOne = 0;
    double chaoClassic = 0;
    double shannonH = 0;
    double fisherAlpha = 0;
    double pielouJ = 0;
    double simpsonD = 0;
    double buzasE = 0;
};
CensusMetrics censusMetrics(CountsView counts);

// The text of a metric: "-" for NaN and infinities, "0.0" for zero of either sign, otherwise
// fixed-point with exactly digits decimals, rounded as printf's %f.
std::string formatMetric(double value, int digits);

}  // namespace zorvel
