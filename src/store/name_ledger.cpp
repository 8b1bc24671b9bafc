#include "store/name_ledger.h"

#include <algorithm>

namespace zorvel {

bool NameLedger::addStored(const SharedText& text, std::int64_t id, std::int64_t uses) {
    const auto [place, isNew] = names_.try_emplace(text, Name{id, uses, uses, true, uses == 0});
    if (!isNew) return false;
    // The next write removes a name that no taxon uses.
    if (uses == 0) touched_.push_back(&*place);
    nextId_ = std::max(nextId_, id + 1);
    return true;
}

NameLedger::Entry& NameLedger::touch(const SharedText& text) {
    const auto [place, isNew] = names_.try_emplace(text);
    if (isNew) place->second.id = nextId_++;
    if (!place->second.touched) {
        touched_.push_back(&*place);
        place->second.touched = true;
    }
    return *place;
}

std::int64_t NameLedger::use(const SharedText& text) {
    Name& name = touch(text).second;
    ++name.usesAfterwards;
    return name.id;
}

void NameLedger::release(const SharedText& text) {
    --touch(text).second.usesAfterwards;
}

void NameLedger::accept() noexcept {
    settle(true);
}

void NameLedger::revert() noexcept {
    settle(false);
}

void NameLedger::settle(bool accepted) noexcept {
    for (Entry* entry : touched_) {
        Name& name = entry->second;
        if (accepted) {
            name.uses = name.usesAfterwards;
            name.stored = name.uses > 0;
        } else {
            name.usesAfterwards = name.uses;
        }
        name.touched = false;
    }
    // Names without a row are dropped; an unused name that still has a row must be removed later.
    std::size_t kept = 0;
    for (Entry* entry : touched_) {
        if (entry->second.uses > 0) continue;
        if (entry->second.stored) {
            entry->second.touched = true;
            touched_[kept++] = entry;
        } else {
            names_.erase(names_.find(entry->first));
        }
    }
    touched_.resize(kept);
}

}  // namespace zorvel
