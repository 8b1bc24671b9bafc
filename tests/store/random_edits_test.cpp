// Random edits of a context beside the same edits of plain lists.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "store/object_context.h"

namespace zorvel {
namespace {

struct PlainTaxon {
    Zorvel handle;
    std::string name;
    std::int64_t abundance = 0;
};

struct PlainCensus {
    Census handle;
    std::string name;
    std::vector<PlainTaxon> taxa;
};

class Twins {
  public:
    explicit Twins(unsigned seed) : random_(seed) {}

    void editOnce() {
        const unsigned action = below(20);
        if (plain_.empty() || action == 0) return insertCensus();
        PlainCensus& census = plain_[below(plain_.size())];
        if (action == 1) return deleteCensus(census);
        if (action == 2) return renameCensus(census);
        if (census.taxa.empty() || action < 9) return insertTaxon(census);
        const auto taxon = census.taxa.begin() + below(census.taxa.size());
        if (action < 14) {
            context_.deleteTaxon(taxon->handle);
            census.taxa.erase(taxon);
        } else {
            taxon->abundance = below(100);
            context_.setAbundance(taxon->handle, taxon->abundance);
        }
    }

    void compare() const {
        const std::vector<Census> censuses = context_.censuses();
        ASSERT_EQ(censuses.size(), plain_.size());
        std::size_t taxonCount = 0;
        for (std::size_t i = 0; i < plain_.size(); ++i) {
            ASSERT_EQ(censuses[i], plain_[i].handle);
            ASSERT_EQ(censuses[i].name().value_or(""), SharedText(plain_[i].name));
            compareTaxa(censuses[i].taxa(), plain_[i].taxa);
            taxonCount += plain_[i].taxa.size();
        }
        ASSERT_EQ(context_.taxa().size(), taxonCount);
    }

  private:
    unsigned below(std::size_t bound) { return static_cast<unsigned>(random_() % bound); }

    static void compareTaxa(const std::vector<Zorvel>& taxa, const std::vector<PlainTaxon>& plain) {
        ASSERT_EQ(taxa.size(), plain.size());
        for (std::size_t i = 0; i < plain.size(); ++i) {
            ASSERT_EQ(taxa[i], plain[i].handle);
            ASSERT_EQ(taxa[i].abundance(), plain[i].abundance);
            ASSERT_EQ(taxa[i].name().value_or(""), SharedText(plain[i].name));
        }
    }

    void insertCensus() {
        std::vector<TaxonValues> values(below(600));
        for (TaxonValues& value : values) {
            value.name = std::to_string(below(50));
            value.abundance = below(9);
        }
        PlainCensus& census =
            plain_.emplace_back(PlainCensus{context_.insertCensus({}, values), {}, {}});
        const std::vector<Zorvel> handles = census.handle.taxa();
        for (std::size_t i = 0; i < values.size(); ++i) {
            census.taxa.push_back({handles[i], values[i].name->str(), values[i].abundance});
        }
    }

    void deleteCensus(const PlainCensus& census) {
        context_.deleteCensus(census.handle);
        plain_.erase(plain_.begin() + (&census - plain_.data()));
    }

    void renameCensus(PlainCensus& census) {
        census.name = std::to_string(below(5));
        context_.setName(census.handle, census.name);
    }

    void insertTaxon(PlainCensus& census) {
        const Zorvel taxon = context_.insertTaxon(census.handle);
        const std::string name = std::to_string(below(50));
        context_.setName(taxon, name);
        census.taxa.push_back({taxon, name, 0});
    }

    std::mt19937 random_;
    ObjectContext context_;
    std::vector<PlainCensus> plain_;
};

TEST(RandomEdits, GiveWhatPlainListsGive) {
    for (unsigned seed = 1; seed <= 3; ++seed) {
        Twins twins(seed);
        for (int round = 0; round < 12; ++round) {
            for (int edit = 0; edit < 60; ++edit) twins.editOnce();
            ASSERT_NO_FATAL_FAILURE(twins.compare()) << "seed " << seed << " round " << round;
        }
    }
}

}  // namespace
}  // namespace zorvel
