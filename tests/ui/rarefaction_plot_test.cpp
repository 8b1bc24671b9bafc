#include "ui/analysis/rarefaction_plot.h"
#include "tests/support/extreme_values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace zorvel {

void PrintTo(const QPointF& point, std::ostream* out) {
    *out << '(' << point.x() << ", " << point.y() << ')';
}

namespace {

constexpr auto level95 = ConfidenceLevel::percent95;
constexpr auto level99 = ConfidenceLevel::percent99;

// Estimate r, 95% limits r - 1 and r + 2, 99% limits r - 3 and r + 4.
Rarefaction point(std::int64_t size, double r) {
    return {size, r, 1, r - 1, r + 2, r - 3, r + 4};
}

std::string joined(const QList<PlotTick>& ticks) {
    std::string all;
    for (const PlotTick& tick : ticks) all += tick.label.toStdString() + ' ';
    return all;
}

std::vector<QPointF> pointsOf(const QPolygonF& polygon) {
    return {polygon.begin(), polygon.end()};
}

TEST(RarefactionPlotTest, TicksFollowTheLargestValue) {
    const struct {
        double maximum;
        const char* labels;
    } rows[] = {
        {50, "0 10 20 30 40 50 "},
        {60, "0 10 20 30 40 50 60 "},
        {61, "0 20 40 60 "},
        {347, "0 100 200 300 "},
        {23.4, "0 5 10 15 20 "},
        {3.7, "0 1 2 3 "},
        {6.99, "0 1 2 3 4 5 6 "},  // the whole part counts
        {0.25, "0 "},
        {12000, "0 2000 4000 6000 8000 10000 12000 "},
        {3000000, "0 500000 1000000 1500000 2000000 2500000 3000000 "},
        {3000001, "0 1000000 2000000 3000000 "},
        {45e6, "0 10000000 20000000 30000000 40000000 "},
        {61e6, "0 20000000 40000000 60000000 "},
        {0, ""},
        {-4, ""},
        {nan, ""},
        {infinity, ""},
    };
    for (const auto& row : rows) {
        PlotGeometry geometry = computeGeometry({}, 500, 400, row.maximum);
        geometry.maxSampleSize = row.maximum;
        EXPECT_EQ(joined(yTicks(geometry)), row.labels) << row.maximum;
        EXPECT_EQ(joined(xTicks(geometry)), row.labels) << row.maximum;
    }
    EXPECT_LE(6e307, *tickSpacing(1.7e308) * 6);
}

TEST(RarefactionPlotTest, PlacesTicksAndPointsByTheSize) {
    const std::vector<Rarefaction> data = {point(1, 1), point(10, 6), point(20, 8)};
    const PlotGeometry geometry = computeGeometry(data, 500, 400, maxUpperLimit(data, level95));
    EXPECT_EQ(geometry.origin(), QPointF(50, 40));
    EXPECT_EQ(geometry.maxDiversity, 10);
    EXPECT_EQ(geometry.pointOf(20, 10), QPointF(450, 360));
    const PlotTick x = xTicks(geometry).at(2);  // 10 of 20
    EXPECT_EQ(x.value, 10);
    EXPECT_EQ(x.foot, QPointF(250, 40));
    EXPECT_EQ(x.end, QPointF(250, 32));
    EXPECT_EQ(x.labelPlace, QPointF(246, 16));
    const PlotTick y = yTicks(geometry).at(2);  // 4 of 10
    EXPECT_EQ(y.value, 4);
    EXPECT_EQ(y.foot, QPointF(50, 168));
    EXPECT_EQ(y.end, QPointF(42, 168));
    EXPECT_NEAR(y.labelPlace.x(), 26, 1e-9);
    EXPECT_NEAR(y.labelPlace.y(), 162.4, 1e-9);
    EXPECT_EQ(pointsOf(curveLines(data, geometry).at(0)),
              (std::vector<QPointF>{{50, 40}, {70, 72}, {250, 232}, {450, 296}}));
}

TEST(RarefactionPlotTest, ScalesToTheLargestUpperLimitOfTheLevel) {
    const std::vector<Rarefaction> data = {
        point(1, 1), {2, 3, 1, 2, nan, 2, infinity}, point(3, 2)};
    EXPECT_EQ(maxUpperLimit(data, level95), 4);
    EXPECT_EQ(maxUpperLimit(data, level99), infinity);
    EXPECT_EQ(maxUpperLimit({}, level95), 0);
    EXPECT_EQ(richnessMaximum(data, level95), 4);
    EXPECT_EQ(richnessMaximum(data, level99), 6);
    const std::vector<Rarefaction> noLimits = {{1, 1, nan, nan, nan, nan, nan},
                                               {2, 7, nan, nan, nan, nan, nan},
                                               {3, nan, nan, nan, nan, nan, nan}};
    EXPECT_EQ(maxUpperLimit(noLimits, level95), 0);
    EXPECT_EQ(richnessMaximum(noLimits, level95), 7);
    EXPECT_EQ(confidenceLevelOf(0.95), level95);
    EXPECT_EQ(confidenceLevelOf(0.99), level99);
    EXPECT_EQ(confidenceLevelOf(0.9500001), std::nullopt);
}

TEST(RarefactionPlotTest, AnAxisWithoutScaleLeavesNothingToDraw) {
    const std::vector<Rarefaction> data = {point(1, 1), point(2, 2), point(3, 3)};
    const std::vector<Rarefaction> noSizes = {point(-2, 1), point(-1, 2), point(0, 3)};
    for (const double maximum : {0.0, nan, infinity, 1e-320}) {
        const PlotGeometry geometry = computeGeometry(data, 500, 400, maximum);
        EXPECT_EQ(geometry.yMult, 0) << maximum;
        EXPECT_TRUE(curveLines(data, geometry).isEmpty());
        EXPECT_TRUE(bandPolygons(data, geometry, level95).isEmpty());
        EXPECT_EQ(nearestRecord(data, geometry, 100), -1);
        EXPECT_EQ(xTicks(geometry).size(), 4);
    }
    EXPECT_EQ(computeGeometry(noSizes, 500, 400, 5).xMult, 0);
}

// At one point a unit, the plot's numbers are the records' own, moved by the origin.
class BandTest : public ::testing::Test {
  protected:
    static std::vector<QPointF> moved(std::vector<QPointF> points) {
        for (QPointF& place : points) place += QPointF(12.5, 12.5);
        return points;
    }
    PlotGeometry geometry = computeGeometry(std::vector<Rarefaction>{point(100, 1)}, 125, 125, 100);
};

TEST_F(BandTest, RunsAlongTheLimitsOfTheLevelAndBack) {
    const std::vector<Rarefaction> data = {point(1, 5), point(2, 6), point(3, 7)};
    const QList<QPolygonF> at95 = bandPolygons(data, geometry, level95);
    ASSERT_EQ(at95.size(), 1);
    EXPECT_EQ(pointsOf(at95[0]),
              moved({{1, 1}, {1, 4}, {2, 5}, {3, 6}, {3, 9}, {2, 8}, {1, 7}, {1, 1}, {0, 0}}));
    const QList<QPolygonF> at99 = bandPolygons(data, geometry, level99);
    EXPECT_EQ(at99[0].at(2), QPointF(14.5, 15.5));  // (2, 3)
    EXPECT_EQ(at99[0].at(5), QPointF(14.5, 22.5));  // (2, 10)
}

TEST_F(BandTest, LeavesGapsWhereALimitIsNotFinite) {
    std::vector<Rarefaction> data;
    for (int size = 1; size <= 7; ++size) data.push_back(point(size, size));
    data[2].lower95 = nan;
    data[3].upper95 = infinity;
    const QList<QPolygonF> gap = bandPolygons(data, geometry, level95);
    ASSERT_EQ(gap.size(), 2);
    EXPECT_EQ(pointsOf(gap[0]), moved({{1, 1}, {1, 0}, {2, 1}, {2, 4}, {1, 3}, {1, 1}, {0, 0}}));
    EXPECT_EQ(pointsOf(gap[1]), moved({{5, 4}, {6, 5}, {7, 6}, {7, 9}, {6, 8}, {5, 7}}));
    EXPECT_EQ(bandPolygons(data, geometry, level99).size(), 1);
    data[0].upper95 = nan;  // then nothing leads back to the origin
    EXPECT_EQ(bandPolygons(data, geometry, level95)[0].size(), 2);
}

TEST_F(BandTest, TheCurveLeavesOutRecordsWithoutAnEstimate) {
    std::vector<Rarefaction> data = {point(1, 1), point(2, nan), point(3, 3), point(4, 4)};
    const QList<QPolygonF> lines = curveLines(data, geometry);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(pointsOf(lines[0]), moved({{0, 0}, {1, 1}}));
    EXPECT_EQ(pointsOf(lines[1]), moved({{3, 3}, {4, 4}}));
}

TEST_F(BandTest, FindsTheNearestRecord) {
    const std::vector<Rarefaction> data = {point(1, 1), point(20, 2), point(40, 3)};
    const struct {
        double x;
        int place;
    } rows[] = {{-50, 0}, {0, 0}, {10, 0}, {11, 1}, {30, 1}, {30.5, 2}, {40, 2}, {900, 2}};
    for (const auto& row : rows) {
        EXPECT_EQ(nearestRecord(data, geometry, row.x + 12.5), row.place) << row.x;
    }
    EXPECT_EQ(nearestRecord({}, geometry, 20), -1);
}

}  // namespace
}  // namespace zorvel
