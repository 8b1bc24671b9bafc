#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "interchange/writers.h"

namespace zorvel {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TEST(WriteMetricsTable, WholeText) {
    const std::string header =
        " , Abundance, Richness, Chao-1, alroySQS, Shannon's H, Fisher's alpha, Pielou's J, "
        "Simpson's D, Buzas-Gibson E\n";
    EXPECT_EQ(writeMetricsTable({}, metricColumnTitles, {}), header);
    const std::vector<MetricRow> rows = {
        {22, 6, 8.25, 5.75, 1.4655, 2.5, 0.0, -0.0, 1e-9},
        {1e15, 2147483648.0, nan, infinity, -infinity, 1e20, -0.0005, 0.0625, -nan}};
    const std::vector<std::string> names = {"North, wet", "\u00C5 \"quoted\""};
    EXPECT_EQ(writeMetricsTable(rows, metricColumnTitles, names),
              header +
                  "North, wet, 22, 6, 8.2, 5.8, 1.466, 2.500, 0.0, 0.0, 0.000\n"
                  "\u00C5 \"quoted\", 1000000000000000, 2147483648, -, -, -, "
                  "100000000000000000000.000, -0.001, 0.062, -\n");
}

TEST(WriteRarefactionTable, WholeText) {
    const std::string header =
        "sampleSize,estimatedRichness,variance,lower95limit,upper95limit,lower99limit,"
        "upper99limit\n";
    EXPECT_EQ(writeRarefactionTable({}), header);
    const std::vector<Rarefaction> curve = {
        {5, 3.25, 0.5, 2.0, 4.5, 1.5, 5.0},
        {12345678901, 1e20, 1234567.8, -1.5, 0.0005, 0.0015, 123456789012.25},
        {-1, nan, -nan, infinity, -infinity, -0.0, -0.0001}};
    EXPECT_EQ(writeRarefactionTable(curve),
              header +
                  "         5,            3.250,   0.500,       2.000,       4.500,       1.500,"
                  "       5.000\n"
                  "12345678901,100000000000000000000.000,1234567.800,      -1.500,       0.001,"
                  "       0.002,123456789012.250\n"
                  "        -1,              nan,     nan,         inf,        -inf,      -0.000,"
                  "      -0.000\n");
}

}  // namespace
}  // namespace zorvel
