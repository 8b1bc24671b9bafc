// Rarefaction as printed in the literature. Standard deviations without a printed value are the
// cited formula's, computed from the same counts.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <string>

#include "metrics/incidence.h"
#include "metrics/rarefaction.h"

namespace zorvel {
namespace {

using Classes = std::map<std::int64_t, std::int64_t>;  // count, or frequency: number of taxa

CountsVector expanded(const Classes& classes) {
    CountsVector counts;
    for (const auto& [count, taxa] : classes) {
        counts.insert(counts.end(), static_cast<std::size_t>(taxa), count);
    }
    return counts;
}

TEST(PublishedRarefaction, IndividualBased) {
    struct Example {
        std::string source;
        Classes classes;
        std::int64_t n;
        double estimate, tolerance;
        double sd;  // 0: none given
    };
    const Classes benthos = {{365, 1}, {112, 1}, {81, 1}, {61, 1}, {55, 1}, {46, 1},
                             {40, 1},  {38, 1},  {29, 1}, {23, 1}, {21, 1}, {15, 1},
                             {13, 1},  {12, 1},  {10, 1}, {8, 1},  {7, 2},  {6, 2},
                             {5, 3},   {4, 1},   {3, 3},  {2, 6},  {1, 7}};
    const Classes beetles = {{1, 84}, {2, 10}, {3, 4}, {4, 3},  {5, 5},
                             {6, 1},  {7, 2},  {8, 1}, {14, 1}, {42, 1}};
    const Classes soil = {{1, 75}, {2, 6}, {3, 1}, {4, 2}};
    const std::vector<Example> examples = {
        {"Hurlbert 1971, table 2, community a", {{10, 100}}, 100, 65.3, 0.05, 3.0370005},
        {"Hurlbert 1971, table 2, community c (Sanders 1968)", benthos, 100, 20.4, 0.05, 2.1977738},
        {"Hurlbert 1971, table 2, community e", {{901, 1}, {1, 99}}, 100, 10.9, 0.05, 2.8347744},
        {"Colwell et al. 2012, table 1b, old growth", beetles, 20, 15.891665207609165, 1e-9,
         1.75848984},
        {"Colwell et al. 2012, table 1b, old growth", beetles, 200, 98.63181822376555, 1e-9, 0},
        {"Colwell et al. 2012, table 1b, old growth", beetles, 237, 112, 0, 0},
        {"Amazonian soil bacteria, mothur manual", soil, 10, 9.808, 0.001, 0},
        {"Amazonian soil bacteria, mothur manual", soil, 50, 45.62, 0.001, 0},
        {"Amazonian soil bacteria, mothur manual", soil, 90, 77.842, 0.001, 0},
        {"1 to 5, QIIME",
         {{1, 1}, {2, 1}, {3, 1}, {4, 1}, {5, 1}},
         6,
         3.7382617382617385,
         1e-14,
         0},
        {"1 to 5, QIIME",
         {{1, 1}, {2, 1}, {3, 1}, {4, 1}, {5, 1}},
         11,
         4.666666666666667,
         1e-14,
         0}};
    RarefactionCalculator calculator;
    for (const Example& each : examples) {
        SCOPED_TRACE(each.source);
        const Rarefaction point = calculator.individualBasedPoint(expanded(each.classes), each.n);
        EXPECT_NEAR(point.estimate, each.estimate, each.tolerance);
        if (each.sd != 0) {
            EXPECT_NEAR(std::sqrt(point.variance), each.sd, 1e-7);
        }
    }
}

TEST(PublishedRarefaction, SampleBased) {
    struct Example {
        std::string source;
        std::int64_t censuses;
        Classes classes;
        std::int64_t t;
        double estimate, tolerance;
        double sd;  // 0: none given; with this form of Chao2
        double chaoTwo;
    };
    const Classes dune = {{1, 5}, {2, 7}, {3, 4}};
    const Classes ciliates = {{1, 107}, {2, 44}, {3, 26}, {4, 14}, {5, 6},  {6, 5}, {7, 4},
                              {8, 3},   {9, 2},  {10, 2}, {11, 1}, {12, 1}, {14, 1}};
    const Classes seeds = {{1, 3},  {2, 2},  {3, 3},  {4, 3},  {5, 1},  {6, 5},
                           {7, 1},  {8, 1},  {9, 3},  {10, 1}, {11, 2}, {13, 1},
                           {17, 1}, {24, 2}, {43, 2}, {47, 1}, {52, 1}, {61, 1}};
    const double seedChao = 34 + 120.0 / 121 * 9 / 4;
    const std::vector<Example> examples = {
        {"Dune meadow vegetation, biodynamic farms, vegan manual", 3, dune, 1, 31.0 / 3, 1e-12, 0,
         17.19048},
        {"Dune meadow vegetation, biodynamic farms, vegan manual", 3, dune, 2, 43.0 / 3, 1e-12, 0,
         17.19048},
        {"Soil ciliates of Etosha Pan, iNEXT manual", 19, ciliates, 1, 27.158, 6e-4, 0, 339.255},
        {"Soil ciliates of Etosha Pan, iNEXT manual", 19, ciliates, 10, 153.26, 6e-4, 6.888639,
         339.255},
        {"Soil ciliates of Etosha Pan, iNEXT manual", 19, ciliates, 15, 191.819, 6e-4, 0, 339.255},
        {"Seed bank, Colwell, Mao & Chang 2004", 121, seeds, 10, 17.2908874, 1e-6, 0, seedChao},
        {"Seed bank, Colwell, Mao & Chang 2004", 121, seeds, 60, 31.3058782, 1e-6, 1.584772,
         seedChao}};
    RarefactionCalculator calculator;
    for (const Example& each : examples) {
        SCOPED_TRACE(each.source);
        IncidenceSummary summary;
        summary.censuses = each.censuses;
        summary.frequencyCounts.assign(static_cast<std::size_t>(each.censuses) + 1, 0);
        for (const auto& [frequency, taxa] : each.classes) {
            summary.frequencyCounts[static_cast<std::size_t>(frequency)] = taxa;
            summary.taxonNames += taxa;
        }
        const Rarefaction point = calculator.sampleBasedPoint(summary, each.t);
        EXPECT_NEAR(point.estimate, each.estimate, each.tolerance);
        EXPECT_NEAR(chaoTwo(summary), each.chaoTwo, 5e-4);
        if (each.sd != 0) {
            EXPECT_NEAR(std::sqrt(point.variance), each.sd, 1e-6);
        }
    }
}

}  // namespace
}  // namespace zorvel
