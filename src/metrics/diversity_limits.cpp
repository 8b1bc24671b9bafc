#include "metrics/diversity_limits.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "metrics/random_source.h"

namespace zorvel {

namespace {

constexpr double z95 = 1.96;
constexpr double z99 = 2.58;

// Of the specimens of taxa not found, each in a taxon at random: the number in each taxon that has
// any.
CountsVector dealt(RandomSource& random, std::int64_t specimens, double taxa) {
    std::vector<std::uint64_t> boxes(static_cast<std::size_t>(specimens));
    const auto bound = static_cast<std::uint64_t>(taxa);
    for (std::uint64_t& box : boxes) box = random.below(bound);
    std::sort(boxes.begin(), boxes.end());
    CountsVector counts;
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        if (i == 0 || boxes[i] != boxes[i - 1]) counts.push_back(0);
        ++counts.back();
    }
    return counts;
}

// Specimens over all taxa: conditional binomials in fixed order, the taxa not found last.
CountsVector abundanceReplicate(const EstimatedAssemblage& assemblage, std::int64_t specimens,
                                RandomSource& random) {
    CountsVector counts;
    // Of the taxa after the class, summed from the rarest, which come last, so that none is lost.
    std::vector<double> after{assemblage.unseenChance * assemblage.unseenTaxa};
    for (std::size_t i = assemblage.found.size(); i > 1; --i) {
        const EstimatedAssemblage::Class& each = assemblage.found[i - 1];
        after.push_back(after.back() + static_cast<double>(each.taxa) * each.chance);
    }
    std::int64_t left = specimens;
    for (const EstimatedAssemblage::Class& each : assemblage.found) {
        const double others = after.back();
        after.pop_back();
        for (std::int64_t i = 0; i < each.taxa && left > 0; ++i) {
            const bool last = assemblage.unseenTaxa == 0 && &each == &assemblage.found.back() &&
                              i + 1 == each.taxa;
            const double chanceLeft = others + static_cast<double>(each.taxa - i) * each.chance;
            const std::int64_t count =
                last ? left : binomial(random, left, std::min(1.0, each.chance / chanceLeft));
            counts.push_back(count);
            left -= count;
        }
    }
    if (left > 0 && assemblage.unseenTaxa > 0) {
        const CountsVector unseen = dealt(random, left, assemblage.unseenTaxa);
        counts.insert(counts.end(), unseen.begin(), unseen.end());
    }
    return counts;
}

// Each taxon in each census on its own. Those not found: the number of finds among all pairs of
// taxon and census, and then different pairs at random.
CountsVector incidenceReplicate(const EstimatedAssemblage& assemblage, std::int64_t censuses,
                                RandomSource& random) {
    CountsVector counts;
    for (const EstimatedAssemblage::Class& each : assemblage.found) {
        for (std::int64_t i = 0; i < each.taxa; ++i) {
            counts.push_back(binomial(random, censuses, each.chance));
        }
    }
    const double pairs = std::min(assemblage.unseenTaxa * static_cast<double>(censuses), 9e18);
    const std::int64_t finds =
        binomial(random, static_cast<std::int64_t>(pairs), assemblage.unseenChance);
    std::vector<std::uint64_t> places;
    while (static_cast<std::int64_t>(places.size()) < finds) {
        while (static_cast<std::int64_t>(places.size()) < finds) {
            places.push_back(random.below(static_cast<std::uint64_t>(pairs)));
        }
        std::sort(places.begin(), places.end());
        places.erase(std::unique(places.begin(), places.end()), places.end());
    }
    const auto perTaxon = static_cast<std::uint64_t>(censuses);
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (i == 0 || places[i] / perTaxon != places[i - 1] / perTaxon) counts.push_back(0);
        ++counts.back();
    }
    return counts;
}

FrequencyCounts replicateOf(const FrequencyCounts& sample, const EstimatedAssemblage& assemblage,
                            RandomSource& random) {
    const auto size = static_cast<std::int64_t>(sample.size);
    if (sample.kind == SampleKind::abundance) {
        return abundanceFrequencies(abundanceReplicate(assemblage, size, random));
    }
    return incidenceFrequencies(incidenceReplicate(assemblage, size, random), size);
}

// The values of a replicate in the order of the plan; NaN where there is none.
std::vector<double> valuesOf(const DiversityEstimator& replicate, const BootstrapPlan& plan) {
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    std::vector<double> values;
    for (const double size : plan.sizes) {
        const std::optional<DiversityPoint> point = replicate.atSize(size);
        for (std::size_t q = 0; q < kHillOrders; ++q) {
            values.push_back(point ? point->diversity[q] : none);
        }
        values.push_back(point ? point->coverage : none);
    }
    for (const std::optional<DiversityPoint>& point : replicate.atCoverages(plan.coverages)) {
        for (std::size_t q = 0; q < kHillOrders; ++q) {
            values.push_back(point ? point->diversity[q] : none);
        }
    }
    for (const double q : plan.orders) values.push_back(replicate.estimated(q).value_or(none));
    return values;
}

