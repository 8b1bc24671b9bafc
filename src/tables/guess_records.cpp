// Whether a table has a row for each species of a census, by the words of its header and by what
// its columns hold.
#include <algorithm>
#include <set>

#include "tables/cells.h"
#include "tables/guess_parts.h"
#include "tables/words.h"

namespace zorvel {
namespace {

using Columns = std::vector<std::size_t>;

class RecordColumns {
  public:
    RecordColumns(const SampleGrid& grid, const WordRoles& words) : grid_(grid), words_(words) {
        const bool known = std::any_of(words.begin(), words.end(),
                                       [](const auto& role) { return role.has_value(); });
        guess_.header = known || headerHeight(grid) > 0 ? 1 : 0;
        facts_ = grid.factsOf(guess_.header);
        findSpecies();
        findNames();
        findCounts();
        addUnknownName();
    }

    RecordGuess guess() {
        guess_.namesAreDoubtful = names_.empty() || !species_ || namesAreDoubtful_;
        guess_.columns = roles();
        const bool isTold = grid_.height() > 1 && metadataOf(grid_, 1);  // above a row per species
        if (!names_.empty() && species_ && !isTold) decide();
        return guess_;
    }

  private:
    static constexpr int noRank = 100;
    static constexpr std::size_t mostCounts = 6;  // columns for sexes, stages or distances

    [[nodiscard]] std::optional<HeaderMeaning> meaning(std::size_t column) const {
        if (guess_.header == 0) return std::nullopt;
        return grid_.meaning(grid_.cell(0, column));
    }

    void decide() {
        const bool bySpeciesWord = speciesRank_ < noRank;
        const bool manyColumns = countsByShape_ && counts_.size() > 1;
        if (manyColumns && headersAre(looksLikeSpeciesName)) return;
        const bool overPlaces = manyColumns && headersAre(looksLikeCensusName);
        if (bySpeciesWord && placesAreKnown_) {
            // Several columns of counts may be the insects of host plants, or replicates, days or
            // sexes.
            guess_.fits = !overPlaces || repeats(*species_);
            guess_.doubtful =
                manyColumns && (speciesRank_ > 0 || overPlaces || counts_.size() > mostCounts);
            return;
        }
        if (overPlaces) return;
        if (grid_.height() <= guess_.header + 2) return;
        const bool speciesRepeat = repeats(*species_);
        const bool placesRepeat = std::any_of(names_.begin(), names_.end(),
                                              [this](auto column) { return repeats(column); });
        if (manyColumns) {
            const bool named = bySpeciesWord || share(*species_, looksLikeSpeciesName) >= 0.5;
            guess_.doubtful =
                counts_.size() <= (named ? mostCounts : 2) && speciesRepeat && placesRepeat;
        } else if (!counts_.empty() || (bySpeciesWord && speciesRepeat)) {
            guess_.fits = speciesRepeat && (placesRepeat || bySpeciesWord);
            guess_.doubtful = !guess_.fits && placesRepeat && !familiesMayBe();
        }
    }

    // Whether most cells are texts.
    [[nodiscard]] bool isOfText(std::size_t column) const {
        return facts_[column].filled > 0 && !facts_[column].isOfCounts();
    }

    [[nodiscard]] std::set<std::string_view> values(std::size_t column) const {
        std::set<std::string_view> found;
        for (std::size_t i = guess_.header; i < grid_.height(); ++i) {
            if (!grid_.cell(i, column).empty()) found.insert(grid_.cell(i, column));
        }
        return found;
    }

    [[nodiscard]] bool repeats(std::size_t column) const {
        return values(column).size() < facts_[column].filled;
    }

    [[nodiscard]] bool isName(std::size_t column) const {
        return std::find(names_.begin(), names_.end(), column) != names_.end();
    }

    template <class Looks>
    [[nodiscard]] double share(std::size_t column, const Looks& looks) const {
        const auto texts = values(column);
        if (texts.empty()) return 0;
        return static_cast<double>(std::count_if(texts.begin(), texts.end(), looks)) /
               static_cast<double>(texts.size());
    }

    // Texts that no word explains.
    [[nodiscard]] Columns unknownTexts() const {
        Columns found;
        for (std::size_t column = 0; column < words_.size(); ++column) {
            if (!words_[column] && isOfText(column) && column != species_) found.push_back(column);
        }
        return found;
    }

    // By its word; otherwise the column of binomials.
    void findSpecies() {
        for (const ColumnRole role : {ColumnRole::species, ColumnRole::genus}) {
            const auto found = std::find(words_.begin(), words_.end(), std::optional(role));
            const auto column = static_cast<std::size_t>(found - words_.begin());
            // A number of species is no species.
            if (found == words_.end() || facts_[column].filled == 0) continue;
            if (share(column, isNumberOfAnyForm) > 0.5) continue;
            species_ = column;
            const auto said = meaning(column);  // nothing where the word stands below a group
            speciesRank_ = said ? said->rank : 0;
            return;
        }
        double most = 0.5;
        for (const std::size_t column : unknownTexts()) {
            const double names = share(column, looksLikeSpeciesName);
            if (names < most || (names == most && species_)) continue;
            most = names;
            species_ = column;
        }
    }

