#include "metrics/abundance_classes.h"

#include <algorithm>
#include <cstddef>

namespace zorvel {
namespace {

// Counts below this are tallied by value, since most taxa of a census are rare; only the others
// are sorted. A table as long as a few times the census costs no more than reading it.
std::size_t tallied(CountsView counts) {
    return std::clamp<std::size_t>(4 * counts.size(), 64, 65'536);
}

void append(std::vector<AbundanceClass>& classes, std::int64_t count, std::int64_t taxa) {
    if (taxa > 0) classes.push_back({count, taxa});
}

}  // namespace

std::vector<AbundanceClass> abundanceClasses(CountsView counts) {
    std::vector<std::int64_t> tally(tallied(counts));
    std::vector<std::int64_t> others;
    for (const std::int64_t count : counts) {
        if (count >= static_cast<std::int64_t>(tally.size())) {
            others.push_back(count);
        } else if (count >= 1) {
            ++tally[static_cast<std::size_t>(count)];
        }
    }
    std::sort(others.begin(), others.end());
    std::vector<AbundanceClass> classes;
    for (std::size_t k = 1; k < tally.size(); ++k) {
        append(classes, static_cast<std::int64_t>(k), tally[k]);
    }
    for (auto run = others.begin(); run != others.end();) {
        const auto end = std::upper_bound(run, others.end(), *run);
        append(classes, *run, end - run);
        run = end;
    }
    return classes;
}

}  // namespace zorvel
