// Diversity metrics of one census, each a pure function of its counts. Degenerate input gives 0,
// NaN or infinity by the formula, as each comment states; formatMetric shows NaN and infinity as a
// dash. Several metrics of one census share a tally.
//
// S is the number of taxa present, N the number of individuals, p_i the share of taxon i, f1 and f2
// the numbers of taxa with one and with two specimens; logarithms are natural.
#pragma once

#include <cstdint>
#include <string>

#include "metrics/abundance.h"

namespace zorvel {

// N: the sum of all entries, those below 1 included. Saturates at the 64-bit limits.
std::int64_t individuals(const AbundanceTally& census);

// S: the number of entries that are at least 1.
std::int64_t richness(const AbundanceTally& census);

// Shannon's H = -sum p_i ln p_i (Shannon 1948; in ecology, Margalef 1958), without a correction for
// sample size. 0 without taxa.
double shannonH(const AbundanceTally& census);

// Fisher's alpha, the root of S = alpha ln(1 + N / alpha) (Fisher, Corbet & Williams 1943), by the
// steps alpha' = S / ln(N / alpha + 1) from 1 until one changes alpha by no more than 1e-5: within
// about that step of the root where N is several times S. 0 where no taxon has 5 specimens, and
// where N is not above S (alpha has no finite value there).
double fisherAlpha(const AbundanceTally& census);

// Pielou's J = H / ln S (Pielou 1966). NaN for one taxon, 0 without taxa.
double pielouJ(const AbundanceTally& census);

// Simpson's diversity for a finite sample, 1 - sum n_i (n_i - 1) / (N (N - 1)) (Simpson 1949; the
// form that grows with diversity): sum p_i (1 - p_i) times N / (N - 1), the factor taking N from
// all entries. Neither Simpson's concentration, sum p_i^2, nor its inverse. NaN for one specimen,
// -0 without specimens.
double simpsonD(const AbundanceTally& census);

// Buzas and Gibson's evenness E = e^H / S (Buzas & Gibson 1969). +infinity without taxa.
double buzasE(const AbundanceTally& census);

// Chao1, bias-corrected: S + f1 (f1 - 1) / (2 (f2 + 1)) (Chao 2005, without the factor (N - 1) /
// N). Finite for every census.
double chaoOne(const AbundanceTally& census);

// Chao1, classic: S + f1^2 / (2 f2) (Chao 1984, without the factor (N - 1) / N). Without doubletons
// +infinity, or NaN without singletons either.
double chaoClassic(const AbundanceTally& census);

// The text of a metric: "-" for NaN and infinities, "0.0" for zero of either sign, otherwise
// fixed-point with exactly digits decimals, rounded as printf's %f.
std::string formatMetric(double value, int digits);

}  // namespace zorvel
