#include "store/change_set.h"

#include <cmath>
#include <utility>

namespace zorvel {
namespace {

bool isNothing(const CensusChange& change) {
    return change.before == change.after ||
           (change.before && change.after && sameBlock(*change.before, *change.after));
}

bool sameValue(double a, double b) {
    return a == b ? std::signbit(a) == std::signbit(b) : std::isnan(a) && std::isnan(b);
}

// The same changes the other way round.
ChangeSet reversed(const ChangeSet& changes) {
    ChangeSet back;
    back.reserve(changes.size());
    for (const CensusChange& change : changes) {
        back.push_back({change.census, change.after, change.before});
    }
    return back;
}

}  // namespace

bool sameAttributes(const CensusAttributes& a, const CensusAttributes& b) {
    return a.name == b.name && sameValue(a.latitude, b.latitude) &&
           sameValue(a.longitude, b.longitude) && a.notes == b.notes && a.timeStamp == b.timeStamp;
}

bool sameBlock(const CensusBlock& a, const CensusBlock& b) {
    bool same = sameAttributes(a.attributes, b.attributes);
    if (same) forEachTaxonChange(&a, &b, [&](const auto*, const auto*) { same = false; });
    return same;
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

void History::beginStep(std::string name) {
    if (depth_++ == 0) openName_ = std::move(name);
}

void History::endStep() {
    if (depth_ > 0 && --depth_ == 0) push({std::move(openName_), open_.take()});
}

void History::record(const ChangeSet& changes) {
    if (depth_ == 0) return push({"", changes});
    for (const CensusChange& change : changes) open_.add(change);
}

void History::push(Step step) {
    if (step.changes.empty()) return;
    undone_.clear();
    done_.push_back(std::move(step));
}

ChangeSet History::undo() {
    undone_.push_back(std::move(done_.back()));
    done_.pop_back();
    return reversed(undone_.back().changes);
}

ChangeSet History::redo() {
    done_.push_back(std::move(undone_.back()));
    undone_.pop_back();
    return done_.back().changes;
}

}  // namespace zorvel
