#include "model/copied_records.h"

#include <gtest/gtest.h>

#include <random>

#include "base/text.h"
#include "tests/support/extreme_values.h"
#include "tests/support/same_records.h"

namespace zorvel {
namespace {

std::vector<CopiedCensus> oddCensuses() {
    const TimeStamp early = TimeStamp::min();
    return {{{"North", 46.5, -0.0, "wet\nand cold", TimeStamp()},
             {{"Abies", 3, true}, {std::nullopt, least, false}, {"", 0, true}}},
            {{std::nullopt, nan, -infinity, std::nullopt, std::nullopt}, {}},
            {{"", 0, 0, "", early}, {{"Abies", most, false}, {"\u00C9picea\t\"q\"", 1, true}}}};
}

std::string copyOf(const std::vector<CopiedCensus>& censuses) {
    RecordCopy copy;
    for (const CopiedCensus& census : censuses) {
        copy.addCensus(census.attributes);
        for (const TaxonValues& taxon : census.taxa) copy.addTaxon(taxon);
    }
    return copy.take().value();
}

TEST(CopiedRecords, HoldEveryValue) {
    const std::vector<CopiedCensus> censuses = oddCensuses();
    const auto read = readCopiedRecords(copyOf(censuses));
    ASSERT_TRUE(read);
    ASSERT_EQ(read->size(), censuses.size());
    for (std::size_t i = 0; i < censuses.size(); ++i) {
        EXPECT_TRUE(sameAttributes((*read)[i].attributes, censuses[i].attributes)) << i;
        EXPECT_EQ((*read)[i].taxa, censuses[i].taxa) << i;
    }
}

// What is taken can be stored: a file with other text would be refused as damaged.
TEST(CopiedRecords, AreTakenWholeOrNotAtAll) {
    const std::string whole = copyOf(oddCensuses());
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_FALSE(readCopiedRecords(std::string_view(whole).substr(0, size))) << size;
    }
    EXPECT_FALSE(readCopiedRecords(whole + 'E'));
    std::mt19937 random(7);
    int taken = 0;
    for (int i = 0; i < 20'000; ++i) {
        std::string bytes = whole;
        for (int flips = 1 + i % 3; flips > 0; --flips) {
            bytes[random() % bytes.size()] = static_cast<char>(random());
        }
        const auto read = readCopiedRecords(bytes);
        if (!read) continue;
        ++taken;
        for (const CopiedCensus& census : *read) {
            const auto isText = [](const std::optional<SharedText>& text) {
                return !text || !firstInvalidUtf8(text->view());
            };
            EXPECT_TRUE(isText(census.attributes.name) && isText(census.attributes.notes));
            for (const TaxonValues& taxon : census.taxa) EXPECT_TRUE(isText(taxon.name));
        }
    }
    EXPECT_GT(taken, 1000);
}

TEST(CopiedRecords, ThereIsALimit) {
    const SharedText notes(std::string(longestCopy / 2, 'n'));
    for (const int censuses : {1, 2}) {
        RecordCopy copy;
        for (int i = 0; i < censuses; ++i) copy.addCensus({{}, 0, 0, notes, {}});
        EXPECT_EQ(copy.take().has_value(), censuses == 1);
    }
}

}  // namespace
}  // namespace zorvel
