#include "store/change_set.h"

#include <utility>

namespace zorvel {

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

void ChangeLog::add(RecordId census, const BlockPointer& before, const BlockPointer& after) {
    const auto [place, isNew] = changes_.try_emplace(census, CensusChange{census, before, after});
    if (!isNew) place->second.after = after;
}

ChangeSet ChangeLog::take() {
    ChangeSet changes;
    changes.reserve(changes_.size());
    for (auto& [census, change] : changes_) {
        if (change.before != change.after) changes.push_back(std::move(change));
    }
    changes_.clear();
    return changes;
}

}  // namespace zorvel
