#include "tables/gathering.h"

#include <algorithm>

#include "base/byte_words.h"
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
    if (const std::size_t known = find(cell); known != notFound) return known;
    if (const auto known = others_.find(cell); known != others_.end()) return known->second;
    const std::string name = exact_ ? std::string(cell) : nameInOneLine(cell);
    const std::size_t next = names_.size();
    const std::size_t number =
        exact_ ? next : canonical_.try_emplace(canonicalForm(name), next).first->second;
    if (number == next) {
        Name& added = names_.emplace_back();
        added.text = pool_ != nullptr ? pool_->intern(name) : SharedText(name);
        added.length = name.size();
        added.hash = hashOf(name);
        name.copy(added.start.data(), added.start.size());
        insert(next);
    }
    if (!isName(number, cell)) others_.emplace(cell, number);
    return number;
}

bool SpeciesNumbers::isName(std::size_t number, std::string_view cell) const {
    const Name& name = names_[number];
    if (name.length != cell.size()) return false;
    if (cell.size() < wordSize || cell.size() > name.start.size()) return name.text.view() == cell;
    return forWords(cell.size(), [&](std::size_t i) {
        return wordAt(cell.data() + i) == wordAt(name.start.data() + i);
    });
}

std::size_t SpeciesNumbers::find(std::string_view name) const {
    if (slots_.empty()) return notFound;
    const std::uint32_t hash = hashOf(name);
    for (std::size_t at = hash;; ++at) {
        const std::uint32_t slot = slots_[at & (slots_.size() - 1)];
        if (slot == 0) return notFound;
        if (names_[slot - 1].hash == hash && isName(slot - 1, name)) return slot - 1;
    }
}

void SpeciesNumbers::insert(std::size_t number) {
    if (2 * names_.size() > slots_.size()) {
        slots_.assign(std::max<std::size_t>(64, 2 * slots_.size()), 0);
        for (std::size_t i = 0; i < number; ++i) insert(i);
    }
    std::size_t at = names_[number].hash;
    while (slots_[at & (slots_.size() - 1)] != 0) ++at;
    slots_[at & (slots_.size() - 1)] = static_cast<std::uint32_t>(number + 1);
}

std::size_t CensusGatherer::add(MockCensus census) {
    // The taxa of the last are all there, unless its name comes again.
    if (!censuses.empty()) {
        std::vector<MockTaxon>& taxa = censuses.back().taxa;
        taxa.shrink_to_fit();
        census.taxa.reserve(taxa.size());
    }
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

MockTaxon* CensusGatherer::find(std::size_t census, std::size_t number) {
    enter(number);
    if (census != newCensus_) newCensus_ = SIZE_MAX;
    std::vector<MockTaxon>& taxa = censuses[census].taxa;
    const Place& last = lastPlaces_[number];
    if (last.census == census) return &taxa[last.taxon];
    if (taxa.empty() || census == newCensus_) return nullptr;
    const std::string* const text = &species.name(number).str();
    if (number == newSpecies_) {
        // Nothing else was added since.
        return &taxa.back().name.str() == text ? &taxa.back() : nullptr;
    }
    Index& index = indices_[census];
    for (std::size_t i = index.size(); i < taxa.size(); ++i) index.emplace(&taxa[i].name.str(), i);
    const auto found = index.find(text);
    return found == index.end() ? nullptr : &taxa[found->second];
}

void CensusGatherer::addTaxon(std::size_t census, std::size_t number, std::int64_t abundance) {
    std::vector<MockTaxon>& taxa = censuses[census].taxa;
    if (number < lastPlaces_.size()) {
        lastPlaces_[number] = {static_cast<std::uint32_t>(census),
                               static_cast<std::uint32_t>(taxa.size())};
    }
    taxa.push_back({abundance, species.name(number)});
}

void CensusGatherer::addNewSpecies(const std::vector<std::size_t>& numbers,
                                   const std::vector<std::int64_t>& abundances) {
    for (const std::size_t number : numbers) enter(number);
    newCensus_ = SIZE_MAX;
    for (std::size_t i = 0; i < censuses.size(); ++i) {
        for (std::size_t k = 0; k < numbers.size(); ++k) {
            const std::int64_t abundance = abundances[k * censuses.size() + i];
            if (abundance != 0) addTaxon(i, numbers[k], abundance);
        }
    }
}

void CensusGatherer::setTaxa(std::size_t census, const std::vector<Taxon>& taxa) {
    std::vector<MockTaxon>& made = censuses[census].taxa;
    made.reserve(taxa.size());
    for (const Taxon& taxon : taxa) made.push_back({taxon.abundance, species.name(taxon.number)});
}

}  // namespace zorvel
