// Diversity at equal size or equal coverage: Hill numbers of order q, the effective number of
// species, of a sample as it is, of smaller ones drawn from it, of larger ones predicted, and of
// the assemblage it comes from (Hill 1973; Chao & Jost 2012; Chao et al. 2014; Chao & Jost 2015).
// The same reading serves abundances and incidences. Pure; any thread. Neither memory nor time
// grows in proportion to the specimens.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "metrics/abundance.h"
#include "metrics/counts.h"
#include "metrics/rarefaction.h"

namespace zorvel {

enum class SampleKind { abundance, incidence };

// A sample in classes of taxa with equal counts. abundance: count is specimens, size and total are
// their sum. incidence: count is the censuses that a taxon is in, size the number of censuses.
struct FrequencyCounts {
    SampleKind kind = SampleKind::abundance;
    std::vector<AbundanceClass> classes;  // in increasing order of count
    double size = 0;                      // n, or T
    double total = 0;                     // U: the sum of all counts
    double taxa = 0;                      // S

    // The number of taxa with that count: f1, f2.
    [[nodiscard]] double taxaWith(std::int64_t count) const;
};

// Entries below 1 are absent taxa.
FrequencyCounts abundanceFrequencies(CountsView counts);
// Of taxa that are in so many of the censuses each.
FrequencyCounts incidenceFrequencies(CountsView censusesOfTaxon, std::int64_t censuses);
FrequencyCounts incidenceFrequencies(const IncidenceSummary& summary);

enum class SampleMethod { rarefied, observed, extrapolated };

inline constexpr std::size_t kHillOrders = 3;  // q = 0, 1, 2

struct DiversityPoint {
    double size = 0;      // specimens or censuses; need not be whole
    double coverage = 0;  // expected share of the assemblage that belongs to taxa in the sample
    std::array<double, kHillOrders> diversity{};  // of order 0, 1 and 2
    SampleMethod method = SampleMethod::observed;
    bool beyondTwice = false;  // richness is not reliable there
    // The sample has a larger coverage even at size 1, which then stands here.
    bool belowOne = false;
};

// Why a value is absent.
enum class DiversityAbsence { noTaxa, sizeOne, allSingletons, neverReached };

class DiversityEstimator {
  public:
    explicit DiversityEstimator(FrequencyCounts sample);

    [[nodiscard]] const FrequencyCounts& sample() const { return sample_; }

    // Order q >= 0 of the sample as it is; absent without taxa.
    [[nodiscard]] std::optional<double> observed(double q) const;
    // Of the assemblage, q in [0, 2]. Order 0 is Chao1 (abundance) or Chao2 (incidence) with the
    // factor (n - 1) / n, a lower bound; order 1 that of Chao, Wang & Jost (2013), the others that
    // of Chao & Jost (2015) in closed form. Absent below size 2, and of order 2 if every taxon was
    // found once.
    [[nodiscard]] std::optional<double> estimated(double q) const;
    // The expected number of taxa not found, and (f1 / n) A, the share of the taxa not found.
    [[nodiscard]] double unseenTaxa() const { return unseen_; }
    [[nodiscard]] double lackingShare() const;

    // Of the sample itself (Chao & Jost 2012); absent below size 2.
    [[nodiscard]] std::optional<double> coverage() const;
    // Of a sample twice as large.
    [[nodiscard]] std::optional<double> coverageAtTwice() const;

    // A sample of that size, at least 1; between whole sizes below the sample's own, linear
    // between these. Absent without taxa, and beyond a sample of size 1.
    [[nodiscard]] std::optional<DiversityPoint> atSize(double size) const;
    // The smallest sample with that coverage, from 0 to 1: found exactly, although the curve may
    // be flat. Absent below size 2, and where no sample is large enough.
    [[nodiscard]] std::optional<DiversityPoint> atCoverage(double coverage) const;
    // The same for several coverages in ascending order, faster.
    [[nodiscard]] std::vector<std::optional<DiversityPoint>> atCoverages(
        std::span<const double> coverages) const;

    // Why estimated(q), coverage() or atCoverage() is absent.
    [[nodiscard]] std::optional<DiversityAbsence> estimateAbsence(double q) const;
    [[nodiscard]] std::optional<DiversityAbsence> coverageAbsence(double coverage) const;

  private:
    [[nodiscard]] bool hasEstimates() const { return sample_.size >= 2 && sample_.taxa > 0; }
    [[nodiscard]] double coverageOf(double size) const;
    [[nodiscard]] double estimatedEntropyExponential() const;
    [[nodiscard]] double estimatedOfOrder(double q) const;
    [[nodiscard]] double simpsonAt(double size) const;
    [[nodiscard]] std::optional<DiversityPoint> atCoverageFrom(double coverage,
                                                               double& below) const;
    [[nodiscard]] DiversityPoint wholePoint(double size) const;
    [[nodiscard]] DiversityPoint extrapolated(double size) const;
    [[nodiscard]] DiversityPoint between(double size) const;

    FrequencyCounts sample_;
    double once_ = 0;      // f1
    double twice_ = 0;     // f2
    double stepLack_ = 1;  // a: 1 - A, the share by which a specimen more lowers what is lacking
    double unseen_ = 0;    // f0
    double pairs_ = 0;     // sum of x (x - 1) / (n (n - 1))
    double shannon_ = 0;   // observed and estimated, of order 1
    double shannonLimit_ = 0;
    double shannonStep_ = 0;  // b: the share of what is left that a unit more adds
};

// 41 sizes from 1 by twentieths of the sample's size to twice it, ascending and each once.
std::vector<double> standardSizes(double size);

}  // namespace zorvel
