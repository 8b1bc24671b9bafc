#include "model/name_table.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace zorvel {

// Texts lie a few dozen bytes apart: multiplied by 2^64 / golden ratio, the highest bits of their
// places are spread evenly (Knuth 1998, section 6.4).
inline TextNumbers::Slot& TextNumbers::slot(const std::string* text) {
    const auto place = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(text));
    std::size_t i = static_cast<std::size_t>((place * 0x9e3779b97f4a7c15U) >> (64 - bits_));
    while (slots_[i].text != text && slots_[i].text) i = (i + 1) & (slots_.size() - 1);
    return slots_[i];
}

std::size_t TextNumbers::add(const std::string* text, std::size_t number) {
    Slot& found = slot(text);
    if (found.text) return found.number;
    found = {text, number};
    if (++used_ > slots_.size() / 2) grow();
    return number;
}

void TextNumbers::grow() {
    std::vector<Slot> old(std::size_t{1} << ++bits_);
    old.swap(slots_);
    for (const Slot& each : old) {
        if (each.text) slot(each.text) = each;
    }
}

std::size_t NameTable::add(const std::string& name) {
    const std::size_t known = sameText_.add(&name, names_.size());
    if (known < names_.size()) return known;
    const auto [place, inserted] = numbers_.try_emplace(name, names_.size());
    if (inserted) {
        names_.push_back(&name);
    } else {
        sameText_.setNumber(&name, place->second);
    }
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
