#include "store/change_set.h"

#include <cmath>
#include <utility>

namespace zorvel {
namespace {

bool isNothing(const CensusChange& change) {
    return change.before == change.after ||
           (change.before && change.after && sameBlock(*change.before, *change.after));
}

}  // namespace

bool sameValue(double a, double b) {
    return a == b ? std::signbit(a) == std::signbit(b) : std::isnan(a) && std::isnan(b);
}

bool sameAttributes(const CensusAttributes& a, const CensusAttributes& b) {
    return a.name == b.name && sameValue(a.latitude, b.latitude) &&
           sameValue(a.longitude, b.longitude) && a.notes == b.notes && a.timeStamp == b.timeStamp;
}

bool sameBlock(const CensusBlock& a, const CensusBlock& b) {
    bool same = sameAttributes(a.attributes, b.attributes);
    if (same) forEachTaxonChange(&a, &b, [&](const auto*, const auto*) { same = false; });
    return same;
}

ChangeSet changesBetween(const std::vector<BlockPointer>& before,
                         const std::vector<BlockPointer>& after) {
    ChangeSet changes;
    auto old = before.begin();
    auto now = after.begin();
    while (old != before.end() || now != after.end()) {
        if (now == after.end() || (old != before.end() && (*old)->id < (*now)->id)) {
            changes.push_back({(*old)->id, *old, nullptr});
            ++old;
        } else if (old == before.end() || (*now)->id < (*old)->id) {
            changes.push_back({(*now)->id, nullptr, *now});
            ++now;
        } else {
            if (*old != *now) changes.push_back({(*now)->id, *old, *now});
            ++old;
            ++now;
        }
    }
    return changes;
}

ChangeSet reversed(const ChangeSet& changes) {
    ChangeSet back;
    back.reserve(changes.size());
    for (const CensusChange& change : changes) {
        back.push_back({change.census, change.after, change.before});
    }
    return back;
}

void ChangeLog::add(const CensusChange& change) {
    const auto [place, isNew] = changes_.try_emplace(change.census, change);
    if (!isNew) place->second.after = change.after;
}

ChangeSet ChangeLog::take() {
    ChangeSet changes;
    changes.reserve(changes_.size());
    for (auto& [census, change] : changes_) {
        if (!isNothing(change)) changes.push_back(std::move(change));
    }
    changes_.clear();
    return changes;
}

}  // namespace zorvel
