#include "store/history.h"

#include <utility>

namespace zorvel {

void History::beginStep(std::string name) {
    if (depth_++ == 0) openName_ = std::move(name);
}

void History::endStep() {
    if (depth_ > 0 && --depth_ == 0) push({std::move(openName_), open_.take()});
}

void History::record(ChangeSet changes) {
    if (depth_ == 0) return push({"", std::move(changes)});
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

void History::forget() {
    done_.clear();
    undone_.clear();
}

}  // namespace zorvel