    // By words, and otherwise by what is left.
    void findNames() {
        names_ = nameColumns(grid_, guess_.header, words_);
        std::erase_if(names_, [this](auto column) { return column == species_; });
        placesAreKnown_ = !names_.empty();
        Columns texts = unknownTexts();
        if (!species_ && !texts.empty()) takeSpecies(texts);
        // A column of numbers headed "Garden" or "Site" may hold counts.
        const bool areNumbers = placesAreKnown_ && facts_[names_.front()].isOfCounts();
        const bool countsAreKnown = std::find(words_.begin(), words_.end(),
                                              std::optional(ColumnRole::count)) != words_.end();
        if (areNumbers && !countsAreKnown && !(species_ && repeats(*species_))) {
            names_.clear();
            placesAreKnown_ = false;
        }
        if (placesAreKnown_) return;
        const auto date = std::find(words_.begin(), words_.end(), std::optional(ColumnRole::date));
        for (const std::size_t column : texts) {
            if (share(column, looksLikeCensusName) >= 0.5) names_.push_back(column);
        }
        if (names_.empty() && texts.size() == 1) names_ = texts;
        namesAreDoubtful_ |= names_.size() > 1 || (names_.empty() && !texts.empty());
        if (names_.size() > 1) names_.erase(names_.begin() + 1, names_.end());
        if (names_.empty() && !texts.empty()) names_ = {texts.front()};
        if (names_.empty() && date != words_.end()) {
            names_ = {static_cast<std::size_t>(date - words_.begin())};
            placesAreKnown_ = true;
        }
    }

    // The texts that vary most are species, unless others look like numbered places.
    void takeSpecies(Columns& texts) {
        const bool isOnly = texts.size() == 1;
        const auto most =
            std::max_element(texts.begin(), texts.end(), [this](std::size_t a, std::size_t b) {
                return values(a).size() - countOfPlaces(a) < values(b).size() - countOfPlaces(b);
            });
        species_ = *most;
        texts.erase(most);
        const bool othersArePlaces =
            !texts.empty() && std::all_of(texts.begin(), texts.end(), [this](auto column) {
                return share(column, looksLikeCensusName) >= 0.5;
            });
        namesAreDoubtful_ = !(placesAreKnown_ && isOnly) && !othersArePlaces;
    }

    [[nodiscard]] std::size_t countOfPlaces(std::size_t column) const {
        const auto texts = values(column);
        return static_cast<std::size_t>(
            std::count_if(texts.begin(), texts.end(), looksLikeCensusName));
    }

    // By the word; otherwise a total, the whole numbers that no word explains, or what says how
    // much there was of each species.
    void findCounts() {
        const auto byWord = [this](ColumnRole role) {
            for (std::size_t column = 0; column < words_.size() && counts_.empty(); ++column) {
                if (words_[column] == role && facts_[column].isOfCounts()) counts_ = {column};
            }
        };
        byWord(ColumnRole::count);
        // Texts below a certain word are counts at fault.
        for (std::size_t column = 0; column < words_.size() && counts_.empty(); ++column) {
            const auto said = meaning(column);
            const bool isCount = said && said->role == ColumnRole::count && said->rank == 0;
            if (isCount && facts_[column].filled > 0) counts_ = {column};
        }
        // A unit of cover or mass in each row.
        for (std::size_t column = 0; column < words_.size() && !counts_.empty(); ++column) {
            const bool isUnit = isOfText(column) && column != species_ && !isName(column) &&
                                share(column, isAmountHeader) >= 0.5;
            if (isUnit) guess_.countsAreDoubtful = true;
        }
        const bool hasStatus = std::find(words_.begin(), words_.end(),
                                         std::optional(ColumnRole::status)) != words_.end();
        if (!counts_.empty() || hasStatus) return;
        for (std::size_t column = 0; column < words_.size(); ++column) {
            if (!words_[column] && isOfWholeNumbers(column)) counts_.push_back(column);
        }
        countsByShape_ = !counts_.empty();
        if (counts_.empty()) byWord(ColumnRole::total);
        guess_.countsAreDoubtful =
            countsByShape_ && (counts_.size() > 1 || !areSmall(counts_.front()));
        if (!counts_.empty()) return;
        for (std::size_t column = 0; column < words_.size(); ++column) {
            if (isAmount(column) && !recordsRepeat()) {
                counts_ = {column};
                guess_.countsAreDoubtful = true;
                return;
            }
        }
    }

