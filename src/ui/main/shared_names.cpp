#include "ui/main/shared_names.h"

namespace zorvel {

void SharedNames::add(const std::optional<SharedText>& name) {
    if (!name) return;
    const std::size_t count = ++counts_[*name];
    if (count == 2) shared_.insert(*name);
    if (count >= 2) records_ += count == 2 ? 2 : 1;
}

void SharedNames::remove(const std::optional<SharedText>& name) {
    if (!name) return;
    const auto found = counts_.find(*name);
    if (found == counts_.end()) return;
    const std::size_t count = --found->second;
    if (count == 1) shared_.erase(*name);
    if (count >= 1) records_ -= count == 1 ? 2 : 1;
    if (count == 0) counts_.erase(found);
}

void SharedNames::clear() {
    counts_.clear();
    shared_.clear();
    records_ = 0;
}

bool SharedNames::isShared(const std::optional<SharedText>& name) const {
    return name && !shared_.empty() && shared_.count(*name) > 0;
}

}  // namespace zorvel
