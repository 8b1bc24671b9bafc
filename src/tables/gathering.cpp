#include "tables/gathering.h"

#include <algorithm>

#include "base/text.h"

namespace zorvel {

std::string nameInOneLine(std::string_view cell) {
    std::string name(cell);
    for (char& c : name) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = ' ';
    }
    return name;
}

std::size_t SpeciesNumbers::number(std::string_view cell) {
    if (last_ < names_.size() && isName(last_, cell)) return last_;
    if (const auto known = find(cell)) return last_ = *known;
    if (const auto known = others_.find(cell); known != others_.end()) return last_ = known->second;
    const std::string name = exact_ ? std::string(cell) : nameInOneLine(cell);
    const std::size_t next = names_.size();
    last_ = exact_ ? next : canonical_.try_emplace(canonicalForm(name), next).first->second;
    if (last_ == next) {
        Name& added = names_.emplace_back();
        added.text = pool_ != nullptr ? pool_->intern(name) : SharedText(name);
        added.length = name.size();
        added.hash = hashOf(name);
        name.copy(added.start.data(), added.start.size());
        insert(next);
    }
    if (!isName(last_, cell)) others_.emplace(cell, last_);
    return last_;
}

bool SpeciesNumbers::isName(std::size_t number, std::string_view cell) const {
    const Name& name = names_[number];
    const std::size_t compared = std::min(cell.size(), name.start.size());
    return name.length == cell.size() && cell.starts_with({name.start.data(), compared}) &&
           (cell.size() <= name.start.size() || name.text.view() == cell);
}

std::optional<std::size_t> SpeciesNumbers::find(std::string_view name) const {
    if (slots_.empty()) return std::nullopt;
    const std::uint32_t hash = hashOf(name);
    for (std::size_t at = hash;; ++at) {
        const std::uint32_t slot = slots_[at & (slots_.size() - 1)];
        if (slot == 0) return std::nullopt;
        if (names_[slot - 1].hash == hash && isName(slot - 1, name)) return slot - 1;
    }
}

void SpeciesNumbers::insert(std::size_t number) {
    if (4 * names_.size() > 3 * slots_.size()) {
        slots_.assign(std::max<std::size_t>(64, 2 * slots_.size()), 0);
        for (std::size_t i = 0; i < number; ++i) insert(i);
    }
    std::size_t at = names_[number].hash;
    while (slots_[at & (slots_.size() - 1)] != 0) ++at;
    slots_[at & (slots_.size() - 1)] = static_cast<std::uint32_t>(number + 1);
}

std::size_t CensusGatherer::add(MockCensus census) {
    // Its taxa are all there, unless its name comes again.
    if (!censuses.empty()) censuses.back().taxa.shrink_to_fit();
    censuses.push_back(std::move(census));
    newCensus_ = censuses.size() - 1;
    return newCensus_;
}

std::size_t CensusGatherer::open(MockCensus census, std::string key) {
    const auto [found, isNew] = censusOfKey_.try_emplace(std::move(key), censuses.size());
    if (isNew) return add(std::move(census));
    MockCensus& known = censuses[found->second];
    if (known.notes.empty()) known.notes = std::move(census.notes);
    return found->second;
}

std::size_t CensusGatherer::openNew(MockCensus census, std::string key) {
    const std::size_t index = add(std::move(census));
    censusOfKey_.insert_or_assign(std::move(key), index);
    return index;
}

// Notes whether the species is new since the last one.
void CensusGatherer::enter(std::size_t number) {
    if (number == newSpecies_) return;
    newSpecies_ = number >= lastPlaces_.size() ? number : SIZE_MAX;
    if (newSpecies_ == number) lastPlaces_.resize(species.size());
}

std::optional<std::size_t> CensusGatherer::find(std::size_t census, std::size_t number) {
    enter(number);
    if (census != newCensus_) newCensus_ = SIZE_MAX;
    const Place& last = lastPlaces_[number];
    if (last.census == census) return last.taxon;
    const std::vector<MockTaxon>& taxa = censuses[census].taxa;
    if (taxa.empty() || census == newCensus_) return std::nullopt;
    const std::string* const text = &species.name(number).str();
    if (number == newSpecies_) {
        // Nothing else was added since.
        if (&taxa.back().name.str() == text) return taxa.size() - 1;
        return std::nullopt;
    }
    Index& index = indices_[census];
    for (std::size_t i = index.size(); i < taxa.size(); ++i) index.emplace(&taxa[i].name.str(), i);
    const auto found = index.find(text);
    if (found == index.end()) return std::nullopt;
    return found->second;
}

void CensusGatherer::addTaxon(std::size_t census, std::size_t number, std::int64_t abundance) {
    std::vector<MockTaxon>& taxa = censuses[census].taxa;
    if (number < lastPlaces_.size()) {
        lastPlaces_[number] = {static_cast<std::uint32_t>(census),
                               static_cast<std::uint32_t>(taxa.size())};
    }
    taxa.push_back({abundance, species.name(number)});
}

void CensusGatherer::addToNewSpecies(std::size_t census, std::size_t number,
                                     std::int64_t abundance) {
    enter(number);
    if (census != newCensus_) newCensus_ = SIZE_MAX;
    addTaxon(census, number, abundance);
}

void CensusGatherer::setTaxa(std::size_t census, const std::vector<Taxon>& taxa) {
    std::vector<MockTaxon>& made = censuses[census].taxa;
    made.reserve(taxa.size());
    for (const Taxon& taxon : taxa) made.push_back({taxon.abundance, species.name(taxon.number)});
}

}  // namespace zorvel