    // A column of which nothing is known may tell censuses apart, if it alone gives a species of a
    // census one row each.
    void addUnknownName() {
        if (names_.empty() || !species_ || !recordsRepeat()) return;
        for (std::size_t column = 0; column < words_.size(); ++column) {
            const bool isUsed = words_[column] || column == species_ || isName(column) ||
                                grid_.holdsRowNumbers(guess_.header, column) ||
                                std::binary_search(counts_.begin(), counts_.end(), column);
            const std::size_t different = isUsed ? 0 : values(column).size();
            if (different < 2 || different * 2 > facts_[column].filled) continue;
            names_.push_back(column);
            if (!recordsRepeat()) {
                namesAreDoubtful_ = true;
                return;
            }
            names_.pop_back();
        }
    }

    [[nodiscard]] bool isOfWholeNumbers(std::size_t column) const {
        const ColumnFacts& facts = facts_[column];
        const bool isNamed =
            column == species_ || std::find(names_.begin(), names_.end(), column) != names_.end();
        return !isNamed && facts.filled > 0 && facts.isOfCounts() && facts.measured == 0 &&
               !grid_.holdsRowNumbers(guess_.header, column);
    }

    // Whether the column has a 0, 1 or 2, as nearly all counts have.
    [[nodiscard]] bool areSmall(std::size_t column) const {
        for (const std::string_view value : values(column)) {
            if (presenceMark(value) || value == "2") return true;
        }
        return false;
    }

    // A cover, a mass or a percentage.
    [[nodiscard]] bool isAmount(std::size_t column) const {
        const ColumnFacts& facts = facts_[column];
        if (facts.filled == 0 || !facts.isOfCounts() || column == species_) return false;
        if (!words_[column]) return facts.measured > 0;
        return words_[column] == ColumnRole::ignored && guess_.header > 0 &&
               isAmountHeader(grid_.cell(0, column));
    }

    // Whether a species of a census has several rows, as individuals have.
    [[nodiscard]] bool recordsRepeat() const {
        std::set<std::string> keys;
        for (std::size_t i = guess_.header; i < grid_.height(); ++i) {
            std::string key(species_ ? grid_.cell(i, *species_) : std::string_view());
            for (std::size_t column = 0; column < words_.size(); ++column) {
                const auto role = words_[column].value_or(ColumnRole::ignored);
                const bool isApart = isName(column) || role == ColumnRole::date ||
                                     role == ColumnRole::latitude ||
                                     role == ColumnRole::longitude || role == ColumnRole::year ||
                                     role == ColumnRole::month || role == ColumnRole::day;
                if (isApart) key.append(1, '\n').append(grid_.cell(i, column));
            }
            if (!keys.insert(std::move(key)).second) return true;
        }
        return false;
    }

    template <class Looks>
    [[nodiscard]] bool headersAre(const Looks& looks) const {
        const auto number = std::count_if(counts_.begin(), counts_.end(), [&](std::size_t column) {
            return looks(grid_.cell(0, column));
        });
        return static_cast<std::size_t>(number) * 2 > counts_.size();
    }

    // Species of which each has one row, behind groups such as families: one census, wide.
    [[nodiscard]] bool familiesMayBe() const {
        return speciesRank_ < noRank && share(names_.front(), looksLikeCensusName) < 0.5 &&
               looksLikeCensusName(grid_.cell(0, counts_.front()));
    }

    [[nodiscard]] std::vector<ColumnRole> roles() const {
        std::vector<ColumnRole> found;
        for (std::size_t column = 0; column < words_.size(); ++column) {
            const ColumnRole role = words_[column].value_or(ColumnRole::ignored);
            const bool isCount = std::binary_search(counts_.begin(), counts_.end(), column);
            // A remark tells of a record, of which nothing but the count is kept.
            const auto said = role == ColumnRole::notes ? meaning(column) : std::nullopt;
            const bool isRemark = said && said->rank > 0;
            const bool isTaken = role == ColumnRole::census || role == ColumnRole::species ||
                                 role == ColumnRole::count || role == ColumnRole::total ||
                                 role == ColumnRole::stage;
            if (column == species_) {
                found.push_back(ColumnRole::species);
            } else if (isName(column)) {
                found.push_back(ColumnRole::census);
            } else if (isCount) {
                found.push_back(ColumnRole::count);
            } else {
                found.push_back(isRemark || isTaken ? ColumnRole::ignored : role);
            }
        }
        return found;
    }

    const SampleGrid& grid_;
    const WordRoles& words_;
    RecordGuess guess_;
    std::vector<ColumnFacts> facts_;
    std::optional<std::size_t> species_;
    int speciesRank_ = noRank;  // of its word
    Columns names_;
    bool placesAreKnown_ = false;  // by words
    bool namesAreDoubtful_ = false;
    Columns counts_;
    bool countsByShape_ = false;
};

}  // namespace

RecordGuess guessRecords(const SampleGrid& grid, const WordRoles& words) {
    return RecordColumns(grid, words).guess();
}

}  // namespace zorvel
