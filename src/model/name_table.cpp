#include "model/name_table.h"

#include <algorithm>
#include <utility>

namespace zorvel {

std::size_t NameTable::add(const std::string& name) {
    const auto [same, firstTime] = sameText_.try_emplace(&name, names_.size());
    if (!firstTime) return same->second;
    const auto [place, inserted] = numbers_.try_emplace(name, names_.size());
    if (inserted) names_.push_back(&name);
    same->second = place->second;
    return place->second;
}

std::size_t NameTable::find(std::string_view name) const {
    const auto place = numbers_.find(name);
    return place == numbers_.end() ? names_.size() : place->second;
}

std::vector<std::size_t> NameTable::sortedNumbers() const {
    // The canonical form of each name is made once, not at every comparison.
    std::vector<std::pair<std::string, std::size_t>> forms;
    forms.reserve(names_.size());
    for (std::size_t i = 0; i < names_.size(); ++i) {
        forms.emplace_back(canonicalForm(*names_[i]), i);
    }
    std::sort(forms.begin(), forms.end());
    std::vector<std::size_t> numbers;
    numbers.reserve(forms.size());
    for (const auto& form : forms) numbers.push_back(form.second);
    return numbers;
}

}  // namespace zorvel
