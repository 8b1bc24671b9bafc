#include "ui/analysis/curves_plot.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "base/numbers.h"

namespace zorvel {

namespace {

constexpr double leftRoom = 48;
constexpr double topRoom = 12;
constexpr double rightRoom = 14;
constexpr double bottomRoom = 26;
constexpr int mostSteps = 6;
constexpr double longTick = 1e7;  // there is no room for all digits from here on

void include(double& end, double value) {
    if (std::isfinite(value)) end = std::max(end, value);
}

// The smallest of 1, 2, 5 times a power of ten of which `mostSteps` cover the length; its power.
std::pair<double, int> stepFor(double length) {
    int power = static_cast<int>(std::floor(std::log10(length / mostSteps)));
    for (;; ++power) {
        for (const double digit : {1.0, 2.0, 5.0}) {
            const double step = digit * std::pow(10.0, power);
            if (mostSteps * step >= length * (1 - 1e-9)) return {step, power};
        }
    }
}

}  // namespace

std::optional<PlotAxes> axesOf(const std::vector<PlotCurve>& curves) {
    PlotAxes axes;
    double highestLimit = 0;
    for (const PlotCurve& curve : curves) {
        for (const QPolygonF* line : {&curve.known, &curve.predicted}) {
            for (const QPointF& point : *line) {
                include(axes.x, point.x());
                include(axes.y, point.y());
            }
        }
        for (const QPointF& point : curve.upper) include(highestLimit, point.y());
    }
    if (axes.x == 0 || axes.y == 0) return std::nullopt;
    axes.y = std::max(axes.y, std::min(highestLimit, 2 * axes.y));
    return axes;
}

std::vector<AxisTick> axisTicks(double end) {
    std::vector<AxisTick> ticks;
    const auto [step, power] = stepFor(end);
    const auto last = static_cast<qint64>(std::floor(end / step + 1e-9));
    const bool isLong = end >= longTick;
    for (qint64 i = 0; i <= last; ++i) {
        const double value = static_cast<double>(i) * step;
        const std::string label =
            isLong ? shortestText(value) : fixedText(value, std::max(0, -power));
        ticks.push_back({value, QString::fromStdString(label)});
    }
    return ticks;
}

PlotFrame::PlotFrame(const PlotAxes& axes, const QSizeF& size, double labelWidth)
    : axes_(axes),
      frame_(leftRoom, topRoom, std::max(1.0, size.width() - leftRoom - rightRoom - labelWidth),
             std::max(1.0, size.height() - topRoom - bottomRoom)) {}

QPointF PlotFrame::pointOf(const QPointF& value) const {
    return {frame_.left() + value.x() / axes_.x * frame_.width(),
            frame_.bottom() - value.y() / axes_.y * frame_.height()};
}

double PlotFrame::xAt(double place) const {
    return std::clamp((place - frame_.left()) / frame_.width(), 0.0, 1.0) * axes_.x;
}

QPolygonF PlotFrame::polygonOf(const QPolygonF& values) const {
    QPolygonF places;
    for (const QPointF& value : values) {
        if (std::isfinite(value.x()) && std::isfinite(value.y())) places.append(pointOf(value));
    }
    return places;
}

// Labels that touch form a group, which stands around the mean of the heights that its labels
// want; a group that reaches the one above it joins it.
std::vector<double> spreadLabels(const std::vector<double>& wanted, double height, double top,
                                 double bottom) {
    std::vector<std::size_t> order(wanted.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return wanted[a] < wanted[b]; });
    struct Group {
        double sum = 0;  // of the heights at which the first label would stand
        std::size_t count = 0;
        double first = 0;
    };
    std::vector<Group> groups;
    const auto settle = [&](Group& group) {
        const double room = bottom - height / 2 - static_cast<double>(group.count - 1) * height;
        group.first = std::max(top + height / 2,
                               std::min(room, group.sum / static_cast<double>(group.count)));
    };
    for (const std::size_t place : order) {
        groups.push_back({wanted[place], 1, 0});
        settle(groups.back());
        while (groups.size() > 1) {
            Group& above = groups[groups.size() - 2];
            const Group last = groups.back();
            const double length = static_cast<double>(above.count) * height;
            if (above.first + length <= last.first) break;
            above.sum += last.sum - static_cast<double>(last.count) * length;
            above.count += last.count;
            groups.pop_back();
            settle(above);
        }
    }
    std::vector<double> heights(wanted.size());
    std::size_t next = 0;
    for (const Group& group : groups) {
        for (std::size_t i = 0; i < group.count; ++i) {
            heights[order[next++]] = group.first + static_cast<double>(i) * height;
        }
    }
    return heights;
}

std::optional<double> valueAt(const QPolygonF& line, double x) {
    const auto after =
        std::lower_bound(line.begin(), line.end(), x,
                         [](const QPointF& point, double at) { return point.x() < at; });
    if (after == line.end()) return std::nullopt;
    if (after->x() == x || after == line.begin()) {
        return after->x() == x ? std::optional(after->y()) : std::nullopt;
    }
    const QPointF& before = *(after - 1);
    return before.y() + (after->y() - before.y()) * (x - before.x()) / (after->x() - before.x());
}

int nearestCurve(const std::vector<PlotCurve>& curves, const PlotFrame& frame,
                 const QPointF& place) {
    int nearest = -1;
    double least = std::numeric_limits<double>::infinity();
    const double x = frame.xAt(place.x());
    for (std::size_t i = 0; i < curves.size(); ++i) {
        for (const QPolygonF* line : {&curves[i].known, &curves[i].predicted}) {
            const std::optional<double> value = valueAt(*line, x);
            if (!value) continue;
            const double distance = std::fabs(frame.pointOf({x, *value}).y() - place.y());
            if (distance >= least) continue;
            least = distance;
            nearest = static_cast<int>(i);
        }
    }
    return nearest;
}

}  // namespace zorvel