// Of column `place`.
std::optional<double> deviation(const std::vector<std::vector<double>>& rows, std::size_t place) {
    double count = 0;
    double mean = 0;
    double squares = 0;
    for (const std::vector<double>& row : rows) {
        if (row.empty() || !std::isfinite(row[place])) continue;
        ++count;
        const double off = row[place] - mean;
        mean += off / count;
        squares += off * (row[place] - mean);
    }
    if (count < 2 || 2 * count < static_cast<double>(rows.size())) return std::nullopt;
    return std::sqrt(squares / (count - 1));
}

}  // namespace

EstimatedAssemblage estimatedAssemblage(const DiversityEstimator& estimator) {
    const FrequencyCounts& sample = estimator.sample();
    const double n = sample.size;
    EstimatedAssemblage assemblage;
    assemblage.unseenTaxa = std::ceil(estimator.unseenTaxa());
    const double lacking = estimator.lackingShare();
    double lowered = 0;  // the lambda by which the shares of the taxa found are lowered
    const auto missChance = [n](double x) { return std::exp(n * std::log1p(-x / n)); };
    if (assemblage.unseenTaxa > 0) {
        double sum = 0;
        for (const AbundanceClass& each : sample.classes) {
            const auto x = static_cast<double>(each.count);
            sum += static_cast<double>(each.taxa) * (x / n) * missChance(x);
        }
        lowered = lacking / sum;
        assemblage.unseenChance = lacking / assemblage.unseenTaxa;
    }
    for (const AbundanceClass& each : sample.classes) {
        const auto x = static_cast<double>(each.count);
        const double chance = x / n * (1 - lowered * missChance(x));
        assemblage.found.push_back({std::max(0.0, chance), each.taxa});
    }
    return assemblage;
}

std::optional<StandardErrors> bootstrapErrors(const DiversityEstimator& estimator,
                                              const BootstrapPlan& plan,
                                              const std::stop_token& stop) {
    if (!estimator.coverage() || plan.replicates < 1) return std::nullopt;
    if (estimator.sample().size >= 0x1p63) return std::nullopt;  // more than can be drawn
    const EstimatedAssemblage assemblage = estimatedAssemblage(estimator);
    std::vector<std::vector<double>> rows(static_cast<std::size_t>(plan.replicates));
    onThreads(rows.size(), plan.threads, [&](std::size_t i) {
        if (stop.stop_requested()) return;
        // Not the step of the generator that draws the state from its seed.
        constexpr std::uint64_t apart = 0xD1342543DE82EF95;
        SeededRandom random(plan.seed ^ (i + 1) * apart);
        FrequencyCounts replicate = replicateOf(estimator.sample(), assemblage, random);
        if (replicate.taxa == 0) return;  // left out
        rows[i] = valuesOf(DiversityEstimator(std::move(replicate)), plan);
    });
    if (stop.stop_requested()) return std::nullopt;
    StandardErrors errors;
    std::size_t place = 0;
    const auto orders = [&] {
        StandardErrors::Orders of;
        for (std::optional<double>& each : of) each = deviation(rows, place++);
        return of;
    };
    for (std::size_t i = 0; i < plan.sizes.size(); ++i) {
        errors.atSizes.push_back(orders());
        errors.coverages.push_back(deviation(rows, place++));
    }
    for (std::size_t i = 0; i < plan.coverages.size(); ++i) errors.atCoverages.push_back(orders());
    for (std::size_t i = 0; i < plan.orders.size(); ++i) {
        errors.estimated.push_back(deviation(rows, place++));
    }
    return errors;
}

ConfidenceLimits normalLimits(double estimate, double standardError, double lowest,
                              double highest) {
    const auto kept = [&](double limit) { return std::clamp(limit, lowest, highest); };
    return {kept(estimate - z95 * standardError), kept(estimate + z95 * standardError),
            kept(estimate - z99 * standardError), kept(estimate + z99 * standardError)};
}

std::optional<RichnessEstimate> chaoEstimate(const FrequencyCounts& sample, ChaoForm form,
                                             double c) {
    const double f1 = sample.taxaWith(1);
    const double f2 = sample.taxaWith(2);
    const auto square = [](double value) { return value * value; };
    double missing = 0;
    double variance = 0;
    if (form == ChaoForm::classic && f2 > 0) {
        const double h = f1 / f2;
        missing = c * f1 * h / 2;
        variance = f2 * (c * h * h / 2 + c * c * h * h * h + c * c * square(h * h) / 4);
    } else {
        const double more = f2 + 1;
        missing = c * f1 * (f1 - 1) / (2 * more);
        variance =
            c * f1 * (f1 - 1) / (2 * more) + c * c * f1 * square(2 * f1 - 1) / (4 * square(more));
        variance += f2 > 0 ? c * c * f1 * f1 * f2 * square(f1 - 1) / (4 * square(square(more)))
                           : -c * c * square(f1 * f1) / (4 * (sample.taxa + missing));
    }
    if (!(missing > 0)) return std::nullopt;
    RichnessEstimate result{sample.taxa + missing, std::sqrt(variance), {}};
    const double spread = std::sqrt(std::log1p(variance / square(missing)));
    const auto lower = [&](double z) { return sample.taxa + missing / std::exp(z * spread); };
    const auto upper = [&](double z) { return sample.taxa + missing * std::exp(z * spread); };
    result.limits = {lower(z95), upper(z95), lower(z99), upper(z99)};
    return result;
}

}  // namespace zorvel
